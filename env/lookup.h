// Finding elements: by name along a path, at any depth, by position, and through the fallback layers.
#pragma once

#include "bvutil/env.h"
#include "env/element.h"
#include "env/path.h"
#include "env/tree.h"

namespace env {

// Where an operation looks; the section is not consulted on a sub-environment.
struct Address {
    EnvHandle env;
    const char* section;
    const char* path;
};

// The outcome of a lookup.
struct Found {
    EnvStatus status = ENV_NOT_FOUND; // a kind when an element was found, else an error
    Element* element = nullptr;
    EnvHandle layer = nullptr; // the environment that answered

    explicit operator bool() const { return element != nullptr; }
};

EnvStatus status_of(const Element* element);

// The first top-level element of this name; null when there is none.
Element* find_section(const EnvHandle env, std::string_view name);

// The nth child of this name, exactly as a step of the exact walk takes it: with n below 1 the first child
// whatever its name. Null when there is none.
Element* find_child(Tree& tree, Element* parent, const Component& component);

// Where a walk begins: the section, or a sub-environment's own element.
Found find_start(const Address& address);

// The element at an address, in its own environment only.
Found find(const Address& address, bool exact);

// The pos-th child (from 1) of the block at an address, or the pos-th section of a main environment when
// the address has no section; in its own environment only.
Found find_position(const Address& address, bool exact, long pos);

// What a read finds: by position when pos is above 0, else by path through the fallback layers.
Found find_for_read(const Address& address, bool exact, long pos);

// How many of the siblings in a list bear this name.
long count_named(Tree& tree, const ElementList& list, std::string_view name);

// The occurrence number of an element among its siblings, from 1.
long occurrence_of(Tree& tree, const Element* element);

} // namespace env
