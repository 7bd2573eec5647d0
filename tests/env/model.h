// The store as simply as it can be said: nested vectors, walked from the front every time. What it holds and
// answers is what the store must hold and answer.
#pragma once

#include "bvutil/env.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace model {

struct Node;
using NodePtr = std::shared_ptr<Node>;
using Nodes = std::vector<NodePtr>;
using Text = const char*; // may be null

struct Node {
    std::string name;
    EnvStatus kind = ENV_IS_BLOCK;
    std::string text;
    long value = 0;
    Nodes children;
    Node* parent = nullptr;

    ~Node() { become(kind); }
    void become(EnvStatus new_kind, const std::string& new_text = "", long new_value = 0) {
        kind = new_kind;
        text = new_text;
        value = new_value;
        for (const NodePtr& child : children)
            child->parent = nullptr;
        children.clear();
    }
    std::ptrdiff_t place_of(const Node* child) const {
        return std::find_if(children.begin(), children.end(),
                            [&](const NodePtr& node) { return node.get() == child; }) -
               children.begin();
    }
    NodePtr insert(std::ptrdiff_t place, const std::string& child, EnvStatus child_kind) {
        const auto node = *children.insert(children.begin() + place, std::make_shared<Node>());
        node->name = child;
        node->kind = child_kind;
        node->parent = this;
        return node;
    }
    NodePtr add(const std::string& child, EnvStatus child_kind = ENV_IS_BLOCK) {
        return insert(static_cast<std::ptrdiff_t>(children.size()), child, child_kind);
    }
    NodePtr nth_named(const std::string& child, long n) const {
        for (const NodePtr& node : children)
            if (node->name == child && --n == 0) return node;
        return nullptr;
    }
    long count_named(const std::string& child) const {
        return std::count_if(children.begin(), children.end(),
                             [&](const NodePtr& node) { return node->name == child; });
    }
    std::size_t size() const {
        std::size_t size = 1;
        for (const NodePtr& child : children)
            size += child->size();
        return size;
    }
};

struct Step {
    std::string name;
    long occurrence = 1;
};

// Of what stands between the separators.
inline std::vector<Step> steps_of(const std::vector<std::string>& parts) {
    std::vector<Step> steps;
    bool may_be_number = false;
    for (const std::string& part : parts) {
        if (part.empty()) continue;
        const bool number = may_be_number && part.find_first_not_of("0123456789") == std::string::npos;
        if (number)
            steps.back().occurrence = std::strtol(part.c_str(), nullptr, 10);
        else
            steps.push_back({part});
        may_be_number = !number;
    }
    return steps;
}

// The delimiter is "@".
inline std::vector<Step> split(const std::string& path) {
    std::vector<std::string> parts(1);
    for (const char c : path)
        if (c == '@')
            parts.emplace_back();
        else
            parts.back() += c;
    return steps_of(parts);
}

inline NodePtr exact_step(const Node& from, const Step& step) {
    if (step.occurrence >= 1) return from.nth_named(step.name, step.occurrence);
    return from.children.empty() ? nullptr : from.children.front();
}

inline NodePtr deep_step(const Node& from, const Step& step) {
    std::vector<const Node*> queue{&from};
    for (std::size_t i = 0; i < queue.size(); ++i) {
        if (NodePtr found = queue[i]->nth_named(step.name, step.occurrence)) return found;
        for (const Node* list = queue[i]; const NodePtr& node : list->children)
            if (node->name != step.name) queue.push_back(node.get());
    }
    return nullptr;
}

struct Lookup {
    EnvStatus status;
    NodePtr node;
    long tag = 0;
};

// What a walk hands out: section and path, and what they lead to or null.
using Visit = std::function<void(Text, Text, const NodePtr&)>;

// An environment: what its sections are, or what a sub-environment stands on.
struct Handle {
    std::shared_ptr<Node> top; // its children are the sections
    bool is_sub = false;
    std::weak_ptr<Node> stand;
    long tag = 0;
    const Handle* fallback = nullptr;

    NodePtr start(Text section) const { return is_sub ? stand.lock() : top->nth_named(section, 1); }

    Lookup find(Text section, Text path, bool exact) const {
        if (!is_sub && !section) return {ENV_INVALID, nullptr};
        NodePtr node = start(section);
        if (!node) return {ENV_NOT_FOUND, nullptr};
        if (!path) return {node->kind, node};
        const std::vector<Step> steps = split(path);
        if (steps.empty()) return {ENV_BAD_PATH, nullptr};
        for (const Step& step : steps) {
            node = exact ? exact_step(*node, step) : deep_step(*node, step);
            if (!node) return {ENV_NOT_FOUND, nullptr};
        }
        return {node->kind, node};
    }

