#pragma once

#include <string>

// A text formatted as printf does; its length is bounded by the arguments alone.
std::string formatted(const char* format, ...);
