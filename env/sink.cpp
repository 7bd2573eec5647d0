// Copying the leaves of one environment into another.
#include "env/operations.h"
#include "env/put.h"
#include "env/report.h"
#include "env/value_text.h"
#include "env/walk.h"

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

const char* text_of(EnvHandle leaf) {
    const Element* element = leaf->element();
    return element->kind == Kind::data ? element->text : nullptr;
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
        const char* text = text_of(leaf);
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
    const auto copy_leaf = [&](EnvHandle leaf, const char* section, const char* path) {
        return copy_by_mode(dst, {section, path, text_of(leaf)}, mode);
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