    Lookup read(Text section, Text path, bool exact) const {
        Lookup found = find(section, path, exact);
        found.tag = tag;
        if (found.status != ENV_NOT_FOUND || !fallback || !section || !path) return found;
        return fallback->read(section, path, exact);
    }

    // The children that positions count; the status is that of the block.
    std::pair<EnvStatus, Nodes> list(Text section, Text path, bool exact) const {
        if (!is_sub && !section) return {ENV_IS_BLOCK, top->children};
        const Lookup parent = find(section, path, exact);
        return {parent.status, parent.node ? parent.node->children : Nodes{}};
    }

    EnvStatus check(Text section, Text path, bool exact) const {
        if (!is_sub && !section) return top->children.empty() ? ENV_NOT_FOUND : ENV_IS_BLOCK;
        const Lookup found = find(section, path, exact);
        if (!found.node) return ENV_NOT_FOUND;
        if (path) return found.status;
        if (!is_sub) return ENV_IS_BLOCK;
        return found.status == ENV_IS_BLOCK && found.node->children.empty() ? ENV_NOT_FOUND : found.status;
    }

    long count_path(Text section, const std::string& path, bool exact) const {
        const Lookup found = find(section, path.c_str(), exact);
        if (!found.node) return found.status == ENV_NOT_FOUND ? 0 : found.status;
        return found.node->parent->count_named(path.substr(path.rfind('@') + 1));
    }

    EnvStatus put(Text section, Text path, const std::string* text, long value) const {
        if (!is_sub && !section) return ENV_INVALID;
        NodePtr node = start(section);
        if (!node && is_sub) return ENV_INVALID;
        if (!node) node = top->add(section);
        if (!is_sub && !path) return ENV_OK;
        const std::vector<Step> steps = split(path ? path : "");
        if (path && steps.empty()) return ENV_OK;
        auto step = steps.begin();
        for (; step != steps.end(); ++step) {
            const NodePtr next = exact_step(*node, *step);
            if (!next) break;
            node = next;
        }
        if (std::any_of(step, steps.end(), [](const Step& missing) { return missing.occurrence < 1; }))
            return ENV_NOT_FOUND;
        for (; step != steps.end(); ++step) {
            if (node->kind != ENV_IS_BLOCK) node->become(ENV_IS_BLOCK);
            while (node->count_named(step->name) + 1 < step->occurrence)
                node->add(step->name, ENV_IS_DATA);
            node = node->add(step->name);
        }
        node->become(text ? ENV_IS_DATA : ENV_IS_EXTERNAL, text ? *text : "", text ? 0 : value);
        return ENV_OK;
    }

    EnvStatus remove(Text section, Text path) const {
        if (is_sub && !path) return ENV_INVALID;
        const Lookup found = find(section, path, true);
        if (!found.node) return found.status;
        Node& parent = *std::exchange(found.node->parent, nullptr);
        parent.children.erase(parent.children.begin() + parent.place_of(found.node.get()));
        return ENV_OK;
    }

    EnvStatus insert_before(Text section, Text path, const std::string& name) const {
        const bool whole_section = !is_sub && !path;
        const Lookup found = find(section, path, true);
        if (whole_section && found.status == ENV_NOT_FOUND && !top->children.empty()) return ENV_OK;
        if (!found.node) return found.status;
        Node& parent = *found.node->parent;
        parent.insert(parent.place_of(found.node.get()), name,
                      whole_section ? ENV_IS_BLOCK : ENV_IS_EXTERNAL);
        return ENV_OK;
    }

    Handle on(const NodePtr& node) const { return {top, true, node, tag, fallback}; }

    // The sub-environment's element, or null when it can be neither opened nor created.
    NodePtr create(Text section, Text path) const {
        if (const Lookup found = find(section, path, true); found.node) return found.node;
        if (put(section, path, nullptr, 0) != ENV_OK) return nullptr;
        return find(section, path, true).node;
    }

    bool holds(const Node* node) const {
        while (node->parent)
            node = node->parent;
        return node == top.get();
    }

