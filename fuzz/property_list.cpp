// Property lists of any bytes on any address: texts that the host may use are terminated within their
// resource's measure, and the same bytes always give the same list.
#include "filterhost/property_list.h"
#include "fuzz/require.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace {

std::string_view text(const std::unique_ptr<char[]>& text) {
    return text ? text.get() : std::string_view();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    // The first byte chooses the address; the copy ends where its allocation ends.
    const std::size_t misaligned = data[0] % 4;
    const auto copy = std::make_unique<std::byte[]>(misaligned + size - 1);
    std::memcpy(copy.get() + misaligned, data + 1, size - 1);
    const std::span<const std::byte> resource(copy.get() + misaligned, size - 1);

    const PropertyList list = read_property_list(resource);
    require(list.entry_name.back() == '\0');
    for (const std::string_view each : {text(list.category), text(list.name)})
        require(each.empty() || (each.size() < 256 && each.size() < resource.size()));
    const PropertyList again = read_property_list(resource);
    require(again.accepted == list.accepted && again.entry_name == list.entry_name &&
            text(again.category) == text(list.category) && text(again.name) == text(list.name));
    // What a shorter resource accepts, the bytes behind it do not change.
    if (list.accepted && size > 1) {
        const PropertyList cut = read_property_list(resource.first(resource.size() - 1));
        require(!cut.accepted || (text(cut.name) == text(list.name) && cut.entry_name == list.entry_name));
    }
    return 0;
}
