// Memory of one environment: elements, names and texts come from a few large chunks, so that closing an
// environment is a walk over its chunks and not over its elements.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace env {

class Pool {
  public:
    Pool() = default;
    ~Pool() { clear(); }
    Pool(const Pool&) = delete;
    Pool& operator=(const Pool&) = delete;

    // A block of at least `size` bytes, aligned for pointers. Throws std::bad_alloc.
    void* allocate(std::size_t size);
    // Gives back a block; `size` must round to what it was allocated with (rounded()).
    void release(void* block, std::size_t size) noexcept;
    // Gives back everything at once.
    void clear() noexcept;

    // The size that blocks for `size` bytes really have.
    static constexpr std::size_t rounded(std::size_t size) { return (size + unit - 1) / unit * unit; }

  private:
    friend class StoreCheck; // of the tests

    static constexpr std::size_t unit = alignof(void*);
    // Larger blocks come from the heap one by one: there are few of them.
    static constexpr std::size_t largest_small = 512;
    static constexpr std::size_t first_chunk = 1024;
    static constexpr std::size_t largest_chunk = 1024 * 1024;

    struct FreeBlock {
        FreeBlock* next;
    };
    struct Chunk {
        Chunk* next;
    };
    struct LargeBlock {
        LargeBlock* next;
        LargeBlock* previous;
    };

    void* allocate_large(std::size_t size);
    void release_large(void* block) noexcept;
    void add_chunk();

    char* m_at = nullptr; // the unused rest of the newest chunk
    char* m_end = nullptr;
    Chunk* m_chunks = nullptr;
    std::size_t m_next_chunk = first_chunk;
    LargeBlock* m_large = nullptr;
    std::array<FreeBlock*, largest_small / unit + 1> m_free{};
};

} // namespace env