    EnvStatus traverse(Text section, Text path, bool exact, const Visit& visit) const {
        const auto [status, children] = list(section, path, exact);
        if (status == ENV_BAD_PATH || status == ENV_INVALID) return status;
        if (children.empty()) return ENV_IS_BLOCK;
        NodePtr here = children.front();
        while (here && holds(here.get())) {
            const auto own = [&](const NodePtr& other) { return other->name == here->name; };
            const auto behind = [&] {
                const auto place = static_cast<std::size_t>(here->parent->place_of(here.get())) + 1;
                return place < here->parent->children.size() ? here->parent->children[place] : nullptr;
            };
            const NodePtr next = behind();
            if (!is_sub && !section) {
                visit(here->name.c_str(), nullptr, start(here->name.c_str()));
            } else {
                const auto first = here->parent->children.begin();
                const auto k =
                    std::count_if(first, std::find(first, here->parent->children.end(), here), own);
                const std::string full =
                    (path ? std::string(path) + "@" : "") + here->name + "@" + std::to_string(k + 1);
                visit(section, full.c_str(), find(section, full.c_str(), exact).node);
            }
            // One that was deleted leads on to the one that stood behind it, if that is still there.
            here = holds(here.get()) ? behind() : next;
        }
        return ENV_OK;
    }

    // False when it ended early: a name may hold the delimiter, and then its path leads nowhere.
    bool leafs(const Visit& visit, Text section = nullptr, const std::string& prefix = "") const {
        bool whole = true;
        const auto step = [&](Text s, Text p, const NodePtr& node) {
            const std::string path = prefix.empty() || !p ? std::string(p ? p : "") : prefix + "@" + p;
            if (!whole || !node)
                whole = false;
            else if (node->kind != ENV_IS_BLOCK)
                visit(s, p ? path.c_str() : nullptr, node);
            else if (!node->children.empty())
                whole = on(node).leafs(visit, s, path);
        };
        return traverse(is_sub ? section : nullptr, nullptr, true, step) == ENV_OK && whole;
    }

    // Null text for an external.
    struct Leaf {
        std::optional<std::string> section, path, text;
        static std::optional<std::string> kept(Text text) {
            return text ? std::optional<std::string>(text) : std::nullopt;
        }
    };

    bool copy_leaf(const Leaf& leaf, int mode) const {
        const Text section = leaf.section ? leaf.section->c_str() : nullptr;
        const Text path = leaf.path ? leaf.path->c_str() : nullptr;
        const auto copy = [&](Text to) {
            return !leaf.text || (leaf.text->size() < 255 && put(section, to, &*leaf.text, 0) == ENV_OK);
        };
        if (mode == 2 || (mode == 1 && !path)) return copy(path);
        if (mode != 1) return (check(section, path, true) != ENV_NOT_FOUND) == (mode == 0) || copy(path);
        const std::string cut = leaf.path->substr(0, leaf.path->rfind('@'));
        return copy((cut + "@" + std::to_string(count_path(section, cut, true) + 1)).c_str());
    }

    EnvStatus sink(const Handle& src, int mode) const {
        std::vector<Leaf> leaves; // as they were before the first copy
        const bool whole = src.leafs([&](Text section, Text path, const NodePtr& node) {
            leaves.push_back({Leaf::kept(section), Leaf::kept(path),
                              Leaf::kept(node->kind == ENV_IS_DATA ? node->text.c_str() : nullptr)});
        });
        if (!whole && src.top == top) return ENV_INVALID; // within a tree the leaves are gathered first
        const auto copied = [&](const Leaf& leaf) { return copy_leaf(leaf, mode); };
        return std::all_of(leaves.begin(), leaves.end(), copied) && whole ? ENV_OK : ENV_INVALID;
    }

    EnvStatus copy_block(const Handle& src, Text section, Text path, int mode) const {
        const Lookup source = src.find(section, path, true);
        if (!source.node) return ENV_INVALID;
        const NodePtr destination = create(section, path);
        return destination ? on(destination).sink(src.on(source.node), mode) : ENV_INVALID;
    }
};

// What comes back from a file.
inline void copy_persistent(const Nodes& from, Node& to) {
    for (const NodePtr& node : from)
        if (node->kind != ENV_IS_EXTERNAL) {
            const NodePtr copy = to.add(node->name, node->kind);
            copy->text = node->text;
            copy_persistent(node->children, *copy);
        }
}

inline void write_line(std::string& out, const std::string& text, std::size_t level) {
    out.append(level - 1, ' ');
    for (std::size_t i = 0; i < text.size(); ++i) {
        if ((i + level) % 60 == 0) out += "\\\n";
        out += text[i];
    }
    out += '\n';
}

inline void write(std::string& out, const Nodes& nodes, std::size_t level = 1) {
    for (const NodePtr& node : nodes) {
        if (node->kind == ENV_IS_EXTERNAL) continue;
        const bool data = node->kind == ENV_IS_DATA;
        const std::string name = level == 1 ? "[" + node->name + "]" : node->name + (data ? " =" : " ={");
        write_line(out, name + node->text, level);
        if (data) continue;
        write(out, node->children, level + 2);
        if (level > 1) write_line(out, "}", level);
    }
}

} // namespace model
