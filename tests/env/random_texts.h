// What the random operations compare and use: elements and whole trees as texts, places, and arrays' texts.
#pragma once

#include "tests/env/model.h"
#include "tests/env/store.h"

#include <cstdio>
#include <optional>
#include <random>
#include <utility>

using model::NodePtr;
using model::Text;

inline std::string described(EnvStatus kind, const std::string& text, long value) {
    return std::to_string(kind) + (kind == ENV_IS_DATA ? text : std::to_string(value)) + ";";
}

inline std::string described(const NodePtr& node) {
    if (!node) return "nothing;";
    return described(node->kind, node->text, node->kind == ENV_IS_EXTERNAL ? node->value : 0);
}

// What a sub-environment stands on.
inline std::string described(EnvHandle sub) {
    const char* text = "";
    long value = 0;
    if (!sub) return "nothing;";
    const EnvStatus kind = env_get_core(sub, nullptr, nullptr, 1, 0, nullptr, nullptr, &text, &value);
    return kind == ENV_NOT_FOUND ? "nothing;" : described(kind, text, value);
}

// Everything below, in order, as the names lead to it: of sections with one name, to the first.
inline void dump(const model::Handle& env, std::string& out) {
    env.traverse(nullptr, nullptr, true, [&](Text section, Text path, const NodePtr& node) {
        out.append(path ? path : section).append(described(node));
        if (node) dump(env.on(node), out);
        out += "/";
    });
}
inline void BVUTIL_CALL dump_visit(EnvHandle sub, const char* section, const char* path, void* out) {
    static_cast<std::string*>(out)->append(path ? path : section).append(described(sub));
    env_traverse(sub, nullptr, nullptr, 1, dump_visit, out);
    *static_cast<std::string*>(out) += "/";
}

// Where an operation works.
struct Place {
    std::optional<std::string> section_text, path_text;
    Text section() const { return section_text ? section_text->c_str() : nullptr; }
    Text path() const { return path_text ? path_text->c_str() : nullptr; }
};

// The texts of an array that are kept: 1023 bytes of them, with commas between.
inline std::string joined(const std::vector<std::string>& items) {
    std::string text;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (i && text.size() == 1023) break;
        if (i) text += ",";
        if (text.size() + items[i].size() > 1023) break;
        text += items[i];
    }
    return text;
}

inline std::string general(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

// So many longs, doubles or words.
struct RandomArray {
    enum { of_longs, of_doubles, of_words } type;
    std::vector<long> longs;
    std::vector<double> doubles;
    std::vector<std::string> items;

    RandomArray(std::mt19937& random, std::size_t count)
        : type(static_cast<decltype(type)>(random() % 3)), longs(count), doubles(count), items(count) {
        for (std::size_t i = 0; i < count; ++i) {
            longs[i] = static_cast<long>(random() % 2000001) - 1000000;
            doubles[i] = static_cast<double>(longs[i]) / 8;
            items[i] = type == of_words ? "w" + std::to_string(random()) : item(i, longs, doubles);
        }
    }
    std::string item(std::size_t i, const std::vector<long>& whole, const std::vector<double>& real) const {
        return type == of_longs ? std::to_string(whole[i]) : general(real[i]);
    }

    EnvStatus put(EnvHandle env, Text section, Text path) const {
        const auto count = static_cast<long>(items.size());
        if (type == of_longs) return env_put_longs(env, section, path, count, longs.data());
        if (type == of_doubles) return env_put_doubles(env, section, path, count, doubles.data());
        std::vector<Text> words;
        for (const std::string& each : items)
            words.push_back(each.c_str());
        return env_put_strings(env, section, path, count, words.data());
    }

    // Into so much room: the status, and the items read.
    std::pair<EnvStatus, std::vector<std::string>> get(EnvHandle env, Text section, Text path,
                                                       std::size_t room) const {
        constexpr std::size_t size = 12;
        // One more than told: of none, the address would be null.
        std::vector<long> whole(room + 1);
        std::vector<double> real(room + 1);
        std::vector<char> bytes((room + 1) * size);
        std::vector<char*> words;
        for (std::size_t i = 0; i <= room; ++i)
            words.push_back(&bytes[i * size]);
        auto count = static_cast<long>(room);
        const EnvStatus status = type == of_longs ? env_get_longs(env, section, path, 1, &count, whole.data())
                                 : type == of_doubles
                                     ? env_get_doubles(env, section, path, 1, &count, real.data())
                                     : env_get_strings(env, section, path, 1, &count, size, words.data());
        std::vector<std::string> read;
        for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
            read.push_back(type == of_words ? words[i] : item(i, whole, real));
        return {status, read};
    }
};
