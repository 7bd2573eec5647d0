// Texts into a store and out of it.
#pragma once

#include "bvutil/env.h"

#include <cstddef>
#include <string>
#include <string_view>

// A text handed out one character at a time.
struct CharSource {
    std::string_view text;
    std::size_t at = 0;
    static int BVUTIL_CALL next(void* self) {
        auto& source = *static_cast<CharSource*>(self);
        return source.at < source.text.size() ? static_cast<signed char>(source.text[source.at++]) : -1;
    }
};

inline EnvStatus read_text(EnvHandle env, std::string_view text) {
    CharSource source{text};
    return env_read(CharSource::next, &source, env);
}

inline std::string written(EnvHandle env) {
    std::string text;
    const auto append = [](int c, void* sink) { *static_cast<std::string*>(sink) += static_cast<char>(c); };
    env_write(append, &text, env);
    return text;
}
