#include "env/put.h"

#include "env/handle.h"
#include "env/report.h"

#include <new>

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

// Appends a new element that the component names under the parent: first empty data up to its occurrence.
void append_component(Tree& tree, Element* parent, const Component& component, Draft& element) {
    const ElementList* children = children_of(parent);
    const long present = children ? count_named(tree, *children, component.name) : 0;
    const long lacking = component.occurrence - present;
    if (lacking > most_new_elements) throw std::bad_alloc();
    long appended = 0;
    try {
        for (; appended < lacking - 1; ++appended)
            tree.append_child(parent, tree.create_data(component.name, ""));
    } catch (const std::bad_alloc&) {
        for (; appended > 0; --appended)
            tree.remove(parent->children->last);
        throw;
    }
    tree.append_child(parent, element.keep());
}

// Whether each component left can be created: an occurrence of 0 names no element of an empty block.
bool can_create(PathReader rest) {
    while (!rest.at_end())
        if (rest.next().occurrence < 1) return false;
    return true;
}

// Creates all components left under the parent, a block: an empty block for each on the way, the value for
// the last. What hangs on the first is made before that is appended.
void create_along(Tree& tree, Element* parent, PathReader path, const Value& value) {
    const auto create = [&](std::string_view name) {
        return path.at_end() ? create_value(tree, name, value) : tree.create_block(name);
    };
    const Component first = path.next();
    Draft top(tree, create(first.name));
    for (Element* at = top.get(); !path.at_end(); at = at->children->last) {
        const Component below = path.next();
        Draft element(tree, create(below.name));
        append_component(tree, at, below, element);
    }
    append_component(tree, parent, first, top);
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
        // The element's text goes last: the path and the value may lie in it.
        const Draft block(tree, tree.create_block(""));
        create_along(tree, block.get(), here, value);
        tree.move_children(block.get(), element);
        return ENV_OK;
    }
    store(tree, element, value);
    return ENV_OK;
}

// Below a section, or the element of a sub-environment.
EnvStatus put_below(Tree& tree, Element* start, const char* path_text, const Value& value) {
    if (!path_text) return ENV_OK; // a section holds no value
    const PathReader path(path_text);
    if (path.at_end()) {
        report("Bad Path was given");
        return ENV_OK; // kept: callers rely on 0
    }
    return put_along(tree, start, path, value);
}

} // namespace

EnvStatus put_text(Tree& tree, Element* start, const char* path, const char* text) {
    return put_below(tree, start, path, {text, 0});
}

void append_text(Tree& tree, Element* block, const Component& component, std::string_view text) {
    Draft element(tree, tree.create_data(component.name, text));
    append_component(tree, block, component, element);
}

EnvStatus put(const Address& address, const char* text, long external) {
    const Value value{text, static_cast<std::int32_t>(external)};
    Tree& tree = address.env->tree();
    const Found start = find_start(address);
    if (start.status == ENV_INVALID) return ENV_INVALID;
    if (start) {
        if (address.path || !address.env->is_sub())
            return put_below(tree, start.element, address.path, value);
        store(tree, start.element, value);
        return ENV_OK;
    }
    if (address.env->is_sub()) return ENV_INVALID; // its element was deleted
    Draft section(tree, tree.create_block(address.section));
    Element* const created = section.get();
    const bool alone = !address.path || PathReader(address.path).at_end();
    // While a bad path is reported, other calls may come in: the section is in its place by then.
    if (alone) tree.append(tree.top(), section.keep());
    const EnvStatus status = put_below(tree, created, address.path, value);
    if (!alone) tree.append(tree.top(), section.keep());
    return status;
}

} // namespace env
