// Exports: reading and writing values.
#include "bvutil/env.h"

#include "env/boundary.h"
#include "env/handle.h"
#include "env/lookup.h"
#include "env/put.h"
#include "env/short_text.h"
#include "env/value_scanner.h"
#include "env/value_text.h"
#include "module/own_arithmetic.h"

#include <algorithm>
#include <clocale>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

using namespace env;

namespace {

constexpr std::size_t format_capacity = 1024;

// What the typed reads of data have in common: the text and the layer that answered, or why there is none.
struct Text {
    EnvStatus status; // the layer tag, or an error
    const char* text = nullptr;
};

Text read_text(const Address& address, bool exact) {
    const Found found = find_for_read(address, exact, 0);
    switch (found.status) {
    case ENV_IS_DATA:
        return {static_cast<EnvStatus>(found.layer->layer_tag), found.element->text};
    case ENV_IS_BLOCK:
    case ENV_IS_EXTERNAL:
        return {ENV_IS_DATA}; // "not data"
    default:
        return {found.status};
    }
}

using ScanValue = Scan (*)(std::string_view, ScanSink&);

// One value. It is stored only when the whole text matches.
template <class T>
EnvStatus get_value(const Address& address, bool exact, T* value, ScanSink (*slots)(T*, std::size_t),
                    ScanValue scan) {
    if (!value) return ENV_INVALID;
    const Text read = read_text(address, exact);
    if (!read.text) return read.status;
    T scanned{};
    ScanSink sink = slots(&scanned, 1);
    if (scan(view_of(read.text), sink).result != scan_matched) return ENV_SYNTAX;
    *value = scanned;
    return read.status;
}

std::size_t capacity_of(const long* count) {
    return count && *count > 0 ? static_cast<std::size_t>(*count) : 0;
}

// A list into the caller's array, to which the sink leads; the count is 0 unless all went well.
EnvStatus get_list(const Address& address, bool exact, long* count, const void* items, ScanSink sink,
                   ScanValue scan) {
    if (!count) return ENV_INVALID;
    *count = 0;
    return for_handle(address.env, [&]() -> EnvStatus {
        if (!items) return ENV_INVALID;
        const Text read = read_text(address, exact);
        if (!read.text) return read.status;
        if (scan(view_of(read.text), sink).result != scan_matched) return ENV_SYNTAX;
        if (sink.overflowed()) return ENV_TOO_SMALL;
        *count = static_cast<long>(sink.filled());
        return read.status;
    });
}

// The C locale's number format for its lifetime: the decimal point does not depend on what the program chose.
class PointLocale {
  public:
    PointLocale() {
        if (std::strcmp(std::localeconv()->decimal_point, ".") == 0) return;
        m_former = std::setlocale(LC_NUMERIC, nullptr);
        std::setlocale(LC_NUMERIC, "C");
    }
    ~PointLocale() {
        if (!m_former.empty()) std::setlocale(LC_NUMERIC, m_former.c_str());
    }
    PointLocale(const PointLocale&) = delete;
    PointLocale& operator=(const PointLocale&) = delete;

  private:
    std::string m_former;
};

template <class Item, class ToText>
EnvStatus put_list(const Address& address, long count, const Item* items, ToText to_text) {
    if (count < 1 || !items) return ENV_INVALID;
    ArrayText text;
    for (long i = 0; i < count; ++i)
        if (!text.add(to_text(items[i]).view())) break;
    return put(address, text.c_str(), 0);
}

} // namespace

