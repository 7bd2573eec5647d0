// Directory listings.
#include "bvutil/strings.h"

#include "module/guarded.h"
#include "module/handles.h"
#include "module/multibyte.h"
#include "runtime/path_parts.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

struct FreeMemory {
    void operator()(BvUtilEntry* entries) const noexcept { std::free(entries); }
};

// The array grows where it lies and is handed out to be freed by BvUtil_FreeEntries.
class EntryArray {
  public:
    // Room for so many; false, with all as it was, when there is no memory.
    bool reserve(std::size_t capacity) {
        if (capacity > SIZE_MAX / sizeof(BvUtilEntry)) return false;
        void* grown = std::realloc(m_entries.get(), capacity * sizeof(BvUtilEntry));
        if (!grown) return false;
        static_cast<void>(m_entries.release());
        m_entries.reset(static_cast<BvUtilEntry*>(grown));
        m_capacity = capacity;
        return true;
    }
    bool add(const BvUtilEntry& entry) {
        if (m_count == m_capacity && !reserve(m_capacity * 2)) return false;
        m_entries.get()[m_count++] = entry;
        return true;
    }
    std::size_t count() const { return m_count; }
    BvUtilEntry* release() { return m_entries.release(); }

  private:
    std::unique_ptr<BvUtilEntry, FreeMemory> m_entries;
    std::size_t m_count = 0;
    std::size_t m_capacity = 0;
};

int seconds_since_1970(FILETIME time) {
    constexpr std::int64_t ticks_per_second = 10'000'000;
    constexpr std::int64_t from_1601_to_1970 = 11'644'473'600;
    const std::int64_t ticks = static_cast<std::int64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
    const std::int64_t seconds = ticks / ticks_per_second - from_1601_to_1970;
    return seconds < 0 || seconds > INT32_MAX ? BVUTIL_ENTRY_NO_TIME : static_cast<int>(seconds);
}

unsigned attribute_flags(DWORD attributes) {
    unsigned flags = attributes & FILE_ATTRIBUTE_DIRECTORY ? BVUTIL_ENTRY_DIRECTORY : BVUTIL_ENTRY_FILE;
    if (attributes & FILE_ATTRIBUTE_READONLY) flags |= BVUTIL_ENTRY_READONLY;
    if (attributes & FILE_ATTRIBUTE_HIDDEN) flags |= BVUTIL_ENTRY_HIDDEN;
    if (attributes & FILE_ATTRIBUTE_SYSTEM) flags |= BVUTIL_ENTRY_SYSTEM;
    if (attributes & FILE_ATTRIBUTE_ARCHIVE) flags |= BVUTIL_ENTRY_ARCHIVE;
    return flags;
}

// The longest front of the text that fits and ends with a whole character.
std::string_view cut_to_fit(std::string_view text, std::size_t limit) {
    std::size_t end = 0;
    multibyte::for_each_character(text, [&](std::size_t at, std::size_t length) {
        if (at + length > limit) return false;
        end = at + length;
        return true;
    });
    return text.substr(0, end);
}

BvUtilEntry entry_of(const WIN32_FIND_DATAA& found) {
    BvUtilEntry entry{};
    const std::string_view name = cut_to_fit(found.cFileName, sizeof entry.name - 1);
    std::memcpy(entry.name, name.data(), name.size());
    entry.attributes = attribute_flags(found.dwFileAttributes);
    entry.size = found.nFileSizeLow;
    entry.modified = seconds_since_1970(found.ftLastWriteTime);
    return entry;
}

int list_directory(std::string_view directory, std::string_view pattern, BvUtilEntry** entries, int* count) {
    constexpr std::size_t first_room = 10;
    EntryArray listed;
    if (!listed.reserve(first_room)) return 0; // kept: out of memory at the start lists nothing

    WIN32_FIND_DATAA found;
    const unique_find search(FindFirstFileA(join_directory(directory, pattern).c_str(), &found));
    if (!search) return -1;
    do {
        if (!listed.add(entry_of(found))) return -1;
    } while (FindNextFileA(search.get(), &found));
    *count = static_cast<int>(listed.count());
    *entries = listed.release();
    return 0;
}

} // namespace

extern "C" int BVUTIL_CALL BvUtil_Listdir(const char* dir, const char* pattern, int /*reserved*/,
                                          BvUtilEntry** entries, int* count) {
    if (entries) *entries = nullptr;
    if (count) *count = 0;
    if (!dir || !entries || !count) return -1;
    return guarded(
        -1, [&] { return list_directory(dir, pattern && *pattern ? pattern : "*.*", entries, count); });
}

extern "C" void BVUTIL_CALL BvUtil_FreeEntries(BvUtilEntry** entries) {
    if (!entries) return;
    std::free(*entries);
    *entries = nullptr;
}
