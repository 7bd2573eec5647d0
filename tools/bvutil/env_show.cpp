#include "tools/bvutil/env_show.h"

#include "tools/bvutil/console.h"

#include <algorithm>
#include <cstdio>

namespace {

// Deeper elements are not indented further: nobody could read them.
constexpr std::size_t deepest_indent = 60;

// "name@2" where there are several of the name.
std::string label(const TreeNode& node, bool section) {
    if (section) return "[" + printable(node.name) + "]";
    std::string text = printable(node.name);
    if (node.repeated) text += "@" + std::to_string(node.occurrence);
    return text;
}

std::string content(const TreeNode& node) {
    switch (node.kind) {
    case ENV_IS_DATA:
        return " = " + printable(node.text ? node.text : "");
    case ENV_IS_BLOCK:
        return node.empty ? " (empty block)" : "";
    default:
        return " (external)";
    }
}

} // namespace

std::string printable(std::string_view text) {
    std::string shown;
    for (const char c : text) {
        if (c == '\n') {
            shown += "\\n";
        } else if (static_cast<unsigned char>(c) >= 0x20 && c != 0x7F) {
            shown += c;
        } else {
            char code[8];
            std::snprintf(code, sizeof code, "\\x%02X", static_cast<unsigned>(static_cast<unsigned char>(c)));
            shown += code;
        }
    }
    return shown;
}

void print_tree(const std::string& title, TreeWalk walk) {
    print(title + "\n");
    std::string rails; // in front of the children of the node last printed, one rail for each depth
    constexpr std::string_view rail = "\u2502   ", no_rail = "    ";
    std::vector<std::size_t> ends{0}; // where the rails of each depth begin
    while (walk.next()) {
        const TreeNode& node = walk.node();
        ends.resize(node.depth + 1);
        rails.resize(ends.back());
        print_utf8(rails);
        print_utf8(node.last ? "\u2514\u2500\u2500 " : "\u251C\u2500\u2500 ");
        const bool section = node.depth == 0 && walk.over_sections();
        print(label(node, section) + content(node) + "\n");
        if (node.depth < deepest_indent) rails += node.last ? no_rail : rail;
        ends.push_back(rails.size());
    }
}
