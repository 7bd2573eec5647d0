#include "env/pool.h"

#include <algorithm>
#include <limits>
#include <new>

namespace env {

void* Pool::allocate(std::size_t size) {
    if (size > largest_small) return allocate_large(size);
    const std::size_t bytes = rounded(size);
    FreeBlock*& free = m_free[bytes / unit];
    if (free) {
        void* const block = free;
        free = free->next;
        return block;
    }
    if (static_cast<std::size_t>(m_end - m_at) < bytes) add_chunk();
    void* const block = m_at;
    m_at += bytes;
    return block;
}

void Pool::release(void* block, std::size_t size) noexcept {
    if (size > largest_small) return release_large(block);
    FreeBlock*& free = m_free[rounded(size) / unit];
    free = new (block) FreeBlock{free};
}

void Pool::clear() noexcept {
    while (m_chunks) {
        Chunk* const chunk = m_chunks;
        m_chunks = chunk->next;
        ::operator delete(chunk);
    }
    while (m_large) {
        LargeBlock* const block = m_large;
        m_large = block->next;
        ::operator delete(block);
    }
    m_at = m_end = nullptr;
    m_next_chunk = first_chunk;
    m_free.fill(nullptr);
}

void Pool::add_chunk() {
    void* const memory = ::operator new(m_next_chunk);
    m_chunks = new (memory) Chunk{m_chunks};
    // What was left of the former chunk is too small to matter: less than the block that did not fit.
    m_at = static_cast<char*>(memory) + rounded(sizeof(Chunk));
    m_end = static_cast<char*>(memory) + m_next_chunk;
    m_next_chunk = std::min(m_next_chunk * 2, largest_chunk);
}

void* Pool::allocate_large(std::size_t size) {
    if (size > std::numeric_limits<std::size_t>::max() - sizeof(LargeBlock)) throw std::bad_alloc();
    void* const memory = ::operator new(sizeof(LargeBlock) + size);
    m_large = new (memory) LargeBlock{m_large, nullptr};
    if (m_large->next) m_large->next->previous = m_large;
    return m_large + 1;
}

void Pool::release_large(void* block) noexcept {
    LargeBlock* const large = static_cast<LargeBlock*>(block) - 1;
    if (large->next) large->next->previous = large->previous;
    (large->previous ? large->previous->next : m_large) = large->next;
    ::operator delete(large);
}

} // namespace env
