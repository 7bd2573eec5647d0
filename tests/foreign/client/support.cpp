#include "support.h"

#include "library.h"

// The compiler calls these by itself.
extern "C" {
int _fltused = 1;

void* memset(void* to, int byte, unsigned size) {
    for (unsigned i = 0; i < size; ++i)
        static_cast<volatile char*>(to)[i] = static_cast<char>(byte);
    return to;
}
void* memcpy(void* to, const void* from, unsigned size) {
    for (unsigned i = 0; i < size; ++i)
        static_cast<volatile char*>(to)[i] = static_cast<const char*>(from)[i];
    return to;
}
}

namespace {

constexpr unsigned generic_read = 0x80000000, generic_write = 0x40000000;
constexpr unsigned create_always = 2, open_existing = 3, share_all = 7;
unsigned first_failure = 0;

} // namespace

unsigned length_of(const char* text) {
    unsigned length = 0;
    while (text[length])
        ++length;
    return length;
}

bool equal(const char* a, const char* b) {
    while (*a && *a == *b)
        ++a, ++b;
    return *a == *b;
}

bool contains(const char* text, const char* part) {
    for (; *text; ++text) {
        unsigned i = 0;
        while (part[i] && text[i] == part[i])
            ++i;
        if (!part[i]) return true;
    }
    return false;
}

bool near_to(double a, double b) {
    const double difference = a - b;
    return -1e-6 < difference && difference < 1e-6;
}

void write_file(const char* name, const char* bytes, unsigned size) {
    void* const file = CreateFileA(name, generic_write, 0, nullptr, create_always, 0, nullptr);
    unsigned written = 0;
    WriteFile(file, bytes, size, &written, nullptr);
    CloseHandle(file);
}

const char* read_file(const char* name) {
    static char bytes[4096];
    void* const file = CreateFileA(name, generic_read, share_all, nullptr, open_existing, 0, nullptr);
    unsigned size = 0;
    ReadFile(file, bytes, sizeof bytes - 1, &size, nullptr);
    CloseHandle(file);
    bytes[size] = '\0';
    return bytes;
}

void check(bool condition, unsigned line) {
    if (!condition && first_failure == 0) first_failure = line;
}

extern "C" int __stdcall WinMain(void*, void*, char*, int) {
    main_program();
    return static_cast<int>(first_failure);
}

extern "C" void entry() {
    ExitProcess(static_cast<unsigned>(WinMain(GetModuleHandleA(nullptr), nullptr, nullptr, 0)));
}
