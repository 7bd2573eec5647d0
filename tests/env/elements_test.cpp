// Environments, sub-environments, and what every call does without one.
#include "tests/env/store.h"

namespace {

constexpr const char* sample = "[S]\n a =1\n b ={\n  c =2\n  c =33\n }\n e ={\n }\n[T]\n x =9\n";

TEST(EnvClose, IsRefusedWhileSomethingRefersToTheHandle) {
    const EnvHandle base = env_open(1, nullptr), layer = env_open(2, base), top = env_open(3, layer);
    ASSERT_EQ(read_text(layer, sample), ENV_OK);
    const EnvHandle sub = env_open_subenv(layer, "S", "b", 1), inner = env_open_subenv(sub, nullptr, "c", 1);
    for (const EnvHandle busy : {base, layer, sub})
        EXPECT_EQ(env_close(busy, 1), ENV_BUSY);
    EXPECT_EQ(env_close(inner, 1), ENV_OK); // the chain of a sub-environment is not closed
    EXPECT_EQ(env_close(sub, 1), ENV_OK);
    EXPECT_EQ(text_at(layer, "S", "b@c@2"), "33"); // everything is intact
    const EnvHandle other = env_open(4, layer);
    EXPECT_EQ(env_close(top, 1), ENV_BUSY); // closed itself, but not the shared fallback
    EXPECT_EQ(env_close(other, 1), ENV_OK); // all; leak checkers see the rest
}

// A call of any export on a null handle; its other arguments are memory, and ones.
template <class T>
T any() {
    static char memory[64];
    if constexpr (std::is_pointer_v<T>)
        return reinterpret_cast<T>(memory);
    else
        return T{1};
}
template <class Result, class... Arguments>
std::string without_handle(Result(BVUTIL_CALL* call)(EnvHandle, Arguments...)) {
    if constexpr (std::is_pointer_v<Result>)
        return call(nullptr, any<Arguments>()...) ? "a handle" : "null";
    else
        return std::to_string(call(nullptr, any<Arguments>()...));
}

TEST(NullHandle, IsReportedAndGivesTheFailure) {
    Messages messages;
    const auto expect = [&](const std::vector<std::string>& results, const char* failure) {
        for (const std::string& result : results)
            EXPECT_EQ(result, failure) << &result - results.data();
        EXPECT_EQ(messages.take(), Texts(results.size(), "Nil parametr")) << failure;
    };
    const auto call = [](const auto& each) { return without_handle(each); };
    expect({call(env_close),          call(env_check),
            call(env_delete),         call(env_insert_before),
            call(env_get_pos),        call(env_get_first),
            call(env_get_core),       call(env_get),
            call(env_get_reference),  call(env_get_string),
            call(env_get_long),       call(env_get_double),
            call(env_get_longs),      call(env_get_doubles),
            call(env_get_strings),    call(env_get_external),
            call(env_put_core),       call(env_put),
            call(env_put_string),     call(env_put_external),
            call(env_put_long),       call(env_put_double),
            call(env_put_longs),      call(env_put_doubles),
            call(env_put_strings),    call(env_count_elements),
            call(env_count_path),     call(env_traverse),
            call(env_traverse_leafs), call(env_list_elem_names),
            call(env_sink),           call(env_copy_block)},
           "-10");
    expect({call(env_exist), call(env_exist_block), call(env_exist_data), call(env_exist_external),
            call(env_data_length)},
           "0");
    expect({call(env_open_subenv), call(env_create_subenv)}, "null");
    const Env env;
    EXPECT_EQ(env_sink(env, nullptr, 0), ENV_INVALID);
    EXPECT_EQ(env_copy_block(env, nullptr, "S", "p", 0), ENV_INVALID);
    EXPECT_EQ(env_put_format(nullptr, "S", "p", "t"), ENV_INVALID);
    EXPECT_EQ(read_text(nullptr, ""), ENV_INVALID);
    EXPECT_EQ(env_read_file("no file", nullptr), ENV_INVALID);
    EXPECT_EQ(written(nullptr), "");
    env_write_file("no/such/folder/x.txt", nullptr);
    EXPECT_EQ(messages.take(), Texts(7, "Nil parametr"));
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

// Kept: callers rely on these.
TEST(Elements, AreThereOrNotAsStated) {
    const Env env;
    EXPECT_EQ(env_check(env, nullptr, nullptr, 0), ENV_NOT_FOUND);
    EXPECT_EQ(env_insert_before(env, "S", nullptr, "R"), ENV_NOT_FOUND); // no section at all
    read_text(env, sample);
    EXPECT_EQ(env_check(env, nullptr, nullptr, 0), ENV_IS_BLOCK);
    EXPECT_EQ(env_insert_before(env, "U", nullptr, "R"), ENV_OK); // swallowed, and nothing is inserted
    EXPECT_EQ(env_count_elements(env, nullptr, nullptr, 1), 2);
    EXPECT_EQ(env_check(env, "S", "e", 1), ENV_IS_BLOCK);
    EXPECT_EQ(env_check(Env(env, "S", "e"), nullptr, nullptr, 1), ENV_NOT_FOUND); // empty: counts as absent
    env_insert_before(Env(env, "T"), nullptr, nullptr, "outside");                // an external section
    EXPECT_EQ(env_check(env, "outside", nullptr, 1), ENV_IS_BLOCK);               // whatever its kind
    EXPECT_EQ(env_check(Env(env, "outside"), nullptr, nullptr, 1), ENV_IS_EXTERNAL);
}

} // namespace
