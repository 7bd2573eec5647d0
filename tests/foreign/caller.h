// Calls exports by their export-table addresses, from the state in which another compiler's program may be:
// stack, x87 unit and MXCSR. Everything that comes back goes into a transcript, so that calls from different
// states, and from times with and without memory, can be compared; every call is also held against the
// calling convention.
#pragma once

#include <array>
#include <bit>
#include <charconv>
#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>
#include <windows.h>

struct CallerState {
    const char* name = "as this compiler's programs";
    unsigned misalignment = 0;    // of the first argument, from a multiple of 16
    std::uint32_t x87 = 0x037F;   // control words
    std::uint32_t mxcsr = 0x1F80; // of these, the status flags are the callee's to change
    const char* locale = nullptr; // of the process: null leaves it
    int multibyte_code_page = 0;  // 0 leaves it
};

constexpr std::uint32_t mxcsr_control = 0xFFC0;

// What foreign_call is given, and what it found when the function had returned.
struct ForeignCall {
    const void* function;
    const std::uint32_t* arguments;
    std::uint32_t words;
    std::uint32_t misalignment, x87, mxcsr;
    const void* object; // in ecx

    std::uint32_t stack_before = 0, stack_after = 0;
    std::uint32_t own_x87 = 0, own_mxcsr = 0;
    std::uint32_t x87_after = 0, mxcsr_after = 0;
    std::uint32_t ebx = 0, esi = 0, edi = 0;
    std::uint32_t environment[7] = {}; // of the x87 unit
    std::uint32_t flags = 0;
};
static_assert(sizeof(ForeignCall) == 96);

// A call that has returned: its result, and what it could have written to, before and after.
struct MadeCall {
    std::string name, result, before, after;
};

class Caller {
  public:
    Caller(HMODULE library, const CallerState& state, std::string folder)
        : folder(std::move(folder)), m_library(library), m_state(state) {}

    // One export of this type, ready to be called.
    template <class Function>
    auto at(const char* name) {
        return [this, name]<class... Arguments>(Arguments... arguments) {
            return call(static_cast<Function*>(nullptr), name, arguments...);
        };
    }
    // A member function of an exported class, or of the system: the callee pops its arguments.
    template <class Result, class... Arguments>
    Result member(const char* name, const void* object, Arguments... arguments) {
        return make_call<Result>(name, object, true, arguments...);
    }

    // Adds results to the transcript; pointers count as null or not.
    template <class... Values>
    void note(const Values&... values) {
        transcript.push_back((std::string() + ... + (text_of(values) + ' ')));
    }
    void note_bytes(const void* bytes, std::size_t size);
    void note_file(const std::string& path);

    // To be called first by a callback: it must find its program's own state.
    void check_state_in_callback(const char* who) { check_state(who, m_state.x87, m_state.mxcsr); }
    void check_state(const char* who, std::uint32_t x87, std::uint32_t mxcsr);

    std::string file(const std::string& name) const { return folder + "\\" + name; }

    const std::string folder;
    std::vector<std::string> transcript;
    std::set<std::string> called;
    std::vector<std::string> violations;

    bool closes = true; // false: what closes or frees something is not called
    // Whether a call is to be made again, as if it had not been made.
    std::function<bool(const MadeCall&)> again;
    // Set by the user of a function: puts back what the next call used up, and a file that the calls write.
    std::function<void()> restart;
    std::string written_file;

  private:
    // As a function of this type is declared: a narrow argument stays narrow.
    template <class Result, class... Parameters, class... Arguments>
    Result call(Result (*)(Parameters...), const char* name, Arguments... arguments) {
        return make_call<Result>(name, nullptr, false, static_cast<Parameters>(arguments)...);
    }
    template <class Result, class... Parameters, class... Arguments>
    Result call(Result (*)(Parameters..., ...), const char* name, Arguments... arguments) {
        return make_call<Result>(name, nullptr, false, arguments...);
    }
    template <class Result, class... Arguments>
    Result make_call(const char* name, const void* object, bool callee_pops, Arguments... arguments);

    template <class Value>
    static void push(std::vector<std::uint32_t>& words, Value value);
    template <class Value>
    static std::string text_of(const Value& value);
    // What a call may have written through an argument: a text, a number or a pointer.
    template <class Value>
    static std::string output(Value value);
    void check(const char* name, const ForeignCall& made, std::uint32_t popped, bool returns_number);
    std::string file_content() const;

