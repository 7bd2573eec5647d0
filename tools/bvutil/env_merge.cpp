#include "tools/bvutil/env_merge.h"

#include "tools/bvutil/commands.h"
#include "tools/bvutil/env_tree.h"

#include <string>

namespace {

// env_sink() is not the means: it stops at texts of 255 bytes, half done.
bool copy(EnvHandle destination, const TreeWalk& leaf, MergeMode mode) {
    const char* const section = leaf.section().c_str();
    std::string path = leaf.path();
    if (mode == MergeMode::append) {
        path.resize(path.rfind(walk_delimiter[0]));
        const long count = env_count_path(destination, section, path.c_str(), 1);
        path += walk_delimiter + std::to_string(count + 1);
    } else if (mode != MergeMode::overwrite) {
        const bool present = env_exist(destination, section, path.c_str(), 1) != 0;
        if (present != (mode == MergeMode::update)) return false;
    }
    if (env_put(destination, section, path.c_str(), leaf.node().text) != ENV_OK)
        throw CommandFailed(exit_failed, "out of memory");
    return true;
}

} // namespace

long merge(EnvHandle destination, EnvHandle source, MergeMode mode) {
    long copied = 0;
    for (TreeWalk walk = TreeWalk::consume(source); walk.next();)
        if (walk.node().kind == ENV_IS_DATA && walk.node().depth > 0) copied += copy(destination, walk, mode);
    return copied;
}
