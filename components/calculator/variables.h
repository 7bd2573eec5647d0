// The variables of one calculator.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

using Variables = std::map<std::string, double, std::less<>>;

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
    void set(const std::string& name, double value) { m_changed.insert_or_assign(name, value); }
    Variables take() { return std::move(m_changed); }

  private:
    const Variables& m_base;
    Variables m_changed;
};
