// The calculator behind BvCalc.dll: expressions, number texts, failures and their places.
#include "components/calculator/calculator.h"
#include "components/calculator/number_text.h"
#include "tests/support/rows.h"

#include <cmath>
#include <cstring>
#include <random>
#include <sstream>

namespace {

std::u16string wide(const std::string& latin1) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(latin1.data());
    return {bytes, bytes + latin1.size()};
}
// What calc_error tells of a call.
std::string told(const Calculator& calculator, int which, int part = 0, int language = 1) {
    std::string latin1;
    for (const char16_t c : calculator.error_text(which, part, language))
        latin1 += static_cast<char>(c);
    return latin1;
}
// The value that a text has to 14 digits, or its failure.
std::string value_of(Calculator& calculator, const std::string& text, int option = 0) {
    double value = 0;
    std::ostringstream printed;
    printed.precision(14);
    const Code code = calculator.string_to_double(wide(text), option, value);
    printed << value;
    return code == Code::success ? printed.str() : told(calculator, 2);
}

TEST(Expressions, HaveTheseValuesOrFailAtAPlace) {
    const auto result_of = [](const std::string& text) {
        Calculator calculator;
        calculator.expression(wide(text), 0, 1);
        return told(calculator, 0, 3) == "4096" ? value_of(calculator, "r1") : told(calculator, 1);
    };
    expect_rows(result_of, "1+2*3-4/8 -> 6.5", "-2^2 -> -4", "2^3^2 -> 512", "2^-3^2*1024 -> 2",
                "-3*-2--1 -> 7", "8/4/2 -> 1", "7-4-2 -> 1", " ( 1,5 + .5 ) * 2.  -> 4",
                "1e3+1E-3 -> 1000.001", "0^0 -> 1", "(-8)^3 -> -512", "sin(180) -> 0", "SIN(30) -> 0.5",
                "sin(-390) -> -0.5", "cos(60)+cos(90)+cos(-240) -> 0",
                "tan(45)+tan(-45)+tan(135)+tan(225) -> 0", "tan(180) -> 0", "atan2(-1;-1) -> -135",
                "asin(,5)+acos(0.5)+acos(-.5)+atan(1) -> 255", "rad(180)-pi -> 0", "deg(pi) -> 180",
                "ln(e)+log(1000)+log(8;2) -> 7", "mod(-7;3)+mod(7;-3) -> 0",
                "max(1;2,5;-3)+min(4;3;9) -> 5.5",
                "round(2.5)+round(-2.5)+trunc(-1.7)+floor(-1.2)+ceil(1.2)+frac(-1.25) -> -1.25",
                "hypot(3;4)+sqrt(16)+cbrt(27)+abs(-1)+sgn(-9) -> 12", "1e-400 -> 0", "a=b=3;a*b; -> 9",
                "x=2;x=x+1;x*x -> 9");
    expect_rows(
        result_of, " -> the text is empty at position 1", "   -> the text is empty at position 3",
        "1+ -> syntax error at position 3", "1 2 -> syntax error at position 3",
        "2e -> syntax error at position 2", "1.234,5 -> syntax error at position 1",
        "2*\xA7 -> syntax error at position 3", "() -> syntax error at position 2",
        "1;;2 -> syntax error at position 3", "(1;2) -> syntax error at position 3",
        "sin 30 -> syntax error at position 5", "1+foo*2 -> unknown name at position 3",
        "1+max(1,5) -> wrong number of arguments at position 3",
        "sin(1;2) -> wrong number of arguments at position 1", "1/(2-2) -> division by zero at position 2",
        "mod(1;0) -> division by zero at position 1", "0^-1 -> division by zero at position 2",
        "(-8)^0.5 -> argument outside the domain at position 5",
        "2+sqrt(-1) -> argument outside the domain at position 3",
        "tan(90) -> argument outside the domain at position 1",
        "tan(-270) -> argument outside the domain at position 1",
        "log(8;1) -> argument outside the domain at position 1", "1e308*10 -> number too large at position 6",
        "1e309 -> number too large at position 1", "9^9^9^9 -> number too large at position 4",
        "2+0,001e99999999999999999999 -> number too large at position 3",
        "((1) -> unmatched parenthesis at position 1", "1+(2)) -> unmatched parenthesis at position 6",
        "pi=3 -> assignment not allowed at position 1", "1+a=2 -> assignment not allowed at position 4");
    const std::string deep(100'000, '('), minuses(100'000, '-'), zeros(10'000, '0'), name(33, 'a');
    for (const auto& [text, position] : {std::pair{deep, 1001},
                                         {deep + "1" + std::string(100'000, ')'), 1001},
                                         {minuses + "1", 1001},
                                         {"1+1" + zeros, 3},
                                         {"0." + zeros + "1", 1},
                                         {name + "=1", 1}})
        EXPECT_EQ(result_of(text), "expression too complex at position " + std::to_string(position));
    std::string sum = "1";
    for (int i = 1; i < 200'000; ++i)
        sum += "+1";
    EXPECT_EQ(result_of(sum), "200000") << "length alone is no failure";
}

TEST(Expressions, AFailureChangesNoVariable) {
    Calculator calculator;
    calculator.expression(u"a=1", 0, 7);
    calculator.expression(u"a=5;b=6;1/0", 0, 8);
    expect_rows([&](const std::string& text) { return value_of(calculator, text); }, "a+10*ans+100*r7 -> 111",
                "b -> unknown name at position 1", "r8 -> unknown name at position 1",
                "c=1 -> assignment not allowed at position 1", "1;2 -> assignment not allowed at position 3");
}

TEST(Expressions, GoOnWithAsManyVariablesAsThereCanBe) {
    Calculator calculator;
    for (int i = 1; i < 10'000; ++i) // ans is one of them
        calculator.expression(wide("v" + std::to_string(i) + "=1"), 0, 0);
    expect_rows(
        [&](const std::string& text) {
            calculator.expression(wide(text), 0, 0);
            return told(calculator, 1);
        },
        "v1=v2=v3=7 -> no error", "v1=8; w=9 -> expression too complex at position 7");
    calculator.expression(u"8", 0, 1);
    EXPECT_EQ(told(calculator, 1), "expression too complex");
    EXPECT_EQ(value_of(calculator, "v3+ans"), "14");
}

TEST(Options, ChooseTheAngleUnit) {
    Calculator calculator;
    for (const auto& [option, expected] :
         {std::pair{0, "1"}, {0x10, "1"}, {0x20, "0.89399666360056"}, {0x30, "0.98768834059514"}})
        EXPECT_EQ(value_of(calculator, "sin(90)", option), expected);
    calculator.init(2);
    EXPECT_EQ(value_of(calculator, "sin(100)"), "1");
    calculator.expression(u"acos(0)", 2, 0);
    EXPECT_EQ(told(calculator, 0, 4), "1.5707963267948966");
}

TEST(Options, UnknownOnesAreRefusedAndChangeNothing) {
    Calculator calculator;
    calculator.expression(u"v=42", 0, 0);
    for (const int option : {3, 0x20, 0x200, -1}) {
        calculator.init(option);
        EXPECT_EQ(told(calculator, 4), "invalid option");
    }
    for (const auto& [angle, destination] : {std::pair{4, 0}, {0, 100}, {-1, 0}, {0, -1}}) {
        calculator.expression(u"1", angle, destination);
        EXPECT_EQ(told(calculator, 1), "invalid option");
    }
    EXPECT_EQ(value_of(calculator, "ans"), "42");
    for (const int option : {2, 0x40, 0x11, -16})
        EXPECT_EQ(value_of(calculator, "1", option), "invalid option") << option;
    std::string text = "kept";
    const int bad[][3] = {{4, 0, 0},  {-1, 0, 0}, {0, 18, 0}, {0, -1, 0}, {1, 16, 0},   {2, 17, 0},
                          {2, -2, 0}, {3, 1, 0},  {3, 0, 0},  {0, 0, 3},  {0, 0, 0x10}, {3, 2000000, 0}};
    for (const auto& [form, digits, flags] : bad)
        EXPECT_EQ(calculator.double_to_string(1, form, digits, flags, text), Code::bad_option);
    EXPECT_EQ(text, "kept");
    calculator.init(0x100);
    EXPECT_EQ(value_of(calculator, "v"), "42");
    calculator.init(0);
    EXPECT_EQ(value_of(calculator, "v"), "unknown name at position 1");
}

TEST(NumberTexts, AreWrittenSo) {
    Calculator calculator;
    const auto written = [&](double value, int form, int digits, int flags) {
        std::string text = "kept";
        const Code code = calculator.double_to_string(value, form, digits, flags, text);
        return code == Code::success || text != "kept" ? text : told(calculator, 3);
    };
    // Number, form, digits and flags.
    expect_rows(
        [&](const std::string& row) {
            std::istringstream in(row);
            double value;
            int form, digits, flags;
            in >> value >> form >> digits >> flags;
            return written(value, form, digits, flags);
        },
        "0.1 0 0 0 -> 0.1", "-1234.5 0 0 2 -> -1234,5", "1200 0 0 0 -> 1200",
        "0.66666666666 0 4 4 -> +0.6667", "2.5 0 4 8 -> 2.500", "1e15 0 0 0 -> 1e+15",
        "-1.5e-7 0 0 0 -> -1.5e-07", "0.00001 0 0 0 -> 0.00001", "999999 0 3 0 -> 1000000", "-0.0 0 0 4 -> 0",
        "1.005 1 2 0 -> 1.00", "-0.004 1 2 0 -> 0.00", "99.5 1 0 2 -> 100", "1e15 1 2 0 -> number too large",
        "123456.789 2 3 0 -> 1.235e+05", "1e-300 2 -1 0 -> 1e-300", "5.375 3 8 0 -> 5 3/8",
        "-0.25 3 16 0 -> -1/4", "-0.25 3 16 8 -> -4/16", "2.999 3 64 0 -> 3", "0 3 64 4 -> 0",
        "100000000000000.5 3 2 0 -> 100000000000000 1/2", "-1e300 3 2 0 -> number too large");
    EXPECT_EQ(written(std::nan(""), 0, 0, 0), "not a finite number");
    EXPECT_EQ(written(-INFINITY, 2, 0, 0), "not a finite number");
    calculator.init(0x10);
    EXPECT_EQ(written(0.5, 0, 0, 0), "0,5");
    EXPECT_EQ(written(0.5, 0, 0, 1), "0.5");
}

TEST(NumberTexts, AreReadSo) {
    const std::string huge = "17" + std::string(307, '0');
    expect_rows(
        [](const std::string& text) {
            Calculator calculator;
            return value_of(calculator, text, 1);
        },
        " -5 3/8  -> -5.375", "3/8 -> 0.375", "+,5 -> 0.5", "12e-1 -> 1.2",
        "5 3 -> syntax error at position 4", "1.5/2 -> syntax error at position 4",
        "1/0 -> division by zero at position 2", "1/2.5 -> syntax error at position 3",
        "2+3 -> syntax error at position 2", "pi -> syntax error at position 1",
        "- 1 -> syntax error at position 2", " -> the text is empty at position 1",
        "1e999 -> number too large at position 1",
        "-" + huge + " " + huge + "/1 -> number too large at position 2",
        "1 2/ -> syntax error at position 5", "1,2,3 -> syntax error at position 1");
}

TEST(NumberTexts, ReadBackAsTheSameNumber) {
    Calculator calculator;
    std::mt19937_64 random(1);
    for (int i = 0; i < 20'000; ++i) {
        double value = 0, back = 0;
        const std::uint64_t bits = random();
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isfinite(value)) continue;
        std::string text;
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
    value_of(calculator, "(2");
    // Call or code, part and language; asking changes nothing.
    expect_rows(
        [&](const std::string& row) {
            std::istringstream in(row);
            int which, part, language;
            in >> which >> part >> language;
            return told(calculator, which, part, language);
        },
        "0 0 0 -> Klammer ohne Gegenst\xFC"
        "ck an Stelle 1",
        "1 0 1 -> division by zero at position 2", "1 1 0 -> Division durch null", "3 0 0 -> Kein Fehler",
        "4099 0 1 -> unknown name", "5 0 1 -> invalid option", "4102 0 1 -> invalid option",
        "0 5 1 -> invalid option", "4097 1 1 -> syntax error", "4098 1 1 -> the text is empty",
        "4100 1 1 -> invalid option", "4101 1 1 -> wrong number of arguments", "4103 1 1 -> division by zero",
        "4104 1 1 -> argument outside the domain", "4105 1 1 -> number too large",
        "4106 1 1 -> expression too complex", "4108 1 1 -> assignment not allowed",
        "4109 1 1 -> not a finite number", "0 0 2 -> Ung\xFCltige Option", "0 3 0 -> 4107", "0 2 0 -> 1");
}

} // namespace
