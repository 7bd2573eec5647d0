#include "tools/bvutil/env_layers.h"

#include "tools/bvutil/commands.h"
#include "tools/bvutil/env_tree.h"

#include <utility>

namespace {

int kind_at(EnvHandle env, const std::string& section, const std::string& path, long* layer) {
    return env_get_core(env, section.c_str(), path.c_str(), 1, 0, layer, nullptr, nullptr, nullptr);
}

void drop_last_name(std::string& path) {
    const std::size_t end = path.rfind(walk_delimiter);
    path.resize(end == path.npos ? 0 : end);
}

// Whether a name on the way to the walk's node stands for a value. The deepest that there is tells.
bool is_behind_a_value(EnvHandle env, const TreeWalk& walk) {
    std::string path = walk.path();
    int kind = ENV_NOT_FOUND;
    while (kind == ENV_NOT_FOUND && !path.empty()) {
        drop_last_name(path); // the number
        drop_last_name(path);
        if (!path.empty()) kind = kind_at(env, walk.section(), path, nullptr);
    }
    return kind == ENV_IS_DATA;
}

// An empty block is one that has lost its only child.
bool put_empty_block(EnvHandle env, const char* section, std::string path) {
    if (!path.empty()) path += walk_delimiter;
    path += "child";
    return env_put(env, section, path.c_str(), "") == ENV_OK &&
           env_delete(env, section, path.c_str()) == ENV_OK;
}

// Copies a value, or a block that would not come with a value of its own.
void copy(EnvHandle into, const TreeWalk& walk) {
    const char* const section = walk.section().c_str();
    const std::string& path = walk.path();
    if (env_exist(into, section, path.empty() ? nullptr : path.c_str(), 1)) return;
    if (is_behind_a_value(into, walk)) return;
    const bool copied = walk.node().kind == ENV_IS_DATA
                            ? env_put(into, section, path.c_str(), walk.node().text) == ENV_OK
                            : put_empty_block(into, section, path);
    if (!copied) throw CommandFailed(exit_failed, "out of memory");
}

} // namespace

Layers::Layers(std::vector<std::string> files, MessageCapture& messages)
    : m_files(std::move(files)), m_layers(m_files.size()) {
    for (std::size_t i = m_files.size(); i-- > 0;) {
        const EnvHandle below = i + 1 < m_layers.size() ? m_layers[i + 1]->get() : nullptr;
        m_layers[i] = std::make_unique<Environment>(static_cast<long>(i), below);
        load(m_layers[i]->get(), m_files[i], messages);
    }
}

Layers::~Layers() {
    for (auto& layer : m_layers) // from the top: a fallback is busy while something stands on it
        layer.reset();
}

long Layers::layer_of(const std::string& section, const std::string& path, int kind) const {
    long layer = -1;
    return kind_at(top(), section, path, &layer) == kind ? layer : -1;
}

// Blocks that are empty are gathered too: without them their namesakes would have other numbers.
void Layers::gather(EnvHandle into, MessageCapture& messages) const {
    for (std::size_t i = 0; i < count(); ++i) {
        const Environment copied; // a walk consumes
        load(copied.get(), file(i), messages);
        for (TreeWalk walk = TreeWalk::consume(copied.get()); walk.next();) {
            const TreeNode& node = walk.node();
            const bool answers =
                node.depth == 0 || layer_of(walk.section(), walk.path(), node.kind) == static_cast<long>(i);
            if (answers && (node.kind == ENV_IS_DATA || node.empty)) copy(into, walk);
        }
    }
}
