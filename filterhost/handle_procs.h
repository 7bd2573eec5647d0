// The buffer and handle procedures that plug-ins call.
#pragma once

#include "filterhost/filter_record.h"

ps::BufferProcs make_buffer_procs();
ps::HandleProcs make_handle_procs();

// What the buffers' space procedure and the record's memory limit tell plug-ins.
constexpr std::int32_t memory_for_plugins = 100'000'000;
