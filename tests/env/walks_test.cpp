// Walks, name lists and copies, beside what is held against the model.
#include "tests/env/store.h"

#include <functional>

namespace {

// What a walk hands out, one line each: section:path=text or status.
struct Visits {
    Texts lines;
    std::function<void(const char* section, const char* path)> also = {};

    static void BVUTIL_CALL visit(EnvHandle sub, const char* section, const char* path, void* self) {
        auto& visits = *static_cast<Visits*>(self);
        visits.lines.push_back(std::string(section ? section : "-") + ":" + (path ? path : "-") + "=" +
                               (sub ? text_at(sub, nullptr, nullptr) : "null"));
        if (visits.also) visits.also(section, path);
    }
    EnvStatus over(EnvHandle env, const char* section, const char* path = nullptr) {
        lines.clear();
        return env_traverse(env, section, path, 1, visit, this);
    }
};

TEST(Traverse, SurvivesWhatTheCallbackDeletes) {
    const Env env;
    Visits visits;
    // Everything, one after the other, over short and long lists and over sections.
    visits.also = [&](const char* section, const char* path) { env_delete(env, section, path); };
    for (const int count : {3, 100}) {
        read_text(env, "");
        for (int i = 1; i <= count; ++i) {
            env_put(env, "S", numbered("n@", i).c_str(), "t");
            env_put(env, numbered("T", i).c_str(), nullptr, "");
        }
        EXPECT_EQ(visits.over(env, "S"), ENV_OK);
        EXPECT_EQ(visits.lines, Texts(static_cast<std::size_t>(count), "S:n@1=t"));
        EXPECT_EQ(visits.over(env, nullptr), ENV_OK);
        EXPECT_EQ(env_count_elements(env, nullptr, nullptr, 1), 0);
    }
}

TEST(Traverse, HandsOutNothingWhereANameHoldsTheDelimiter) {
    Messages messages;
    const Env env;
    read_text(env, "[S]\na =1\nb ={\n a@2 =odd\n a =1\n}\nf@9 =odd\n[T]\ng =4\n");
    Visits visits;
    EXPECT_EQ(visits.over(env, "S", "b"), ENV_OK);
    EXPECT_EQ(visits.lines, (Texts{"S:b@a@2@1=null", "S:b@a@1=1"})); // a child '1' of the second 'a'
    EXPECT_EQ(messages.take(), Texts{"Nil parametr"});               // closing what was not opened
    visits.lines.clear();
    EXPECT_EQ(env_traverse_leafs(env, Visits::visit, &visits), ENV_INVALID);
    EXPECT_EQ(visits.lines, Texts{"S:a@1=1"}); // the rest is passed over
    EXPECT_EQ(messages.take(), (Texts{"Nil parametr", "switch error!", "Nil parametr", "Nil parametr"}));
    EXPECT_EQ(visits.over(env, "S", "@"), ENV_BAD_PATH);
    EXPECT_EQ(messages.take(), Texts{"Bad Path was given"});
    EXPECT_EQ(visits.over(env, "nowhere"), -2); // kept: not -4
}

TEST(ListNames, FitsExactlyOrIsEmptied) {
    Messages messages;
    const Env env;
    read_text(env, "[S]\nl ={\n a =1\n b ={\n }\n a =2\n}\nd =x\n");
    const struct {
        const char *section, *path;
        long size;
        EnvStatus status;
        const char* names;
    } cases[] = {
        {"S", "l", 8, ENV_OK, "a;b;a;"}, // used 4 + 1 + 2 is below 8
        {"S", "l", 7, ENV_TOO_SMALL, ""},
        {"S", "l", 2, ENV_TOO_SMALL, ""},
        {"S", "l", 1, ENV_TOO_SMALL, "kept"},
        {"S", "l", -1, ENV_TOO_SMALL, "kept"},
        {"S", "l@b", 2, ENV_OK, ""},
        {"S", "d", 64, -2, ""},
        {"S", "b", 64, -2, ""}, // not there; -4 is not told
        {"S", "@", 64, ENV_BAD_PATH, ""},
        {nullptr, nullptr, 64, ENV_INVALID, ""},
    };
    for (const auto& [section, path, size, status, names] : cases) {
        char buf[64] = "kept";
        EXPECT_EQ(env_list_elem_names(env, section, path, 1, ';', size, buf), status) << size;
        EXPECT_STREQ(buf, names) << size;
    }
    EXPECT_EQ(messages.take(), (Texts{"Bad Path was given", "bypass Nil section"}));
    char buf[] = "kept", deeper[2];
    EXPECT_EQ(env_list_elem_names(env, "S", "b", 0, ';', 2, deeper), ENV_OK);
    EXPECT_EQ(env_list_elem_names(nullptr, "S", "l", 1, ';', 4, buf), ENV_INVALID);
    EXPECT_STREQ(buf, "");
    EXPECT_EQ(env_list_elem_names(env, "S", "l", 1, ';', 64, nullptr), ENV_INVALID);
}

TEST(Sink, FailsForABadModeAndWithNothingToWalk) {
    Messages messages;
    const Env dst, src;
    EXPECT_EQ(env_sink(dst, src, 2), ENV_INVALID);
    read_text(src, "[S]\na =1\nb =2\n");
    for (const int mode : {4, -1})
        EXPECT_EQ(env_sink(dst, src, mode), ENV_INVALID);
    EXPECT_EQ(messages.take(), Texts(2, "switch error!"));
    // Leaves of a sub-environment come without a section: only externals, which are passed over, need none.
    env_put_external(src, "T", "x", 1);
    const Env sub(src, "T");
    for (const int mode : {0, 1, 2, 3})
        EXPECT_EQ(env_sink(dst, sub, mode), ENV_OK) << mode;
    env_put(src, "T", "a", "1");
    for (const int mode : {0, 1, 2})
        EXPECT_EQ(env_sink(dst, sub, mode), ENV_INVALID) << mode;
    EXPECT_EQ(written(dst), "");
}

// Occurrence numbers are no numbers then.
TEST(Sink, FollowsThePathsThatADigitSplits) {
    const Env dst, src;
    for (int i = 1; i <= 10; ++i)
        env_put(src, "S", numbered("x@", i).c_str(), numbered("v", i).c_str());
    env_set_delimiter("9");
    EXPECT_EQ(env_sink(dst, src, 2), ENV_OK);
    env_set_delimiter("@");
    EXPECT_EQ(text_at(dst, "S", "x@8") + text_at(dst, "S", "x@9") + text_at(dst, "S", "x@10"), "v8v10");
}

TEST(Sink, CopiesTextsOf254BytesAndStopsAtLongerOnes) {
    const Env dst, src;
    const std::string longest(254, 't');
    read_text(src, "[S]\na =" + longest + "\nb =" + longest + "t\nc =3\n");
    EXPECT_EQ(env_sink(dst, src, 2), ENV_INVALID);
    EXPECT_EQ(text_at(dst, "S", "a"), longest);
    EXPECT_EQ(env_count_elements(dst, "S", nullptr, 1), 1);
    // What is not to be copied does not fail.
    env_put(dst, "S", "b", "kept");
    EXPECT_EQ(env_sink(dst, src, 0), ENV_OK);
    EXPECT_EQ(text_at(dst, "S", "b") + text_at(dst, "S", "c"), "kept3");
}

} // namespace
