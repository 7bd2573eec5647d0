#include "filterhost/property_list.h"

#include "filterhost/filter_record.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>

namespace {

using Bytes = std::span<const std::byte>;

// Numbers are little-endian, like the target, and stand on any address.
template <class Number>
Number number_at_front(Bytes bytes) {
    Number number;
    std::memcpy(&number, bytes.data(), sizeof number);
    return number;
}

// Takes bytes off the front of a resource; nothing once it is exhausted.
class Cursor {
  public:
    explicit Cursor(Bytes bytes) : m_rest(bytes) {}

    std::optional<Bytes> take(std::size_t count) {
        if (count > m_rest.size()) return std::nullopt;
        const Bytes taken = m_rest.first(count);
        m_rest = m_rest.subspan(count);
        return taken;
    }
    template <class Number>
    std::optional<Number> take_number() {
        const auto bytes = take(sizeof(Number));
        if (!bytes) return std::nullopt;
        return number_at_front<Number>(*bytes);
    }

  private:
    Bytes m_rest;
};

Bytes from_aligned_address(Bytes resource) {
    const auto misaligned = reinterpret_cast<std::uintptr_t>(resource.data()) % 4;
    return resource.subspan(std::min<std::size_t>(misaligned ? 4 - misaligned : 0, resource.size()));
}

bool is_filter(Bytes data) {
    return data.size() >= 4 && number_at_front<ps::OSType>(data) == ps::kind_filter;
}

bool is_supported_version(Bytes data) {
    if (data.size() < 4) return false;
    const auto version = number_at_front<std::uint32_t>(data);
    return version >> 16 < 4 || version == 0x40000;
}

// A bounded copy as wide as the data: behind the text the data's width is filled with zeros, and what an
// earlier, longer name left behind that stays.
bool copy_entry_name(Bytes data, std::array<char, 256>& entry_name) {
    const auto length =
        static_cast<std::size_t>(std::find(data.begin(), data.end(), std::byte{0}) - data.begin());
    if (length >= entry_name.size()) return false;
    std::memcpy(entry_name.data(), data.data(), length);
    std::fill(entry_name.begin() + length, entry_name.begin() + std::min(data.size(), entry_name.size()),
              '\0');
    return true;
}

// A length byte, then the characters, which leave room for the terminator in an array of the data's size.
bool copy_text(Bytes data, std::unique_ptr<char[]>& text) {
    if (data.empty()) return false;
    const auto length = std::to_integer<std::size_t>(data[0]);
    if (length >= data.size()) return false;
    text = std::make_unique<char[]>(data.size());
    std::memcpy(text.get(), data.data() + 1, length);
    return true;
}

bool take_property(ps::OSType key, Bytes data, PropertyList& list) {
    switch (key) {
    case ps::property_kind:
        return is_filter(data);
    case ps::property_version:
        return is_supported_version(data);
    case ps::property_entry_point:
        return copy_entry_name(data, list.entry_name);
    case ps::property_category:
        return copy_text(data, list.category);
    case ps::property_name:
        return copy_text(data, list.name);
    default:
        return true;
    }
}

bool read_list(Cursor cursor, PropertyList& list) {
    const auto signature = cursor.take_number<std::uint16_t>();
    const auto version = cursor.take_number<std::uint32_t>();
    const auto count = cursor.take_number<std::uint32_t>();
    if (!signature || !version || !count || *version != 0) return false;

    for (std::uint32_t i = 0; i < *count; ++i) {
        const auto vendor = cursor.take_number<ps::OSType>();
        const auto key = cursor.take_number<ps::OSType>();
        const auto id = cursor.take_number<std::uint32_t>();
        const auto length = cursor.take_number<std::uint32_t>();
        if (!vendor || !key || !id || !length) return false;
        const auto data = cursor.take(*length);
        if (!data || !take_property(*key, *data, list)) return false;
    }
    return true;
}

} // namespace

PropertyList read_property_list(std::span<const std::byte> resource) {
    PropertyList list;
    list.accepted = read_list(Cursor(from_aligned_address(resource)), list);
    return list;
}
