// Walks over all elements of an environment, whatever their names are.
#pragma once

#include "bvutil/env.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// The process-wide delimiter for the lifetime of this.
class Delimiter {
  public:
    explicit Delimiter(const char* delimiter) : m_former(env_set_delimiter(delimiter)) {}
    ~Delimiter() { env_set_delimiter(m_former.c_str()); }
    Delimiter(const Delimiter&) = delete;
    Delimiter& operator=(const Delimiter&) = delete;

  private:
    std::string m_former;
};

// Separates the paths of a walk: names may hold any character that a person would choose.
inline constexpr char walk_delimiter[] = "\x01";

// An element, as long as the walk stands on it.
struct TreeNode {
    int kind = ENV_NOT_FOUND; // ENV_IS_DATA, ENV_IS_BLOCK or ENV_IS_EXTERNAL
    std::string_view name;
    const char* text = nullptr; // of data
    long occurrence = 1;        // among its same-named siblings
    bool repeated = false;      // whether there are other such siblings
    bool last = false;          // whether it is the last of its siblings
    bool empty = false;         // whether it is a block without children
    std::size_t depth = 0;      // 0 for the elements that the walk begins with
};

// Every element, depth first, each list in order. The walk of a whole environment consumes it: a section is
// deleted once it has been passed, so that further sections of the same name can be reached. Sets the
// delimiter to walk_delimiter while it lives. Throws CommandFailed when a name holds that character.
class TreeWalk {
  public:
    // All sections of an environment, which is empty at the end.
    static TreeWalk consume(EnvHandle env) { return {env, true}; }
    // What lies under the element that a sub-environment stands on. Closes it.
    static TreeWalk below(EnvHandle sub) { return {sub, false}; }
    ~TreeWalk();
    TreeWalk(const TreeWalk&) = delete;
    TreeWalk& operator=(const TreeWalk&) = delete;

    bool next();
    const TreeNode& node() const { return m_node; }
    bool over_sections() const { return m_env != nullptr; }
    // The section of the node, and its path in there, each name with its occurrence number; for consume().
    const std::string& section() const { return m_section; }
    const std::string& path() const { return m_path; }

  private:
    struct Count {
        long total = 0;
        long passed = 0;
    };
    // A block whose children are being passed.
    struct Level {
        EnvHandle block;
        std::size_t path_length;
        long children;
        long position = 0;
        std::unordered_map<std::string_view, Count> names;
    };

    TreeWalk(EnvHandle env, bool consuming);
    bool next_section();
    void next_child(Level& level);
    void descend(EnvHandle block);
    void ascend();

    Delimiter m_delimiter;
    EnvHandle m_env = nullptr; // when consuming
    std::vector<Level> m_levels;
    TreeNode m_node;
    std::string m_section;
    std::string m_path;
};
