// Tables whose rows are one text each: "what -> what becomes of it", or with fields: "a|b -> c".
#pragma once

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

// Holds what the function makes of each left side against the right one.
template <class Function, class... Rows>
void expect_rows(Function&& becomes, const Rows&... rows) {
    for (const std::string& row : {std::string(rows)...}) {
        const auto arrow = row.find(" -> ");
        EXPECT_EQ(becomes(row.substr(0, arrow)), row.substr(arrow + 4)) << row;
    }
}

inline std::vector<std::string> fields_of(const std::string& text) {
    std::vector<std::string> fields;
    std::istringstream in(text + "|");
    for (std::string field; std::getline(in, field, '|');)
        fields.push_back(field);
    return fields;
}
