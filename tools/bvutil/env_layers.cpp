#include "tools/bvutil/env_layers.h"

#include "tools/bvutil/commands.h"
#include "tools/bvutil/env_tree.h"

#include <utility>

namespace {

int kind_at(EnvHandle env, const std::string& section, const std::string& path, long* layer) {
    return env_get_core(env, section.c_str(), path.c_str(), 1, 0, layer, nullptr, nullptr, nullptr);
}

// Whether a name on the way to the walk's node stands for a value. Every name has its number behind it.
bool is_behind_a_value(EnvHandle env, const TreeWalk& walk) {
    const std::string& path = walk.path();
    bool number = false;
    for (std::size_t end = path.find(walk_delimiter); end != path.npos;
         end = path.find(walk_delimiter, end + 1), number = !number)
        if (number && kind_at(env, walk.section(), path.substr(0, end), nullptr) == ENV_IS_DATA) return true;
    return false;
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

long Layers::layer_of(const std::string& section, const std::string& path) const {
    long layer = -1;
    return kind_at(top(), section, path, &layer) == ENV_IS_DATA ? layer : -1;
}

void Layers::gather(EnvHandle into, MessageCapture& messages) const {
    for (std::size_t i = 0; i < count(); ++i) {
        const Environment copy; // a walk consumes
        load(copy.get(), file(i), messages);
        for (TreeWalk walk = TreeWalk::consume(copy.get()); walk.next();) {
            if (walk.node().kind != ENV_IS_DATA || walk.node().depth == 0) continue;
            if (layer_of(walk.section(), walk.path()) != static_cast<long>(i)) continue;
            if (is_behind_a_value(into, walk)) continue;
            if (env_put(into, walk.section().c_str(), walk.path().c_str(), walk.node().text) != ENV_OK)
                throw CommandFailed(exit_failed, "out of memory");
        }
    }
}
