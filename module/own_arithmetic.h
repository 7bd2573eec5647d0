// The arithmetic that results are defined in: round to nearest, double precision in the x87 unit (the
// platform runtime and the compiler's library compute there), denormals kept, no exception raised. A calling
// program may have set something else for its own use; plug-ins may set something else and forget it.
#pragma once

#include "module/guarded.h"

#include <cstdint>
#include <utility>

// The control words of a thread.
class ArithmeticState {
  public:
    static constexpr ArithmeticState own() noexcept { return {0x027F, 0x1F80}; }
    static ArithmeticState current() noexcept {
        ArithmeticState state{0, 0};
        asm volatile("fnstcw %0\n\tstmxcsr %1" : "=m"(state.m_x87), "=m"(state.m_mxcsr) : : "memory");
        return state;
    }
    // Sets what differs: to read is quick, to set is not.
    void replace(const ArithmeticState& now) const noexcept {
        if (now.m_x87 != m_x87) {
            // What was noted while it was masked would be raised by the next instruction.
            if ((m_x87 & exception_masks) != exception_masks) asm volatile("fnclex");
            asm volatile("fldcw %0" : : "m"(m_x87) : "memory");
        }
        if (((now.m_mxcsr ^ m_mxcsr) & control_bits) != 0)
            asm volatile("ldmxcsr %0" : : "m"(m_mxcsr) : "memory");
    }

  private:
    constexpr ArithmeticState(std::uint16_t x87, std::uint32_t mxcsr) noexcept : m_mxcsr(mxcsr), m_x87(x87) {}

    static constexpr std::uint16_t exception_masks = 0x3F;
    static constexpr std::uint32_t control_bits = 0xFFC0; // the others are flags
    std::uint32_t m_mxcsr;
    std::uint16_t m_x87;
};

// A state while it lives; what was set before comes back, whatever has been set meanwhile.
class ArithmeticIn {
  public:
    explicit ArithmeticIn(const ArithmeticState& state) noexcept : m_former(ArithmeticState::current()) {
        state.replace(m_former);
    }
    ~ArithmeticIn() { m_former.replace(ArithmeticState::current()); }
    ArithmeticIn(const ArithmeticIn&) = delete;
    ArithmeticIn& operator=(const ArithmeticIn&) = delete;

    const ArithmeticState& former() const noexcept { return m_former; }

  private:
    const ArithmeticState m_former;
};

// The compiler knows nothing of control words, and would move a calculation out from between two changes:
// only that of a function of its own, which has an effect of its own, stays where it is.
template <class Body>
[[gnu::noinline]] decltype(auto) calculate_apart(Body& body) {
    asm volatile("" : : : "memory");
    return body();
}

// Runs the body in the library's own arithmetic.
template <class Body>
decltype(auto) with_own_arithmetic(Body&& body) {
    const ArithmeticIn arithmetic(ArithmeticState::own());
    return calculate_apart(body);
}

// The same, and guarded.
template <class Result, class Body>
Result calculated(Result failure, Body&& body) noexcept {
    return guarded(failure, [&]() -> Result { return with_own_arithmetic(body); });
}
template <class Body>
void calculated(Body&& body) noexcept {
    guarded([&] { with_own_arithmetic(body); });
}
