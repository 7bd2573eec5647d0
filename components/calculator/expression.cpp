#include "components/calculator/expression.h"

#include "components/calculator/functions.h"
#include "components/calculator/number_text.h"

#include <cmath>
#include <span>
#include <string>
#include <vector>

namespace {

bool is_letter(char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'_';
}
bool is_digit(char16_t c) {
    return c >= u'0' && c <= u'9';
}
bool is_space(char16_t c) {
    return c == u' ' || (c >= u'\t' && c <= u'\r') || c == u'\u00A0';
}

enum class Kind { parenthesis, call, sum, product, sign, power };

// What waits for the operand on its right.
struct Pending {
    Kind kind;
    char16_t symbol = 0;
    std::size_t position = 0;
    const Function* function = nullptr;
    std::size_t first_argument = 0; // on the operand stack
};

// A name that a statement assigns to.
struct Target {
    std::string name;
    std::size_t position;
};

bool opens(const Pending& pending) {
    return pending.kind == Kind::parenthesis || pending.kind == Kind::call;
}

class Evaluator {
  public:
    Evaluator(std::u16string_view text, AngleUnit unit, bool may_assign, Assignments& variables)
        : m_text(text), m_unit(unit), m_may_assign(may_assign), m_variables(variables) {}

    Evaluation run() {
        skip_spaces();
        if (at_end()) return {{Code::empty, m_at + 1}, 0};
        while (ok() && !at_end())
            statement();
        return {m_failure, ok() ? m_value : 0};
    }

  private:
    bool ok() const { return m_failure.code == Code::success; }
    void fail(Code code, std::size_t at) {
        if (ok()) m_failure = {code, at + 1};
    }
    bool at_end() const { return m_at == m_text.size(); }
    char16_t peek() const { return at_end() ? u'\0' : m_text[m_at]; }
    void skip_spaces() {
        while (!at_end() && is_space(m_text[m_at]))
            ++m_at;
    }
    bool accept(char16_t symbol) {
        if (at_end() || m_text[m_at] != symbol) return false;
        ++m_at;
        return true;
    }

    void statement() {
        read_targets();
        m_ended = false;
        while (ok() && !m_ended) {
            operand();
            if (ok()) after_operand();
        }
        if (!ok()) return;
        m_value = m_operands.back();
        m_operands.clear();
        for (const Target& target : m_targets)
            if (!m_variables.set(target.name, m_value)) fail(Code::too_complex, target.position);
        skip_spaces();
        if (!m_may_assign && !at_end()) fail(Code::assignment, m_at);
    }

    // Names followed by "=": the statement's value goes to each of them.
    void read_targets() {
        m_targets.clear();
        for (;;) {
            skip_spaces();
            const std::size_t start = m_at;
            if (!is_letter(peek())) return;
            const std::string name = read_name();
            skip_spaces();
            if (peek() != u'=') {
                m_at = start;
                return;
            }
            if (name.size() > longest_name || m_targets.size() >= most_pending)
                return fail(Code::too_complex, start);
            if (!m_may_assign || find_function(name) || find_constant(name))
                return fail(Code::assignment, start);
            ++m_at;
            m_targets.push_back({name, start});
        }
    }

    // The name at hand, in lower case; one that is too long is cut just beyond the longest.
    std::string read_name() {
        std::string name;
        for (; is_letter(peek()) || is_digit(peek()); ++m_at) {
            const char16_t c = m_text[m_at];
            if (name.size() <= longest_name)
                name += static_cast<char>(c >= u'A' && c <= u'Z' ? c + (u'a' - u'A') : c);
        }
        return name;
    }

    // Signs and opening parentheses, then one operand.
    void operand() {
        for (; ok(); ++m_at) {
            skip_spaces();
            if (peek() == u'+' || peek() == u'-')
                push({Kind::sign, peek(), m_at});
            else if (peek() == u'(')
                push({Kind::parenthesis, u'(', m_at});
            else if (!is_letter(peek()))
                return number();
            else if (!call())
                return;
        }
    }

    void push(const Pending& pending) {
        if (m_pending.size() >= most_pending) return fail(Code::too_complex, pending.position);
        m_pending.push_back(pending);
    }

    void number() {
        const ReadNumber read = read_number(m_text.substr(m_at));
        if (read.length == 0) return fail(Code::syntax, m_at);
        if (read.code != Code::success) return fail(read.code, m_at);
        m_at += read.length;
        m_operands.push_back(read.value);
    }

