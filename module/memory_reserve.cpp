#include "module/memory_reserve.h"

#include <cstdlib>
#include <new>

namespace memory_reserve {

namespace {
// The first exception of a thread takes some 2 KB, in a dozen blocks.
constexpr std::size_t least = 2 * 1024, most = 16 * 1024;
} // namespace

std::atomic<void*> block = nullptr;

void refill() noexcept {
    std::set_new_handler(run_out);
    void* kept = nullptr;
    for (std::size_t size = most; !kept && size >= least; size /= 2)
        kept = std::malloc(size);
    std::free(block.exchange(kept));
}

void release() noexcept {
    std::free(block.exchange(nullptr));
}

void run_out() {
    keep(); // whoever spent it last may have freed enough since
    release();
    throw std::bad_alloc();
}

} // namespace memory_reserve
