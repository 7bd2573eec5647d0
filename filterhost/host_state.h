// What the host keeps for the whole process: one application runs at a time.
#pragma once

#include "filterhost/filter_record.h"
#include "module/own_arithmetic.h"

#include <set>

class PSFilter_;

// A handle of the host's own making; plug-ins hold its address.
struct HostHandle {
    char* data;
    std::int32_t size;
};

struct HostState {
    // The filter that is being applied; the host's procedures work on it. Null between applications.
    PSFilter_* current = nullptr;
    // What the caller of that application has set, for its progress function; plug-ins run in our own.
    ArithmeticState callers_arithmetic = ArithmeticState::own();
    // The main window of the thread that last built a filter's tables; null when that thread has none.
    ps::PlatformData platform_window{};
    // Every handle that the host made and nobody disposed of yet. Plug-ins may keep handles from one
    // application to the next, and dispose of them while they are being unloaded.
    std::set<HostHandle*> handles;
};

HostState& host_state();
