// Reports of the store to the user.
#pragma once

#include "bvutil/messages.h"

namespace env {

// One message, with the line that reports. (The fuzz targets' compiler has the builtin, not
// std::source_location.)
inline void report(const char* text, int line = __builtin_LINE()) {
    BvUtil_Message(text, nullptr, nullptr, "BvUtilEnv", line);
}

} // namespace env
