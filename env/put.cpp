#include "env/put.h"

#include "env/handle.h"
#include "env/report.h"

#include <new>
#include <string>

namespace env {

namespace {

struct Value {
    const char* text; // null: the external
    std::int32_t external;
};

void store(Tree& tree, Element* element, const Value& value) {
    if (value.text)
        tree.set_data(element, value.text);
    else
        tree.set_external(element, value.external);
}

Element* create_value(Tree& tree, std::string_view name, const Value& value) {
    return value.text ? tree.create_data(name, value.text) : tree.create_external(name, value.external);
}

// No list can hold more elements than this; asking for them is not worth trying.
constexpr long most_new_elements = 1L << 25;

// Appends what the component lacks under the parent: empty data up to the occurrence, then the target, which
// is the value for the last component and an empty block for one on the way.
Element* create_component(Tree& tree, Element* parent, const Component& component, const Value* value) {
    const ElementList* children = children_of(parent);
    const long present = children ? count_named(tree, *children, component.name) : 0;
    const long lacking = component.occurrence - present;
    if (lacking > most_new_elements) throw std::bad_alloc();
    Element* const target =
        value ? create_value(tree, component.name, *value) : tree.create_block(component.name);
    long appended = 0;
    try {
        for (; appended < lacking - 1; ++appended)
            tree.append_child(parent, tree.create_data(component.name, ""));
        tree.append_child(parent, target);
    } catch (const std::bad_alloc&) {
        tree.remove(target);
        for (; appended > 0; --appended)
            tree.remove(parent->children->last);
        throw;
    }
    return target;
}

// Whether each component left can be created: an occurrence of 0 names no element of an empty block.
bool can_create(PathReader rest) {
    while (!rest.at_end())
        if (rest.next().occurrence < 1) return false;
    return true;
}

// Creates all components left under the parent, the last with the value.
void create_along(Tree& tree, Element* parent, PathReader path, const Value& value) {
    while (!path.at_end()) {
        const Component component = path.next();
        parent = create_component(tree, parent, component, path.at_end() ? &value : nullptr);
    }
}

EnvStatus put_along(Tree& tree, Element* start, PathReader path, const Value& value) {
    Element* element = start;
    for (PathReader here = path; !path.at_end(); here = path) {
        if (Element* child = find_child(tree, element, path.next())) {
            element = child;
            continue;
        }
        if (!can_create(here)) return ENV_NOT_FOUND;
        if (element->kind == Kind::block) {
            create_along(tree, element, here, value);
            return ENV_OK;
        }
        // The element's text goes, and the path and the value may lie in it.
        const std::string kept_path(here.rest());
        const std::string kept_text(value.text ? value.text : "");
        create_along(tree, element, PathReader(kept_path),
                     {value.text ? kept_text.c_str() : nullptr, value.external});
        return ENV_OK;
    }
    store(tree, element, value);
    return ENV_OK;
}

} // namespace

EnvStatus put(const Address& address, const char* text, long external) {
    const Value value{text, static_cast<std::int32_t>(external)};
    Tree& tree = address.env->tree();
    Found start = find_start(address);
    if (start.status == ENV_INVALID) return ENV_INVALID;
    if (address.env->is_sub()) {
        if (!start) return ENV_INVALID; // its element was deleted
        if (!address.path) {
            store(tree, start.element, value);
            return ENV_OK;
        }
    } else if (!start) {
        start.element = tree.create_block(address.section);
        tree.append(tree.top(), start.element);
    }
    if (!address.path) return ENV_OK; // a section holds no value
    const PathReader path(address.path);
    if (path.at_end()) {
        report("Bad Path was given");
        return ENV_OK; // kept: callers rely on 0
    }
    return put_along(tree, start.element, path, value);
}

} // namespace env
