// Writes a tree as text, in the grammar of reader.h. Externals are left out.
#pragma once

#include "env/short_text.h"
#include "env/tree.h"

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <string_view>

namespace env {

// Sink: void text(string_view); void spaces(size_t); void fold_line(), void end_line(): a line end inside a
// folded line, and behind a whole one. A sink that calls out of the library (Sink::calls_out) may see the
// tree change at the end of any line.
template <class Sink>
class Writer {
  public:
    Writer(Sink& sink, Tree& tree) : m_out(sink), m_tree(tree) {}

    void write() {
        for (Element* section = m_tree.top().first; section;) {
            if (!write_section(section)) return;
            section = section->next;
        }
    }

  private:
    static constexpr std::size_t fold = 60; // a line's column and level together reach a multiple of this
    static constexpr std::size_t step = 2;

    // Each gives false when the tree lost the element meanwhile.
    bool write_section(Element* section) {
        m_level = 1;
        if (section->kind == Kind::external) return true;
        if (section->kind == Kind::data) return line(section, {"[", section->name(), "]", section->text});
        return line(section, {"[", section->name(), "]"}) && write_children(section);
    }

    bool write_children(Element* section) {
        Element* at = section;
        for (;;) {
            if (Element* child = first_child(at)) {
                m_level += step;
                at = child;
            } else {
                // A block that is done closes, and so does each that it was the last of.
                if (at != section && at->kind == Kind::block && !line(at, {"}"})) return false;
                while (at != section && !at->next) {
                    at = at->list->owner;
                    m_level -= step;
                    if (at != section && !line(at, {"}"})) return false;
                }
                if (at == section) return true;
                at = at->next;
            }
            if (!write_head(at)) return false;
        }
    }

    static Element* first_child(Element* element) {
        ElementList* children = children_of(element);
        return children ? children->first : nullptr;
    }

    bool write_head(Element* element) {
        if (element->kind == Kind::data)
            return line(element, {element->name_view(), " =", view_of(element->text)});
        return element->kind != Kind::block || line(element, {element->name(), " ={"});
    }

    bool line(Element* element, std::initializer_list<std::string_view> parts) {
        m_out.spaces(m_level - 1);
        std::size_t column = 0;
        std::size_t next_fold = (fold - m_level % fold) % fold;
        for (std::string_view part : parts)
            while (!part.empty()) {
                if (column == next_fold) {
                    m_out.text("\\");
                    m_out.fold_line();
                    next_fold += fold;
                }
                const std::size_t length = std::min(part.size(), next_fold - column);
                m_out.text(part.substr(0, length));
                part.remove_prefix(length);
                column += length;
            }
        if constexpr (!Sink::calls_out) {
            m_out.end_line();
            return true;
        } else {
            Pin pin;
            pin.stand_on(m_tree, element);
            m_out.end_line();
            return pin.element() != nullptr;
        }
    }

    Sink& m_out;
    Tree& m_tree;
    std::size_t m_level = 1;
};

} // namespace env
