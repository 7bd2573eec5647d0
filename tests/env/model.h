// The store as simply as it can be said: nested vectors, walked from the front every time. What it holds and
// answers is what the store must hold and answer.
#pragma once

#include "bvutil/env.h"

#include <algorithm>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace model {

struct Node;
using NodePtr = std::shared_ptr<Node>;
using Nodes = std::vector<NodePtr>;

struct Node {
    std::string name;
    EnvStatus kind = ENV_IS_BLOCK;
    std::string text;
    long value = 0;
    Nodes children;

    void become(EnvStatus new_kind, const std::string& new_text = "", long new_value = 0) {
        kind = new_kind;
        text = new_text;
        value = new_value;
        children.clear();
    }
    NodePtr add(const std::string& child, EnvStatus child_kind = ENV_IS_BLOCK) {
        children.push_back(std::make_shared<Node>());
        children.back()->name = child;
        children.back()->kind = child_kind;
        return children.back();
    }
};

struct Step {
    std::string name;
    long occurrence = 1;
};

// The delimiter is "@", and numbers are short.
inline std::vector<Step> split(const std::string& path) {
    std::vector<Step> steps;
    bool may_be_number = false;
    for (std::size_t at = 0; at < path.size();) {
        const std::size_t end = std::min(path.find('@', at), path.size());
        const std::string part = path.substr(at, end - at);
        at = end + 1;
        if (part.empty()) continue;
        const bool number = may_be_number && part.find_first_not_of("0123456789") == std::string::npos;
        if (number)
            steps.back().occurrence = std::stol(part);
        else
            steps.push_back({part});
        may_be_number = !number;
    }
    return steps;
}

inline NodePtr nth_named(const Nodes& nodes, const std::string& name, long n) {
    for (const NodePtr& node : nodes)
        if (node->name == name && --n == 0) return node;
    return nullptr;
}

inline long count_named(const Nodes& nodes, const std::string& name) {
    return static_cast<long>(
        std::count_if(nodes.begin(), nodes.end(), [&](const NodePtr& node) { return node->name == name; }));
}

inline NodePtr exact_step(const Node& from, const Step& step) {
    if (step.occurrence >= 1) return nth_named(from.children, step.name, step.occurrence);
    return from.children.empty() ? nullptr : from.children.front();
}

inline NodePtr deep_step(const Node& from, const Step& step) {
    std::deque<const Node*> queue{&from};
    while (!queue.empty()) {
        const Node& list = *queue.front();
        queue.pop_front();
        long n = step.occurrence;
        for (const NodePtr& node : list.children)
            if (node->name != step.name)
                queue.push_back(node.get());
            else if (--n == 0)
                return node;
    }
    return nullptr;
}

using Text = const char*; // may be null

struct Lookup {
    EnvStatus status;
    NodePtr node;
    long tag = 0;
};

struct Leaf {
    Text section; // null, or the name of a section that lives as long as the walk's result is used
    std::string path;
    bool has_path;
    NodePtr node;
};

// An environment: what its sections are, or what a sub-environment stands on.
struct Handle {
    std::shared_ptr<Node> top; // its children are the sections
    bool is_sub = false;
    std::weak_ptr<Node> stand;
    long tag = 0;
    const Handle* fallback = nullptr;

    Lookup find(Text section, Text path, bool exact) const {
        if (!is_sub && !section) return {ENV_INVALID, nullptr};
        NodePtr node = is_sub ? stand.lock() : nth_named(top->children, section, 1);
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
        return count_named(*place(found.node).first, path.substr(path.rfind('@') + 1));
    }

    EnvStatus put(Text section, Text path, const std::string* text, long value) const {
        if (!is_sub && !section) return ENV_INVALID;
        NodePtr node = is_sub ? stand.lock() : nth_named(top->children, section, 1);
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
            while (count_named(node->children, step->name) + 1 < step->occurrence)
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
        const auto [list, at] = place(found.node);
        list->erase(list->begin() + at);
        return ENV_OK;
    }

    EnvStatus insert_before(Text section, Text path, const std::string& name) const {
        const bool whole_section = !is_sub && !path;
        const Lookup found = find(section, path, true);
        if (whole_section && found.status == ENV_NOT_FOUND && !top->children.empty()) return ENV_OK;
        if (!found.node) return found.status;
        const auto [list, at] = place(found.node);
        const auto node = std::make_shared<Node>();
        node->name = name;
        node->kind = whole_section ? ENV_IS_BLOCK : ENV_IS_EXTERNAL;
        list->insert(list->begin() + at, node);
        return ENV_OK;
    }

    Handle on(const NodePtr& node) const { return {top, true, node, tag, fallback}; }

    // The sub-environment's element, or null when it can be neither opened nor created.
    NodePtr create(Text section, Text path) const {
        if (const Lookup found = find(section, path, true); found.node) return found.node;
        if (put(section, path, nullptr, 0) != ENV_OK) return nullptr;
        return find(section, path, true).node;
    }

