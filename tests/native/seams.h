// The two seams between the core and the platform, as tests see them natively: messages are recorded, and
// the multibyte code page is a range of lead bytes.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace seams {

// The texts given to BvUtil_Message since the last call, in order.
std::vector<std::string> take_messages();

// What the next message does before it is recorded, as a message box lets other calls in; once.
void on_next_message(std::function<void()> action);

// Makes lead bytes as in code page 932 while it lives.
struct double_byte_code_page {
    static inline bool active = false;
    double_byte_code_page() { active = true; }
    ~double_byte_code_page() { active = false; }
    double_byte_code_page(const double_byte_code_page&) = delete;
    double_byte_code_page& operator=(const double_byte_code_page&) = delete;
};

} // namespace seams
