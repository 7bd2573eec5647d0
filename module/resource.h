// Ids of the string table.
#pragma once

#define IDS_NO_CALCULATOR 1
#define IDS_LOG_RENAMED 2
#define IDS_LOG_IMPOSSIBLE 3
#define IDS_NO_MAIN_INI 4
#define IDS_NO_INI_ENTRY 5
