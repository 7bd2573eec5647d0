#include "tools/bvutil/env_syntax.h"

#include "tools/bvutil/env_file.h"
#include "tools/bvutil/env_show.h"
#include "tools/bvutil/env_source.h"
#include "tools/bvutil/env_tree.h"

#include <algorithm>
#include <vector>

namespace {

// Added to the beginning of a file, this makes a whole one: it ends a line, a section's name or an element's,
// and is an element of its own where none was begun. The braces that close what is open follow it.
constexpr std::string_view completing_name = "x]x";

// The elements of the beginning of a file in the order of the text.
struct Outline {
    std::size_t count = 0;
    std::string last_name; // the completing one, unless a name was begun
    std::string last_section, last_path;
    std::size_t enclosing = 0; // number of the innermost block that was open
};

class Beginnings {
  public:
    Beginnings(std::string_view bytes, MessageCapture& messages) : m_bytes(bytes), m_messages(messages) {}

    Outline outline(std::size_t size) const {
        const Environment env;
        read(env.get(), size);
        Outline outline;
        std::vector<std::size_t> numbers; // of the last element at each depth
        for (TreeWalk walk = TreeWalk::consume(env.get()); walk.next(); ++outline.count) {
            const TreeNode& node = walk.node();
            numbers.resize(node.depth);
            if (node.depth > 0) outline.enclosing = numbers.back();
            numbers.push_back(outline.count);
            outline.last_name = node.name;
            outline.last_section = walk.section();
            outline.last_path = walk.path();
        }
        return outline;
    }

    // Whether the element of that number is there and is a block.
    bool has_block(std::size_t size, std::size_t number) const {
        const Environment env;
        read(env.get(), size);
        TreeWalk walk = TreeWalk::consume(env.get());
        for (std::size_t passed = 0; walk.next(); ++passed)
            if (passed == number) return walk.node().kind == ENV_IS_BLOCK;
        return false;
    }

    // The byte that makes the condition true, which it stays.
    template <class Condition>
    std::size_t first(Condition holds) const {
        std::size_t without = 0, with = m_bytes.size();
        while (with - without > 1) {
            const std::size_t middle = without + (with - without) / 2;
            (holds(middle) ? with : without) = middle;
        }
        return with - 1;
    }

  private:
    void read(EnvHandle env, std::size_t size) const {
        std::string text(m_bytes.substr(0, size));
        const auto open = static_cast<std::size_t>(std::count(text.begin(), text.end(), '{'));
        text.append("\n").append(completing_name).append("=\n").append(open + 1, '}');
        ByteSource source(text);
        env_read(&ByteSource::read, &source, env);
        m_messages.take(); // of the brace that is one too many
    }

    std::string_view m_bytes;
    MessageCapture& m_messages;
};

// Searching takes some twenty reads of the file: nobody waits for that long.
constexpr std::size_t largest_searched = 1 << 20;

struct Finding {
    std::size_t at;
    std::string problem;
};

Finding find_name_without_end(std::string_view bytes, MessageCapture& messages) {
    const Beginnings beginnings(bytes, messages);
    const Outline whole = beginnings.outline(bytes.size());
    const std::size_t begin = beginnings.first([&](std::size_t size) {
        const Outline part = beginnings.outline(size);
        return part.count == whole.count && part.last_name != completing_name;
    });
    constexpr std::size_t longest_shown = 40;
    const std::string name = whole.last_name.substr(0, std::min(whole.last_name.find('\n'), longest_shown));
    return {begin, "the name \"" + printable(name) + "\" has no \"=\""};
}

Finding find_open_block(std::string_view bytes, std::size_t at, MessageCapture& messages) {
    const std::string_view before = bytes.substr(0, at);
    const Beginnings beginnings(before, messages);
    const Outline whole = beginnings.outline(at);
    const std::size_t brace =
        beginnings.first([&](std::size_t size) { return beginnings.has_block(size, whole.enclosing); });
    std::string path = whole.last_path.substr(0, whole.last_path.rfind(walk_delimiter[0]));
    path.resize(path.rfind(walk_delimiter[0])); // the completing name and its number
    std::replace(path.begin(), path.end(), walk_delimiter[0], '@');
    const auto line =
        1 + std::count(before.begin(), before.begin() + static_cast<std::ptrdiff_t>(brace), '\n');
    return {at, "the block " + printable("[" + whole.last_section + "] " + path) + " of line " +
                    std::to_string(line) + " needs its \"}\" before this"};
}

Finding find_cause(std::string_view bytes, std::size_t at, const std::string& message,
                   MessageCapture& messages) {
    const char found = at < bytes.size() ? bytes[at] : '\0';
    if (found == '=') return {at, "there is no name in front of this \"=\""};
    if (message == "Section waited" && found == '}') return {at, "this \"}\" closes no block"};
    if (bytes.size() <= largest_searched) try {
            if (message == "Equal sign waited") return find_name_without_end(bytes, messages);
            if (message == "Cbracesymbol waited") return find_open_block(bytes, at, messages);
        } catch (const CommandFailed&) {
            // A name that no walk can pass, or no memory: what is known without a search has to do.
        }
    if (message == "Equal sign waited") return {at, "the file ends in a name without \"=\""};
    if (message == "Cbracesymbol waited") return {at, "a block is open that needs its \"}\" before this"};
    return {at, "a section, \"[name]\", or an element should be here"};
}

// The line with a mark under a place in it; of a long line what is around the place.
std::string excerpt(std::string_view bytes, std::size_t at) {
    constexpr std::size_t around = 50;
    const std::size_t line_begin = bytes.substr(0, at).rfind('\n') + 1; // 0 when there is none
    const std::size_t begin = at - line_begin > around ? at - around : line_begin;
    std::string text(bytes.substr(begin, std::min(bytes.find_first_of("\r\n", at), at + around) - begin));
    std::replace_if(
        text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; }, ' ');
    return "  " + text + "\n  " + std::string(at - begin, ' ') + "^";
}

std::size_t line_of(std::string_view bytes, std::size_t at) {
    return 1 + static_cast<std::size_t>(
                   std::count(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
}

std::size_t column_of(std::string_view bytes, std::size_t at) {
    return at - (bytes.substr(0, at).rfind('\n') + 1) + 1;
}

} // namespace

SyntaxError::SyntaxError(const std::string& file, std::string_view bytes, std::size_t at,
                         const std::string& problem)
    : CommandFailed(exit_bad_input, file + ", line " + std::to_string(line_of(bytes, at)) + ", column " +
                                        std::to_string(column_of(bytes, at)) + ": " + problem + "\n" +
                                        excerpt(bytes, at)),
      m_problem(problem), m_line(line_of(bytes, at)), m_column(column_of(bytes, at)) {}

void throw_syntax_error(const std::string& file, std::string_view bytes, std::size_t at,
                        const std::string& message, MessageCapture& messages) {
    bytes = bytes.substr(0, bytes.find_first_of(text_ends));
    const Finding finding = find_cause(bytes, at, message, messages);
    throw SyntaxError(file, bytes, finding.at, message + ": " + finding.problem);
}
