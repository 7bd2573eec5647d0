// Plug-in files made for a test: property lists of any form, and a file that carries them.
#pragma once

#include "filterhost/filter_record.h"
#include "tests/filterhost/property_bytes.h"
#include "tests/support/run_program.h"

#include <gtest/gtest.h>

// Makes plug-in files that last as long as this.
class PluginFiles {
  public:
    // A copy of the scripted plug-in with these property lists, numbered from 1. Returns its path.
    std::string make(const std::vector<std::string>& lists) {
        const std::string path = m_dir.file("plugin" + std::to_string(m_count++) + ".8bf");
        EXPECT_TRUE(CopyFileA(program_path("tests\\scripted.8bf").c_str(), path.c_str(), FALSE));
        if (lists.empty()) return path;
        const HANDLE update = BeginUpdateResourceA(path.c_str(), FALSE);
        for (std::size_t i = 0; i < lists.size(); ++i)
            EXPECT_TRUE(UpdateResourceA(update, ps::property_list_type, MAKEINTRESOURCEA(i + 1), 0,
                                        const_cast<char*>(lists[i].data()),
                                        static_cast<DWORD>(lists[i].size())));
        EXPECT_TRUE(EndUpdateResourceA(update, FALSE));
        return path;
    }
    std::string make(const std::string& list) { return make(std::vector{list}); }

    std::string file(const std::string& name) const { return m_dir.file(name); }

  private:
    TempDir m_dir;
    int m_count = 0;
};