    // A name: a value, or, when true, a function whose parenthesis is at hand.
    bool call() {
        const std::size_t start = m_at;
        const std::string name = read_name();
        if (const Function* function = find_function(name)) {
            skip_spaces();
            const bool opened = peek() == u'(';
            if (opened)
                push({Kind::call, u'(', start, function, m_operands.size()});
            else
                fail(Code::syntax, m_at);
            return opened;
        }
        std::optional<double> value = find_constant(name);
        if (!value) value = m_variables.find(name);
        skip_spaces();
        if (value)
            m_operands.push_back(*value);
        else if (peek() == u'=') // the name need not be known for that
            fail(Code::assignment, m_at);
        else
            fail(Code::unknown_name, start);
        return false;
    }

    // Closing parentheses, then what joins the operand with the next one: an operator, a separator, or the
    // statement's end.
    void after_operand() {
        skip_spaces();
        while (ok() && peek() == u')') {
            close();
            ++m_at;
            skip_spaces();
        }
        if (!ok()) return;
        const std::size_t at = m_at;
        const char16_t symbol = peek();
        if (at_end()) return end_statement();
        ++m_at;
        switch (symbol) {
        case u'+':
        case u'-':
            return join(Kind::sum, symbol, at);
        case u'*':
        case u'/':
            return join(Kind::product, symbol, at);
        case u'^':
            return join(Kind::power, symbol, at);
        case u';':
            return separate(at);
        default:
            fail(symbol == u'=' ? Code::assignment : Code::syntax, at);
        }
    }

    void join(Kind kind, char16_t symbol, std::size_t at) {
        // A power takes what is on its right first; the others take what is on their left.
        while (ok() && !m_pending.empty() && !opens(m_pending.back()) &&
               (kind == Kind::power ? m_pending.back().kind > kind : m_pending.back().kind >= kind))
            apply();
        push({kind, symbol, at});
    }

    void reduce() {
        while (ok() && !m_pending.empty() && !opens(m_pending.back()))
            apply();
    }

    void separate(std::size_t at) {
        reduce();
        if (!ok()) return;
        if (m_pending.empty())
            m_ended = true;
        else if (m_pending.back().kind != Kind::call)
            fail(Code::syntax, at);
    }

    void end_statement() {
        reduce();
        if (ok() && !m_pending.empty()) fail(Code::parenthesis, m_pending.back().position);
        m_ended = true;
    }

    void close() {
        reduce();
        if (!ok()) return;
        if (m_pending.empty()) return fail(Code::parenthesis, m_at);
        const Pending open = m_pending.back();
        m_pending.pop_back();
        if (open.kind == Kind::call) call_function(open);
    }

    void call_function(const Pending& open) {
        const std::span arguments = std::span(m_operands).subspan(open.first_argument);
        if (arguments.size() < open.function->fewest || arguments.size() > open.function->most)
            return fail(Code::argument_count, open.position);
        Code code = Code::success;
        const double value = open.function->evaluate(arguments, m_unit, code);
        m_operands.resize(open.first_argument);
        keep(value, code, open.position);
    }

    void apply() {
        const Pending pending = m_pending.back();
        m_pending.pop_back();
        const double right = m_operands.back();
        m_operands.pop_back();
        if (pending.kind == Kind::sign) {
            m_operands.push_back(pending.symbol == u'-' ? -right : right);
            return;
        }
        const double left = m_operands.back();
        m_operands.pop_back();
        Code code = Code::success;
        const double value = combine(pending.symbol, left, right, code);
        keep(value, code, pending.position);
    }

    static double combine(char16_t symbol, double left, double right, Code& code) {
        switch (symbol) {
        case u'+':
            return left + right;
        case u'-':
            return left - right;
        case u'*':
            return left * right;
        case u'/':
            if (right == 0) code = Code::division_by_zero;
            return right == 0 ? 0 : left / right;
        default:
            return power(left, right, code);
        }
    }

    // Every result on the stack is finite.
    void keep(double value, Code code, std::size_t position) {
        if (code == Code::success && !std::isfinite(value)) code = Code::overflow;
        if (code != Code::success) fail(code, position);
        m_operands.push_back(value);
    }

    std::u16string_view m_text;
    AngleUnit m_unit;
    bool m_may_assign;
    Assignments& m_variables;
    std::size_t m_at = 0;
    std::vector<double> m_operands;
    std::vector<Pending> m_pending;
    std::vector<Target> m_targets;
    bool m_ended = false;
    double m_value = 0;
    Failure m_failure;
};

} // namespace

Evaluation evaluate(std::u16string_view text, AngleUnit unit, bool may_assign, Assignments& variables) {
    return Evaluator(text, unit, may_assign, variables).run();
}
