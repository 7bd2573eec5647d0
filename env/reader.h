// The grammar of environment texts:
//
//   file     = skipped text before the first "[", { section }
//   section  = "[" name up to "]", { element }
//   element  = name up to "=", "=", value
//   value    = "{" { element } "}"  |  text up to the end of the line
#pragma once

#include "bvutil/env.h"
#include "env/char_source.h"
#include "env/report.h"
#include "env/tree.h"

#include <string_view>

namespace env {

template <class Source>
class Reader {
  public:
    Reader(Source& source, Tree& tree) : m_in(source), m_tree(tree) {}

    // Appends the sections read to the tree's top level. After an error the section being read is dropped.
    EnvStatus read() {
        m_in.template skip_until<'['>();
        while (m_in.peek() >= 0) {
            if (m_in.peek() != '[') return syntax_error("Section waited");
            m_in.advance();
            if (const EnvStatus status = read_section(); status != ENV_OK) return status;
        }
        return ENV_OK;
    }

  private:
    static std::string_view trimmed(std::string_view text) {
        while (!text.empty() && (text.back() == ' ' || text.back() == '\t'))
            text.remove_suffix(1);
        return text;
    }

    static EnvStatus syntax_error(const char* message) {
        report(message);
        return ENV_SYNTAX;
    }

    // Whether the token at hand is a name: any other ends a run of elements.
    bool at_name() {
        const int c = m_in.peek();
        return c >= 0 && c != '[' && c != '=' && c != '}';
    }

    EnvStatus read_section() {
        m_in.skip_blanks();
        m_in.template take_until<']'>(m_name);
        Draft section(m_tree, m_tree.create_block(trimmed(m_in.view(m_name))));
        if (m_in.peek() >= 0) m_in.advance();
        const EnvStatus status = read_elements(section.get());
        if (status == ENV_OK) m_tree.append(m_tree.top(), section.keep());
        return status;
    }

    // All elements of a section, blocks within blocks too: the tree itself is the stack.
    EnvStatus read_elements(Element* section) {
        Element* parent = section;
        for (;;) {
            m_in.skip_white_space();
            if (at_name()) {
                if (const EnvStatus status = read_element(parent); status != ENV_OK) return status;
                continue;
            }
            if (parent == section) return ENV_OK;
            if (m_in.peek() != '}') return syntax_error("Cbracesymbol waited");
            m_in.advance();
            parent = parent->list->owner;
        }
    }

    // One element; a block becomes the parent of what follows.
    EnvStatus read_element(Element*& parent) {
        m_in.template take_until<'='>(m_name);
        if (m_in.peek() != '=') return syntax_error("Equal sign waited");
        m_in.advance();
        m_in.skip_blanks();
        if (m_in.peek() == '{') {
            m_in.advance();
            Element* const block = m_tree.create_block(trimmed(m_in.view(m_name)));
            m_tree.append_child(parent, block);
            parent = block;
            return ENV_OK;
        }
        m_in.template take_until<'\n'>(m_text);
        if (m_in.peek() >= 0) m_in.advance();
        m_tree.append_child(parent,
                            m_tree.create_data(trimmed(m_in.view(m_name)), trimmed(m_in.view(m_text))));
        return ENV_OK;
    }

    Source& m_in;
    Tree& m_tree;
    typename Source::Token m_name;
    typename Source::Token m_text;
};

} // namespace env
