#include "tests/native/seams.h"

#include "bvutil/messages.h"
#include "module/guarded.h"
#include "module/multibyte.h"

#include <utility>

namespace {
std::vector<std::string> messages;
std::function<void()> next_action;
} // namespace

namespace seams {

std::vector<std::string> take_messages() {
    return std::exchange(messages, {});
}

void on_next_message(std::function<void()> action) {
    next_action = std::move(action);
}

} // namespace seams

namespace multibyte {

bool active() {
    return seams::double_byte_code_page::active;
}

bool is_lead_byte(unsigned char byte) {
    return active() && ((byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC));
}

unsigned lower_case(unsigned character) {
    if (character >= 'A' && character <= 'Z') return character + ('a' - 'A');
    if (active() && character >= 0x8260 && character <= 0x8279) return character + 0x21; // full-width
    return character;
}

} // namespace multibyte

extern "C" void BvUtil_Message(const char* text1, const char* text2, const char* text3, const char*, int) {
    if (const auto action = std::exchange(next_action, nullptr)) action();
    guarded([&] {
        std::string text;
        for (const char* part : {text1, text2, text3})
            if (part) text += part;
        messages.push_back(std::move(text));
    });
}
