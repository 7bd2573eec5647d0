#include "tools/bvutil/message_capture.h"

#include "bvutil/messages.h"
#include "tools/bvutil/commands.h"
#include "tools/bvutil/whole_file.h"

#include <windows.h>

MessageCapture::MessageCapture() {
    char folder[MAX_PATH + 1];
    char path[MAX_PATH + 1];
    // The file is made here first: a log that cannot be opened would be told in a message box.
    if (GetTempPathA(sizeof folder, folder) == 0 || GetTempFileNameA(folder, "bvu", 0, path) == 0)
        throw CommandFailed(exit_io_error, "cannot make a temporary file: " + system_message(GetLastError()));
    m_path = path;
    BvUtil_SetWriteToLogfile(1, path, 0);
}

MessageCapture::~MessageCapture() {
    BvUtil_SetWriteToLogfile(0, nullptr, 0);
    DeleteFileA(m_path.c_str());
}

std::string MessageCapture::take() {
    const std::string log = read_whole_file(m_path);
    std::string texts;
    while (m_seen < log.size()) {
        const std::size_t end = log.find('\n', m_seen);
        const std::string line = log.substr(m_seen, end - m_seen);
        m_seen = end == std::string::npos ? log.size() : end + 1;
        const std::size_t begin = line.find(" :: ");
        const std::size_t source = line.rfind(" in \"");
        if (begin == std::string::npos || source == std::string::npos) continue;
        if (!texts.empty()) texts += "; ";
        texts.append(line, begin + 4, source - begin - 4);
    }
    return texts;
}
