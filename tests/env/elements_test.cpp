// Environments, sub-environments, and the operations on whole elements.
#include "tests/env/store.h"

#include <functional>

namespace {

constexpr const char* sample = "[S]\n a =1\n b ={\n  c =2\n  c =33\n }\n e ={\n }\n[T]\n x =9\n";

TEST(EnvClose, IsRefusedWhileSomethingRefersToTheHandle) {
    const EnvHandle base = env_open(1, nullptr), layer = env_open(2, base);
    ASSERT_EQ(read_text(layer, sample), ENV_OK);
    const EnvHandle sub = env_open_subenv(layer, "S", "b", 1), inner = env_open_subenv(sub, nullptr, "c", 1);
    EXPECT_EQ(env_close(base, 1), ENV_BUSY);
    EXPECT_EQ(env_close(layer, 1), ENV_BUSY);
    EXPECT_EQ(env_close(sub, 0), ENV_BUSY);
    EXPECT_EQ(text_at(layer, "S", "a"), "1"); // everything is intact
    EXPECT_EQ(env_close(inner, 1), ENV_OK);   // the chain of a sub-environment is not closed
    EXPECT_EQ(env_close(sub, 1), ENV_OK);
    EXPECT_EQ(text_at(layer, "S", "b@c@2"), "33");
    EXPECT_EQ(env_close(layer, 0), ENV_OK);
    EXPECT_EQ(env_close(base, 0), ENV_OK);
}

TEST(EnvClose, ClosesAChainFromTheTop) {
    const EnvHandle bottom = env_open(1, nullptr);
    EXPECT_EQ(env_close(env_open(3, env_open(2, bottom)), 1), ENV_OK); // leak checkers see the rest
    const EnvHandle shared = env_open(1, nullptr), other = env_open(2, shared);
    EXPECT_EQ(env_close(env_open(3, shared), 1), ENV_BUSY); // closed itself, but not the shared fallback
    EXPECT_EQ(env_close(shared, 0), ENV_BUSY);
    EXPECT_EQ(env_close(other, 1), ENV_OK);
}

TEST(NullHandle, IsReportedAndGivesTheFailure) {
    Messages messages;
    char buf[8];
    char* item = buf;
    long number = 0;
    double real = 0;
    const char* text = "";
    const auto visit = [](EnvHandle, const char*, const char*, void*) {};
    const Env env;
    const std::vector<std::function<long()>> calls = {
        [] { return env_close(nullptr, 0); },
        [] { return env_open_subenv(nullptr, "S", "p", 1) ? 0 : ENV_INVALID; },
        [] { return env_create_subenv(nullptr, "S", "p") ? 0 : ENV_INVALID; },
        [] { return env_check(nullptr, "S", "p", 1); },
        [] { return env_exist(nullptr, "S", "p", 1) ? 0 : ENV_INVALID; },
        [] { return env_exist_block(nullptr, "S", "p", 1) ? 0 : ENV_INVALID; },
        [] { return env_exist_data(nullptr, "S", "p", 1) ? 0 : ENV_INVALID; },
        [] { return env_exist_external(nullptr, "S", "p", 1) ? 0 : ENV_INVALID; },
        [] { return env_delete(nullptr, "S", "p"); },
        [] { return env_insert_before(nullptr, "S", "p", "n"); },
        [] { return env_count_elements(nullptr, "S", "p", 1); },
        [] { return env_data_length(nullptr, "S", "p", 1) ? 0 : ENV_INVALID; },
        [] { return env_count_path(nullptr, "S", "p", 1); },
        [&] { return env_get_pos(nullptr, "S", "p", 1, 1, &number, 8, buf, 8, buf, &number); },
        [&] { return env_get_first(nullptr, "S", "p", 1, &number, 8, buf, 8, buf, &number); },
        [&] { return env_get_core(nullptr, "S", "p", 1, 0, &number, &text, &text, &number); },
        [&] { return env_get(nullptr, "S", "p", 1, 8, buf); },
        [&] { return env_get_reference(nullptr, "S", "p", 1, &text); },
        [&] { return env_get_string(nullptr, "S", "p", 1, 8, buf); },
        [&] { return env_get_long(nullptr, "S", "p", 1, &number); },
        [&] { return env_get_double(nullptr, "S", "p", 1, &real); },
        [&] { return env_get_longs(nullptr, "S", "p", 1, &(number = 1), &number); },
        [&] { return env_get_doubles(nullptr, "S", "p", 1, &(number = 1), &real); },
        [&] { return env_get_strings(nullptr, "S", "p", 1, &(number = 1), 8, &item); },
        [&] { return env_get_external(nullptr, "S", "p", 1, &number); },
        [] { return env_put_core(nullptr, "S", "p", "t", 0); },
        [] { return env_put(nullptr, "S", "p", "t"); },
        [] { return env_put_string(nullptr, "S", "p", "t"); },
        [] { return env_put_external(nullptr, "S", "p", 1); },
        [] { return env_put_long(nullptr, "S", "p", 1); },
        [] { return env_put_double(nullptr, "S", "p", 1); },
        [] { return env_put_format(nullptr, "S", "p", "t"); },
        [&] { return env_put_longs(nullptr, "S", "p", 1, &number); },
        [&] { return env_put_doubles(nullptr, "S", "p", 1, &real); },
        [&] { return env_put_strings(nullptr, "S", "p", 1, &text); },
        [] { return read_text(nullptr, ""); },
        [] { return written(nullptr).empty() ? ENV_INVALID : 0; },
        [&] { return env_traverse(nullptr, "S", "p", 1, visit, nullptr); },
        [&] { return env_traverse_leafs(nullptr, visit, nullptr); },
        [&] { return env_list_elem_names(nullptr, "S", "p", 1, ';', 8, buf); },
        [&] { return env_sink(nullptr, env, 0); },
        [&] { return env_sink(env, nullptr, 0); },
        [&] { return env_copy_block(nullptr, env, "S", "p", 0); },
        [&] { return env_copy_block(env, nullptr, "S", "p", 0); },
    };
    for (std::size_t i = 0; i < calls.size(); ++i) {
        EXPECT_EQ(calls[i](), ENV_INVALID) << i;
        EXPECT_EQ(messages.take(), Texts{"Nil parametr"}) << i;
    }
}

TEST(EnvCheck, TellsWhatIsThere) {
    Messages messages;
    const Env env;
    EXPECT_EQ(env_check(env, nullptr, nullptr, 0), ENV_NOT_FOUND);
    ASSERT_EQ(read_text(env, sample), ENV_OK);
    env_put_external(env, "S", "x", 5);
    const Env empty(env, "S", "e"), full(env, "S", "b"), data(env, "S", "a"), external(env, "S", "x");
    const Env top_data(env, "T");
    ASSERT_EQ(env_put(top_data, nullptr, nullptr, "a section that is data"), ENV_OK);
    const struct {
        EnvHandle env;
        const char *section, *path;
        EnvStatus status;
    } cases[] = {
        {env, nullptr, nullptr, ENV_IS_BLOCK}, // the whole top level
        {env, nullptr, "a", ENV_IS_BLOCK},
        {env, "S", nullptr, ENV_IS_BLOCK},
        {env, "T", nullptr, ENV_IS_BLOCK}, // whatever its kind
        {env, "U", nullptr, ENV_NOT_FOUND},
        {env, "s", nullptr, ENV_NOT_FOUND}, // case counts
        {env, "S", "a", ENV_IS_DATA},
        {env, "S", "b", ENV_IS_BLOCK},
        {env, "S", "e", ENV_IS_BLOCK}, // empty, but addressed by a path
        {env, "S", "x", ENV_IS_EXTERNAL},
        {env, "S", "y", ENV_NOT_FOUND},
        {env, "S", "a@c", ENV_NOT_FOUND}, // below data
        {env, "S", "@", ENV_NOT_FOUND},   // anything else
        {empty, nullptr, nullptr, ENV_NOT_FOUND},
        {full, "ignored", nullptr, ENV_IS_BLOCK},
        {full, "ignored", "c@2", ENV_IS_DATA},
        {data, nullptr, nullptr, ENV_IS_DATA},
        {external, nullptr, nullptr, ENV_IS_EXTERNAL},
        {top_data, nullptr, nullptr, ENV_IS_DATA},
    };
    for (const auto& [handle, section, path, status] : cases) {
        SCOPED_TRACE((section ? section : "null") + std::string(" ") + (path ? path : "null"));
        EXPECT_EQ(env_check(handle, section, path, 1), status);
        EXPECT_EQ(env_exist(handle, section, path, 1), status != ENV_NOT_FOUND);
        EXPECT_EQ(env_exist_block(handle, section, path, 1), status == ENV_IS_BLOCK);
        EXPECT_EQ(env_exist_data(handle, section, path, 1), status == ENV_IS_DATA);
        EXPECT_EQ(env_exist_external(handle, section, path, 1), status == ENV_IS_EXTERNAL);
    }
    EXPECT_EQ(messages.take(), Texts(5, "Bad Path was given"));
    EXPECT_EQ(env_check(env, "S", "c", 0), ENV_IS_DATA); // at any depth
    EXPECT_EQ(env_check(env, "S", "c", 1), ENV_NOT_FOUND);
}

TEST(EnvOpenSubenv, OutlivesItsElement) {
    const Env env;
    read_text(env, sample);
    const Env on_section(env, "S"), on_block(on_section, nullptr, "b"), on_leaf(on_block, nullptr, "c@2");
    EXPECT_EQ(env_delete(env, "S", "b"), ENV_OK);
    EXPECT_EQ(env_check(on_leaf, nullptr, nullptr, 1), ENV_NOT_FOUND);
    EXPECT_EQ(env_put(on_block, nullptr, "c", "new"), ENV_INVALID);
    EXPECT_EQ(env_count_elements(on_block, nullptr, nullptr, 1), 0);
    read_text(env, sample); // replaces all sections
    EXPECT_EQ(env_check(on_section, nullptr, "a", 1), ENV_NOT_FOUND);
    EXPECT_EQ(env_open_subenv(on_section, nullptr, nullptr, 1), nullptr);
}

TEST(EnvDelete, TakesTheElementAndItsSubtree) {
    Messages messages;
    const Env env;
    read_text(env, sample);
    const Env sub(env, "S", "b");
    const struct {
        EnvHandle env;
        const char *section, *path;
        EnvStatus status;
    } cases[] = {
        {env, "S", "c", ENV_NOT_FOUND}, // walks exactly
        {env, "U", "a", ENV_NOT_FOUND},
        {env, "U", nullptr, ENV_NOT_FOUND},
        {env, "S", "@@", ENV_BAD_PATH},
        {env, nullptr, "a", ENV_INVALID},
        {sub, nullptr, nullptr, ENV_INVALID},
        {sub, nullptr, "c@1", ENV_OK},
        {env, "S", "a", ENV_OK},
        {env, "T", nullptr, ENV_OK},
    };
    for (const auto& [handle, section, path, status] : cases)
        EXPECT_EQ(env_delete(handle, section, path), status) << (path ? path : "null");
    EXPECT_EQ(messages.take(), (Texts{"Bad Path was given", "bypass Nil section"}));
    EXPECT_EQ(written(env), "[S]\n  b ={\n    c =33\n  }\n  e ={\n  }\n");
}

TEST(EnvInsertBefore, PutsANewElementInFront) {
    Messages messages;
    const Env env;
    EXPECT_EQ(env_insert_before(env, "S", nullptr, "R"), ENV_NOT_FOUND); // no section at all
    read_text(env, sample);
    EXPECT_EQ(env_insert_before(env, "U", nullptr, "R"), ENV_OK); // swallowed, and nothing is inserted
    EXPECT_EQ(env_count_elements(env, nullptr, nullptr, 1), 2);
    EXPECT_EQ(env_insert_before(env, "S", "nothing", "n"), ENV_NOT_FOUND);
    EXPECT_EQ(env_insert_before(env, "U", "a", "n"), ENV_NOT_FOUND);
    EXPECT_EQ(env_insert_before(env, "S", "@", "n"), ENV_BAD_PATH);
    EXPECT_EQ(env_insert_before(env, nullptr, "a", "n"), ENV_INVALID);
    EXPECT_EQ(env_insert_before(env, "S", "a", nullptr), ENV_INVALID);
    EXPECT_EQ(messages.take(), (Texts{"Bad Path was given", "bypass Nil section"}));

    EXPECT_EQ(env_insert_before(env, "S", nullptr, "R"), ENV_OK);
    EXPECT_EQ(env_insert_before(env, "S", "a", "first"), ENV_OK);
    EXPECT_EQ(env_insert_before(env, "S", "b@c@2", "c"), ENV_OK);
    long value = 5;
    EXPECT_EQ(env_get_external(env, "S", "first", 1, &value), 0);
    EXPECT_EQ(value, 0);
    EXPECT_EQ(text_at(env, "S", "b@c@3"), "33");
    const Env sub(env, "S", "b@c@3"), section(env, "T");
    EXPECT_EQ(env_insert_before(sub, nullptr, nullptr, "n"), ENV_OK);
    EXPECT_EQ(env_insert_before(section, nullptr, nullptr, "outside"), ENV_OK); // an external section
    char names[40];
    EXPECT_EQ(env_list_elem_names(env, "S", "b", 1, ';', sizeof names, names), ENV_OK);
    EXPECT_STREQ(names, "c;c;n;c;");
    std::string order;
    for (long pos = 1;
         env_get_pos(env, nullptr, nullptr, 1, pos, nullptr, 40, names, 0, nullptr, nullptr) < 0 &&
         pos <= env_count_elements(env, nullptr, nullptr, 1);
         ++pos)
        order += std::string(names) + ";";
    EXPECT_EQ(order, "R;S;outside;T;");
    const Env external_section(env, "outside");
    EXPECT_EQ(env_check(external_section, nullptr, nullptr, 1), ENV_IS_EXTERNAL);
    EXPECT_EQ(written(env).substr(0, 8), "[R]\n[S]\n"); // a block, and empty
}

} // namespace
