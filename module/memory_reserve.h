// Memory kept back for the moment when it runs out: to throw takes some, and where the runtime finds none,
// the first time in the process or in a thread, it ends the program.
#pragma once

#include <atomic>

namespace memory_reserve {

extern std::atomic<void*> block;
void refill() noexcept;

// Sets the reserve aside, or again after it was spent. Who catches std::bad_alloc calls it.
inline void keep() noexcept {
    if (!block) refill();
}
// Gives it back for good.
void release() noexcept;

// Spends the reserve and throws std::bad_alloc. The handler of operator new from the first keep() on.
[[noreturn]] void run_out();

// Keeps the reserve at the end of a scope.
struct Kept {
    Kept() = default;
    ~Kept() { keep(); }
    Kept(const Kept&) = delete;
    Kept& operator=(const Kept&) = delete;
};

} // namespace memory_reserve
