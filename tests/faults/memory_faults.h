// Running out of memory, one allocation at a time. Natively the test program's operator new fails; under Wine
// the DLL's own imports of allocating functions do, so that it is tested as it is delivered.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace memory_faults {

// From now on the n-th allocation fails, from 1, and when `lasting` all behind it do too.
void arm(std::size_t n, bool lasting);
// All allocations succeed again. Returns whether one has failed since arm().
bool disarm();
// How many blocks, and under Wine other objects of the platform, are held.
std::size_t live();

// What a scenario runs its calls with: allocations are counted through all of them, and fail only inside.
class Fault {
  public:
    Fault(std::size_t n, bool lasting) : m_left(n), m_lasting(lasting) {}

    template <class Call>
    auto operator()(Call&& call) {
        const Armed armed(*this);
        return call();
    }
    // The same; the result must be the one of success, or after a fault also the one of failure.
    template <class Success, class Failure, class Call>
    bool succeeds(Success success, Failure failure, Call&& call) {
        using Result = decltype(call());
        const Result result = (*this)(std::forward<Call>(call));
        if (result == static_cast<Result>(success)) return true;
        EXPECT_TRUE(m_struck) << "failed with memory enough";
        EXPECT_EQ(result, static_cast<Result>(failure));
        return false;
    }
    bool struck() const { return m_struck; }

    std::size_t kept = 0; // blocks that stay by the rules of the interface

  private:
    class Armed {
      public:
        explicit Armed(Fault& fault) : m_fault(fault), m_before(s_count) {
            arm(fault.next(), fault.m_lasting);
        }
        ~Armed() {
            m_fault.m_struck |= disarm();
            m_fault.m_left -= std::min(m_fault.m_left, s_count - m_before);
        }
        Armed(const Armed&) = delete;
        Armed& operator=(const Armed&) = delete;

      private:
        Fault& m_fault;
        std::size_t m_before;
    };
    // 0 once the fault has struck and does not last.
    std::size_t next() const { return m_struck ? m_lasting ? 1 : 0 : m_left; }

    std::size_t m_left;
    bool m_lasting;
    bool m_struck = false;

  public:
    static inline std::size_t s_count = 0; // allocations tried while armed
};

// Runs a scenario with its n-th allocation failing, for n = 1, 2, 3, ... until it needs fewer; once with one
// failure alone, once with memory gone from there on. What it leaves behind is told as a leak.
template <class Scenario>
void fail_each_allocation(Scenario&& scenario) {
    {
        Fault none(0, false);
        scenario(none); // what is made once and kept
    }
    for (const bool lasting : {false, true}) {
        std::size_t n = 1;
        for (bool struck = true; struck && n < 100000; ++n) {
            SCOPED_TRACE(testing::Message() << "allocation " << n << (lasting ? " and all behind it" : ""));
            const std::size_t before = live();
            Fault fault(n, lasting);
            scenario(fault);
            EXPECT_EQ(live(), before + fault.kept) << "blocks were lost";
            struck = fault.struck();
            if (testing::Test::HasFailure()) return;
        }
        EXPECT_GT(n, 2u) << "no allocation was made to fail";
    }
}

} // namespace memory_faults
