// The host's display procedure.
#pragma once

#include "filterhost/filter_record.h"

// Draws pixels of a map on the device context `context`, its top left corner at (column, row). Each row is
// read from its beginning: for grey from the column `area->left` on, for colour from column 0; the area's top
// is not added (kept: plug-ins pass maps that begin where their area does).
ps::OSErr PS_CALL display_pixels(const ps::PSPixelMap* source, const ps::VRect* area, std::int32_t row,
                                 std::int32_t column, void* context) noexcept;
