#include "imaging/readable_memory.h"

#include <algorithm>
#include <windows.h>

namespace {

bool is_readable(const MEMORY_BASIC_INFORMATION& region) {
    constexpr DWORD readable = PAGE_READONLY | PAGE_READWRITE | PAGE_WRITECOPY | PAGE_EXECUTE_READ |
                               PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    return region.State == MEM_COMMIT && (region.Protect & readable) && !(region.Protect & PAGE_GUARD);
}

// How many of the wanted bytes from this address on can be read.
std::size_t readable_bytes(std::uintptr_t address, std::size_t wanted) {
    std::size_t found = 0;
    while (found < wanted) {
        MEMORY_BASIC_INFORMATION region;
        const std::uintptr_t at = address + found;
        if (!VirtualQuery(reinterpret_cast<const void*>(at), &region, sizeof region)) break;
        if (!is_readable(region)) break;
        const std::uintptr_t end = reinterpret_cast<std::uintptr_t>(region.BaseAddress) + region.RegionSize;
        found += end - at;
    }
    return std::min(found, wanted);
}

} // namespace

std::span<const std::uint8_t> ReadableMemory::next(std::size_t wanted) {
    if (m_at > UINTPTR_MAX) return {};
    const auto at = static_cast<std::uintptr_t>(m_at);
    const std::size_t size = readable_bytes(at, wanted);
    m_at += size;
    return {reinterpret_cast<const std::uint8_t*>(at), size};
}

void ReadableMemory::seek(std::uint64_t position) {
    m_at = m_front + position;
}
