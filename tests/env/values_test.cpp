// Values and arrays: what is stored for them, what is created on the way, and what is silently lost.
#include "tests/env/store.h"

#include <climits>
#include <clocale>
#include <cmath>
#include <limits>

namespace {

std::string text_of(EnvHandle env) {
    return text_at(env, "S", "v");
}

TEST(EnvPut, SwallowsWhatHasNoPlace) {
    Messages messages;
    const Env env;
    EXPECT_EQ(env_put(env, "S", nullptr, "x"), ENV_OK); // creates the section
    EXPECT_EQ(env_put(env, "T", "@", "x"), ENV_OK);     // this one too, and stores nothing
    EXPECT_EQ(messages.take(), Texts{"Bad Path was given"});
    EXPECT_EQ(env_put(env, "S", nullptr, "x"), ENV_OK);
    EXPECT_EQ(written(env), "[S]\n[T]\n");
    EXPECT_EQ(env_put(env, "S", "p", nullptr), ENV_INVALID);
    EXPECT_EQ(env_put_string(env, "S", "p", nullptr), ENV_INVALID);
    EXPECT_EQ(env_put(env, nullptr, "p", "x"), ENV_INVALID);
    EXPECT_EQ(env_put(env, nullptr, nullptr, "x"), ENV_INVALID);
    EXPECT_EQ(messages.take(), Texts(2, "bypass Nil section"));
    EXPECT_EQ(written(env), "[S]\n[T]\n");
}

TEST(EnvPut, TakesItsOwnTexts) {
    const Env env;
    const std::string large(5000, 'L');
    env_put(env, "S", "a", "short");
    env_put(env, "S", "b", large.c_str());
    const char *a, *b;
    env_get_reference(env, "S", "b", 1, &b);
    EXPECT_EQ(env_put(env, "S", "b", b + 10), ENV_OK); // onto itself
    EXPECT_EQ(text_at(env, "S", "b"), large.substr(10));
    env_get_reference(env, "S", "a", 1, &a);
    EXPECT_EQ(env_put(env, "S", "a@child", a), ENV_OK); // below itself
    EXPECT_EQ(text_at(env, "S", "a@child"), "short");
    env_get_reference(env, "S", "a@child", 1, &a);
    EXPECT_EQ(env_put(env, "S", "a", a), ENV_OK); // in place of its parent
    EXPECT_EQ(text_at(env, "S", "a"), "short");
    for (int i = 0; i < 600; ++i) { // every size of memory block, up and down
        const std::string text(static_cast<std::size_t>(i * 7 % 601), 'x');
        EXPECT_EQ(env_put(env, "S", "c", text.c_str()), ENV_OK);
        ASSERT_EQ(text_at(env, "S", "c"), text);
    }
}

TEST(EnvPut, TakesAPathThatLiesInTheTextItReplaces) {
    const Env env;
    const char* text = nullptr;
    env_put(env, "S", "a", "a@some quite long name@b@2");
    env_get_reference(env, "S", "a", 1, &text);
    EXPECT_EQ(env_put(env, "S", text, text), ENV_OK);
    char value[64] = "";
    EXPECT_EQ(env_get(env, "S", "a@some quite long name@b@2", 1, sizeof value, value), ENV_OK);
    EXPECT_STREQ(value, "a@some quite long name@b@2");
}

TEST(EnvGet, CopiesOrRefers) {
    const Env base(20), env(10, base);
    read_text(base, "[S]\nlow =under\nv =hidden\nlayered ={\n x =1\n}\n");
    read_text(env, "[S]\nv =value\nb ={\n}\n");
    env_put_external(env, "S", "x", 5);
    const Env sub(env, "S", "b");
    const struct {
        EnvHandle env;
        const char *section, *path;
        EnvStatus status;
        const char* text;
    } cases[] = {
        {env, "S", "v", 10, "value"},
        {env, "S", "low", 20, "under"},
        {env, "S", "layered@x", 20, "1"},
        {sub, "S", "low", 20, "under"}, // the section counts again below
        {sub, nullptr, "low", ENV_NOT_FOUND, ""},
        {env, "S", "b", -1, ""},
        {env, "S", "x", -1, ""},
        {env, "S", nullptr, -1, ""},
        {env, "U", nullptr, ENV_NOT_FOUND, ""},
        {env, "S", "no", ENV_NOT_FOUND, ""},
        {env, "S", "@", ENV_BAD_PATH, ""},
        {env, nullptr, "v", ENV_INVALID, ""},
        {env, nullptr, nullptr, ENV_INVALID, ""},
    };
    for (const auto& [handle, section, path, status, text] : cases) {
        SCOPED_TRACE(path ? path : "null");
        char buf[8] = "old";
        const char* reference = "old";
        EXPECT_EQ(env_get(handle, section, path, 1, 8, buf), status);
        EXPECT_STREQ(buf, status >= 0 ? text : "old");
        EXPECT_EQ(env_get_reference(handle, section, path, 1, &reference), status);
        EXPECT_STREQ(reference, status >= 0 ? text : "old");
        EXPECT_EQ(env_get_string(handle, section, path, 1, 0, buf), status); // the size is not consulted
        EXPECT_STREQ(buf, text);                                             // emptied on failure
    }
    char buf[8] = "old";
    for (const long size : {5L, 1L, 0L, -1L})
        EXPECT_EQ(env_get(env, "S", "v", 1, size, buf), ENV_TOO_SMALL);
    EXPECT_STREQ(buf, "old");
    EXPECT_EQ(env_get(env, "S", "v", 1, 6, buf), 10);
}

TEST(EnvGetCore, ReadsByPathAndByPosition) {
    const Env base(20), env(10, base);
    read_text(base, "[S]\nlow =under\nb2 ={\n}\n");
    read_text(env, "[S]\nv =value\nb ={\n c =d\n}\n");
    env_put_external(env, "S", "x", 5);
    const struct {
        const char *section, *path;
        long pos;
        EnvStatus status;
        long layer;
        const char *name, *text;
        long external;
    } cases[] = {
        {"S", "v", 0, ENV_IS_DATA, 10, "v", "value", -1},
        {"S", "b", 0, ENV_IS_BLOCK, 10, "b", "?", -1},
        {"S", "x", 0, ENV_IS_EXTERNAL, 10, "x", "?", 5},
        {"S", "low", 0, ENV_IS_DATA, 20, "low", "under", -1},
        {"S", nullptr, 0, ENV_IS_BLOCK, 10, "S", "?", -1},
        {"S", nullptr, 3, ENV_IS_EXTERNAL, 10, "x", "?", 5},
        {"S", "b", 1, ENV_IS_DATA, 10, "c", "d", -1},
        {"S", "low", 1, ENV_NOT_FOUND, -1, "?", "?", -1}, // positions do not fall back
        {nullptr, nullptr, 1, ENV_IS_BLOCK, 10, "S", "?", -1},
        {nullptr, nullptr, 0, ENV_INVALID, -1, "?", "?", -1},
        {"S", "@", 0, ENV_BAD_PATH, -1, "?", "?", -1},
    };
    for (const auto& [section, path, pos, status, layer, name, text, external] : cases) {
        SCOPED_TRACE(std::string(path ? path : "null") + " " + std::to_string(pos));
        long layer_out = -1, external_out = -1;
        const char *name_out = "?", *text_out = "?";
        EXPECT_EQ(env_get_core(env, section, path, 1, pos, &layer_out, &name_out, &text_out, &external_out),
                  status);
        EXPECT_EQ(layer_out, layer);
        EXPECT_STREQ(name_out, name);
        EXPECT_STREQ(text_out, text);
        EXPECT_EQ(external_out, external);
    }
    EXPECT_EQ(env_get_core(env, "S", "v", 1, 0, nullptr, nullptr, nullptr, nullptr), ENV_IS_DATA);
    EXPECT_EQ(env_get_core(env, "S", "x", 1, 0, nullptr, nullptr, nullptr, nullptr), ENV_IS_EXTERNAL);
}

TEST(Externals, AreWordsOfTheCaller) {
    const Env env(3);
    long value = 1;
    for (const long word : {0L, 123L, -1L, LONG_MIN, LONG_MAX}) {
        EXPECT_EQ(env_put_external(env, "S", "x", word), ENV_OK);
        EXPECT_EQ(env_get_external(env, "S", "x", 1, &value), 3);
        EXPECT_EQ(value, word);
    }
    EXPECT_EQ(env_put_core(env, "S", "y", nullptr, 8), ENV_OK);
    EXPECT_EQ(env_put_core(env, "S", "z", "text wins", 8), ENV_OK);
    env_put(env, "S", "b@c", "1");
    EXPECT_EQ(env_get_external(env, "S", "y", 1, &value), 3);
    EXPECT_EQ(env_get_external(env, "S", "z", 1, &value), ENV_IS_EXTERNAL);
    EXPECT_EQ(env_get_external(env, "S", "b", 1, &value), ENV_IS_EXTERNAL);
    EXPECT_EQ(env_get_external(env, "S", "no", 1, &value), ENV_NOT_FOUND);
    EXPECT_EQ(env_get_external(env, "S", "", 1, &value), ENV_BAD_PATH);
    EXPECT_EQ(value, 8);
}

TEST(NullOutputs, AreInvalid) {
    const Env env;
    env_put(env, "S", "v", "1");
    env_put_external(env, "S", "x", 1);
    long count = 5;
    EXPECT_EQ(env_get(env, "S", "v", 1, 8, nullptr), ENV_INVALID);
    EXPECT_EQ(env_get_reference(env, "S", "v", 1, nullptr), ENV_INVALID);
    EXPECT_EQ(env_get_string(env, "S", "v", 1, 8, nullptr), ENV_INVALID);
    EXPECT_EQ(env_get_long(env, "S", "v", 1, nullptr), ENV_INVALID);
    EXPECT_EQ(env_get_double(env, "S", "v", 1, nullptr), ENV_INVALID);
    EXPECT_EQ(env_get_external(env, "S", "x", 1, nullptr), ENV_INVALID);
    EXPECT_EQ(env_get_longs(env, "S", "v", 1, nullptr, &count), ENV_INVALID);
    EXPECT_EQ(env_get_longs(env, "S", "v", 1, &count, nullptr), ENV_INVALID);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(env_get_doubles(env, "S", "v", 1, nullptr, nullptr), ENV_INVALID);
    EXPECT_EQ(env_get_doubles(env, "S", "v", 1, &(count = 5), nullptr), ENV_INVALID);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(env_get_strings(env, "S", "v", 1, nullptr, 5, nullptr), ENV_INVALID);
    EXPECT_EQ(env_get_strings(env, "S", "v", 1, &(count = 5), 5, nullptr), ENV_INVALID);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(env_put_format(env, "S", "v", nullptr), ENV_INVALID);
    EXPECT_EQ(text_of(env), "1");
}

TEST(Numbers, HaveOneTextForm) {
    const Env env(2);
    const std::pair<long, const char*> longs[] = {
        {-5, "-5"}, {0, "0"}, {LONG_MAX, "2147483647"}, {LONG_MIN, "-2147483648"}};
    for (const auto& [value, text] : longs) {
        long back = 1;
        EXPECT_EQ(env_put_long(env, "S", "v", value), ENV_OK);
        EXPECT_EQ(text_of(env), text);
        EXPECT_EQ(env_get_long(env, "S", "v", 1, &back), 2);
        EXPECT_EQ(back, value);
    }
    const std::pair<double, const char*> doubles[] = {{0.5, "0.5"},
                                                      {1e20, "1e+20"},
                                                      {-1234567, "-1.23457e+06"},
                                                      {123456, "123456"},
                                                      {-0.0, "-0"},
                                                      {0.0001, "0.0001"},
                                                      {0.00001, "1e-05"},
                                                      {1e-300, "1e-300"},
                                                      {1.0 / 3, "0.333333"},
                                                      {2.5, "2.5"},
                                                      {std::numeric_limits<double>::infinity(), "inf"}};
    for (const auto& [value, text] : doubles) {
        EXPECT_EQ(env_put_double(env, "S", "v", value), ENV_OK);
        EXPECT_EQ(text_of(env), text);
    }
    const char* const former = std::setlocale(LC_NUMERIC, nullptr);
    const std::string kept = former;
    for (const char* comma : {"German", "de_DE.UTF-8", "de_DE"})
        if (std::setlocale(LC_NUMERIC, comma)) break;
    double back = 0;
    EXPECT_EQ(env_put_format(env, "S", "v", "%.2f", 1.5), ENV_OK);
    EXPECT_EQ(text_of(env), "1.50");
    EXPECT_EQ(env_get_double(env, "S", "v", 1, &back), 2);
    EXPECT_EQ(back, 1.5);
    std::setlocale(LC_NUMERIC, kept.c_str());
}

TEST(EnvPutFormat, TakesWhatFits) {
    const Env env;
    EXPECT_EQ(env_put_format(env, "S", "v", "%ld|%s|%g|%%", 7L, "x", 1e20), ENV_OK);
    EXPECT_EQ(text_of(env), "7|x|1e+20|%");
    const std::string fits(1023, 'f'), over(1025, 'o');
    EXPECT_EQ(env_put_format(env, "S", "v", "%s", over.c_str()), ENV_INVALID);
    EXPECT_EQ(text_of(env), "7|x|1e+20|%");
    EXPECT_EQ(env_put_format(env, "S", "v", "%s", fits.c_str()), ENV_OK);
    EXPECT_EQ(text_of(env), fits);
}

TEST(Arrays, NeedRoomForEachItem) {
    const Env env(6);
    const long longs[] = {1};
    const double doubles[] = {1};
    const char* const strings[] = {"ab", "C3"};
    long count, long_values[3];
    EXPECT_EQ(env_put_strings(env, "S", "s", 2, strings), ENV_OK);
    EXPECT_EQ(text_at(env, "S", "s"), "ab,C3");
    EXPECT_EQ(env_put_longs(env, "S", "l", 1, longs), ENV_OK);
    char a[3], b[3];
    char* items[] = {a, b, nullptr};
    EXPECT_EQ(env_get_strings(env, "S", "s", 1, &(count = 3), 3, items), 6);
    EXPECT_EQ(count, 2);
    EXPECT_STREQ(a, "ab");
    EXPECT_STREQ(b, "C3");
    EXPECT_EQ(env_get_strings(env, "S", "s", 1, &(count = 3), 2, items), ENV_TOO_SMALL); // one too few
    EXPECT_EQ(count, 0);
    items[1] = nullptr; // counts as no room
    EXPECT_EQ(env_get_strings(env, "S", "s", 1, &(count = 3), 9, items), ENV_TOO_SMALL);

    for (const long bad : {0L, -1L}) {
        EXPECT_EQ(env_put_longs(env, "S", "l", bad, longs), ENV_INVALID);
        EXPECT_EQ(env_put_doubles(env, "S", "d", bad, doubles), ENV_INVALID);
        EXPECT_EQ(env_put_strings(env, "S", "s", bad, strings), ENV_INVALID);
        EXPECT_EQ(env_get_longs(env, "S", "l", 1, &(count = bad), long_values), ENV_TOO_SMALL);
        EXPECT_EQ(count, 0);
    }
    EXPECT_EQ(env_put_longs(env, "S", "l", 1, nullptr), ENV_INVALID);
    EXPECT_EQ(env_put_doubles(env, "S", "d", 1, nullptr), ENV_INVALID);
    EXPECT_EQ(env_put_strings(env, "S", "s", 1, nullptr), ENV_INVALID);
}

TEST(ArrayReaders, EmptyTheCountOnEveryFailure) {
    const Env env(6);
    read_text(env, "[S]\nthree =1, 2 ,3\ntwo =1, 2\nbad =1,x\nb ={\n}\nboth =1,2,3,\n");
    const struct {
        const char* path;
        long capacity;
        EnvStatus status;
        long count;
    } cases[] = {
        {"three", 2, ENV_TOO_SMALL, 0},
        {"two", 2, 6, 2},
        {"three", 3, 6, 3},
        {"bad", 2, ENV_SYNTAX, 0},
        {"both", 2, ENV_SYNTAX, 0},
        {"no", 2, ENV_NOT_FOUND, 0},
        {"b", 2, -1, 0},
        {"@", 2, ENV_BAD_PATH, 0},
    };
    for (const auto& [path, capacity, status, expected] : cases) {
        long count = capacity, longs[3];
        double doubles[3];
        EXPECT_EQ(env_get_longs(env, "S", path, 1, &count, longs), status) << path;
        EXPECT_EQ(count, expected) << path;
        EXPECT_EQ(env_get_doubles(env, "S", path, 1, &(count = capacity), doubles), status) << path;
        EXPECT_EQ(count, expected) << path;
        char a[2], b[2], c[2];
        char* items[] = {a, b, c};
        const EnvStatus words = std::string(path) == "bad" ? 6 : status; // a letter is a word
        EXPECT_EQ(env_get_strings(env, "S", path, 1, &(count = capacity), 2, items), words) << path;
        EXPECT_EQ(count, words == 6 ? std::max(expected, 2L) : 0) << path;
    }
}

TEST(ArrayWriters, LoseSilentlyWhatDoesNotFit) {
    const Env env(6);
    const std::vector<long> eights(300, 12345678); // 113 items and separators fill 1016 bytes
    EXPECT_EQ(env_put_longs(env, "S", "v", 300, eights.data()), ENV_OK);
    std::string expected = "12345678";
    for (int i = 1; i < 113; ++i)
        expected += ",12345678";
    EXPECT_EQ(text_of(env), expected + ","); // the separator fitted, the item did not
    long count = 300;
    std::vector<long> back(300);
    EXPECT_EQ(env_get_longs(env, "S", "v", 1, &count, back.data()), ENV_SYNTAX);

    const auto put = [&](std::vector<const char*> items) {
        EXPECT_EQ(env_put_strings(env, "S", "v", static_cast<long>(items.size()), items.data()), ENV_OK);
        return text_of(env);
    };
    const std::string fills(1023, 'f'), over(1024, 'o'), endless(1025, 'e'), most(1021, 'm'), half(511, 'h');
    EXPECT_EQ(put({fills.c_str(), "a"}), fills); // cut after a whole item
    EXPECT_EQ(put({most.c_str(), "a", "b"}), most + ",a");
    EXPECT_EQ(put({most.c_str(), "ab", "c"}), most + ","); // and nothing later, though it would fit
    EXPECT_EQ(put({half.c_str(), half.c_str()}), half + "," + half);
    EXPECT_EQ(put({over.c_str(), "a"}), "");          // refused, and so is all behind it
    EXPECT_EQ(put({"a", over.c_str(), "b"}), "a,");   // it is of the list
    EXPECT_EQ(put({"a", endless.c_str(), "b"}), "a"); // it ends the list
    EXPECT_EQ(put({"a", nullptr, "b"}), "a");
    EXPECT_EQ(put({nullptr}), "");
    EXPECT_EQ(put({"a b", "c,d", ""}), "a b,c,d,"); // as they are
    EXPECT_EQ(put({"a b"}), "a b");
    char item[8];
    char* items[] = {item};
    EXPECT_EQ(env_get_strings(env, "S", "v", 1, &(count = 1), 8, items), ENV_SYNTAX); // stored, but no word
}

} // namespace
