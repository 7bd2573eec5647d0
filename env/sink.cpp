// Copying the leaves of one environment into another.
#include "env/operations.h"
#include "env/put.h"
#include "env/report.h"
#include "env/short_text.h"
#include "env/value_text.h"
#include "env/walk.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace env {

namespace {

// The modes of env_sink().
enum SinkMode { copy_missing = 0, append_occurrence = 1, overwrite = 2, copy_present = 3 };

// The buffer that values are read through; a longer one is not copied.
constexpr std::size_t value_capacity = 255;

// A leaf to copy: null text for an external.
struct Leaf {
    const char* section;
    const char* path;
    const char* text;
};

bool copy(EnvHandle dst, const Leaf& leaf, const char* path) {
    if (!leaf.text) return true; // externals are passed over
    return std::strlen(leaf.text) < value_capacity && put({dst, leaf.section, path}, leaf.text, 0) == ENV_OK;
}

// As a further occurrence of the path's name.
bool append(EnvHandle dst, const Leaf& leaf) {
    if (!leaf.path) return copy(dst, leaf, nullptr);
    std::string path(leaf.path);
    path.resize(delimiter().find_last_joint(path));
    const long count = count_path({dst, leaf.section, path.c_str()}, true);
    if (count < 0) return !leaf.text; // an external needs no place
    path.append(delimiter().joint()).append(NumberText(count + 1).view());
    return copy(dst, leaf, path.c_str());
}

bool copy_by_mode(EnvHandle dst, const Leaf& leaf, int mode) {
    const auto present = [&] { return exists(check({dst, leaf.section, leaf.path}, true)); };
    switch (mode) {
    case copy_missing:
        return present() || copy(dst, leaf, leaf.path);
    case append_occurrence:
        return append(dst, leaf);
    case overwrite:
        return copy(dst, leaf, leaf.path);
    case copy_present:
        return !present() || copy(dst, leaf, leaf.path);
    default:
        report("switch error!");
        return false;
    }
}

const char* text_of(const Element* leaf) {
    return leaf->kind == Kind::data ? leaf->text : nullptr;
}

bool has_children(const Element* element) {
    const ElementList* children = children_of(element);
    return children && children->first;
}

// Whether every name below an element survives the way through a path.
bool paths_keep_names(const Element* start) {
    const Element* at = start;
    for (;;) {
        if (has_children(at)) {
            at = at->children->first;
        } else {
            while (at != start && !at->next)
                at = at->list->owner;
            if (at == start) return true;
            at = at->next;
        }
        if (!delimiter().keeps(at->name())) return false;
    }
}

// Copies the leaves below a block whose paths keep their names into another tree. No path is looked up: each
// level of the walk knows the counterpart of its block.
class JointWalk {
  public:
    JointWalk(EnvHandle dst, Tree& src_tree, const char* section, int mode)
        : m_dst(dst), m_dst_tree(dst->tree()), m_src_tree(src_tree), m_section(section), m_mode(mode) {}

    bool copy_children(Element* block) {
        m_levels.push_back({block->children->first, {}, counterpart_of_start()});
        while (!m_levels.empty()) {
            Level& level = m_levels.back();
            Element* const here = level.next;
            if (!here) {
                m_levels.pop_back();
                continue;
            }
            level.next = here->next;
            const Component own{here->name_view(), occurrence_of(m_src_tree, here)};
            if (has_children(here))
                m_levels.push_back({here->children->first, own, counterpart(level, own)});
            else if (here->kind == Kind::data && !copy_text(own, view_of(here->text)))
                return false;
        }
        return true;
    }

  private:
    struct Level {
        Element* next;        // the child to visit next
        Component own;        // what leads to the block from the level outside
        Element* counterpart; // null while there is none
    };

    Element* counterpart_of_start() const {
        return m_dst->is_sub() ? m_dst->element() : find_section(m_dst, m_section);
    }
    Element* counterpart(const Level& outside, const Component& own) const {
        return outside.counterpart ? find_child(m_dst_tree, outside.counterpart, own) : nullptr;
    }

    bool copy_text(Component own, std::string_view text) {
        Element* const block = m_levels.back().counterpart;
        if (!block || block->kind != Kind::block) return copy_into_missing(own, text);
        if (m_mode == append_occurrence)
            own.occurrence = (block->children ? count_named(m_dst_tree, *block->children, own.name) : 0) + 1;
        Element* const present = m_mode == append_occurrence ? nullptr : find_child(m_dst_tree, block, own);
        if (m_mode == (present ? copy_missing : copy_present)) return true;
        if (text.size() >= value_capacity) return false;
        if (present)
            m_dst_tree.set_data(present, text);
        else
            append_text(m_dst_tree, block, own, text);
        return true;
    }

