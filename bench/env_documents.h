// The documents that the benchmark of the environment store loads and saves.
#pragma once

#include <string>
#include <utility>

namespace documents {

// Writes a document as the store would, but for folding.
class Text {
  public:
    void section(unsigned number) { line(0, name("[section", number) + "]"); }
    void block(unsigned level, unsigned number) { line(level, name("block", number) + " ={"); }
    void end_block(unsigned level) { line(level, "}"); }
    void leaf(unsigned level, unsigned number) {
        m_random = m_random * 1664525 + 1013904223;
        line(level, name("leaf", number) + " =" + std::to_string(m_random >> 16));
    }
    std::string take() { return std::move(m_text); }

  private:
    static std::string name(const char* stem, unsigned number) { return stem + std::to_string(number); }
    void line(unsigned level, const std::string& text) {
        m_text.append(2 * level, ' ').append(text).append("\r\n");
    }

    std::string m_text;
    unsigned m_random = 1;
};

// 2,000 sections of 10 blocks of 15 leaves and one block of 3 leaves: 402,000 elements.
inline std::string big() {
    Text text;
    for (unsigned section = 1; section <= 2000; ++section) {
        text.section(section);
        for (unsigned block = 1; block <= 10; ++block) {
            text.block(1, block);
            for (unsigned leaf = 1; leaf <= 15; ++leaf)
                text.leaf(2, leaf);
            text.block(2, 1);
            for (unsigned leaf = 1; leaf <= 3; ++leaf)
                text.leaf(3, leaf);
            text.end_block(2);
            text.end_block(1);
        }
    }
    return text.take();
}

// One section, one block, 100,000 leaves.
inline std::string wide() {
    Text text;
    text.section(1);
    text.block(1, 1);
    for (unsigned leaf = 1; leaf <= 100000; ++leaf)
        text.leaf(2, leaf);
    text.end_block(1);
    return text.take();
}

// 50 sections, chains of 200 blocks, 4 leaves a level: 50,050 elements and a great deal of indentation.
inline std::string deep() {
    constexpr unsigned levels = 200;
    Text text;
    for (unsigned section = 1; section <= 50; ++section) {
        text.section(section);
        for (unsigned level = 1; level <= levels; ++level) {
            text.block(level, 1);
            for (unsigned leaf = 1; leaf <= 4; ++leaf)
                text.leaf(level + 1, leaf);
        }
        for (unsigned level = levels; level >= 1; --level)
            text.end_block(level);
    }
    return text.take();
}

} // namespace documents
