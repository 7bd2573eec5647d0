// The native program's operator new and delete, which fail on demand.
#include "tests/faults/memory_faults.h"

#include <cstdlib>
#include <new>

namespace {

std::size_t held = 0;
std::size_t countdown = 0; // to the allocation that fails; 0: none does
bool armed = false, lasts = false, struck = false;

bool strikes() {
    if (!armed) return false;
    ++memory_faults::Fault::s_count;
    if (countdown == 0 || --countdown > 0) return false;
    if (lasts) countdown = 1;
    return struck = true;
}

void* allocate(std::size_t size) noexcept {
    void* const block = strikes() ? nullptr : std::malloc(size ? size : 1);
    held += block != nullptr;
    return block;
}

} // namespace

namespace memory_faults {

void arm(std::size_t n, bool lasting) {
    countdown = n;
    lasts = lasting;
    struck = false;
    armed = true;
}

bool disarm() {
    armed = false;
    return struck;
}

std::size_t live() {
    return held;
}

} // namespace memory_faults

void* operator new(std::size_t size) {
    if (void* const block = allocate(size)) return block;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
void* operator new[](std::size_t size) {
    return operator new(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
void operator delete(void* block) noexcept {
    held -= block != nullptr;
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    operator delete(block);
}
void operator delete[](void* block) noexcept {
    operator delete(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    operator delete(block);
}
