// bvutil calc: expressions, by way of the registered calculator.
#include "tools/bvutil/commands.h"
#include "tools/bvutil/console.h"

#include "bvutil/calculator.h"

#include <CLI/CLI.hpp>
#include <map>
#include <string>
#include <vector>
#include <windows.h>

#include <objbase.h>

namespace {

// What the options of docs/calculator.md are called here.
const std::map<std::string, int> units = {{"degrees", 0}, {"radians", 1}, {"gradians", 2}};
const std::map<std::string, int> forms = {{"general", 0}, {"fixed", 1}, {"scientific", 2}, {"fraction", 3}};
constexpr int comma_texts = 0x10;

using TextBuffer = char[1024];

struct CalcOptions {
    std::vector<std::string> expressions;
    int unit = 0;
    int form = 0;
    int digits = 0;
    bool comma = false;
};

// The library would show a message box.
void require_calculator() {
    CLSID id;
    CLSIDFromString(L"{9BA593B7-2640-493B-AA8A-B3D9172337C1}", &id);
    IUnknown* factory = nullptr;
    if (FAILED(
            CoGetClassObject(id, CLSCTX_SERVER, nullptr, IID_IUnknown, reinterpret_cast<void**>(&factory))))
        throw CommandFailed(exit_failed, "no calculator is registered; register the one that comes with the "
                                         "library: regsvr32 BvCalc.dll");
    factory->Release();
}

// The English text for the last failure of this kind of call.
std::string failure_text(int call) {
    TextBuffer text = "";
    calc_error(call, 0, 1, text);
    return text;
}

void print_result(const std::string& expression, const CalcOptions& options) {
    TextBuffer text = "";
    calc_expression(expression.c_str(), 0, 0);
    calc_error(1, 3, 1, text);
    if (text != std::to_string(CALC_SUCCESS))
        throw CommandFailed(exit_bad_input, expression + ": " + failure_text(1));
    double value = 0;
    const bool done = ConvStringToDouble("ans", 0, &value) == CALC_SUCCESS;
    if (!done || ConvDoubleToString(value, options.form, options.digits, 0, text) != CALC_SUCCESS)
        throw CommandFailed(exit_bad_input, expression + ": " + failure_text(done ? 3 : 2));
    print(std::string(text) + "\n");
}

} // namespace

void add_calc_commands(CLI::App& app) {
    auto* command = app.add_subcommand("calc", "Evaluates expressions; variables last from one to the next.");
    auto options = std::make_shared<CalcOptions>();
    command
        ->add_option("expression", options->expressions,
                     "\"2,5 * sin(30)\", \"a = 3; a^2\"; -- before a sign")
        ->required();
    command->add_option("--angles", options->unit, "degrees, radians or gradians")
        ->transform(CLI::CheckedTransformer(units));
    command->add_option("--form", options->form, "general, fixed, scientific or fraction")
        ->transform(CLI::CheckedTransformer(forms));
    command->add_option("--digits", options->digits,
                        "Significant digits, digits behind the point, or the fraction's denominator");
    command->add_flag("--comma", options->comma, "Decimal comma");
    command->callback([options] {
        require_calculator();
        calc_init(options->unit | (options->comma ? comma_texts : 0));
        for (const std::string& expression : options->expressions)
            print_result(expression, *options);
    });
}
