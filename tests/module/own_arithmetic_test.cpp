// The library's own arithmetic, and the memory kept back for the moment when it runs out.
#include "module/memory_reserve.h"
#include "module/own_arithmetic.h"

#include <gtest/gtest.h>

#include <new>
#include <xmmintrin.h>

namespace {

volatile float one = 1, three = 3;

TEST(OwnArithmetic, RoundsToNearestAndGivesBackWhatWasSet) {
    const float nearest = one / three;
    const std::uint16_t x87 = 0x007B; // single precision, division by zero raised
    const unsigned downwards = 0x3F80;
    asm volatile("fldcw %0" : : "m"(x87));
    _mm_setcsr(downwards);
    EXPECT_LT(one / three, nearest);
    EXPECT_EQ(with_own_arithmetic([] { return one / three; }), nearest);
    EXPECT_EQ(_mm_getcsr() & 0xFFC0, downwards);
    std::uint16_t x87_after = 0;
    asm volatile("fnclex; fnstcw %0" : "=m"(x87_after));
    EXPECT_EQ(x87_after, x87);
    ArithmeticState::own().replace(ArithmeticState::current());
}

TEST(MemoryReserve, IsSpentByRunningOutAndKeptAgain) {
    using namespace memory_reserve;
    keep();
    EXPECT_EQ(std::get_new_handler(), run_out);
    EXPECT_THROW(run_out(), std::bad_alloc);
    EXPECT_EQ(block, nullptr);
    { const Kept at_the_end; }
    EXPECT_NE(block, nullptr);
    release();
    std::set_new_handler(nullptr);
}

} // namespace
