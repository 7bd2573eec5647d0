// The tree: elements, and the lists of siblings that hold them.
#pragma once

#include <cstddef>
#include <cstdint>
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

std::uint32_t name_hash(std::string_view name);

// The children of a block that has any; null for anything else.
inline const ElementList* children_of(const Element* element) {
    return element->kind == Kind::block ? element->children : nullptr;
}
inline ElementList* children_of(Element* element) {
    return element->kind == Kind::block ? element->children : nullptr;
}

inline bool Element::is_named(std::string_view other, std::uint8_t other_hash) const {
    if (hash != other_hash) return false;
    const char* own = name();
    for (const char c : other)
        if (*own++ != c) return false;
    return *own == '\0';
}

} // namespace env