extern "C" {

EnvStatus BVUTIL_CALL env_get_core(EnvHandle env, const char* section, const char* path, int exact, long pos,
                                   long* layer_out, const char** name_out, const char** text_out,
                                   long* external_out) {
    return for_handle(env, [&] {
        const Found found = find_for_read({env, section, path}, exact != 0, pos);
        if (!found) return found.status;
        store(layer_out, found.layer->layer_tag);
        store<const char*>(name_out, found.element->name());
        if (found.status == ENV_IS_DATA)
            store<const char*>(text_out, found.element->text);
        else if (found.status == ENV_IS_EXTERNAL)
            store<long>(external_out, found.element->value);
        return found.status;
    });
}

EnvStatus BVUTIL_CALL env_get(EnvHandle env, const char* section, const char* path, int exact, long buf_size,
                              char* buf) {
    return for_handle(env, [&]() -> EnvStatus {
        if (!buf) return ENV_INVALID;
        const Text read = read_text({env, section, path}, exact != 0);
        if (!read.text) return read.status;
        const std::string_view text = view_of(read.text);
        if (buf_size < 0 || text.size() >= static_cast<std::size_t>(buf_size)) return ENV_TOO_SMALL;
        copy_apart(buf, text);
        buf[text.size()] = '\0';
        return read.status;
    });
}

EnvStatus BVUTIL_CALL env_get_reference(EnvHandle env, const char* section, const char* path, int exact,
                                        const char** text_out) {
    return for_handle(env, [&]() -> EnvStatus {
        if (!text_out) return ENV_INVALID;
        const Text read = read_text({env, section, path}, exact != 0);
        if (read.text) *text_out = read.text;
        return read.status;
    });
}

EnvStatus BVUTIL_CALL env_get_string(EnvHandle env, const char* section, const char* path, int exact, long,
                                     char* buf) {
    const char* text = "";
    const EnvStatus status = env_get_reference(env, section, path, exact, buf ? &text : nullptr);
    if (buf) std::strcpy(buf, text);
    return status;
}

EnvStatus BVUTIL_CALL env_get_long(EnvHandle env, const char* section, const char* path, int exact,
                                   long* value) {
    return for_handle(env, [&] {
        return get_value({env, section, path}, exact != 0, value, ScanSink::longs, scan_long);
    });
}

EnvStatus BVUTIL_CALL env_get_double(EnvHandle env, const char* section, const char* path, int exact,
                                     double* value) {
    return for_handle(env, [&] {
        return get_value({env, section, path}, exact != 0, value, ScanSink::doubles, scan_double);
    });
}

EnvStatus BVUTIL_CALL env_get_longs(EnvHandle env, const char* section, const char* path, int exact,
                                    long* count, long* values) {
    return get_list({env, section, path}, exact != 0, count, values,
                    ScanSink::longs(values, capacity_of(count)), scan_longs);
}

EnvStatus BVUTIL_CALL env_get_doubles(EnvHandle env, const char* section, const char* path, int exact,
                                      long* count, double* values) {
    return get_list({env, section, path}, exact != 0, count, values,
                    ScanSink::doubles(values, capacity_of(count)), scan_doubles);
}

EnvStatus BVUTIL_CALL env_get_strings(EnvHandle env, const char* section, const char* path, int exact,
                                      long* count, long item_size, char** items) {
    const std::size_t size = static_cast<std::size_t>(std::max(item_size, 0L));
    return get_list({env, section, path}, exact != 0, count, items,
                    ScanSink::words(items, capacity_of(count), size), scan_words);
}

EnvStatus BVUTIL_CALL env_get_external(EnvHandle env, const char* section, const char* path, int exact,
                                       long* value) {
    return for_handle(env, [&]() -> EnvStatus {
        if (!value) return ENV_INVALID;
        const Found found = find_for_read({env, section, path}, exact != 0, 0);
        if (!found) return found.status;
        if (found.status != ENV_IS_EXTERNAL) return ENV_IS_EXTERNAL; // "not an external"
        *value = found.element->value;
        return static_cast<EnvStatus>(found.layer->layer_tag);
    });
}

EnvStatus BVUTIL_CALL env_put_core(EnvHandle env, const char* section, const char* path, const char* text,
                                   long external) {
    return for_handle(env, [&] { return put({env, section, path}, text, external); });
}

EnvStatus BVUTIL_CALL env_put(EnvHandle env, const char* section, const char* path, const char* text) {
    return text ? env_put_core(env, section, path, text, 0) : static_cast<EnvStatus>(ENV_INVALID);
}

EnvStatus BVUTIL_CALL env_put_string(EnvHandle env, const char* section, const char* path, const char* text) {
    return env_put(env, section, path, text);
}

EnvStatus BVUTIL_CALL env_put_external(EnvHandle env, const char* section, const char* path, long value) {
    return env_put_core(env, section, path, nullptr, value);
}

EnvStatus BVUTIL_CALL env_put_long(EnvHandle env, const char* section, const char* path, long value) {
    return env_put(env, section, path, NumberText(value).c_str());
}

EnvStatus BVUTIL_CALL env_put_double(EnvHandle env, const char* section, const char* path, double value) {
    return env_put(env, section, path, NumberText(value).c_str());
}

EnvStatus BVUTIL_CALL env_put_format(EnvHandle env, const char* section, const char* path, const char* format,
                                     ...) {
    va_list arguments;
    va_start(arguments, format);
    const EnvStatus status = for_handle(env, [&]() -> EnvStatus {
        if (!format) return ENV_INVALID;
        char text[format_capacity];
        const PointLocale point;
        const int length =
            with_own_arithmetic([&] { return std::vsnprintf(text, sizeof text, format, arguments); });
        if (length < 0 || static_cast<std::size_t>(length) >= sizeof text) return ENV_INVALID;
        return put({env, section, path}, text, 0);
    });
    va_end(arguments);
    return status;
}

EnvStatus BVUTIL_CALL env_put_longs(EnvHandle env, const char* section, const char* path, long count,
                                    const long* values) {
    return for_handle(env, [&] {
        return put_list({env, section, path}, count, values, [](long value) { return NumberText(value); });
    });
}

EnvStatus BVUTIL_CALL env_put_doubles(EnvHandle env, const char* section, const char* path, long count,
                                      const double* values) {
    return for_handle(env, [&] {
        return put_list({env, section, path}, count, values, [](double value) { return NumberText(value); });
    });
}

EnvStatus BVUTIL_CALL env_put_strings(EnvHandle env, const char* section, const char* path, long count,
                                      const char* const* values) {
    // A null entry ends the list as a text too long for it does.
    struct Item {
        const char* text;
        std::string_view view() const {
            static const std::string endless(ArrayText::longest_item + 1, ' ');
            return text ? std::string_view(text) : std::string_view(endless);
        }
    };
    return for_handle(env, [&] {
        return put_list({env, section, path}, count, values, [](const char* text) { return Item{text}; });
    });
}

} // extern "C"
