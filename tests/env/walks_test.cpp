// Walks, name lists, copies between environments, and places created for sub-environments.
#include "tests/env/store.h"

#include <algorithm>
#include <functional>

namespace {

// What a walk hands out, one line each: section:path=kind or text.
struct Visits {
    Texts lines;
    std::function<void(EnvHandle, const char* section, const char* path)> also;

    static void BVUTIL_CALL visit(EnvHandle sub, const char* section, const char* path, void* self) {
        auto& visits = *static_cast<Visits*>(self);
        std::string line = std::string(section ? section : "-") + ":" + (path ? path : "-") + "=";
        line += sub ? text_at(sub, nullptr, nullptr) : "null";
        visits.lines.push_back(line);
        if (visits.also) visits.also(sub, section, path);
    }
    EnvStatus over(EnvHandle env, const char* section, const char* path = nullptr, int exact = 1) {
        lines.clear();
        return env_traverse(env, section, path, exact, visit, this);
    }
    EnvStatus over_leafs(EnvHandle env) {
        lines.clear();
        return env_traverse_leafs(env, visit, this);
    }
};

constexpr const char* drawing = "[view]\nscale =100\nlayers ={\n name =walls\n name =roofs\n none ={\n }\n"
                                " deep ={\n  name =x\n }\n}\n[view]\nscale =7\n[none]\n[print]\npaper =A4\n";

TEST(Traverse, TellsWhyThereIsNothingToWalk) {
    Messages messages;
    const Env env;
    Visits visits;
    EXPECT_EQ(visits.over(env, nullptr), -2);
    read_text(env, drawing);
    for (const char* path : {"layers@none", "scale", "nowhere", "layers@3"})
        EXPECT_EQ(visits.over(env, "view", path), -2) << path;
    EXPECT_EQ(visits.over(env, "none"), -2);
    EXPECT_EQ(visits.over(env, "nowhere"), -2);
    EXPECT_EQ(messages.take(), Texts());
    EXPECT_EQ(visits.over(env, "view", "@"), ENV_BAD_PATH);
    EXPECT_EQ(messages.take(), Texts{"Bad Path was given"});
    EXPECT_EQ(visits.over(nullptr, "view"), ENV_INVALID);
    EXPECT_EQ(visits.over_leafs(nullptr), ENV_INVALID);
    EXPECT_EQ(messages.take(), Texts(2, "Nil parametr"));
    EXPECT_EQ(env_traverse(env, "view", nullptr, 1, nullptr, nullptr), ENV_INVALID);
    EXPECT_EQ(env_traverse_leafs(env, nullptr, nullptr), ENV_INVALID);
    EXPECT_EQ(visits.lines, Texts());
}

TEST(Traverse, SurvivesWhatTheCallbackDeletes) {
    const struct {
        const char *name, *section, *path;
        Texts seen;
    } cases[] = {
        {"the element at hand", "S", "b@b", {"S:b@a@1=1", "S:b@b@1=2", "S:b@c@1=3", "S:b@d@1=4"}},
        {"the successor", "S", "b@c", {"S:b@a@1=1", "S:b@b@1=2", "S:b@d@1=4"}},
        {"what lies behind", "S", "b@a", {"S:b@a@1=1", "S:b@b@1=2", "S:b@c@1=3", "S:b@d@1=4"}},
        {"the parent", "S", "b", {"S:b@a@1=1", "S:b@b@1=2"}},
        {"the section", "S", nullptr, {"S:b@a@1=1", "S:b@b@1=2"}},
    };
    for (const auto& [name, section, path, seen] : cases) {
        const Env env;
        read_text(env, "[S]\nb ={\n a =1\n b =2\n c =3\n d =4\n}\n[T]\n");
        Visits visits;
        const char *const doomed_section = section, *const doomed = path;
        visits.also = [&](EnvHandle, const char*, const char* here) {
            if (std::string(here) == "b@b@1") env_delete(env, doomed_section, doomed);
        };
        EXPECT_EQ(visits.over(env, "S", "b"), ENV_OK) << name;
        EXPECT_EQ(visits.lines, seen) << name;
    }
    // Everything, one after the other, over long and short lists and over sections.
    for (const int count : {3, 100}) {
        const Env env;
        for (int i = 1; i <= count; ++i) {
            env_put(env, "S", std::string("n@").append(std::to_string(i)).c_str(), "t");
            env_put(env, std::string("T").append(std::to_string(i)).c_str(), nullptr, "");
        }
        Visits visits;
        visits.also = [&](EnvHandle, const char* section, const char* path) {
            env_delete(env, section, path);
        };
        EXPECT_EQ(visits.over(env, "S"), ENV_OK);
        EXPECT_EQ(visits.lines, Texts(static_cast<std::size_t>(count), "S:n@1=t"));
        EXPECT_EQ(visits.over(env, nullptr), ENV_OK);
        EXPECT_EQ(visits.lines.size(), static_cast<std::size_t>(count) + 1);
        EXPECT_EQ(env_count_elements(env, nullptr, nullptr, 1), 0);
    }
}

TEST(Traverse, GoesOnIntoWhatTheCallbackInserts) {
    const Env env;
    read_text(env, "[S]\na =1\n");
    Visits visits;
    visits.also = [&](EnvHandle sub, const char*, const char* path) {
        if (visits.lines.size() == 1) env_put(env, "S", "a@2", "2");
        if (std::string(path) == "a@2") env_insert_before(sub, nullptr, nullptr, "a");
    };
    EXPECT_EQ(visits.over(env, "S"), ENV_OK);
    EXPECT_EQ(visits.lines, (Texts{"S:a@1=1", "S:a@2=2"}));
    EXPECT_EQ(text_at(env, "S", "a@3"), "2");
}

TEST(Traverse, HandsOutNothingWhereANameHoldsTheDelimiter) {
    Messages messages;
    const Env env;
    read_text(env, "[S]\na@2 =odd\na =1\nb@c =odd\n");
    Visits visits;
    EXPECT_EQ(visits.over(env, "S"), ENV_OK);
    // "a@2@1" is the path of a child '1' of the second 'a'.
    EXPECT_EQ(visits.lines, (Texts{"S:a@2@1=null", "S:a@1=1", "S:b@c@1=null"}));
    EXPECT_EQ(messages.take(), Texts(2, "Nil parametr")); // closing what was not opened
}

TEST(LeafWalk, PassesOverTheRestAfterAFailedStep) {
    Messages messages;
    const Env env;
    read_text(env, "[S]\na =1\nb ={\n c@d =odd\n e =2\n}\nf =3\n[T]\ng =4\n");
    Visits visits;
    EXPECT_EQ(visits.over_leafs(env), ENV_INVALID);
    EXPECT_EQ(visits.lines, Texts{"S:a@1=1"});
    const Texts told = messages.take();
    EXPECT_EQ(std::count(told.begin(), told.end(), "switch error!"), 1);
}

TEST(LeafWalk, SurvivesWhatTheCallbackDeletes) {
    for (const char* doomed : {"b@c", "b@d", "b", "b@e", "a"}) {
        const Env env;
        read_text(env, "[S]\na =0\nb ={\n c =1\n d ={\n  x =2\n }\n e =3\n}\nf =4\n[T]\ng =5\n");
        Visits visits;
        visits.also = [&](EnvHandle, const char*, const char* path) {
            if (std::string(path) == "b@1@c@1") env_delete(env, "S", doomed);
        };
        EXPECT_EQ(visits.over_leafs(env), ENV_OK) << doomed;
        EXPECT_EQ(visits.lines.back(), "T:g@1=5") << doomed;
    }
    const Env env;
    read_text(env, "[S]\na ={\n b =1\n}\n[T]\ng =5\n");
    Visits visits;
    visits.also = [&](EnvHandle, const char* section, const char*) { env_delete(env, section, nullptr); };
    EXPECT_EQ(visits.over_leafs(env), ENV_OK);
    EXPECT_EQ(visits.lines, (Texts{"S:a@1@b@1=1", "T:g@1=5"}));
}

TEST(ListNames, FitsExactlyOrIsEmptied) {
    Messages messages;
    const Env env;
    read_text(env, "[S]\nl ={\n a =1\n b ={\n }\n a =2\n}\ne ={\n}\nd =x\n");
    const struct {
        const char *section, *path;
        long size;
        EnvStatus status;
        const char* names;
    } cases[] = {
        {"S", "l", 8, ENV_OK, "a;b;a;"}, // used 4 + 1 + 2 is below 8
        {"S", "l", 7, ENV_TOO_SMALL, ""},
        {"S", "l", 3, ENV_TOO_SMALL, ""},
        {"S", "l", 2, ENV_TOO_SMALL, ""},
        {"S", "l", 1, ENV_TOO_SMALL, "kept"},
        {"S", "l", 0, ENV_TOO_SMALL, "kept"},
        {"S", "l", -1, ENV_TOO_SMALL, "kept"},
        {"S", nullptr, 64, ENV_OK, "l;e;d;"},
        {"S", "l@b", 64, ENV_OK, ""},
        {"S", "e", 2, ENV_OK, ""},
        {"S", "d", 64, -2, ""},
        {"S", "nowhere", 64, -2, ""},
        {"nowhere", nullptr, 64, -2, ""},
        {"S", "@", 64, ENV_BAD_PATH, ""},
        {nullptr, nullptr, 64, ENV_INVALID, ""},
    };
    for (const auto& [section, path, size, status, names] : cases) {
        char buf[64] = "kept";
        EXPECT_EQ(env_list_elem_names(env, section, path, 1, ';', size, buf), status) << size;
        EXPECT_STREQ(buf, names) << size;
    }
    EXPECT_EQ(messages.take(), (Texts{"Bad Path was given", "bypass Nil section"}));
    char buf[64] = "kept";
    EXPECT_EQ(env_list_elem_names(nullptr, "S", "l", 1, ';', 64, buf), ENV_INVALID);
    EXPECT_STREQ(buf, "");
    const Env sub(env, "S", "l");
    EXPECT_EQ(env_list_elem_names(sub, nullptr, nullptr, 1, '\n', 64, buf), ENV_OK);
    EXPECT_STREQ(buf, "a\nb\na\n");
}

TEST(Sink, FailsForABadModeAndWithNothingToWalk) {
    Messages messages;
    const Env dst, src;
    EXPECT_EQ(env_sink(dst, src, 2), ENV_INVALID);
    EXPECT_EQ(messages.take(), Texts());
    read_text(src, "[S]\na =1\nb =2\n");
    for (const int mode : {4, -1})
        EXPECT_EQ(env_sink(dst, src, mode), ENV_INVALID);
    EXPECT_EQ(messages.take(), Texts(2, "switch error!"));
    EXPECT_EQ(env_sink(nullptr, src, 2), ENV_INVALID);
    EXPECT_EQ(env_sink(dst, nullptr, 2), ENV_INVALID);
    EXPECT_EQ(env_copy_block(nullptr, src, "S", nullptr, 2), ENV_INVALID);
    EXPECT_EQ(env_copy_block(dst, nullptr, "S", nullptr, 2), ENV_INVALID);
    EXPECT_EQ(messages.take(), Texts(4, "Nil parametr"));
    EXPECT_EQ(written(dst), "");
}

TEST(Sink, PassesOverExternalsThatHaveNoPlaceInTheDestination) {
    const Env dst, src;
    env_put_external(src, "S", "x", 1);
    const Env sub(src, "S"); // its leaves come without a section
    for (const int mode : {0, 1, 2, 3})
        EXPECT_EQ(env_sink(dst, sub, mode), ENV_OK) << mode;
    env_put(src, "S", "a", "1");
    for (const int mode : {0, 1, 2})
        EXPECT_EQ(env_sink(dst, sub, mode), ENV_INVALID) << mode;
    EXPECT_EQ(written(dst), "");
}

TEST(Sink, FollowsWhatThePathsOfOddNamesLeadTo) {
    Messages messages;
    const Env dst, src;
    read_text(src, "[S]\na ={\n b =1\n}\nx =2\n7 =3\n[T]\ny =4\n");
    env_insert_before(src, "S", "x", "a@b");
    EXPECT_EQ(env_sink(dst, src, 1), ENV_OK); // a@b@1 twice
    EXPECT_EQ(written(dst), "[S]\n  a ={\n    b =1\n    b =1\n  }\n  x =2\n  7 =3\n[T]\n  y =4\n");
    EXPECT_EQ(messages.take(), Texts());
    env_insert_before(src, "S", "7", "@x");
    EXPECT_EQ(env_delete(src, "S", "a"), ENV_OK);
    EXPECT_EQ(env_sink(dst, src, 3), ENV_INVALID); // a@b@1 leads nowhere
    EXPECT_EQ(messages.take(), (Texts{"Nil parametr", "switch error!", "Nil parametr"}));
}

TEST(Sink, CopiesTextsOf254BytesAndStopsAtLongerOnes) {
    const Env dst, src;
    const std::string longest(254, 't');
    env_put(src, "S", "a", longest.c_str());
    env_put(src, "S", "b", (longest + "t").c_str());
    env_put(src, "S", "c", "3");
    EXPECT_EQ(env_sink(dst, src, 2), ENV_INVALID);
    EXPECT_EQ(text_at(dst, "S", "a"), longest);
    EXPECT_EQ(env_count_elements(dst, "S", nullptr, 1), 1);
    // What is not to be copied does not fail.
    env_put(dst, "S", "b", "kept");
    EXPECT_EQ(env_sink(dst, src, 0), ENV_OK);
    EXPECT_EQ(text_at(dst, "S", "b"), "kept");
    EXPECT_EQ(text_at(dst, "S", "c"), "3");
}

TEST(CreateSubenv, OpensWhatIsThereAndElseAnExternal) {
    Messages messages;
    const Env env(5);
    read_text(env, "[S]\na =1\n");
    {
        const Env there(env_create_subenv(env, "S", "a"));
        EXPECT_EQ(text_at(there, nullptr, nullptr), "1");
        const Env made(env_create_subenv(env, "T", "b@2@c"));
        EXPECT_EQ(env_check(made, nullptr, nullptr, 1), ENV_IS_EXTERNAL);
        EXPECT_EQ(env_put(made, nullptr, "d", "2"), ENV_OK);
        const Env section(env_create_subenv(env, "U", nullptr));
        EXPECT_EQ(env_check(section, nullptr, nullptr, 1), ENV_NOT_FOUND); // an empty block
    }
    EXPECT_EQ(written(env), "[S]\n  a =1\n[T]\n  b =\n  b ={\n    c ={\n      d =2\n    }\n  }\n[U]\n");
    EXPECT_EQ(messages.take(), Texts());
    EXPECT_EQ(env_create_subenv(env, "S", "@"), nullptr);
    EXPECT_EQ(env_create_subenv(env, nullptr, "a"), nullptr);
    EXPECT_EQ(env_create_subenv(nullptr, "S", "a"), nullptr);
    EXPECT_EQ(messages.take().size(), 6U);
}

} // namespace
