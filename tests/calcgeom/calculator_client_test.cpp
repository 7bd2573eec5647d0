// The client against a scripted calculator: connection, arguments, texts, results.
#include "bvutil/calculator.h"
#include "tests/calcgeom/calculator_server.h"
#include "tests/support/calculator_registration.h"
#include "tests/support/message_boxes.h"
#include "tests/support/second_copy.h"

#include <gtest/gtest.h>

#include <optional>

namespace {

using Calls = std::vector<std::string>;

// A copy of the library without a connection, and a calculator that it may find.
class CalculatorClient : public testing::Test {
  protected:
    void TearDown() override { EXPECT_TRUE(boxes.take().empty()) << "an unexpected message"; }
    void start_server() { registration.emplace(server); }
    // Connects, and forgets the calls that it took.
    void connect() {
        start_server();
        init(0);
        server.take_calls();
    }

    HiddenCalculatorRegistration hidden;
    SecondCopy library;
    MessageBoxWatcher boxes; // after the library: its thread must not start the desktop amid a load
    CalculatorServer server;
    std::optional<CalculatorServer::Registration> registration;

    decltype(calc_init)* init = library.function<decltype(calc_init)>("calc_init");
    decltype(calc_expression)* expression = library.function<decltype(calc_expression)>("calc_expression");
    decltype(calc_error)* error = library.function<decltype(calc_error)>("calc_error");
    decltype(ConvStringToDouble)* to_double =
        library.function<decltype(ConvStringToDouble)>("ConvStringToDouble");
    decltype(ConvDoubleToString)* to_string =
        library.function<decltype(ConvDoubleToString)>("ConvDoubleToString");
};

TEST_F(CalculatorClient, ConnectsOnceAndHoldsOneReference) {
    start_server();
    const LONG factory_references = server.factory_references;
    init(-7);
    EXPECT_EQ(server.take_calls(), (Calls{"create", "query calculator", "17 -7"}));
    EXPECT_EQ(server.object_references, 1);
    EXPECT_EQ(server.factory_references, factory_references);

    registration.reset();
    init(8);
    EXPECT_EQ(server.take_calls(), Calls{"17 8"}) << "no second connection, though the class has gone";
    library.unload();
    EXPECT_EQ(server.object_references, 1) << "dropped at the end, not released";
}

TEST_F(CalculatorClient, TellsOnEveryCallThatTheCalculatorIsMissing) {
    char text[] = "kept";
    double value = 1.5;
    init(1);
    expression("1+1", 2, 3);
    error(4, 5, 6, text);
    EXPECT_EQ(to_double("1", 0, &value), 0x1006);
    EXPECT_EQ(to_string(2, 0, 0, 0, text), 0x1006);
    EXPECT_STREQ(text, "kept");
    EXPECT_EQ(value, 1.5);
    const auto shown = boxes.take();
    EXPECT_EQ(shown.size(), 5u);
    for (const auto& box : shown) {
        EXPECT_EQ(box.text, "Keine Verbindung zum Calculator(COM-Objekt)");
        EXPECT_TRUE(box.has_icon);
    }
}

TEST_F(CalculatorClient, TriesAgainAfterEachFailedStepAndKeepsNoReference) {
    start_server();
    const LONG factory_references = server.factory_references;
    const std::pair<HRESULT*, Calls> steps[] = {{&server.factory_result, {}},
                                                {&server.create_result, {"create"}},
                                                {&server.query_result, {"create", "query calculator"}}};
    for (const auto& [result, calls] : steps) {
        *result = E_NOINTERFACE;
        init(0);
        EXPECT_EQ(server.take_calls(), calls);
        EXPECT_EQ(server.object_references, 0);
        EXPECT_EQ(server.factory_references, factory_references);
        EXPECT_EQ(boxes.take().size(), 1u);
        *result = S_OK;
    }
    init(3);
    EXPECT_EQ(server.take_calls(), (Calls{"create", "query calculator", "17 3"}));
}

TEST_F(CalculatorClient, PassesValuesUnchanged) {
    connect();
    char text[64] = "";
    double value = 0;
    init(-2147483647 - 1);
    expression("x", 2147483647, -1);
    error(1, -2, 3, text);
    to_double("x", 0x1234, &value);
    to_string(-0.125, -1, 0, 70000, text);
    EXPECT_EQ(server.take_calls(),
              (Calls{"17 -2147483648", "18 2147483647 -1", "19 1 -2 3", "20 4660", "21 -0.125 -1 0 70000"}));
}

TEST_F(CalculatorClient, StoresOutputsOnlyOnSuccess) {
    connect();
    server.number = 2.5;
    server.text = L"2.5";
    const struct {
        HRESULT result;
        LONG code;
        int expected;
    } cases[] = {{S_OK, 0x1000, 0x1000}, {S_FALSE, 0x1000, 0x1000}, {S_OK, 0x1001, 0x1001},
                 {S_OK, 0, 0},           {E_FAIL, 0x1000, 0x1006},  {E_FAIL, 0x1001, 0x1006}};
    for (const auto& [result, code, expected] : cases) {
        server.call_result = result;
        server.code = code;
        double value = -1;
        char text[] = "kept", told[] = "kept";
        EXPECT_EQ(to_double("x", 0, &value), expected);
        EXPECT_EQ(to_string(2.5, 0, 0, 0, text), expected);
        error(0, 0, 0, told);
        EXPECT_EQ(value, expected == 0x1000 ? 2.5 : -1);
        EXPECT_STREQ(text, expected == 0x1000 ? "2.5" : "kept");
        EXPECT_STREQ(told, SUCCEEDED(result) ? "2.5" : "kept") << "the code means nothing here";
    }
    server.text = nullptr;
    server.call_result = S_OK;
    server.code = 0x1000;
    char text[] = "kept", told[] = "kept";
    error(0, 0, 0, told);
    EXPECT_EQ(to_string(0, 0, 0, 0, text), 0x1000);
    EXPECT_EQ(std::string(text) + told, "");
}

TEST_F(CalculatorClient, ReadsTextInTheSystemsCodePageAndWritesTheThreads) {
    connect();
    ASSERT_EQ(GetACP(), 1252u);
    const LCID former = GetThreadLocale();
    ASSERT_TRUE(SetThreadLocale(MAKELCID(MAKELANGID(LANG_JAPANESE, SUBLANG_DEFAULT), SORT_DEFAULT)));
    char text[16] = "";
    double value = 0;
    server.text = L"\x3042z";
    to_double("\xE4\x80", 0, &value);
    EXPECT_EQ(server.received, L"\xE4\x20AC");
    EXPECT_EQ(to_string(0, 0, 0, 0, text), 0x1000);
    EXPECT_STREQ(text, "\x82\xA0z");
    SetThreadLocale(former);
    error(0, 0, 0, text);
    EXPECT_STREQ(text, "?z");
}

TEST_F(CalculatorClient, CarriesTextsOfAnyLength) {
    connect();
    const std::string long_in(3'000'000, '7');
    expression(long_in.c_str(), 0, 0);
    EXPECT_EQ(server.received, std::wstring(long_in.size(), L'7'));
    expression("", 0, 0);
    EXPECT_EQ(server.received, L"");
    const std::wstring long_out(1'000'000, L'1');
    std::string text(long_out.size() + 1, '?');
    server.text = long_out.c_str();
    error(0, 0, 0, text.data());
    EXPECT_EQ(text, std::string(long_out.size(), '1') + '\0');
}

TEST_F(CalculatorClient, RefusesNullArgumentsBeforeAnythingElse) {
    double value = 0;
    expression(nullptr, 0, 0);
    error(0, 0, 0, nullptr);
    EXPECT_EQ(to_double(nullptr, 0, &value), 0x1006);
    EXPECT_EQ(to_double("1", 0, nullptr), 0x1006);
    EXPECT_EQ(to_string(1, 0, 0, 0, nullptr), 0x1006);
}

} // namespace
