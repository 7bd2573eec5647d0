#include "tools/bvutil/env_tree.h"

#include "tools/bvutil/commands.h"

#include <utility>

TreeWalk::TreeWalk(EnvHandle env, bool consuming) : m_delimiter(walk_delimiter) {
    if (consuming)
        m_env = env;
    else
        descend(env);
}

TreeWalk::~TreeWalk() {
    while (!m_levels.empty())
        ascend();
}

bool TreeWalk::next() {
    while (!m_levels.empty() && m_levels.back().position == m_levels.back().children)
        ascend();
    if (m_levels.empty()) return m_env && next_section();
    next_child(m_levels.back());
    return true;
}

bool TreeWalk::next_section() {
    // The one that has been passed goes, and its successor is the first.
    if (m_node.kind != ENV_NOT_FOUND) env_delete(m_env, m_section.c_str(), nullptr);
    const char* name = nullptr;
    const char* text = nullptr;
    const int kind = env_get_core(m_env, nullptr, nullptr, 1, 1, nullptr, &name, &text, nullptr);
    m_node = {};
    if (kind == ENV_NOT_FOUND) return false;
    m_section = name;
    m_path.clear();
    m_node.kind = kind;
    m_node.name = m_section;
    m_node.text = text;
    m_node.last = env_count_elements(m_env, nullptr, nullptr, 1) == 1;
    if (kind == ENV_IS_BLOCK) descend(env_open_subenv(m_env, name, nullptr, 1));
    return true;
}

void TreeWalk::next_child(Level& level) {
    const char* name = "";
    const char* text = nullptr;
    m_node = {};
    m_node.kind =
        env_get_core(level.block, nullptr, nullptr, 1, ++level.position, nullptr, &name, &text, nullptr);
    m_node.name = name;
    m_node.text = text;
    Count& count = level.names[m_node.name];
    m_node.occurrence = ++count.passed;
    m_node.repeated = count.total > 1;
    m_node.last = level.position == level.children;
    m_node.depth = m_levels.size() - (m_env ? 0 : 1);
    m_path.resize(level.path_length);
    if (!m_path.empty()) m_path += walk_delimiter;
    const std::size_t own = m_path.size();
    m_path.append(m_node.name).append(walk_delimiter).append(std::to_string(m_node.occurrence));
    if (m_node.kind == ENV_IS_BLOCK) descend(env_open_subenv(level.block, nullptr, m_path.c_str() + own, 1));
}

void TreeWalk::descend(EnvHandle block) {
    if (!block) throw CommandFailed(exit_failed, "out of memory");
    Level level{block, m_path.size(), env_count_elements(block, nullptr, nullptr, 1), 0, {}};
    m_levels.push_back(std::move(level));
    Level& here = m_levels.back();
    for (long position = 1; position <= here.children; ++position) {
        const char* name = "";
        env_get_core(block, nullptr, nullptr, 1, position, nullptr, &name, nullptr, nullptr);
        const std::string_view view(name);
        if (view.find(walk_delimiter) != view.npos)
            throw CommandFailed(exit_bad_input, "a name holds the control character 01");
        ++here.names[view].total;
    }
    m_node.empty = here.children == 0;
}

void TreeWalk::ascend() {
    env_close(m_levels.back().block, 0);
    m_levels.pop_back();
}
