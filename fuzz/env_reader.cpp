// Environment texts: read from a file's bytes and through a callback they give the same tree and result, and
// what was read, written and read again is the same tree wherever the format can hold it.
#include "env/char_source.h"
#include "env/handle.h"
#include "env/reader.h"
#include "fuzz/require.h"
#include "tests/env/texts.h"
#include "tests/native/seams.h"

#include <cstdint>

namespace {

class Env {
  public:
    ~Env() { require(env_close(m_handle, 0) == ENV_OK); }
    operator EnvHandle() const { return m_handle; }
    EnvHandle operator->() const { return m_handle; }

  private:
    EnvHandle m_handle = env_open(0, nullptr);
};

EnvStatus read_file(EnvHandle env, std::string bytes, std::size_t piece) {
    std::FILE* const file = fmemopen(bytes.data(), bytes.size(), "rb");
    env::FileSource source(file, piece);
    const EnvStatus status = env::Reader(source, env->tree()).read();
    std::fclose(file);
    return status;
}

// In text mode, as files are read: the callback's text ends like it.
std::string text_mode(std::string text) {
    text = text.substr(0, text.find_first_of("\x1a\xff"));
    for (std::size_t at = 0; (at = text.find("\r\n", at)) != std::string::npos; ++at)
        text.erase(at, 1);
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const Env by_callback, by_file, again;
    const EnvStatus status = read_text(by_callback, text_mode(bytes));
    // In pieces of a few bytes, so that everything happens where two meet.
    require(read_file(by_file, bytes, 1 + size % 7) == status);
    require(status == ENV_OK || status == ENV_SYNTAX);
    const std::string text = written(by_callback);
    require(text == written(by_file));
    // Folding may put a ";" at the beginning of a line, which makes a comment.
    if (bytes.find('\\') == std::string::npos && text.find("\n;") == std::string::npos) {
        require(read_text(again, text) == ENV_OK);
        require(written(again) == text);
    }
    seams::take_messages();
    return 0;
}
