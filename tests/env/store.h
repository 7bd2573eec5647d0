// What the store's tests share: handles that close themselves, texts in and out, and the messages reported.
// Everything goes through the exports, so that a test runs against the DLL and natively.
#pragma once

#include "bvutil/env.h"
#include "tests/env/texts.h"
#ifdef _WIN32
#include "tests/support/message_log.h"
#else
#include "tests/native/seams.h"
#endif

#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// An environment; closing it must succeed.
class Env {
  public:
    explicit Env(long tag = 0, EnvHandle fallback = nullptr) : Env(env_open(tag, fallback)) {}
    explicit Env(EnvHandle handle) : m_handle(handle) { EXPECT_NE(m_handle, nullptr); }
    Env(EnvHandle env, const char* section, const char* path = nullptr, int exact = 1)
        : Env(env_open_subenv(env, section, path, exact)) {}
    ~Env() { EXPECT_EQ(env_close(m_handle, 0), ENV_OK); }
    Env(const Env&) = delete;
    Env& operator=(const Env&) = delete;
    operator EnvHandle() const { return m_handle; }

  private:
    EnvHandle m_handle;
};

inline std::string text_at(EnvHandle env, const char* section, const char* path, int exact = 1) {
    const char* text = nullptr;
    const EnvStatus status = env_get_reference(env, section, path, exact, &text);
    return text ? text : std::string("<").append(std::to_string(status)).append(">");
}

inline std::string numbered(const char* name, long number) {
    return std::string(name).append(std::to_string(number));
}

// The messages reported since it was made; each must come from the store's own unit. They are logged all the
// time: a message box would wait for a person.
class Messages {
  public:
    Messages() { take(); }
#ifdef _WIN32
    std::vector<std::string> take() {
        std::vector<std::string> texts;
        for (const MessageLog::Line& line : log().take()) {
            EXPECT_EQ(line.source, "BvUtilEnv");
            EXPECT_GT(line.line, 0);
            texts.push_back(line.text);
        }
        return texts;
    }

  private:
    class Logging : public testing::Environment {
      public:
        void SetUp() override { m_log.emplace(); }
        void TearDown() override { m_log.reset(); }
        std::optional<MessageLog> m_log;
    };
    static MessageLog& log() {
        return *s_logging->m_log;
    }
    static inline Logging* const s_logging =
        static_cast<Logging*>(testing::AddGlobalTestEnvironment(new Logging));
#else
    std::vector<std::string> take() {
        return seams::take_messages();
    }
#endif
};

using Texts = std::vector<std::string>;

// A file of the test's own.
class ScratchFile {
  public:
    ScratchFile()
        : m_path(std::filesystem::temp_directory_path() /
                 ("bvutil_env_" + std::to_string(reinterpret_cast<std::size_t>(this)) +
                  testing::UnitTest::GetInstance()->current_test_info()->name() + ".txt")) {}
    ~ScratchFile() {
        std::error_code ignored;
        std::filesystem::remove(m_path, ignored);
    }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    std::string path() const { return m_path.string(); }
    void write(std::string_view bytes) const { std::ofstream(m_path, std::ios::binary) << bytes; }
    std::string bytes() const {
        std::ifstream in(m_path, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }

  private:
    std::filesystem::path m_path;
};
