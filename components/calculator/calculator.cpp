#include "components/calculator/calculator.h"

#include "components/calculator/failure_text.h"
#include "components/calculator/number_text.h"

namespace {

constexpr char result_name[] = "ans";

// calc_init.
constexpr std::int32_t init_angle = 0xF;
constexpr std::int32_t init_comma = 0x10;
constexpr std::int32_t init_keep = 0x100;

// ConvStringToDouble.
constexpr std::int32_t string_is_number = 0x1;
constexpr int string_angle_shift = 4;

// ConvDoubleToString.
constexpr std::int32_t number_point = 0x1;
constexpr std::int32_t number_comma = 0x2;
constexpr std::int32_t number_plus = 0x4;
constexpr std::int32_t number_padded = 0x8;

constexpr std::int32_t most_registers = 99;

// Parts of calc_error.
enum { whole_text, text_alone, position_number, code_number, result_number };

} // namespace

Calculator::Calculator() {
    m_variables[result_name] = 0;
}

Code Calculator::keep(Call call, Failure failure) {
    m_failures[call] = failure;
    m_failures[last] = failure;
    return failure.code;
}

void Calculator::init(std::int32_t option) {
    const std::int32_t angle = option & init_angle;
    if (angle > 2 || (option & ~(init_angle | init_comma | init_keep)) != 0) {
        keep(of_init, {Code::bad_option, 0});
        return;
    }
    if (!(option & init_keep)) m_variables = {{result_name, 0.0}};
    m_unit = static_cast<AngleUnit>(angle);
    m_comma = (option & init_comma) != 0;
    m_failures = {};
}

// `angle`: 0 for the calculator's own unit, else one more than the unit's number in calc_init.
Evaluation Calculator::evaluate_in_unit(std::u16string_view text, std::int32_t angle, bool may_assign,
                                        Assignments& assignments) const {
    if (angle < 0 || angle > 3) return {{Code::bad_option, 0}, 0};
    const AngleUnit unit = angle == 0 ? m_unit : static_cast<AngleUnit>(angle - 1);
    return evaluate(text, unit, may_assign, assignments);
}

void Calculator::expression(std::u16string_view text, std::int32_t angle, std::int32_t destination) {
    if (destination < 0 || destination > most_registers) {
        keep(of_expression, {Code::bad_option, 0});
        return;
    }
    Assignments assignments(m_variables);
    Evaluation evaluation = evaluate_in_unit(text, angle, true, assignments);
    if (evaluation.failure.code == Code::success) {
        assignments.set(result_name, evaluation.value);
        const std::string name = std::string(1, 'r').append(std::to_string(destination));
        if (destination > 0 && !assignments.set(name, evaluation.value))
            evaluation.failure.code = Code::too_complex;
    }
    if (keep(of_expression, evaluation.failure) != Code::success) return;
    Variables changed = assignments.take();
    // What is left in `changed` after the merge are new values of names that were there.
    m_variables.merge(changed);
    for (const auto& [name, value] : changed)
        m_variables.find(name)->second = value;
}

Code Calculator::string_to_double(std::u16string_view text, std::int32_t option, double& value) {
    Assignments none(m_variables);
    Evaluation evaluation;
    if (option == string_is_number)
        evaluation.failure = parse_number_text(text, evaluation.value);
    else if (option & 0xF)
        evaluation.failure = {Code::bad_option, 0};
    else
        evaluation = evaluate_in_unit(text, option >> string_angle_shift, false, none);
    if (evaluation.failure.code == Code::success) value = evaluation.value;
    return keep(of_string, evaluation.failure);
}

Code Calculator::double_to_string(double value, std::int32_t form, std::int32_t digits, std::int32_t flags,
                                  std::string& text) {
    const std::int32_t known = number_point | number_comma | number_plus | number_padded;
    const bool both_signs = (flags & number_point) && (flags & number_comma);
    if (form < 0 || form > 3 || (flags & ~known) != 0 || both_signs)
        return keep(of_number, {Code::bad_option, 0});
    Format format;
    format.form = static_cast<Form>(form);
    format.digits = digits;
    format.comma = (flags & number_comma) || (m_comma && !(flags & number_point));
    format.plus = (flags & number_plus) != 0;
    format.padded = (flags & number_padded) != 0;
    return keep(of_number, {format_number(value, format, text), 0});
}

std::u16string Calculator::error_text(std::int32_t which, std::int32_t part, std::int32_t language) const {
    const bool german = language != 1;
    Failure failure;
    if (which >= 0 && which < static_cast<std::int32_t>(call_count))
        failure = m_failures[static_cast<std::size_t>(which)];
    else if (is_code(which))
        failure.code = static_cast<Code>(which);
    else
        failure.code = Code::bad_option;
    if (language < 0 || language > 1) failure = {Code::bad_option, 0};

    switch (part) {
    case whole_text:
        return failure_text(failure, german);
    case text_alone:
        return failure_text({failure.code, 0}, german);
    case position_number:
        return widened(std::to_string(failure.position));
    case code_number:
        return widened(std::to_string(static_cast<std::int32_t>(failure.code)));
    case result_number: {
        std::string number;
        format_number(m_variables.find(result_name)->second, {.comma = m_comma}, number);
        return widened(number);
    }
    default:
        return failure_text({Code::bad_option, 0}, german);
    }
}
