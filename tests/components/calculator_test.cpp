// The calculator behind BvCalc.dll: expressions, number texts, failures and their places.
#include "components/calculator/calculator.h"
#include "components/calculator/number_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace {

std::u16string wide(const std::string& latin1) {
    std::u16string text;
    for (const char c : latin1)
        text += static_cast<unsigned char>(c);
    return text;
}
std::string narrow(const std::u16string& text) {
    std::string latin1;
    for (const char16_t c : text)
        latin1 += static_cast<char>(c);
    return latin1;
}

// Code and position of the last failure, as calc_error tells them.
std::string failure_of(const Calculator& calculator) {
    return narrow(calculator.error_text(0, 3, 0)) + "@" + narrow(calculator.error_text(0, 2, 0));
}

TEST(Expressions, HaveTheseValues) {
    const struct {
        const char* text;
        double value;
    } cases[] = {
        {"1+2*3-4/8", 6.5},
        {"-2^2", -4},
        {"2^3^2", 512},
        {"2^-3^2*1024", 2},
        {"-3*-2--1", 7},
        {"8/4/2", 1},
        {"7-4-2", 1},
        {" ( 1,5 + .5 ) * 2. ", 4},
        {"1e3+1E-3", 1000.001},
        {"0^0", 1},
        {"(-8)^3", -512},
        {"sin(180)", 0},
        {"SIN(30)", 0.5},
        {"sin(-390)", -0.5},
        {"cos(60)+cos(90)+cos(-240)", 0},
        {"tan(45)+tan(-45)+tan(135)+tan(225)", 0},
        {"tan(180)", 0},
        {"asin(,5)+acos(0.5)+acos(-.5)+atan(1)", 30 + 60 + 120 + 45},
        {"atan2(-1;-1)", -135},
        {"rad(180)-pi", 0},
        {"deg(pi)", 180},
        {"ln(e)+log(1000)+log(8;2)", 7},
        {"mod(-7;3)+mod(7;-3)", 0},
        {"max(1;2,5;-3)+min(4;3;9)", 5.5},
        {"round(2.5)+round(-2.5)+trunc(-1.7)+floor(-1.2)+ceil(1.2)+frac(-1.25)", -1.25},
        {"hypot(3;4)+sqrt(16)+cbrt(27)+abs(-1)+sgn(-9)", 12},
        {"1e-400", 0},
        {"a=b=3;a*b;", 9},
        {"x=2;x=x+1;x*x", 9},
    };
    for (const auto& row : cases) {
        Calculator calculator;
        calculator.expression(wide(row.text), 0, 0);
        double value = 99;
        EXPECT_EQ(failure_of(calculator), "4096@0") << row.text;
        EXPECT_EQ(calculator.string_to_double(u"ans", 0, value), Code::success);
        EXPECT_NEAR(value, row.value, 1e-13 * std::fabs(row.value)) << row.text;
    }
}

