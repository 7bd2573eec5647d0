// Reports of the store to the user.
#pragma once

#include "bvutil/messages.h"

#include <source_location>

namespace env {

// One message, with the line that reports.
inline void report(const char* text, std::source_location place = std::source_location::current()) {
    BvUtil_Message(text, nullptr, nullptr, "BvUtilEnv", static_cast<int>(place.line()));
}

} // namespace env
