#include "bvutil/calculator.h"

#include "calcgeom/bstr_text.h"
#include "calcgeom/calculator_connection.h"
#include "module/own_arithmetic.h"

extern "C" void BVUTIL_CALL calc_init(int option) {
    guarded([&] {
        if (ICalculator* calculator = connected_calculator())
            with_own_arithmetic([&] { return calculator->init(option); });
    });
}

extern "C" void BVUTIL_CALL calc_expression(const char* expression, int option1, int option2) {
    guarded([&] {
        if (!expression) return;
        if (ICalculator* calculator = connected_calculator())
            with_own_arithmetic(
                [&] { return calculator->expression(to_bstr(expression).get(), option1, option2); });
    });
}

extern "C" void BVUTIL_CALL calc_error(int option1, int option2, int option3, char* text) {
    guarded([&] {
        if (!text) return;
        ICalculator* calculator = connected_calculator();
        if (!calculator) return;
        unique_bstr message;
        const HRESULT told =
            with_own_arithmetic([&] { return calculator->error(option1, option2, option3, message.put()); });
        if (SUCCEEDED(told)) copy_to_buffer(message, text);
    });
}

extern "C" int BVUTIL_CALL ConvStringToDouble(const char* text, int option, double* value) {
    return guarded(int{calculator_not_reachable}, [&]() -> int {
        if (!text || !value) return calculator_not_reachable;
        ICalculator* calculator = connected_calculator();
        if (!calculator) return calculator_not_reachable;
        double result = 0;
        LONG code = calculator_not_reachable;
        const HRESULT done = with_own_arithmetic(
            [&] { return calculator->string_to_double(to_bstr(text).get(), option, &result, &code); });
        if (FAILED(done)) return calculator_not_reachable;
        if (code == calculator_success) *value = result;
        return code;
    });
}

extern "C" int BVUTIL_CALL ConvDoubleToString(double value, int option1, int option2, int option3,
                                              char* text) {
    return guarded(int{calculator_not_reachable}, [&]() -> int {
        if (!text) return calculator_not_reachable;
        ICalculator* calculator = connected_calculator();
        if (!calculator) return calculator_not_reachable;
        unique_bstr result;
        LONG code = calculator_not_reachable;
        const HRESULT done = with_own_arithmetic([&] {
            return calculator->double_to_string(value, option1, option2, option3, result.put(), &code);
        });
        if (FAILED(done)) return calculator_not_reachable;
        if (code == calculator_success) copy_to_buffer(result, text);
        return code;
    });
}
