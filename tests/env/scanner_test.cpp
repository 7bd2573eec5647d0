// The syntax of value texts, through the exports.
#include "tests/env/store.h"

#include <cmath>

namespace {

TEST(ValueSyntax, OfOneValue) {
    const Env env(1);
    constexpr double none = 12345;
    const struct {
        const char* text;
        long as_long;     // none: no match
        double as_double; // none: no match
    } cases[] = {
        {" 42 ", 42, 42},
        {"\t42\t ", 42, 42},
        {"4 2", 12345, none},
        {"+7", 7, 7},
        {"-0", 0, 0},
        {"7.", 12345, 7},
        {".5", 12345, .5},
        {"-.5", 12345, -.5},
        {"-3", -3, -3},
        {"+-3", 12345, none},
        {"- 3", 12345, none},
        {"", 12345, none},
        {"  ", 12345, none},
        {".", 12345, none},
        {"-", 12345, none},
        {"e5", 12345, none},
        {"1e", 12345, 1},
        {"1e5", 12345, 1e5},
        {"2.E5", 12345, 2e5},
        {".5d1", 12345, 5},
        {"1D-2", 12345, .01},
        {"1e+", 12345, none},
        {"1e+2", 12345, 100},
        {"1.5 e3", 12345, none},
        {"1.5e-3", 12345, 1.5e-3},
        {"1.2.3", 12345, none},
        {"1f5", 12345, none},
        {"12\nrubbish", 12, 12},
        {"12\rrubbish", 12, 12},
        {"12 \n", 12, 12},
        {"12;", 12345, none},
        {"\n12", 12345, none},
        {"1,2", 12345, none},
        {"0x10", 12345, none},
        {"99999999999", 2147483647, 99999999999.0},
        {"-99999999999", -2147483647 - 1, -99999999999.0},
        {"007", 7, 7},
        {"1e400", 12345, HUGE_VAL},
        {"inf", 12345, none},
        {"1\v", 12345, none},
    };
    for (const auto& [text, as_long, as_double] : cases) {
        env_put(env, "S", "v", text);
        long whole = 12345, count = 1, list[1] = {12345};
        double real = none, reals[1] = {none};
        EXPECT_EQ(env_get_long(env, "S", "v", 1, &whole), as_long == 12345 ? ENV_SYNTAX : 1) << text;
        EXPECT_EQ(whole, as_long) << text;
        EXPECT_EQ(env_get_double(env, "S", "v", 1, &real), as_double == none ? ENV_SYNTAX : 1) << text;
        EXPECT_EQ(real, as_double) << text;
        if (std::string(text) == "1,2") continue;
        // A list of one is the same.
        EXPECT_EQ(env_get_longs(env, "S", "v", 1, &count, list), as_long == 12345 ? ENV_SYNTAX : 1) << text;
        EXPECT_EQ(count, as_long != 12345) << text;
        if (count) {
            EXPECT_EQ(list[0], as_long) << text;
        }
        EXPECT_EQ(env_get_doubles(env, "S", "v", 1, &(count = 1), reals), as_double == none ? ENV_SYNTAX : 1)
            << text;
        if (count) {
            EXPECT_EQ(reals[0], as_double) << text;
        }
        EXPECT_EQ(text_at(env, "S", "v"), text); // as it was
    }
}

TEST(ValueSyntax, OfLists) {
    const Env env(1);
    const struct {
        const char* text;
        long longs, doubles, words; // how many, or a failure
    } cases[] = {
        {"1,2,3", 3, 3, 3},        {" 1 ,\t2 , 3 ", 3, 3, 3}, {"1,,2", -5, -5, -5},
        {"1,", -5, -5, -5},        {",1", -5, -5, -5},        {"1;2", -5, -5, -5},
        {"1 2", -5, -5, -5},       {"", -5, -5, -5},          {"1.5e-3,2,.25", -5, 3, -5},
        {"1,2\n,x", 2, 2, 2},      {"1,2\r", 2, 2, 2},        {"ab,C3, x9 ", -5, -5, 3},
        {"a_b", -5, -5, -5},       {"a b", -5, -5, -5},       {"a,\xE4", -5, -5, -5},
        {"-1", 1, 1, -5},          {"1,2,3,4", -7, -7, -7},   {"1,2,3,4,", -5, -5, -5},
        {"1,2,3,4,x", -5, -5, -7}, {"abcdefgh", -5, -5, -7},  {"abcdefgh,1", -5, -5, -7},
        {"abcdefg", -5, -5, 1},    {"1d,2D5,3.", -5, 3, -5},
    };
    for (const auto& [text, longs, doubles, words] : cases) {
        env_put(env, "S", "v", text);
        long count = 3, long_values[3];
        double double_values[3];
        char buffers[3][8];
        char* items[] = {buffers[0], buffers[1], buffers[2]};
        EXPECT_EQ(env_get_longs(env, "S", "v", 1, &count, long_values), std::min(longs, 1L)) << text;
        EXPECT_EQ(count, std::max(longs, 0L)) << text;
        EXPECT_EQ(env_get_doubles(env, "S", "v", 1, &(count = 3), double_values), std::min(doubles, 1L))
            << text;
        EXPECT_EQ(count, std::max(doubles, 0L)) << text;
        EXPECT_EQ(env_get_strings(env, "S", "v", 1, &(count = 3), 8, items), std::min(words, 1L)) << text;
        EXPECT_EQ(count, std::max(words, 0L)) << text;
    }
}

} // namespace
