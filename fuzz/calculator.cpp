// Any text through the calculator. What it accepts is finite and, written in the general form, reads back as
// the same number; what it refuses has a place in the text; neither changes how the text is read again.
#include "components/calculator/calculator.h"
#include "components/calculator/failure_text.h"
#include "components/calculator/number_text.h"
#include "fuzz/require.h"

#include <cmath>

namespace {

void check_round_trip(Calculator& calculator, double value) {
    require(std::isfinite(value));
    for (const int form : {0, 2}) {
        std::string text;
        require(calculator.double_to_string(value, form, -form / 2, 2, text) == Code::success);
        require(text.size() <= longest_number_text);
        for (const int option : {0, 1}) {
            double back = 0;
            require(calculator.string_to_double(widened(text), option, back) == Code::success);
            require(back == value);
        }
    }
    std::string text;
    for (const int denominator : {2, 64, 1'000'000})
        if (calculator.double_to_string(value, 3, denominator, 0, text) == Code::success) {
            double back = 0;
            require(calculator.string_to_double(widened(text), 1, back) == Code::success);
            // Half a unit, and the rounding of the sum.
            require(std::fabs(back - value) <= 0.5 / denominator + 1e-15 * std::fabs(value) + 1e-15);
        }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::u16string text(data, data + size);
    Calculator calculator;
    calculator.expression(u"a=3;b=-0,5", 0, 0);
    for (const int option : {0, 1, 0x20, 0x30}) {
        double value = 0;
        double again = 0;
        const Code code = calculator.string_to_double(text, option, value);
        const std::u16string position = calculator.error_text(2, 2, 0);
        require(calculator.string_to_double(text, option, again) == code);
        if (code == Code::success) {
            require(value == again);
            check_round_trip(calculator, value);
        } else {
            const auto place = std::stoul(std::string(position.begin(), position.end()));
            require(place >= 1 && place <= size + 1 && value == 0);
        }
    }
    calculator.expression(text, 0, 1);
    return 0;
}
