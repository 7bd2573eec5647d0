// Running out of memory, one allocation at a time. Natively the test program's operator new fails; under Wine
// the library's own imports of functions that hand out memory and other objects of the platform do, so that
// it is tested as it is delivered.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <string_view>

#ifdef _WIN32
#include <windows.h>
#endif

namespace memory_faults {

// What fails: while it is active the n-th allocation, from 1, and when it lasts all behind it.
struct Fault {
    std::size_t countdown = 0;
    bool lasts = false, active = false, struck = false;

    // Runs a call in which it may strike.
    template <class Call>
    auto operator()(Call&& call) {
        struct Active {
            bool& active;
            ~Active() { active = false; }
        } const inside{active};
        active = true;
        return call();
    }
    // The same; the result must be the one of success, or after a fault also the one of failure.
    template <class Result, class Call>
    bool succeeds(Result success, Result failure, Call&& call) {
        const auto result = static_cast<Result>((*this)(call));
        EXPECT_TRUE(result == success || (struck && result == failure)) << result;
        return result == success;
    }
};
inline Fault the_fault;

// How many blocks, and under Wine other objects of the platform, are held.
std::size_t held();

#ifdef _WIN32
// From now on the imports of the module, a copy of the library, are counted and fail; or one of them only, of
// the program that releases with it what the library made.
void watch(HMODULE module, std::string_view only = {});
// The module is gone.
void forget(HMODULE module);
#endif

// Runs a scenario with its n-th allocation failing, for n = 1, 2, 3, ... until it needs fewer; once with one
// failure alone, once with memory gone from there on. What it leaves behind is told as a leak, unless it
// always leaves it behind.
template <class Scenario>
void fail_each_allocation(Scenario&& scenario, bool always_keeps = false) {
    const auto left_behind = [&](std::size_t n, bool lasts) {
        const std::size_t before = held();
        the_fault = {n, lasts};
        scenario(the_fault);
        the_fault.active = false;
        const bool struck = the_fault.struck;
        const std::size_t after = held();
        the_fault.struck = struck;
        return static_cast<std::ptrdiff_t>(after - before);
    };
    left_behind(0, false); // what is made once and kept
    const std::ptrdiff_t always = left_behind(0, false);
    EXPECT_EQ(always > 0, always_keeps) << always << " blocks were lost with memory enough";
    for (const bool lasts : {false, true})
        for (std::size_t n = 1; n == 1 || the_fault.struck; ++n) {
            SCOPED_TRACE(testing::Message() << "allocation " << n << (lasts ? " and all behind it" : ""));
            const std::ptrdiff_t left = left_behind(n, lasts);
            EXPECT_TRUE(left == always || (lasts && left < always)) << left << " blocks, not " << always;
            EXPECT_TRUE(n > 1 || the_fault.struck) << "no allocation was made to fail";
        }
}

} // namespace memory_faults
