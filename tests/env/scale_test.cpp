// Large trees: deep ones must not use up the stack, and the time for broad ones must grow with their size.
#include "tests/env/store.h"

#include <algorithm>
#include <ctime>
#ifdef _WIN32
#include "bench/bench.h"
#endif

namespace {

// Processor time, which other programs of the machine do not lengthen much.
double seconds() {
#ifdef _WIN32
    return bench::now_ms() / 1000; // the runtime's clock is one of the time that passes
#else
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
#endif
}

double seconds(void (*work)(long), long count) {
    const double start = seconds();
    work(count);
    return seconds() - start;
}

void BVUTIL_CALL count_visit(EnvHandle, const char*, const char*, void* count) {
    ++*static_cast<long*>(count);
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
    const Env env, copy;
    ASSERT_EQ(read_text(env, text), ENV_OK);
    EXPECT_EQ(text_at(env, "S", (path + "@v").c_str()), "7");
    EXPECT_EQ(text_at(env, "S", "v", 0), "7");
    EXPECT_EQ(env_put(copy, "S", path.c_str(), "deep"), ENV_OK);
    EXPECT_EQ(env_copy_block(copy, env, "S", path.c_str(), 2), ENV_OK);
    EXPECT_EQ(text_at(copy, "S", (path + "@v").c_str()), "7");
    EXPECT_EQ(env_delete(env, "S", "b@b"), ENV_OK);
    EXPECT_EQ(written(env), "[S]\n  b ={\n  }\n");
}

void different_names(long count) {
    const Env env, copy;
    for (long i = 0; i < count; ++i)
        env_put(env, "S", numbered("n", i).c_str(), "value");
    long found = 0, value = 0;
    for (long i = 0; i < count; ++i)
        found += env_exist_data(env, "S", numbered("n", i).c_str(), 1);
    char name[16], text[16];
    EnvStatus kind = env_get_first(env, "S", nullptr, 1, nullptr, 16, name, 16, text, &value);
    for (; kind == ENV_IS_DATA; kind = env_get_next(16, name, 16, text, &value))
        ++found;
    EXPECT_EQ(env_traverse(env, "S", nullptr, 1, count_visit, &found), ENV_OK);
    EXPECT_EQ(env_traverse_leafs(env, count_visit, &found), ENV_OK);
    EXPECT_EQ(found, 4 * count);
    std::vector<char> names(static_cast<std::size_t>(count) * 8);
    EXPECT_EQ(env_list_elem_names(env, "S", nullptr, 1, ';', 8 * count, names.data()), ENV_OK);
    for (const int mode : {0, 1})
        EXPECT_EQ(env_sink(copy, env, mode), ENV_OK);
    EXPECT_EQ(env_count_elements(copy, "S", nullptr, 1), 2 * count);
}

template <bool from_the_back>
void one_name(long count) {
    const Env env;
    long found = 0;
    for (long i = 1; i <= count; ++i)
        env_put(env, "S", numbered("n@", i).c_str(), "value");
    for (long i = 1; i <= count; ++i)
        found += env_exist_data(env, "S", numbered("n@", i).c_str(), 1);
    for (long i = count; i >= 1; --i)
        found += env_delete(env, "S", numbered("n@", from_the_back ? i : 1).c_str()) == ENV_OK;
    EXPECT_EQ(found, 2 * count);
    EXPECT_EQ(env_count_elements(env, "S", nullptr, 1), 0);
}

// Going through a list by position or occurrence, every other element is deleted, or gets one in front.
void changed_on_the_way(long count) {
    const Env env;
    for (long i = 1; i <= count; ++i) {
        env_put(env, "S", numbered("n@", i).c_str(), "value");
        env_put(env, "T", numbered("n", i).c_str(), "value");
    }
    const auto name_at = [&](long pos) {
        const char* name = "";
        env_get_core(env, "T", nullptr, 1, pos, nullptr, &name, nullptr, nullptr);
        return name;
    };
    long pos = 1;
    for (long i = 0; i < count; ++i, ++pos) {
        if (i % 3 == 0)
            env_delete(env, "T", name_at(pos--));
        else
            env_insert_before(env, "T", name_at(pos++), "new");
        env_delete(env, "S", numbered("n@", 1 + i / 2).c_str());
    }
    EXPECT_EQ(env_count_elements(env, "T", nullptr, 1), pos - 1);
    EXPECT_EQ(name_at(pos - 1), numbered("n", count - 1)); // the last is deleted
}

// A visitor reads another of the elements of one name.
void read_on_the_way(long count) {
    const Env env;
    for (long i = 1; i <= count; ++i)
        env_put(env, "S", numbered("n@", i).c_str(), "value");
    const auto read = [](EnvHandle, const char*, const char*, void* main) {
        EXPECT_EQ(env_exist_data(static_cast<EnvHandle>(main), "S", "n@5", 1), 1);
    };
    EXPECT_EQ(env_traverse(env, "S", nullptr, 1, read, static_cast<EnvHandle>(env)), ENV_OK);
}

void one_long_text(long count) {
    const ScratchFile file;
    const Env env;
    file.write("[S]\na =" + std::string(static_cast<std::size_t>(count) * 320, 't') + "\n");
    EXPECT_EQ(env_read_file(file.path().c_str(), env), ENV_OK);
}

TEST(Scale, GrowsWithTheSize) {
    const std::pair<const char*, void (*)(long)> works[] = {
        {"different names", different_names},        {"changed on the way", changed_on_the_way},
        {"read on the way", read_on_the_way},        {"one name", one_name<false>},
        {"one name, from the back", one_name<true>}, {"one long text", one_long_text}};
    for (const auto& [name, work] : works) {
        double small = 1e9, large = 1e9;
        for (int i = 0; i < 3; ++i)
            small = std::min(small, seconds(work, 10000));
        // Quadratic growth would be a hundred times; a busy machine gets more chances.
        const double allowed = 40 * small + 0.2;
        for (int i = 0; i < 6 && large > allowed; ++i)
            large = std::min(large, seconds(work, 100000));
        EXPECT_LE(large, allowed) << name;
    }
}

} // namespace