    HMODULE m_library;
    CallerState m_state;
};

extern "C" void foreign_call(ForeignCall* call);

template <class Value>
void Caller::push(std::vector<std::uint32_t>& words, Value value) {
    if constexpr (std::is_same_v<Value, double>) {
        const auto bits = std::bit_cast<std::uint64_t>(value);
        words.push_back(static_cast<std::uint32_t>(bits));
        words.push_back(static_cast<std::uint32_t>(bits >> 32));
    } else if constexpr (sizeof(Value) == sizeof(std::uint32_t)) {
        words.push_back(std::bit_cast<std::uint32_t>(value));
    } else if constexpr (std::is_null_pointer_v<Value>) {
        words.push_back(0);
    } else {
        static_assert(std::is_integral_v<Value> && sizeof(Value) < sizeof(std::uint32_t));
        // What lies above a narrow argument is no business of the callee's.
        words.push_back(0xABCD0000u | std::bit_cast<std::make_unsigned_t<Value>>(value) |
                        (sizeof(Value) == 1 ? 0xEF00u : 0u));
    }
}

template <class Value>
std::string Caller::text_of(const Value& value) {
    if constexpr (std::is_same_v<Value, bool>) {
        return value ? "true" : "false";
    } else if constexpr (std::is_convertible_v<Value, const char*>) {
        const char* const text = value;
        return text ? '"' + std::string(text) + '"' : "null";
    } else if constexpr (std::is_pointer_v<Value>) {
        return value ? "something" : "null";
    } else if constexpr (std::is_convertible_v<Value, std::string_view>) {
        return '"' + std::string(value) + '"';
    } else {
        char text[64];
        return {text, std::to_chars(text, text + sizeof text, value).ptr};
    }
}

template <class Value>
std::string Caller::output([[maybe_unused]] Value value) {
    if constexpr (std::is_same_v<Value, char*>) {
        return ' ' + text_of(value);
    } else if constexpr (std::is_pointer_v<Value>) {
        using Target = std::remove_pointer_t<Value>;
        if constexpr (!std::is_const_v<Target> && (std::is_arithmetic_v<Target> || std::is_pointer_v<Target>))
            return value ? ' ' + text_of(*value) : "";
    }
    return "";
}

template <class Result, class... Arguments>
Result Caller::make_call(const char* name, const void* object, bool callee_pops, Arguments... arguments) {
    constexpr bool is_void = std::is_void_v<Result>;
    using Returned = std::conditional_t<is_void, int, Result>;
    called.insert(name);
    const std::string_view view = name;
    if (!closes && (view.find("close") != view.npos || view.find("Free") != view.npos))
        return static_cast<Result>(Returned());
    const auto put_back = std::exchange(restart, nullptr); // not for the calls of callbacks
    std::vector<std::uint32_t> words;
    (push(words, arguments), ...);
    const auto count = static_cast<std::uint32_t>(words.size());
    for (;;) {
        ForeignCall made{.function = reinterpret_cast<const void*>(GetProcAddress(m_library, name)),
                         .arguments = words.data(),
                         .words = count,
                         .misalignment = m_state.misalignment,
                         .x87 = m_state.x87,
                         .mxcsr = m_state.mxcsr,
                         .object = object};
        if (!made.function) {
            violations.push_back(std::string(name) + " is not exported");
            return static_cast<Result>(Returned());
        }
        const std::size_t mark = transcript.size();
        const std::string before = again ? (std::string() + ... + output(arguments)) + file_content() : "";
        const auto typed =
            reinterpret_cast<Returned (*)(ForeignCall*)>(reinterpret_cast<void*>(&foreign_call));
        const Returned result = typed(&made);
        check(name, made, callee_pops ? 4 * count : 0, std::is_floating_point_v<Result>);
        const std::string outputs = (std::string() + ... + output(arguments));
        const std::string text = is_void ? "" : text_of(result);
        if (again && again({name, text, before, outputs + file_content()})) {
            if (put_back) put_back();
            if constexpr (std::is_same_v<Result, HRGN>) DeleteObject(result);
            transcript.resize(mark);
            continue;
        }
        transcript.push_back(name + (' ' + text) + outputs);
        return static_cast<Result>(result);
    }
}

// The export of this name, called as its header declares it.
#define AT(name) caller.at<decltype(name)>(#name)
