#include "tools/bvutil/env_file.h"

#include "tools/bvutil/console.h"
#include "tools/bvutil/env_source.h"
#include "tools/bvutil/env_syntax.h"
#include "tools/bvutil/env_tree.h"
#include "tools/bvutil/whole_file.h"

#include <algorithm>
#include <string_view>

Environment::Environment(long layer_tag, EnvHandle fallback) : m_env(env_open(layer_tag, fallback)) {
    if (!m_env) throw CommandFailed(exit_failed, "out of memory");
}

namespace {

Unkept find_unkept(std::string_view bytes) {
    Unkept unkept;
    bool in_sections = false;
    const std::size_t end = std::min(bytes.find_first_of(text_ends), bytes.size());
    unkept.text_behind = end + 1 < bytes.size();
    std::string_view rest = bytes.substr(0, end);
    while (!rest.empty()) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        if (line.starts_with(';')) {
            ++unkept.comments;
        } else if (!in_sections) {
            const std::size_t bracket = line.find('[');
            in_sections = bracket != line.npos;
            unkept.leading_text |= line.substr(0, bracket).find_first_not_of(" \t\r") != line.npos;
        }
    }
    return unkept;
}

void BVUTIL_CALL write_to_file(int character, void* file) noexcept {
    const char c = static_cast<char>(character);
    static_cast<ReplacementFile*>(file)->put(c == '\n' ? std::string_view("\r\n") : std::string_view(&c, 1));
}

void BVUTIL_CALL write_to_string(int character, void* text) {
    static_cast<std::string*>(text)->push_back(static_cast<char>(character));
}

bool same(const TreeNode& a, const TreeNode& b) {
    return a.kind == b.kind && a.depth == b.depth && a.name == b.name &&
           std::string_view(a.text ? a.text : "") == std::string_view(b.text ? b.text : "");
}

// Whether the library folds the node's line right behind a backslash: the reader then misses the fold.
bool folds_behind_backslash(const TreeNode& node) {
    constexpr std::size_t fold = 60;
    const std::string line = std::string(node.name).append(" =").append(node.text ? node.text : "");
    const std::size_t level = 2 * node.depth + 1;
    for (std::size_t column = fold - level % fold; column < line.size(); column += fold)
        if (line.find_last_not_of(' ', column - 1) == line.rfind('\\', column - 1) &&
            line.rfind('\\', column - 1) != line.npos)
            return true;
    return false;
}

std::string place_in(const TreeWalk& walk) {
    std::string place = "[" + walk.section() + "]";
    if (!walk.path().empty()) place.append(" ").append(walk.path());
    std::replace(place.begin(), place.end(), walk_delimiter[0], '@');
    return place;
}

// Where the walk, which has met a difference, stands; or the value behind it that is the cause: a section
// that cannot be read differs as a whole.
std::string place_of_difference(TreeWalk& walk) {
    const std::string here = place_in(walk);
    do {
        if (folds_behind_backslash(walk.node()))
            return place_in(walk) + ", whose line would be folded behind a backslash";
    } while (walk.next() && walk.node().depth > 0);
    return here;
}

// Throws when the second environment is not what the first is.
void expect_same(EnvHandle env, EnvHandle read_back) {
    TreeWalk wanted = TreeWalk::consume(env);
    TreeWalk found = TreeWalk::consume(read_back);
    for (;;) {
        const bool more = wanted.next();
        if (found.next() == more && (!more || same(wanted.node(), found.node()))) {
            if (more) continue;
            return;
        }
        throw CommandFailed(exit_bad_input,
                            "the file is left as it was: it would not read back as it was meant at " +
                                (more ? place_of_difference(wanted) : place_in(found)));
    }
}

} // namespace

Unkept load(EnvHandle env, const std::string& path, MessageCapture& messages) {
    const std::string bytes = read_whole_file(path);
    ByteSource source(bytes);
    const EnvStatus status = env_read(&ByteSource::read, &source, env);
    if (status == ENV_OK) return find_unkept(bytes);
    const std::string message = messages.take();
    if (status == ENV_SYNTAX) // at the character that the reader took last, or at the end
        throw_syntax_error(path, bytes, source.ended() ? source.at() : source.at() - 1, message, messages);
    throw CommandFailed(exit_failed, path + ": " + (message.empty() ? "out of memory" : message));
}

void save(EnvHandle env, const std::string& path, MessageCapture& messages) {
    ReplacementFile file(path);
    env_write(&write_to_file, &file, env);
    file.close();
    const Environment read_back;
    try {
        load(read_back.get(), file.path(), messages);
    } catch (const CommandFailed& failure) {
        if (failure.code() != exit_bad_input) throw;
        // What did not read whole is told by the place where it differs.
    }
    expect_same(env, read_back.get());
    file.replace();
}

void print_text(EnvHandle env) {
    std::string text;
    env_write(&write_to_string, &text, env);
    print(text);
}
