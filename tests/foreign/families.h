// One use of each family of exports, with what it gave in the caller's transcript. Together they call every
// export. From all states of a caller, without memory, and whenever the library is loaded again, they give
// the same.
#pragma once

#include "tests/foreign/caller.h"

struct Family {
    const char* name;
    void (*use)(Caller& caller);
};

void use_environment(Caller& caller);
void use_files(Caller& caller);
void use_classes(Caller& caller);
void use_runtime(Caller& caller);
void use_numbers(Caller& caller);
void use_calculator(Caller& caller);
void use_triangulation(Caller& caller);
void use_filters(Caller& caller);
void use_own_filter(Caller& caller);
void use_gdi(Caller& caller);
void use_gdiplus(Caller& caller);

inline constexpr Family families[] = {
    {"environment", use_environment}, {"files", use_files},           {"classes", use_classes},
    {"services", use_runtime},        {"numbers", use_numbers},       {"calculator", use_calculator},
    {"filters", use_filters},         {"own filter", use_own_filter}, {"triangulation", use_triangulation},
    {"GDI bitmaps", use_gdi},         {"GDI+", use_gdiplus}};

// Numbers whose conversion is easily a digit off when a step is rounded otherwise than it should be.
inline constexpr const char* hard_numbers[] = {"0.1",
                                               "1e23",
                                               "9007199254740993",
                                               "123456789.987654321",
                                               "8.5e-7",
                                               "4.9e-324",
                                               "2.2250738585072011e-308",
                                               "16777217",
                                               "-33554435e7",
                                               "7205759403792794e1",
                                               "1.7976931348623157e308",
                                               "3d2",
                                               "0.30000000000000004"};
