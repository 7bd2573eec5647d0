// One calculator: what its five methods do, free of COM. docs/calculator.md is its reference.
#pragma once

#include "components/calculator/expression.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

class Calculator {
  public:
    Calculator();

    void init(std::int32_t option);
    void expression(std::u16string_view text, std::int32_t angle, std::int32_t destination);
    std::u16string error_text(std::int32_t which, std::int32_t part, std::int32_t language) const;
    // Outputs are set on success only.
    Code string_to_double(std::u16string_view text, std::int32_t option, double& value);
    Code double_to_string(double value, std::int32_t form, std::int32_t digits, std::int32_t flags,
                          std::string& text);

  private:
    // The calls whose failures are kept; `last` is the latest of the others.
    enum Call : std::size_t { last, of_expression, of_string, of_number, of_init, call_count };

    Code keep(Call call, Failure failure);
    Evaluation evaluate_in_unit(std::u16string_view text, std::int32_t angle, bool may_assign,
                                Assignments& assignments) const;

    AngleUnit m_unit = AngleUnit::degrees;
    bool m_comma = false;
    Variables m_variables;
    std::array<Failure, call_count> m_failures;
};