TEST(Expressions, FailAtAPlace) {
    const std::string deep(100'000, '(');
    const struct {
        std::string text;
        int code;
        std::size_t position;
    } cases[] = {
        {"", 0x1002, 1},
        {"  ", 0x1002, 3},
        {"1+", 0x1001, 3},
        {"1 2", 0x1001, 3},
        {"2e", 0x1001, 2},
        {"1.234,5", 0x1001, 1},
        {"2*\xA7", 0x1001, 3},
        {"()", 0x1001, 2},
        {"1;;2", 0x1001, 3},
        {"(1;2)", 0x1001, 3},
        {"sin 30", 0x1001, 5},
        {"1+foo*2", 0x1003, 3},
        {"1+max(1,5)", 0x1005, 3},
        {"sin(1;2)", 0x1005, 1},
        {"1/(2-2)", 0x1007, 2},
        {"mod(1;0)", 0x1007, 1},
        {"0^-1", 0x1007, 2},
        {"(-8)^0.5", 0x1008, 5},
        {"2+sqrt(-1)", 0x1008, 3},
        {"tan(90)", 0x1008, 1},
        {"tan(-270)", 0x1008, 1},
        {"log(8;1)", 0x1008, 1},
        {"1e308*10", 0x1009, 6},
        {"1e309", 0x1009, 1},
        {"2+0,001e99999999999999999999", 0x1009, 3},
        {"9^9^9^9", 0x1009, 4},
        {"((1)", 0x100B, 1},
        {"1+(2))", 0x100B, 6},
        {"pi=3", 0x100C, 1},
        {"1+a=2", 0x100C, 4},
        {deep, 0x100A, 1001},
        {deep + "1" + std::string(100'000, ')'), 0x100A, 1001},
        {std::string(100'000, '-') + "1", 0x100A, 1001},
        {"1+" + std::string(10'000, '7'), 0x100A, 3},
        {"0." + std::string(10'000, '0') + "1", 0x100A, 1},
        {std::string(33, 'a') + "=1", 0x100A, 1},
    };
    for (const auto& row : cases) {
        Calculator calculator;
        calculator.expression(wide(row.text), 0, 1);
        EXPECT_EQ(failure_of(calculator), std::to_string(row.code) + "@" + std::to_string(row.position))
            << row.text.substr(0, 40);
    }
    Calculator calculator;
    std::string sum = "1";
    for (int i = 1; i < 200'000; ++i)
        sum += "+1";
    calculator.expression(wide(sum), 0, 0);
    EXPECT_EQ(narrow(calculator.error_text(0, 4, 0)), "200000") << "length alone is no failure";
}

TEST(Expressions, AFailureChangesNoVariable) {
    Calculator calculator;
    calculator.expression(u"a=1", 0, 7);
    calculator.expression(u"a=5;b=6;1/0", 0, 8);
    double value = 0;
    calculator.string_to_double(u"a+10*ans+100*r7", 0, value);
    EXPECT_EQ(value, 111);
    EXPECT_EQ(calculator.string_to_double(u"b", 0, value), Code::unknown_name);
    EXPECT_EQ(calculator.string_to_double(u"r8", 0, value), Code::unknown_name);
    EXPECT_EQ(calculator.string_to_double(u"c=1", 0, value), Code::assignment);
    EXPECT_EQ(calculator.string_to_double(u"1;2", 0, value), Code::assignment);
    EXPECT_EQ(value, 111);
}

TEST(Expressions, GoOnWithAsManyVariablesAsThereCanBe) {
    Calculator calculator;
    for (int i = 1; i < 10'000; ++i) // ans is one of them
        calculator.expression(wide("v" + std::to_string(i) + "=1"), 0, 0);
    calculator.expression(u"v1=v2=v3=7", 0, 0);
    EXPECT_EQ(failure_of(calculator), "4096@0");
    calculator.expression(u"v1=8; w=9", 0, 0);
    EXPECT_EQ(failure_of(calculator), "4106@7");
    calculator.expression(u"8", 0, 1);
    EXPECT_EQ(failure_of(calculator), "4106@0");
    double value = 0;
    calculator.string_to_double(u"v3+ans", 0, value);
    EXPECT_EQ(value, 14);
}

TEST(Options, ChooseTheAngleUnit) {
    Calculator calculator;
    double value = 0;
    for (const auto& [option, expected] :
         {std::pair{0x00, 1.0}, {0x10, 1.0}, {0x20, 0.893996663600558}, {0x30, 0.987688340595138}}) {
        EXPECT_EQ(calculator.string_to_double(u"sin(90)", option, value), Code::success);
        EXPECT_NEAR(value, expected, 1e-14);
    }
    calculator.init(2);
    calculator.string_to_double(u"sin(100)", 0, value);
    EXPECT_EQ(value, 1);
    calculator.expression(u"acos(0)", 2, 0);
    EXPECT_EQ(narrow(calculator.error_text(0, 4, 0)), "1.5707963267948966");
}

TEST(Options, UnknownOnesAreRefusedAndChangeNothing) {
    Calculator calculator;
    calculator.expression(u"v=42", 0, 0);
    for (const int option : {3, 0x20, 0x200, -1})
        calculator.init(option);
    EXPECT_EQ(failure_of(calculator), "4100@0");
    calculator.expression(u"1", 4, 0);
    calculator.expression(u"1", 0, 100);
    calculator.expression(u"1", -1, 0);
    double value = 0;
    std::string text;
    EXPECT_EQ(calculator.string_to_double(u"ans", 0, value), Code::success);
    EXPECT_EQ(value, 42);
    for (const int option : {2, 0x40, 0x11, -16})
        EXPECT_EQ(calculator.string_to_double(u"1", option, value), Code::bad_option) << option;
    const int bad[][3] = {{4, 0, 0},  {-1, 0, 0}, {0, 18, 0}, {0, -1, 0}, {1, 16, 0},   {2, 17, 0},
                          {2, -2, 0}, {3, 1, 0},  {3, 0, 0},  {0, 0, 3},  {0, 0, 0x10}, {3, 2000000, 0}};
    for (const auto& row : bad)
        EXPECT_EQ(calculator.double_to_string(1, row[0], row[1], row[2], text), Code::bad_option);
    EXPECT_EQ(text, "");
    calculator.init(0x100);
    EXPECT_EQ(calculator.string_to_double(u"v", 0, value), Code::success);
    calculator.init(0);
    EXPECT_EQ(calculator.string_to_double(u"v", 0, value), Code::unknown_name);
}

TEST(NumberTexts, AreWrittenSo) {
    const struct {
        double value;
        int form, digits, flags;
        const char* text;
    } cases[] = {
        {0.1, 0, 0, 0, "0.1"},
        {-1234.5, 0, 0, 2, "-1234,5"},
        {1200, 0, 0, 0, "1200"},
        {2.0 / 3, 0, 4, 4, "+0.6667"},
        {2.5, 0, 4, 8, "2.500"},
        {1e15, 0, 0, 0, "1e+15"},
        {-1.5e-7, 0, 0, 0, "-1.5e-07"},
        {0.00001, 0, 0, 0, "0.00001"},
        {999999, 0, 3, 0, "1000000"},
        {-0.0, 0, 0, 4, "0"},
        {1.005, 1, 2, 0, "1.00"},
        {-0.004, 1, 2, 0, "0.00"},
        {99.5, 1, 0, 2, "100"},
        {123456.789, 2, 3, 0, "1.235e+05"},
        {1e-300, 2, -1, 0, "1e-300"},
        {5.375, 3, 8, 0, "5 3/8"},
        {-0.25, 3, 16, 0, "-1/4"},
        {-0.25, 3, 16, 8, "-4/16"},
        {2.999, 3, 64, 0, "3"},
        {0, 3, 64, 4, "0"},
        {100000000000000.5, 3, 2, 0, "100000000000000 1/2"},
    };
    Calculator calculator;
    for (const auto& row : cases) {
        std::string text;
        EXPECT_EQ(calculator.double_to_string(row.value, row.form, row.digits, row.flags, text),
                  Code::success);
        EXPECT_EQ(text, row.text);
    }
    std::string text = "kept";
    EXPECT_EQ(calculator.double_to_string(1e15, 1, 2, 0, text), Code::overflow);
    EXPECT_EQ(calculator.double_to_string(-1e300, 3, 2, 0, text), Code::overflow);
    EXPECT_EQ(calculator.double_to_string(std::nan(""), 0, 0, 0, text), Code::not_finite);
    EXPECT_EQ(calculator.double_to_string(-INFINITY, 2, 0, 0, text), Code::not_finite);
    EXPECT_EQ(text, "kept");
    calculator.init(0x10);
    calculator.double_to_string(0.5, 0, 0, 0, text);
    EXPECT_EQ(text, "0,5");
    calculator.double_to_string(0.5, 0, 0, 1, text);
    EXPECT_EQ(text, "0.5");
}

TEST(NumberTexts, AreReadSo) {
    const std::string huge = "17" + std::string(307, '0');
    const struct {
        std::string text;
        Code code;
        double value; // or the position
    } cases[] = {
        {" -5 3/8 ", Code::success, -5.375},
        {"3/8", Code::success, 0.375},
        {"+,5", Code::success, 0.5},
        {"12e-1", Code::success, 1.2},
        {"5 3", Code::syntax, 4},
        {"1.5/2", Code::syntax, 4},
        {"1/0", Code::division_by_zero, 2},
        {"1/2.5", Code::syntax, 3},
        {"2+3", Code::syntax, 2},
        {"pi", Code::syntax, 1},
        {"- 1", Code::syntax, 2},
        {"", Code::empty, 1},
        {"1e999", Code::overflow, 1},
        {"-" + huge + " " + huge + "/1", Code::overflow, 2},
        {"1 2/", Code::syntax, 5},
        {"1,2,3", Code::syntax, 1},
    };
    for (const auto& row : cases) {
        Calculator calculator;
        double value = -1;
        EXPECT_EQ(calculator.string_to_double(wide(row.text), 1, value), row.code) << row.text;
        if (row.code == Code::success)
            EXPECT_EQ(value, row.value) << row.text;
        else
            EXPECT_EQ(narrow(calculator.error_text(2, 2, 0)), std::to_string(int(row.value))) << row.text;
    }
}

TEST(NumberTexts, ReadBackAsTheSameNumber) {
    Calculator calculator;
    std::mt19937_64 random(1);
    for (int i = 0; i < 20'000; ++i) {
        double value = 0;
        const std::uint64_t bits = random();
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isfinite(value)) continue;
        std::string text;
        double back = 0;
        const int form = i % 2 * 2;
        ASSERT_EQ(calculator.double_to_string(value, form, form ? 16 : 0, i % 16 & 0xE, text), Code::success);
        ASSERT_LE(text.size(), longest_number_text);
        ASSERT_EQ(calculator.string_to_double(wide(text), i % 2, back), Code::success) << text;
        ASSERT_EQ(back, value) << text;
    }
}

TEST(Failures, AreToldInWords) {
    Calculator calculator;
    calculator.expression(u"1/0", 0, 0);
    double value = 0;
    calculator.string_to_double(u"(2", 0, value);
    EXPECT_EQ(narrow(calculator.error_text(0, 0, 0)), "Klammer ohne Gegenst\xFC"
                                                      "ck an Stelle 1");
    EXPECT_EQ(narrow(calculator.error_text(1, 0, 1)), "division by zero at position 2");
    EXPECT_EQ(narrow(calculator.error_text(1, 1, 0)), "Division durch null");
    EXPECT_EQ(narrow(calculator.error_text(3, 0, 0)), "Kein Fehler");
    EXPECT_EQ(narrow(calculator.error_text(0x1003, 0, 1)), "unknown name");
    for (const auto& [which, part, language] : {std::array{5, 0, 1}, {0x1006, 0, 1}, {0, 5, 1}})
        EXPECT_EQ(narrow(calculator.error_text(which, part, language)), "invalid option");
    EXPECT_EQ(narrow(calculator.error_text(0, 0, 2)), "Ung\xFCltige Option");
    EXPECT_EQ(narrow(calculator.error_text(0, 2, 0)), "1") << "asking changes nothing";
}

} // namespace
