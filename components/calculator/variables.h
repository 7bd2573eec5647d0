// The variables of one calculator.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

using Variables = std::map<std::string, double, std::less<>>;

inline constexpr std::size_t most_variables = 10'000;

// Assignments of one run on top of the variables: they show at once to what follows, and are kept only when
// the whole run succeeds.
class Assignments {
  public:
    explicit Assignments(const Variables& base) : m_base(base) {}

    std::optional<double> find(std::string_view name) const {
        for (const Variables* level : {static_cast<const Variables*>(&m_changed), &m_base})
            if (const auto found = level->find(name); found != level->end()) return found->second;
        return std::nullopt;
    }
    // False when the name would be one variable too many.
    bool set(const std::string& name, double value) {
        if (!find(name) && m_base.size() + m_new_names++ >= most_variables) return false;
        m_changed.insert_or_assign(name, value);
        return true;
    }
    Variables take() { return std::move(m_changed); }

  private:
    const Variables& m_base;
    Variables m_changed;
    std::size_t m_new_names = 0;
};