    // Blocks on the way are missing, or the innermost is none yet: written along a path from the last that is
    // there.
    bool copy_into_missing(Component own, std::string_view text) {
        std::size_t missing = m_levels.size(); // the first level without counterpart
        while (missing > 0 && !m_levels[missing - 1].counterpart)
            --missing;
        if (missing == 0) {
            if (!copy_by_mode(m_dst, {m_section, path_to(1, own).c_str(), text.data()}, m_mode)) return false;
            m_levels[missing++].counterpart = counterpart_of_start();
        } else {
            if (m_mode == copy_present) return true;
            if (m_mode == append_occurrence) own.occurrence = 1;
            if (text.size() >= value_capacity) return false;
            if (put_text(m_dst_tree, m_levels[missing - 1].counterpart, path_to(missing, own).c_str(),
                         text.data()) != ENV_OK)
                return false;
        }
        for (; missing < m_levels.size(); ++missing)
            m_levels[missing].counterpart = counterpart(m_levels[missing - 1], m_levels[missing].own);
        return true;
    }

    // From a level's block to a child of the innermost.
    std::string path_to(std::size_t level, const Component& child) const {
        const std::string_view joint = delimiter().joint();
        std::string path;
        const auto add = [&](const Component& component) {
            path.append(component.name).append(joint);
            path.append(NumberText(component.occurrence).view());
        };
        for (; level < m_levels.size(); ++level) {
            add(m_levels[level].own);
            path.append(joint);
        }
        add(child);
        return path;
    }

    EnvHandle m_dst;
    Tree& m_dst_tree;
    Tree& m_src_tree;
    const char* m_section;
    int m_mode;
    std::vector<Level> m_levels;
};

// Whether a JointWalk gives what a walk along paths would.
bool can_copy_jointly(EnvHandle dst, EnvHandle src, int mode) {
    if (mode < copy_missing || mode > copy_present) return false;
    if (src->is_sub())
        return dst->is_sub() && src->element() && has_children(src->element()) &&
               paths_keep_names(src->element());
    const Element* section = src->tree().top().first;
    if (!section) return false;
    while (section && paths_keep_names(section))
        section = section->next;
    return !section;
}

bool sink_jointly(EnvHandle dst, EnvHandle src, int mode) {
    if (src->is_sub()) return JointWalk(dst, src->tree(), nullptr, mode).copy_children(src->element());
    for (const Element* section = src->tree().top().first; section; section = section->next) {
        // A name leads to the first section that bears it.
        Element* const named = find_section(src, section->name());
        if (has_children(named)) {
            if (!JointWalk(dst, src->tree(), section->name(), mode).copy_children(named)) return false;
        } else if (named->kind != Kind::block) {
            if (!copy_by_mode(dst, {section->name(), nullptr, text_of(named)}, mode)) return false;
        }
    }
    return true;
}

// When the leaves go into the tree that they come from, they are gathered first: the walk would meet its own
// copies.
bool sink_within(EnvHandle dst, EnvHandle src, int mode) {
    struct Kept {
        std::string section, path, text;
        bool has_section, has_path, has_text;
    };
    std::vector<Kept> leaves;
    const auto keep = [&](EnvHandle leaf, const char* section, const char* path) {
        const char* text = text_of(leaf->element());
        leaves.push_back({section ? section : "", path ? path : "", text ? text : "", section != nullptr,
                          path != nullptr, text != nullptr});
        return true;
    };
    if (!for_each_leaf(src, keep)) return false;
    for (const Kept& kept : leaves) {
        const Leaf leaf{kept.has_section ? kept.section.c_str() : nullptr,
                        kept.has_path ? kept.path.c_str() : nullptr,
                        kept.has_text ? kept.text.c_str() : nullptr};
        if (!copy_by_mode(dst, leaf, mode)) return false;
    }
    return true;
}

} // namespace

EnvStatus sink(EnvHandle dst, EnvHandle src, int mode) {
    const Busy copying(dst);
    if (&dst->tree() == &src->tree()) return sink_within(dst, src, mode) ? ENV_OK : ENV_INVALID;
    const Busy reading(src);
    if (can_copy_jointly(dst, src, mode)) return sink_jointly(dst, src, mode) ? ENV_OK : ENV_INVALID;
    const auto copy_leaf = [&](EnvHandle leaf, const char* section, const char* path) {
        return copy_by_mode(dst, {section, path, text_of(leaf->element())}, mode);
    };
    return for_each_leaf(src, copy_leaf) ? ENV_OK : ENV_INVALID;
}

EnvStatus copy_block(EnvHandle dst, const Address& src, int mode) {
    const auto source = open_sub(src, true);
    if (!source) return ENV_INVALID;
    const auto destination = create_sub({dst, src.section, src.path});
    return destination ? sink(destination.get(), source.get(), mode) : ENV_INVALID;
}

} // namespace env
