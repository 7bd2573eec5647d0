// A C locale whose decimal sign is a comma, while it lives: number texts must not follow it.
#pragma once

#include <gtest/gtest.h>

#include <clocale>
#include <string>

class CommaLocale {
  public:
    CommaLocale() {
        EXPECT_NE(std::setlocale(LC_ALL, "German"), nullptr);
        EXPECT_STREQ(std::localeconv()->decimal_point, ",");
    }
    ~CommaLocale() { std::setlocale(LC_ALL, m_former.c_str()); }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

  private:
    std::string m_former = std::setlocale(LC_ALL, nullptr);
};
