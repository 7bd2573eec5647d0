// What the host takes from a plug-in's property list resource.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <span>

struct PropertyList {
    // False when the list is rejected: another version of the format, another kind of plug-in, a newer
    // interface, or a list that contradicts itself or the size of its resource.
    bool accepted = false;
    // The entry point's name; counts only when the list is accepted, and may be empty.
    std::array<char, 256> entry_name{};
    // NUL-terminated; null when the list has none. What a rejected list named before the property that
    // rejected it is kept, and the host keeps it too.
    std::unique_ptr<char[]> category;
    std::unique_ptr<char[]> name;
};

// Reads one resource; never looks beyond its end. The list begins at the resource's first address that is a
// multiple of 4, and a property begins right behind the data of the one before, aligned or not.
PropertyList read_property_list(std::span<const std::byte> resource);
