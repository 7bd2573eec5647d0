// Environment texts: read from a file's bytes and through a callback they give the same tree and result, and
// what was read, written and read again is the same tree wherever the format can hold it.
#include "bvutil/env.h"
#include "env/char_source.h"
#include "env/handle.h"
#include "env/reader.h"
#include "fuzz/require.h"
#include "tests/native/seams.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace {

class Env {
  public:
    ~Env() { require(env_close(m_handle, 0) == ENV_OK); }
    operator EnvHandle() const { return m_handle; }
    EnvHandle operator->() const { return m_handle; }

  private:
    EnvHandle m_handle = env_open(0, nullptr);
};

struct Bytes {
    std::string_view text;
    std::size_t at = 0;
    static int BVUTIL_CALL next(void* self) {
        auto& bytes = *static_cast<Bytes*>(self);
        return bytes.at < bytes.text.size() ? static_cast<signed char>(bytes.text[bytes.at++]) : -1;
    }
};

EnvStatus read(EnvHandle env, std::string_view text) {
    Bytes bytes{text};
    return env_read(Bytes::next, &bytes, env);
}

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

std::string written(EnvHandle env) {
    std::string text;
    env_write([](int c, void* sink) { static_cast<std::string*>(sink)->push_back(static_cast<char>(c)); },
              &text, env);
    return text;
}

// The same elements, in the same order.
bool same(const env::ElementList& a, const env::ElementList& b) {
    const env::Element *x = a.first, *y = b.first;
    for (; x && y; x = x->next, y = y->next) {
        if (x->kind != y->kind || std::string_view(x->name()) != y->name()) return false;
        if (x->kind == env::Kind::data && std::string_view(x->text) != y->text) return false;
        const env::ElementList *below = children_of(x), *other = children_of(y);
        if ((below && below->count) != (other && other->count)) return false;
        if (below && other && !same(*below, *other)) return false;
    }
    return !x && !y;
}

// Whether the written line reads as it is. Folding puts a character at the beginning of a line, where ";"
// makes a comment, and a backslash at the end, where spaces and another may stand before it.
bool survives(const std::string& line, std::size_t level) {
    if (line.find_first_of("\n\\") != std::string::npos) return false;
    for (std::size_t i = 0; i < line.size(); ++i)
        if ((i + level) % 60 == 0 && line[i] == ';') return false;
    return true;
}

bool can_be_written(const env::ElementList& list, std::size_t level) {
    for (const env::Element* element = list.first; element; element = element->next) {
        const std::string name = element->name();
        if (level == 1) {
            if (!survives("[" + name + "]", level)) return false;
        } else if (name.empty()) {
            return false;
        } else if (element->kind == env::Kind::data) {
            if (!survives(name + " =" + element->text, level)) return false;
        } else if (!survives(name + " ={", level)) {
            return false;
        }
        if (const env::ElementList* children = children_of(element);
            children && !can_be_written(*children, level + 2))
            return false;
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const Env by_callback, by_file, again;
    const EnvStatus status = read(by_callback, text_mode(bytes));
    // In pieces of a few bytes, so that everything happens where two meet.
    require(read_file(by_file, bytes, 1 + size % 7) == status);
    require(status == ENV_OK || status == ENV_SYNTAX);
    const env::ElementList& top = by_callback->tree().top();
    require(same(top, by_file->tree().top()));
    const std::string text = written(by_callback);
    require(text == written(by_file));
    if (can_be_written(top, 1)) {
        require(read(again, text) == ENV_OK);
        require(same(top, again->tree().top()));
    }
    seams::take_messages();
    return 0;
}
