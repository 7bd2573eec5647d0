#include "env/lookup.h"

#include "env/handle.h"
#include "env/report.h"
#include "env/short_text.h"

#include <vector>

namespace env {

namespace {

Element* find_in(Tree& tree, const ElementList& list, std::string_view name, long occurrence) {
    const std::uint32_t hash = name_hash(name);
    if (const ListIndex* index = tree.index_of(list)) return index->find(name, hash, occurrence);
    const auto low = static_cast<std::uint8_t>(hash);
    for (Element* element = list.first; element; element = element->next)
        if (element->is_named(name, low) && --occurrence == 0) return element;
    return nullptr;
}

Element* walk_exactly(Tree& tree, Element* start, PathReader path) {
    Element* element = start;
    while (element && !path.at_end())
        element = find_child(tree, element, path.next());
    return element;
}

// One component of the deep walk: breadth first over the lists below an element. A match's own children are
// passed over.
Element* find_below(Tree& tree, Element* start, const Component& component,
                    std::vector<const ElementList*>& queue) {
    const auto hash = static_cast<std::uint8_t>(name_hash(component.name));
    queue.clear();
    if (const ElementList* children = children_of(start)) queue.push_back(children);
    for (std::size_t next = 0; next < queue.size(); ++next) {
        const ElementList& list = *queue[next];
        if (Element* element = find_in(tree, list, component.name, component.occurrence)) return element;
        if (list.blocks == 0) continue;
        for (const Element* sibling = list.first; sibling; sibling = sibling->next)
            if (const ElementList* children = children_of(sibling);
                children && !sibling->is_named(component.name, hash))
                queue.push_back(children);
    }
    return nullptr;
}

Element* walk_deeply(Tree& tree, Element* start, PathReader path) {
    std::vector<const ElementList*> queue;
    Element* element = start;
    while (element && !path.at_end())
        element = find_below(tree, element, path.next(), queue);
    return element;
}

Found found(EnvHandle env, Element* element) {
    return element ? Found{status_of(element), element, env} : Found{ENV_NOT_FOUND, nullptr, env};
}

Element* child_at(Tree& tree, const ElementList& list, long pos) {
    if (pos < 1 || static_cast<unsigned long>(pos) > list.count) return nullptr;
    const auto position = static_cast<std::uint32_t>(pos) - 1;
    if (position == 0) return list.first;
    if (ListIndex* index = tree.index_of(list); index && index->has_positions(list))
        return index->at(position);
    Element* element = list.first;
    for (std::uint32_t i = 0; i < position; ++i)
        element = element->next;
    return element;
}

} // namespace

EnvStatus status_of(const Element* element) {
    switch (element->kind) {
    case Kind::data:
        return ENV_IS_DATA;
    case Kind::block:
        return ENV_IS_BLOCK;
    case Kind::external:
        return ENV_IS_EXTERNAL;
    }
    report("unknown element type");
    return ENV_NOT_FOUND;
}

Element* find_section(const EnvHandle env, std::string_view name) {
    return find_in(env->tree(), env->tree().top(), name, 1);
}

Element* find_child(Tree& tree, Element* parent, const Component& component) {
    const ElementList* children = children_of(parent);
    if (!children) return nullptr;
    // Kept: callers rely on occurrence 0 taking the first child.
    if (component.occurrence < 1) return children->first;
    return find_in(tree, *children, component.name, component.occurrence);
}

Found find_start(const Address& address) {
    const EnvHandle env = address.env;
    if (env->is_sub()) return found(env, env->element());
    if (!address.section) {
        report("bypass Nil section");
        return {ENV_INVALID, nullptr, env};
    }
    return found(env, find_section(env, view_of(address.section)));
}

Found find(const Address& address, bool exact) {
    const Found start = find_start(address);
    if (!start || !address.path) return start;
    const PathReader path(address.path);
    if (path.at_end()) {
        report("Bad Path was given");
        return {ENV_BAD_PATH, nullptr, address.env};
    }
    Tree& tree = address.env->tree();
    return found(address.env,
                 exact ? walk_exactly(tree, start.element, path) : walk_deeply(tree, start.element, path));
}

Found find_position(const Address& address, bool exact, long pos) {
    const EnvHandle env = address.env;
    if (!env->is_sub() && !address.section) return found(env, child_at(env->tree(), env->tree().top(), pos));
    const Found parent = find(address, exact);
    if (!parent) return parent;
    const ElementList* children = children_of(parent.element);
    return found(env, children ? child_at(env->tree(), *children, pos) : nullptr);
}

Found find_for_read(const Address& address, bool exact, long pos) {
    if (pos > 0) return find_position(address, exact, pos);
    if (pos < 0) return {ENV_NOT_FOUND, nullptr, address.env};
    Address layer = address;
    for (;;) {
        if (!layer.env->is_sub() && !layer.section) return {ENV_INVALID, nullptr, layer.env};
        const Found result = find(layer, exact);
        const bool may_fall_back = address.section && address.path && layer.env->fallback;
        if (result.status != ENV_NOT_FOUND || !may_fall_back) return result;
        layer.env = layer.env->fallback;
    }
}

long count_named(Tree& tree, const ElementList& list, std::string_view name) {
    const std::uint32_t hash = name_hash(name);
    if (const ListIndex* index = tree.index_of(list)) return static_cast<long>(index->count(name, hash));
    long count = 0;
    for (const Element* element = list.first; element; element = element->next)
        count += element->is_named(name, static_cast<std::uint8_t>(hash));
    return count;
}

long occurrence_of(Tree& tree, const Element* element) {
    if (const ListIndex* index = tree.index_of(*element->list)) return index->occurrence_of(element);
    const std::string_view name = element->name_view();
    long occurrence = 1;
    for (const Element* earlier = element->previous; earlier; earlier = earlier->previous)
        occurrence += earlier->is_named(name, element->hash);
    return occurrence;
}

} // namespace env
