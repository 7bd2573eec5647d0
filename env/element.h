// The tree: elements, and the lists of siblings that hold them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace env {

struct ElementList;
class ListIndex;

enum class Kind : std::uint8_t { external = 0, data = 1, block = 2 };

// One element. Its name stands right behind it, NUL-terminated; a text that came with it may stand behind
// the name.
struct Element {
    Element* next;
    Element* previous;
    ElementList* list; // the siblings it stands among; null while it is in no list
    union {
        char* text;            // data: NUL-terminated
        ElementList* children; // block: null until the first child
        std::int32_t value;    // external
    };
    std::uint16_t units; // size of its memory in pointer sizes; 0: a large block, measured from its strings
    std::uint8_t hash;   // low byte of the name's hash: tells most names apart at once
    Kind kind : 2;
    bool text_inside : 1; // the text stands behind the name and is not a block of its own
    bool pinned : 1;      // a pin stood on it: ask the pins when it goes

    const char* name() const { return reinterpret_cast<const char*>(this + 1); }
    char* name() { return reinterpret_cast<char*>(this + 1); }
    // Measured at once where a text stands behind it.
    std::string_view name_view() const {
        return text_inside ? std::string_view(name(), static_cast<std::size_t>(text - name()) - 1) : name();
    }
    bool is_named(std::string_view other, std::uint8_t other_hash) const;
};

// Siblings in order. The top level of an environment is such a list without an owner.
struct ElementList {
    Element* first = nullptr;
    Element* last = nullptr;
    Element* owner = nullptr; // the block whose children these are
    std::uint32_t count = 0;
    std::uint32_t blocks = 0; // how many of them are blocks
    ListIndex* index = nullptr;
};

inline std::uint32_t word_at(const char* bytes) {
    std::uint32_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

// Four bytes at a time. The halves of each product are folded, so that every byte of the name bears on every
// bit.
inline std::uint32_t name_hash(std::string_view name) {
    const auto mix = [](std::uint32_t hash, std::uint32_t value) {
        const std::uint64_t product = std::uint64_t{hash ^ value} * 0x9E3779B1u; // 2^32 by the golden ratio
        return static_cast<std::uint32_t>(product) ^ static_cast<std::uint32_t>(product >> 32);
    };
    auto hash = static_cast<std::uint32_t>(name.size());
    if (name.size() < 4) {
        for (const char c : name)
            hash = hash << 8 | static_cast<unsigned char>(c);
        return mix(0, hash);
    }
    for (std::size_t at = 0; at < name.size() - 4; at += 4)
        hash = mix(hash, word_at(name.data() + at));
    return mix(hash, word_at(name.data() + name.size() - 4));
}

// The children of a block that has any; null for anything else.
inline const ElementList* children_of(const Element* element) {
    return element->kind == Kind::block ? element->children : nullptr;
}
inline ElementList* children_of(Element* element) {
    return element->kind == Kind::block ? element->children : nullptr;
}

inline bool Element::is_named(std::string_view other, std::uint8_t other_hash) const {
    if (hash != other_hash) return false;
    // Words of a shorter name differ before its memory ends.
    const char* own = name();
    const char* at = other.data();
    const char* const end = at + other.size();
    for (; end - at >= 4; at += 4, own += 4)
        if (word_at(own) != word_at(at)) return false;
    for (; at < end; ++at, ++own)
        if (*own != *at) return false;
    return *own == '\0';
}

} // namespace env
