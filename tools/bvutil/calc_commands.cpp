// bvutil calc: expressions, by way of the registered calculator.
#include "tools/bvutil/command.h"
#include "tools/bvutil/commands.h"
#include "tools/bvutil/console.h"
#include "tools/bvutil/json_writer.h"

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
    std::string unit = "degrees";
    std::string form = "general";
    int digits = 0;
    bool comma = false;
    bool json = false;
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

struct Result {
    double value;
    std::string text;
};

// Throws CommandFailed (exit_bad_input) with what the calculator says of the expression.
Result evaluate(const std::string& expression, const CalcOptions& options) {
    TextBuffer text = "";
    calc_expression(expression.c_str(), 0, 0);
    calc_error(1, 3, 1, text);
    if (text != std::to_string(CALC_SUCCESS))
        throw CommandFailed(exit_bad_input, expression + ": " + failure_text(1));
    double value = 0;
    const bool done = ConvStringToDouble("ans", 0, &value) == CALC_SUCCESS;
    if (!done || ConvDoubleToString(value, forms.at(options.form), options.digits, 0, text) != CALC_SUCCESS)
        throw CommandFailed(exit_bad_input, expression + ": " + failure_text(done ? 3 : 2));
    return {value, text};
}

// The results up to the first failure, which ends the list.
void calculate_as_json(const CalcOptions& options) {
    JsonWriter json;
    json.begin_array();
    try {
        for (const std::string& expression : options.expressions) {
            const Result result = evaluate(expression, options);
            json.begin_object().member("expression", expression);
            json.member("value", result.value).member("text", result.text).end_object();
        }
    } catch (const CommandFailed&) {
        json.end_array().print();
        throw;
    }
    json.end_array().print();
}

void calculate(const CalcOptions& options) {
    require_calculator();
    calc_init(units.at(options.unit) | (options.comma ? comma_texts : 0));
    if (options.json) return calculate_as_json(options);
    for (const std::string& expression : options.expressions)
        print(evaluate(expression, options).text + "\n");
}

std::vector<std::string> names_of(const std::map<std::string, int>& codes) {
    std::vector<std::string> names;
    for (const auto& [name, code] : codes)
        names.push_back(name);
    return names;
}

} // namespace

void add_calc_commands(CLI::App& app) {
    const auto options = std::make_shared<CalcOptions>();
    CLI::App* const command =
        add_command(app,
                    {"calc",
                     "Evaluate expressions; variables last from one to the next",
                     {"bvutil calc \"w = 2,5; w * sin(30)\" \"ans / 4\"",
                      "bvutil calc --form fraction --digits 16 \"68.2 / 25.4\"", "bvutil calc -- -2^2"}},
                    [options] { calculate(*options); });
    command
        ->add_option("EXPRESSION", options->expressions,
                     "\"2,5 * sin(30)\", \"a = 3; a^2\"; one that begins with - goes behind --")
        ->required();
    command->add_option("--angles", options->unit, "Unit of angles, degrees unless given")
        ->check(CLI::IsMember(names_of(units)));
    command->add_option("--form", options->form, "Form of the results, general unless given")
        ->check(CLI::IsMember(names_of(forms)));
    command
        ->add_option("--digits", options->digits,
                     "Significant digits, digits behind the point, or the fraction's denominator")
        ->type_name("N");
    command->add_flag("--comma", options->comma, "Decimal comma");
    add_json(command, options->json);
}
