// Memory whose end is not known: a source that stops where reading would fault.
#pragma once

#include "imaging/byte_source.h"

class ReadableMemory final : public ByteSource {
  public:
    explicit ReadableMemory(const void* front)
        : m_front(reinterpret_cast<std::uintptr_t>(front)), m_at(m_front) {}
    std::span<const std::uint8_t> next(std::size_t wanted) override;
    void seek(std::uint64_t position) override;

  private:
    std::uintptr_t m_front;
    std::uint64_t m_at; // may lie beyond the address space
};
