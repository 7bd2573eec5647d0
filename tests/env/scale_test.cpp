// Large trees: deep ones must not use up the stack, and the time for broad ones must grow with their size.
#include "tests/env/store.h"

#include <algorithm>
#include <chrono>

namespace {

double seconds(void (*work)(long), long count) {
    const auto start = std::chrono::steady_clock::now();
    work(count);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void BVUTIL_CALL count_visit(EnvHandle, const char*, const char*, void* count) {
    ++*static_cast<long*>(count);
}

std::string path_of(const char* name, long occurrence) {
    return std::string(name).append("@").append(std::to_string(occurrence));
}

TEST(Scale, HoldsDeepTrees) {
    constexpr std::size_t depth = 200000;
    std::string text = "[S]\n", path;
    for (std::size_t i = 0; i < depth; ++i) {
        text += "b={\n";
        path += i ? "@b" : "b";
    }
    text += "v=7\n";
    for (std::size_t i = 0; i < depth; ++i)
        text += "}\n";
    const Env env;
    ASSERT_EQ(read_text(env, text), ENV_OK);
    EXPECT_EQ(text_at(env, "S", (path + "@v").c_str()), "7");
    EXPECT_EQ(text_at(env, "S", "v", 0), "7");
    {
        // From within: the paths that a walk from the top hands out grow with every level.
        const Env sub(env, "S", path.c_str());
        const Env copy;
        EXPECT_EQ(env_sink(copy, sub, 2), ENV_INVALID); // no section to copy to
        EXPECT_EQ(env_put(copy, "S", path.c_str(), "deep"), ENV_OK);
        EXPECT_EQ(env_copy_block(copy, env, "S", path.c_str(), 2), ENV_OK);
        EXPECT_EQ(text_at(copy, "S", (path + "@v").c_str()), "7");
    }
    EXPECT_EQ(env_delete(env, "S", "b@b"), ENV_OK);
    EXPECT_EQ(written(env), "[S]\n  b ={\n  }\n");
}

void different_names(long count) {
    const Env env;
    for (long i = 0; i < count; ++i)
        env_put(env, "S", std::string("n").append(std::to_string(i)).c_str(), "value");
    long found = 0, value = 0;
    for (long i = 0; i < count; ++i)
        found += env_exist_data(env, "S", std::string("n").append(std::to_string(i)).c_str(), 1);
    EXPECT_EQ(found, count);
    char name[16], text[16];
    found = 0;
    EnvStatus kind =
        env_get_first(env, "S", nullptr, 1, nullptr, sizeof name, name, sizeof text, text, &value);
    for (; kind == ENV_IS_DATA; kind = env_get_next(sizeof name, name, sizeof text, text, &value))
        ++found;
    EXPECT_EQ(found, count);
    found = 0;
    EXPECT_EQ(env_traverse(env, "S", nullptr, 1, count_visit, &found), ENV_OK);
    EXPECT_EQ(env_traverse_leafs(env, count_visit, &found), ENV_OK);
    EXPECT_EQ(found, 2 * count);
    std::vector<char> names(static_cast<std::size_t>(count) * 8);
    EXPECT_EQ(env_list_elem_names(env, "S", nullptr, 1, ';', static_cast<long>(names.size()), names.data()),
              ENV_OK);
    const Env copy;
    EXPECT_EQ(env_sink(copy, env, 0), ENV_OK);
    EXPECT_EQ(env_sink(copy, env, 1), ENV_OK);
    EXPECT_EQ(env_count_elements(copy, "S", nullptr, 1), 2 * count);
}

void one_name(long count, bool from_the_back) {
    const Env env;
    for (long i = 1; i <= count; ++i)
        env_put(env, "S", path_of("n", i).c_str(), "value");
    long found = 0;
    for (long i = 1; i <= count; ++i)
        found += env_exist_data(env, "S", path_of("n", i).c_str(), 1);
    EXPECT_EQ(found, count);
    for (long i = count; i >= 1; --i)
        found -= env_delete(env, "S", path_of("n", from_the_back ? i : 1).c_str()) == ENV_OK;
    EXPECT_EQ(found, 0);
    EXPECT_EQ(env_count_elements(env, "S", nullptr, 1), 0);
}

// Going through a list by position or occurrence, every other element is deleted, or gets one in front.
void changed_on_the_way(long count) {
    const Env env;
    for (long i = 1; i <= count; ++i) {
        env_put(env, "S", path_of("n", i).c_str(), "value");
        env_put(env, "T", std::string("n").append(std::to_string(i)).c_str(), "value");
    }
    long pos = 1;
    const char* name = "";
    for (long i = 0; i < count; ++i, ++pos) {
        env_get_core(env, "T", nullptr, 1, pos, nullptr, &name, nullptr, nullptr);
        if (i % 3 == 0) {
            env_delete(env, "T", name);
            --pos;
        } else {
            env_insert_before(env, "T", name, "new");
            ++pos;
        }
        env_delete(env, "S", path_of("n", 1 + i / 2).c_str());
    }
    EXPECT_EQ(env_count_elements(env, "T", nullptr, 1), pos - 1);
    EXPECT_EQ(env_get_core(env, "T", nullptr, 1, pos - 1, nullptr, &name, nullptr, nullptr), ENV_IS_DATA);
    EXPECT_EQ(name, std::string("n").append(std::to_string(count - 1))); // the last is deleted
}

TEST(Scale, GrowsWithTheSize) {
    const struct {
        const char* name;
        void (*work)(long);
    } cases[] = {
        {"different names", different_names},
        {"changed on the way", changed_on_the_way},
        {"one name, deleted from the front", [](long count) { one_name(count, false); }},
        {"one name, deleted from the back", [](long count) { one_name(count, true); }},
    };
    for (const auto& [name, work] : cases) {
        double small = 1e9;
        for (int i = 0; i < 3; ++i)
            small = std::min(small, seconds(work, 10000));
        // Quadratic growth would be a hundred times; a busy machine gets another chance.
        const double allowed = 40 * small + 0.2;
        double large = 1e9;
        for (int i = 0; i < 3 && large > allowed; ++i)
            large = std::min(large, seconds(work, 100000));
        EXPECT_LE(large, allowed) << name;
    }
}

} // namespace
