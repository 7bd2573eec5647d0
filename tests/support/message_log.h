// Sends the library's messages to a log file while it lives, and gives their texts.
#pragma once

#include "bvutil/messages.h"
#include "tests/support/temp_dir.h"

#include <sstream>
#include <string>
#include <vector>

class MessageLog {
  public:
    struct Line {
        std::string text;
        std::string source; // the reporting unit
        int line = 0;
    };

    MessageLog() { BvUtil_SetWriteToLogfile(1, m_dir.file("log.txt").c_str(), 0); }
    ~MessageLog() { BvUtil_SetWriteToLogfile(0, nullptr, 0); }

    // The messages since the last call, in order.
    std::vector<Line> take() {
        std::istringstream log(read_file(m_dir.file("log.txt")).substr(m_seen));
        std::vector<Line> lines;
        for (std::string line; std::getline(log, line);) {
            m_seen += line.size() + 1;
            const auto text = line.find(" :: ") + 4;
            const auto in = line.rfind(" in \"");
            const auto number = line.rfind("\" line ");
            lines.push_back({line.substr(text, in - text), line.substr(in + 5, number - in - 5),
                             std::atoi(line.c_str() + number + 7)});
        }
        return lines;
    }

    // The same, the texts alone.
    std::vector<std::string> texts() {
        std::vector<std::string> texts;
        for (const Line& line : take())
            texts.push_back(line.text);
        return texts;
    }

  private:
    TempDir m_dir;
    std::size_t m_seen = 0;
};
