// Calls exports by their export-table addresses, from the state in which another compiler's program may be:
// stack, x87 unit and MXCSR. Everything that comes back goes into a transcript, so that calls from different
// states can be compared; every call is also held against the calling convention.
#pragma once

#include <array>
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>
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

class Caller {
  public:
    Caller(HMODULE library, const CallerState& state, std::string folder)
        : folder(std::move(folder)), m_library(library), m_state(state) {}

    // One export, ready to be called.
    template <class Function>
    class Export;
    template <class Function>
    Export<Function> at(const char* name) {
        called.insert(name);
        return {*this, name};
    }

    // A member function of an exported class.
    template <class Result, class... Arguments>
    Result member(const char* name, const void* object, Arguments... arguments) {
        called.insert(name);
        return call<Result>(name, object, true, arguments...);
    }
    template <class Result, class... Arguments>
    Result call(const char* name, const void* object, bool callee_pops, Arguments... arguments);

    // Adds results to the transcript; pointers count as null or not.
    template <class... Values>
    void note(const Values&... values) {
        std::string line = m_last;
        (line.append(" ").append(text_of(values)), ...);
        transcript.push_back(line);
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

  private:
    template <class Value>
    static void push(std::vector<std::uint32_t>& words, Value value);
    template <class Value>
    static std::string text_of(const Value& value);
    void check(const char* name, const ForeignCall& made, std::uint32_t popped, bool returns_number);

    HMODULE m_library;
    CallerState m_state;
    std::string m_last;
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
    } else if constexpr (std::is_pointer_v<Value>) {
        if (!value) return "null";
        if constexpr (std::is_convertible_v<Value, const char*>)
            return '"' + std::string(value) + '"';
        else
            return "something";
    } else if constexpr (std::is_convertible_v<Value, std::string_view>) {
        return '"' + std::string(value) + '"';
    } else {
        char text[64];
        return {text, std::to_chars(text, text + sizeof text, value).ptr};
    }
}

template <class Result, class... Arguments>
Result Caller::call(const char* name, const void* object, bool callee_pops, Arguments... arguments) {
    std::vector<std::uint32_t> words;
    (push(words, arguments), ...);
    const auto count = static_cast<std::uint32_t>(words.size());
    ForeignCall made{.function = reinterpret_cast<const void*>(GetProcAddress(m_library, name)),
                     .arguments = words.data(),
                     .words = count,
                     .misalignment = m_state.misalignment,
                     .x87 = m_state.x87,
                     .mxcsr = m_state.mxcsr,
                     .object = object};
    m_last = name;
    if (!made.function) {
        violations.push_back(std::string(name) + " is not exported");
        if constexpr (std::is_void_v<Result>)
            return;
        else
            return Result();
    }
    const auto typed = reinterpret_cast<Result (*)(ForeignCall*)>(reinterpret_cast<void*>(&foreign_call));
    const std::uint32_t popped = callee_pops ? 4 * count : 0;
    if constexpr (std::is_void_v<Result>) {
        typed(&made);
        check(name, made, popped, false);
    } else {
        const Result result = typed(&made);
        check(name, made, popped, std::is_floating_point_v<Result>);
        m_last = name;
        note(result);
        return result;
    }
}

template <class Result, class... Parameters>
class Caller::Export<Result(Parameters...)> {
  public:
    Export(Caller& caller, const char* name) : m_caller(caller), m_name(name) {}
    Result operator()(Parameters... arguments) const {
        return m_caller.call<Result>(m_name, nullptr, false, arguments...);
    }

  private:
    Caller& m_caller;
    const char* m_name;
};

template <class Result, class... Parameters>
class Caller::Export<Result(Parameters..., ...)> {
  public:
    Export(Caller& caller, const char* name) : m_caller(caller), m_name(name) {}
    template <class... More>
    Result operator()(Parameters... arguments, More... more) const {
        return m_caller.call<Result>(m_name, nullptr, false, arguments..., more...);
    }

  private:
    Caller& m_caller;
    const char* m_name;
};

// The export of this name, called as its header declares it.
#define AT(name) caller.at<decltype(name)>(#name)
