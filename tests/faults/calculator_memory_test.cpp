// The calculator's client without memory, or without the calculator: one code, and the outputs untouched.
#include "bvutil/calculator.h"
#include "tests/calcgeom/calculator_server.h"
#include "tests/faults/memory_faults.h"
#include "tests/support/calculator_registration.h"
#include "tests/support/message_boxes.h"

namespace {

TEST(CalculatorMemory, ConvertsOrCannotReach) {
    const HiddenCalculatorRegistration hidden;
    CalculatorServer server;
    server.number = 2.5;
    server.text = L"two and a half, and nothing that is kept";
    const CalculatorServer::Registration registration(server);
    const MessageBoxWatcher boxes;
    memory_faults::fail_each_allocation([&](memory_faults::Fault& fault) {
        double value = 7;
        char text[100] = "before";
        fault([] { calc_init(0); });
        fault([] { calc_expression("1 + 1.5", 0, 0); });
        const bool number =
            fault.succeeds(0x1000, 0x1006, [&] { return ConvStringToDouble("2,5", 0, &value); });
        EXPECT_EQ(value, number ? 2.5 : 7);
        fault.succeeds(0x1000, 0x1006, [&] { return ConvDoubleToString(2.5, 0, 0, 0, text); });
        fault([&] { calc_error(0, 0, 0, text); });
        EXPECT_STREQ(text, "two and a half, and nothing that is kept");
    });
}

} // namespace