    // visit(section argument, path argument or null, what they lead to or null)
    using Visit = std::function<void(Text, Text, NodePtr)>;
    EnvStatus traverse(Text section, Text path, bool exact, const Visit& visit) const {
        const auto [status, children] = list(section, path, exact);
        if (status == ENV_BAD_PATH || status == ENV_INVALID) return status;
        if (children.empty()) return ENV_IS_BLOCK;
        for (std::size_t i = 0; i < children.size(); ++i) {
            const std::string& name = children[i]->name;
            if (!is_sub && !section) {
                visit(name.c_str(), nullptr, find(name.c_str(), nullptr, exact).node);
                continue;
            }
            const auto k =
                std::count_if(children.begin(), children.begin() + static_cast<std::ptrdiff_t>(i) + 1,
                              [&](const NodePtr& node) { return node->name == name; });
            const std::string here =
                (path ? std::string(path) + "@" : std::string()) + name + "@" + std::to_string(k);
            visit(section, here.c_str(), find(section, here.c_str(), exact).node);
        }
        return ENV_OK;
    }

    // False when it ended early: a name may hold the delimiter, and then its path leads nowhere.
    bool leafs(std::vector<Leaf>& out, Text section = nullptr, const std::string& prefix = "") const {
        bool whole = true;
        const EnvStatus status =
            traverse(is_sub ? section : nullptr, nullptr, true, [&](Text s, Text p, NodePtr node) {
                const std::string path = prefix.empty() || !p ? std::string(p ? p : "") : prefix + "@" + p;
                if (!whole || !node)
                    whole = false;
                else if (node->kind != ENV_IS_BLOCK)
                    out.push_back({s, path, p != nullptr, node});
                else if (!node->children.empty())
                    whole = on(node).leafs(out, s, path);
            });
        return whole && status == ENV_OK;
    }

    bool copy_leaf(const Leaf& leaf, const std::string& text, bool external, int mode) const {
        const Text path = leaf.has_path ? leaf.path.c_str() : nullptr;
        const auto copy = [&](Text to) {
            return external || (text.size() < 255 && put(leaf.section, to, &text, 0) == ENV_OK);
        };
        if (mode == 2 || (mode == 1 && !path)) return copy(path);
        if (mode != 1) return (check(leaf.section, path, true) != ENV_NOT_FOUND) == (mode == 0) || copy(path);
        const std::string cut = leaf.path.substr(0, leaf.path.rfind('@'));
        return copy((cut + "@" + std::to_string(count_path(leaf.section, cut, true) + 1)).c_str());
    }

    EnvStatus sink(const Handle& src, int mode) const {
        std::vector<Leaf> leaves;
        const bool whole = src.leafs(leaves);
        if (!whole && src.top == top) return ENV_INVALID; // within a tree the leaves are gathered first
        std::vector<Node> values;                         // as they were before the first copy
        for (const Leaf& leaf : leaves)
            values.push_back({"", leaf.node->kind, leaf.node->text, 0, {}});
        for (std::size_t i = 0; i < leaves.size(); ++i)
            if (!copy_leaf(leaves[i], values[i].text, values[i].kind == ENV_IS_EXTERNAL, mode))
                return ENV_INVALID;
        return whole ? ENV_OK : ENV_INVALID;
    }

    EnvStatus copy_block(const Handle& src, Text section, Text path, int mode) const {
        const Lookup source = src.find(section, path, true);
        if (!source.node) return ENV_INVALID;
        const NodePtr destination = create(section, path);
        return destination ? on(destination).sink(src.on(source.node), mode) : ENV_INVALID;
    }

    // The list that holds a node, and its place there.
    std::pair<Nodes*, std::ptrdiff_t> place(const NodePtr& node) const { return place(node, *top); }
    static std::pair<Nodes*, std::ptrdiff_t> place(const NodePtr& node, Node& below) {
        const auto found = std::find(below.children.begin(), below.children.end(), node);
        if (found != below.children.end()) return {&below.children, found - below.children.begin()};
        for (const NodePtr& child : below.children)
            if (const auto deeper = place(node, *child); deeper.first) return deeper;
        return {nullptr, 0};
    }
};

inline std::size_t size_of(const Node& node) {
    std::size_t size = 1;
    for (const NodePtr& child : node.children)
        size += size_of(*child);
    return size;
}

// A copy as it comes back from a file.
inline NodePtr persistent(const Node& node) {
    const auto copy = std::make_shared<Node>(Node{node.name, node.kind, node.text, node.value, {}});
    for (const NodePtr& child : node.children)
        if (child->kind != ENV_IS_EXTERNAL) copy->children.push_back(persistent(*child));
    return copy;
}

inline void write_line(std::string& out, const std::string& text, std::size_t level) {
    out.append(level - 1, ' ');
    for (std::size_t i = 0; i < text.size(); ++i) {
        if ((i + level) % 60 == 0) out += "\\\n";
        out += text[i];
    }
    out += '\n';
}

inline void write(std::string& out, const Nodes& nodes, std::size_t level) {
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
