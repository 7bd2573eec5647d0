#include "tools/bvutil/env_show.h"

#include "tools/bvutil/console.h"

#include <algorithm>
#include <cstdio>

namespace {

// Deeper elements are not indented further: nobody could read them.
constexpr std::size_t deepest_indent = 60;

// "name@2" where there are several of the name.
std::string label(const TreeNode& node) {
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

void print_rails(const std::string& rails, bool last) {
    const Emphasised faint(Emphasis::faint);
    print_utf8(rails);
    print_utf8(last ? "\u2514\u2500\u2500 " : "\u251C\u2500\u2500 ");
}

void print_element(const TreeNode& node, bool section, const std::string& note) {
    if (section) {
        const Emphasised heading(Emphasis::heading);
        print("[" + printable(node.name) + "]");
    } else {
        print(label(node));
    }
    print(content(node));
    if (!note.empty()) {
        const Emphasised faint(Emphasis::faint);
        print(" (" + note + ")");
    }
    print("\n");
}

std::string note_of(const TreeWalk& walk, const ValueNote& note) {
    return note && walk.node().kind == ENV_IS_DATA ? note(walk) : "";
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

void print_tree(const std::string& title, TreeWalk walk, const ValueNote& note) {
    print(title + "\n");
    std::string rails; // in front of the children of the node last printed, one rail for each depth
    constexpr std::string_view rail = "\u2502   ", no_rail = "    ";
    std::vector<std::size_t> ends{0}; // where the rails of each depth begin
    while (walk.next()) {
        const TreeNode& node = walk.node();
        ends.resize(node.depth + 1);
        rails.resize(ends.back());
        print_rails(rails, node.last);
        print_element(node, node.depth == 0 && walk.over_sections(), note_of(walk, note));
        if (node.depth < deepest_indent) rails += node.last ? no_rail : rail;
        ends.push_back(rails.size());
    }
}

void write_tree(JsonWriter& json, TreeWalk walk, const char* note_name, const ValueNote& note) {
    std::size_t open = 0; // blocks
    const auto close_down_to = [&](std::size_t depth) {
        for (; open > depth; --open)
            json.end_array().end_object();
    };
    json.begin_array();
    while (walk.next()) {
        const TreeNode& node = walk.node();
        close_down_to(node.depth);
        json.begin_object().member("name", node.name);
        if (node.repeated) json.member("occurrence", node.occurrence);
        if (node.kind == ENV_IS_BLOCK) {
            json.key("elements").begin_array();
            ++open;
        } else if (node.kind == ENV_IS_DATA) {
            json.member("value", node.text ? node.text : "");
            if (note) json.member(note_name, note(walk));
            json.end_object();
        } else {
            json.member("external", true).end_object();
        }
    }
    close_down_to(0);
    json.end_array();
}
