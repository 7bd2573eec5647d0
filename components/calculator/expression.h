// Evaluates the text of an expression.
//
//   text       = statement { ";" statement } [ ";" ]
//   statement  = { name "=" } sum
//   sum        = product { ( "+" | "-" ) product }
//   product    = signed { ( "*" | "/" ) signed }
//   signed     = { "+" | "-" } power
//   power      = operand [ "^" signed ]
//   operand    = number | name | function "(" sum { ";" sum } ")" | "(" sum ")"
//
// So -2^2 is -4, 2^3^2 is 2^9, 2^-1 is 0.5. Names are letters, digits and "_", a letter or "_" first, without
// regard to case.
#pragma once

#include "components/calculator/codes.h"
#include "components/calculator/variables.h"

#include <string_view>

// Operators, signs, parentheses and assignments that may wait for their operands at once.
inline constexpr std::size_t most_pending = 1000;
inline constexpr std::size_t longest_name = 32;

struct Evaluation {
    Failure failure;
    double value = 0; // the last statement's
};

// Reads the text once from front to back. The stack is the evaluator's own, so no text exhausts the thread's.
// Without `may_assign`, "=" and a second statement are failures.
Evaluation evaluate(std::u16string_view text, AngleUnit unit, bool may_assign, Assignments& variables);
