// Values and arrays: what a text reads as, what is stored for a value, and what is silently lost.
#include "tests/env/store.h"

#include <climits>
#include <clocale>
#include <cstdio>
#include <limits>

namespace {

// The value of S:v in the five ways to read it, lists with room for three items and words of less than eight
// characters: the values, or the status.
std::string values(EnvHandle env) {
    constexpr long untouched = 12345;
    std::string text;
    const auto add = [&](EnvStatus status, long count, const auto& print) {
        text += text.empty() ? "" : " ";
        if (status < 0) text += std::to_string(status);
        for (long i = 0; status >= 0 && i < count; ++i)
            text.append(i ? "," : "").append(print(i));
    };
    const auto print_double = [](double value) {
        char printed[32];
        std::snprintf(printed, sizeof printed, "%.15g", value);
        return std::string(printed);
    };
    long whole = untouched, longs[3], count = 3;
    double real = untouched, doubles[3];
    char buffers[3][8];
    char* items[] = {buffers[0], buffers[1], buffers[2]};
    const EnvStatus one = env_get_long(env, "S", "v", 1, &whole),
                    other = env_get_double(env, "S", "v", 1, &real);
    EXPECT_TRUE((one >= 0 || whole == untouched) && (other >= 0 || real == untouched));
    add(one, 1, [&](long) { return std::to_string(whole); });
    add(other, 1, [&](long) { return print_double(real); });
    const auto add_list = [&](EnvStatus status, const auto& print) {
        EXPECT_EQ(count > 0, status >= 0);
        add(status, count, print);
        count = 3;
    };
    add_list(env_get_longs(env, "S", "v", 1, &count, longs),
             [&](long i) { return std::to_string(longs[i]); });
    add_list(env_get_doubles(env, "S", "v", 1, &count, doubles),
             [&](long i) { return print_double(doubles[i]); });
    add_list(env_get_strings(env, "S", "v", 1, &count, 8, items),
             [&](long i) { return std::string(items[i]); });
    return text;
}

TEST(Values, AreReadByTheirSyntax) {
    const Env env(1);
    const struct {
        const char *text, *read; // as a long, a double, and lists of longs, doubles and words
    } cases[] = {
        {" \t42 ", "42 42 42 42 42"},
        {"+7", "7 7 7 7 -5"},
        {"-0", "0 -0 0 -0 -5"},
        {"007", "7 7 7 7 007"},
        {"99999999999", "2147483647 99999999999 2147483647 99999999999 -7"},
        {"-99999999999", "-2147483648 -99999999999 -2147483648 -99999999999 -5"},
        {"7.", "-5 7 -5 7 -5"},
        {"1.5e-3", "-5 0.0015 -5 0.0015 -5"},
        {".5d1", "-5 5 -5 5 -5"},
        {"1e", "-5 1 -5 1 1e"}, // the exponent's digits may be missing
        {"1e+", "-5 -5 -5 -5 -5"},
        {"1e400", "-5 inf -5 inf 1e400"},
        {"", "-5 -5 -5 -5 -5"},
        {".", "-5 -5 -5 -5 -5"},
        {"4 2", "-5 -5 -5 -5 -5"},
        {"1.5 e3", "-5 -5 -5 -5 -5"},
        {"1,2 , 3", "-5 -5 1,2,3 1,2,3 1,2,3"},
        {"1.5e-3,2,.25", "-5 -5 -5 0.0015,2,0.25 -5"},
        {"1,,2", "-5 -5 -5 -5 -5"},
        {"1,2,3,4", "-5 -5 -7 -7 -7"},
        {"1,2,3,4,", "-5 -5 -5 -5 -5"}, // a syntax error before want of room
        {"ab,C3, x9 ", "-5 -5 -5 -5 ab,C3,x9"},
        {"abcdefgh,1", "-5 -5 -5 -5 -7"},
        {"a_b", "-5 -5 -5 -5 -5"},
        {"12\nrubbish", "12 12 12 12 12"}, // of a line end only the first character counts
        {"1,2\r\n,x", "-5 -5 1,2 1,2 1,2"},
        {"\n12", "-5 -5 -5 -5 -5"},
    };
    for (const auto& [text, read] : cases) {
        env_put(env, "S", "v", text);
        EXPECT_EQ(values(env), read) << text;
        EXPECT_EQ(text_at(env, "S", "v"), text); // as it was
    }
    env_put_external(env, "S", "v", 5);
    EXPECT_EQ(values(env), "-1 -1 -1 -1 -1");
    env_delete(env, "S", "v");
    EXPECT_EQ(values(env), "-4 -4 -4 -4 -4");
}

TEST(Values, HaveOneTextForm) {
    const Env env;
    const auto put = [&](EnvStatus status) {
        EXPECT_EQ(status, ENV_OK);
        return text_at(env, "S", "v");
    };
    EXPECT_EQ(put(env_put_long(env, "S", "v", LONG_MAX)), "2147483647");
    EXPECT_EQ(put(env_put_long(env, "S", "v", LONG_MIN)), "-2147483648");
    const std::pair<double, const char*> doubles[] = {{0.5, "0.5"},
                                                      {1e20, "1e+20"},
                                                      {-1234567, "-1.23457e+06"},
                                                      {123456, "123456"},
                                                      {-0.0, "-0"},
                                                      {0.0001, "0.0001"},
                                                      {0.00001, "1e-05"},
                                                      {1e-300, "1e-300"},
                                                      {1.0 / 3, "0.333333"},
                                                      {std::numeric_limits<double>::infinity(), "inf"}};
    for (const auto& [value, text] : doubles)
        EXPECT_EQ(put(env_put_double(env, "S", "v", value)), text);

    const std::string former = std::setlocale(LC_NUMERIC, nullptr);
    for (const char* comma : {"German", "de_DE.UTF-8", "de_DE"})
        if (std::setlocale(LC_NUMERIC, comma)) break;
    EXPECT_EQ(put(env_put_format(env, "S", "v", "%.2f", 1.5)), "1.50");
    double back = 0;
    EXPECT_EQ(env_get_double(env, "S", "v", 1, &back), ENV_OK);
    EXPECT_EQ(back, 1.5);
    std::setlocale(LC_NUMERIC, former.c_str());

    const std::string fits(1023, 'f'), over(1025, 'o');
    EXPECT_EQ(put(env_put_format(env, "S", "v", "%ld|%s|%g|%%", 7L, "x", 1e20)), "7|x|1e+20|%");
    EXPECT_EQ(env_put_format(env, "S", "v", "%s", over.c_str()), ENV_INVALID);
    EXPECT_EQ(text_at(env, "S", "v"), "7|x|1e+20|%");
    EXPECT_EQ(put(env_put_format(env, "S", "v", "%s", fits.c_str())), fits);
}

TEST(Values, OfExternalsAreWordsOfTheCaller) {
    const Env env(3);
    long value = 1;
    for (const long word : {0L, -1L, LONG_MIN, LONG_MAX}) {
        EXPECT_EQ(env_put_external(env, "S", "x", word), ENV_OK);
        EXPECT_EQ(env_get_external(env, "S", "x", 1, &value), 3);
        EXPECT_EQ(value, word);
    }
    EXPECT_EQ(env_put_core(env, "S", "x", "text wins", 8), ENV_OK);
    EXPECT_EQ(env_get_external(env, "S", "x", 1, &value), ENV_IS_EXTERNAL);
}

TEST(EnvPut, SwallowsWhatHasNoPlace) {
    Messages messages;
    const Env env;
    EXPECT_EQ(env_put(env, "S", nullptr, "x"), ENV_OK); // creates the section
    EXPECT_EQ(env_put(env, "T", "@", "x"), ENV_OK);     // this one too, and stores nothing
    EXPECT_EQ(env_put(env, "S", nullptr, "x"), ENV_OK);
    EXPECT_EQ(env_put(env, nullptr, "p", "x"), ENV_INVALID);
    EXPECT_EQ(messages.take(), (Texts{"Bad Path was given", "bypass Nil section"}));
    EXPECT_EQ(written(env), "[S]\n[T]\n");
}

TEST(EnvPut, TakesItsOwnTexts) {
    const Env env;
    const auto reference = [&](const char* path) {
        const char* text = nullptr;
        env_get_reference(env, "S", path, 1, &text);
        return text;
    };
    const std::string large(5000, 'L');
    env_put(env, "S", "b", large.c_str());
    EXPECT_EQ(env_put(env, "S", "b", reference("b") + 10), ENV_OK); // onto itself
    EXPECT_EQ(text_at(env, "S", "b"), large.substr(10));
    env_put(env, "S", "a", "short");
    EXPECT_EQ(env_put(env, "S", "a@child", reference("a")), ENV_OK); // below itself
    EXPECT_EQ(text_at(env, "S", "a@child"), "short");
    EXPECT_EQ(env_put(env, "S", "a", reference("a@child")), ENV_OK); // in place of its parent
    EXPECT_EQ(text_at(env, "S", "a"), "short");
    env_put(env, "S", "a", "a@some quite long name@b@2");
    EXPECT_EQ(env_put(env, "S", reference("a"), reference("a")), ENV_OK); // as its path too
    EXPECT_EQ(text_at(env, "S", "a@some quite long name@b@2"), "a@some quite long name@b@2");
    for (int i = 0; i < 600; ++i) { // every size of memory block, up and down
        const std::string text(static_cast<std::size_t>(i * 7 % 601), 'x');
        EXPECT_EQ(env_put(env, "S", "c", text.c_str()), ENV_OK);
        ASSERT_EQ(text_at(env, "S", "c"), text);
    }
}

TEST(NullOutputs, AreInvalid) {
    const Env env(1);
    env_put(env, "S", "v", "1");
    env_put_external(env, "S", "x", 1);
    long count = 5, one = 1;
    const EnvStatus statuses[] = {
        env_get(env, "S", "v", 1, 8, nullptr),
        env_get_reference(env, "S", "v", 1, nullptr),
        env_get_string(env, "S", "v", 1, 8, nullptr),
        env_get_long(env, "S", "v", 1, nullptr),
        env_get_double(env, "S", "v", 1, nullptr),
        env_get_external(env, "S", "x", 1, nullptr),
        env_get_longs(env, "S", "v", 1, nullptr, &one),
        env_get_doubles(env, "S", "v", 1, nullptr, nullptr),
        env_get_strings(env, "S", "v", 1, nullptr, 5, nullptr),
        env_get_longs(env, "S", "v", 1, &count, nullptr),
        env_put(env, "S", "v", nullptr),
        env_put_string(env, "S", "v", nullptr),
        env_put_format(env, "S", "v", nullptr),
        env_put_longs(env, "S", "v", 1, nullptr),
        env_put_doubles(env, "S", "v", 1, nullptr),
        env_put_strings(env, "S", "v", 1, nullptr),
        env_put_longs(env, "S", "v", 0, &one),
        env_put_longs(env, "S", "v", -1, &one),
        env_insert_before(env, "S", "v", nullptr),
        env_read(nullptr, nullptr, env),
        env_traverse(env, "S", nullptr, 1, nullptr, nullptr),
        env_traverse_leafs(env, nullptr, nullptr),
    };
    for (const EnvStatus& status : statuses)
        EXPECT_EQ(status, ENV_INVALID) << &status - statuses;
    EXPECT_EQ(count, 0);
    env_write(nullptr, nullptr, env);
    EXPECT_EQ(written(env), "[S]\n  v =1\n");
    // These may be left out, and no room is no failure of the call.
    EXPECT_EQ(env_get_core(env, "S", "v", 1, 0, nullptr, nullptr, nullptr, nullptr), ENV_IS_DATA);
    EXPECT_EQ(env_get_core(env, "S", "x", 1, 0, nullptr, nullptr, nullptr, nullptr), ENV_IS_EXTERNAL);
    EXPECT_EQ(env_get_pos(env, "S", nullptr, 1, 1, nullptr, 0, nullptr, 0, nullptr, nullptr), ENV_IS_DATA);
    EXPECT_EQ(env_get_longs(env, "S", "v", 1, &(count = -1), &one), ENV_TOO_SMALL);
    char buf[] = "old";
    EXPECT_EQ(env_get(env, "S", "v", 1, -1, buf), ENV_TOO_SMALL);
    EXPECT_EQ(env_get_pos(env, "S", nullptr, 1, 1, nullptr, -1, buf, -1, buf, nullptr), ENV_TOO_SMALL);
    EXPECT_EQ(env_get_core(env, "S", nullptr, 1, -1, nullptr, nullptr, nullptr, nullptr), ENV_NOT_FOUND);
    EXPECT_STREQ(buf, "old");
}

TEST(Arrays, LoseSilentlyWhatDoesNotFit) {
    const Env env(6);
    const std::vector<long> eights(300, 12345678); // 113 items and separators fill 1016 bytes
    EXPECT_EQ(env_put_longs(env, "S", "v", 300, eights.data()), ENV_OK);
    std::string expected;
    for (int i = 0; i < 113; ++i)
        expected += "12345678,";
    EXPECT_EQ(text_at(env, "S", "v"), expected); // the last separator fitted, the item did not
    const double doubles[] = {0.5, 1e20};
    EXPECT_EQ(env_put_doubles(env, "S", "v", 2, doubles), ENV_OK);
    EXPECT_EQ(text_at(env, "S", "v"), "0.5,1e+20");

    const std::string fills(1023, 'f'), over(1024, 'o'), endless(1025, 'e'), most(1021, 'm'), half(511, 'h');
    const struct {
        std::vector<const char*> items;
        std::string text;
    } cases[] = {
        {{fills.c_str(), "a"}, fills}, // cut after a whole item
        {{most.c_str(), "a", "b"}, most + ",a"},
        {{most.c_str(), "ab", "c"}, most + ","}, // and nothing later, though it would fit
        {{half.c_str(), half.c_str()}, half + "," + half},
        {{over.c_str(), "a"}, ""},          // refused, and so is all behind it
        {{"a", over.c_str(), "b"}, "a,"},   // it is of the list
        {{"a", endless.c_str(), "b"}, "a"}, // it ends the list
        {{"a", nullptr, "b"}, "a"},
        {{nullptr}, ""},
        {{"a b", "c,d", ""}, "a b,c,d,"}, // as they are, though they are no words
    };
    for (const auto& [items, text] : cases) {
        EXPECT_EQ(env_put_strings(env, "S", "v", static_cast<long>(items.size()), items.data()), ENV_OK);
        EXPECT_EQ(text_at(env, "S", "v"), text);
    }
    // A null buffer is no room, and drops what comes behind it.
    char a[8] = "", c[8] = "";
    char* items[] = {a, nullptr, c};
    long count = 3;
    env_put(env, "S", "v", "x,y,z");
    EXPECT_EQ(env_get_strings(env, "S", "v", 1, &count, 8, items), ENV_TOO_SMALL);
    EXPECT_STREQ(c, "");
}

} // namespace
