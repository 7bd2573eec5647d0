#include "module/text_to_double.h"

#include "tests/support/rows.h"

namespace {

TEST(TextToDouble, ReadsTheLeadingNumber) {
    const std::string zeros(400, '0');
    expect_rows(
        [](const std::string& text) {
            char printed[32];
            std::snprintf(printed, sizeof printed, "%.17g", text_to_double(text));
            return std::string(printed);
        },
        "12abc -> 12", "abc -> 0", " -> 0", " \t\r\n\v\f-7 -> -7", "+.5 -> 0.5", "5. -> 5", ". -> 0",
        "-.e3 -> 0", "1e -> 1", "1e+ -> 1", "2.E5 -> 200000", "1d5 -> 100000",
        "1.5D-2x -> 0.014999999999999999", "1d -> 1", "0x10 -> 0", "inf -> 0", "nan -> 0", "+-1 -> 0",
        "1,5 -> 1", "0.1 -> 0.10000000000000001", "1e400 -> inf", "-1e400 -> -inf", "1e99999999999 -> inf",
        "1e-99999999999 -> 0", "1d400 -> inf", "4.9e-324 -> 4.9406564584124654e-324", "1e-400 -> 0",
        "-0 -> -0", "-1e-400 -> -0", "123456789012345678901234567890 -> 1.2345678901234568e+29",
        // Long mantissas are weighed against exponents.
        "0." + zeros + "1e401 -> 1", "1" + zeros + "e-400 -> 1", "1" + zeros + " -> inf",
        "0." + zeros + "1 -> 0", "0." + zeros + "e999999 -> 0");
}

} // namespace
