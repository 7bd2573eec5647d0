#include "filterhost/ps_filter.h"

#include "filterhost/property_list.h"
#include "module/guarded.h"

#include <cstdlib>
#include <new>
#include <span>
#include <utility>

namespace {

// Keeps the platform from telling the user about a damaged file: callers learn it from the result.
class QuietLoading {
  public:
    QuietLoading() noexcept {
        SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &m_former);
    }
    QuietLoading(const QuietLoading&) = delete;
    QuietLoading& operator=(const QuietLoading&) = delete;
    ~QuietLoading() {
        const DWORD error = GetLastError();
        SetThreadErrorMode(m_former, nullptr);
        SetLastError(error);
    }

  private:
    DWORD m_former = 0;
};

bool is_readable(const void* start, std::size_t size) {
    auto at = static_cast<const std::byte*>(start);
    for (std::size_t left = size; left > 0;) {
        MEMORY_BASIC_INFORMATION pages;
        if (!VirtualQuery(at, &pages, sizeof pages) || pages.State != MEM_COMMIT) return false;
        if (pages.Protect & (PAGE_NOACCESS | PAGE_GUARD | PAGE_EXECUTE)) return false;
        const auto behind = static_cast<const std::byte*>(pages.BaseAddress) + pages.RegionSize;
        const auto covered = static_cast<std::size_t>(behind - at);
        if (covered >= left) return true;
        left -= covered;
        at = behind;
    }
    return true;
}

// The bytes of a resource; none when it is missing or its directory entry points out of the module.
std::span<const std::byte> resource_bytes(HMODULE module, const char* name) {
    const HRSRC resource = FindResourceA(module, name, ps::property_list_type);
    if (!resource) return {};
    const HGLOBAL loaded = LoadResource(module, resource);
    if (!loaded) return {};
    const void* data = LockResource(loaded);
    if (!data) return {};
    const std::size_t size = SizeofResource(module, resource);
    if (!is_readable(data, size)) return {};
    return {static_cast<const std::byte*>(data), size};
}

bool has_text(const std::unique_ptr<char[]>& text) {
    return text && text[0] != '\0';
}

BOOL CALLBACK visit_property_list(HMODULE module, LPCSTR, LPSTR name, LONG_PTR filter) noexcept {
    // Without memory for a list the search ends: no later one takes its place.
    return guarded(BOOL{FALSE}, [&] {
        reinterpret_cast<PSFilter_*>(filter)->consider_property_list(module, name);
        return BOOL{TRUE};
    });
}

} // namespace

PSFilter_::PSFilter_(const char* file_name, char** category_out, char** name_out, int* error_out) {
    const QuietLoading quiet;
    if (file_name) module.reset(LoadLibraryA(file_name));
    if (module &&
        EnumResourceNamesA(module.get(), ps::property_list_type, visit_property_list,
                           reinterpret_cast<LONG_PTR>(this)) &&
        found) {
        *category_out = category.get();
        *name_out = name.get();
        *error_out = 0;
    } else {
        *error_out = static_cast<int>(GetLastError());
    }
}

void PSFilter_::consider_property_list(HMODULE handed_over, const char* resource_name) {
    if (found) return;
    PropertyList list = read_property_list(resource_bytes(handed_over, resource_name));
    // Texts of lists that are rejected stay, and may complete a later list that has none (kept: plug-ins
    // exist that spread them).
    if (list.category) category = std::move(list.category);
    if (list.name) name = std::move(list.name);
    const char* entry_name = list.entry_name.data();
    if (!list.accepted || *entry_name == '\0') return;

    entry_point =
        reinterpret_cast<ps::EntryPoint>(reinterpret_cast<void*>(GetProcAddress(module.get(), entry_name)));
    if (!entry_point || !has_text(category) || !has_text(name)) return;
    found = GetProcAddress(handed_over, entry_name) != nullptr;
}

// Ends loans that an early end of the last application left open.
PSFilter_::~PSFilter_() {
    if (input_loan.has(record.inData)) std::free(input_loan.start);
    if (output_loan.has(record.outData)) std::free(output_loan.start);
}

void* PSFilter_::destroy(unsigned flags) noexcept {
    this->~PSFilter_();
    if (flags & 1) ::operator delete(this);
    return this;
}
