// Exports: paths, positions and the iteration.
#include "bvutil/env.h"

#include "env/boundary.h"
#include "env/iteration.h"
#include "env/operations.h"
#include "env/path.h"
#include "env/short_text.h"

#include <cstdarg>
#include <cstring>

using namespace env;

namespace {

// A caller's buffer for a name or a value; null when it is not wanted.
struct Buffer {
    long size;
    char* bytes;

    // False when the text does not fit.
    bool take(std::string_view text) const {
        if (!bytes) return true;
        if (size <= 0 || text.size() >= static_cast<std::size_t>(size)) return false;
        copy_apart(bytes, text);
        bytes[text.size()] = '\0';
        return true;
    }
};

EnvStatus get_pos(const Address& address, bool exact, long pos, long* layer_out, const Buffer& name,
                  const Buffer& value, long* external_out) {
    if (pos < 1) return ENV_NOT_FOUND;
    const Found found = find_position(address, exact, pos);
    if (!found) return found.status;
    store(layer_out, found.layer->layer_tag);
    bool fits = name.take(found.element->name_view());
    if (found.status == ENV_IS_DATA)
        fits &= value.take(view_of(found.element->text));
    else if (found.status == ENV_IS_EXTERNAL)
        store<long>(external_out, found.element->value);
    return fits ? found.status : static_cast<EnvStatus>(ENV_TOO_SMALL);
}

EnvStatus get_next(const Buffer& name, const Buffer& value, long* external_out) {
    Iteration& state = iteration();
    if (!state.active()) return ENV_NOT_FOUND;
    // Positions do not fall back: the layer that answered first answers to the end.
    const EnvStatus status =
        get_pos(state.address(), state.exact(), state.position(), nullptr, name, value, external_out);
    if (exists(status))
        state.advance();
    else
        state.end();
    return status;
}

} // namespace

extern "C" {

const char* BVUTIL_CALL env_set_delimiter(const char* delim) {
    static char former[Delimiter::capacity];
    char fresh[Delimiter::capacity] = ""; // the caller may give back what it got from here
    if (delim) std::strncpy(fresh, delim, sizeof fresh - 1);
    std::strcpy(former, delimiter().text());
    if (fresh[0]) delimiter().set(fresh);
    return former;
}

EnvStatus BVUTIL_CALL env_create_path(long bufsize, char* buf, const char* first, ...) {
    if (bufsize < 1) return ENV_TOO_SMALL;
    if (!first) return ENV_OK;
    if (std::strlen(first) >= static_cast<std::size_t>(bufsize)) return ENV_TOO_SMALL;
    if (!buf) return ENV_INVALID;
    PathWriter path(buf, static_cast<std::size_t>(bufsize));
    bool fits = path.add(first);
    va_list further;
    va_start(further, first);
    for (const char* component = va_arg(further, const char*); fits && component;
         component = va_arg(further, const char*))
        fits = path.add(component);
    va_end(further);
    return fits ? ENV_OK : ENV_TOO_SMALL;
}

EnvStatus BVUTIL_CALL env_create_array_path(long bufsize, char* buf, const char* const* components) {
    if (bufsize < 1) return ENV_TOO_SMALL;
    if (!buf) return ENV_INVALID;
    buf[0] = '\0';
    if (!components) return ENV_INVALID;
    PathWriter path(buf, static_cast<std::size_t>(bufsize));
    for (; *components; ++components)
        if (!path.add(*components)) return ENV_TOO_SMALL;
    return ENV_OK;
}

long BVUTIL_CALL env_count_path(EnvHandle env, const char* section, const char* path, int exact) {
    return for_handle<long>(env, ENV_INVALID, [&]() -> long {
        if (path) return count_path({env, section, path}, exact != 0);
        report("Unexpected nil path");
        return ENV_BAD_PATH;
    });
}

EnvStatus BVUTIL_CALL env_get_pos(EnvHandle env, const char* section, const char* path, int exact, long pos,
                                  long* layer_out, long name_size, char* name_buf, long value_size,
                                  char* value_buf, long* external_out) {
    return for_handle(env, [&] {
        return get_pos({env, section, path}, exact != 0, pos, layer_out, {name_size, name_buf},
                       {value_size, value_buf}, external_out);
    });
}

EnvStatus BVUTIL_CALL env_get_first(EnvHandle env, const char* section, const char* path, int exact,
                                    long* layer_out, long name_size, char* name_buf, long value_size,
                                    char* value_buf, long* external_out) {
    return for_handle(env, [&] {
        const Address address{env, section, path};
        const Buffer name{name_size, name_buf}, value{value_size, value_buf};
        const EnvStatus status = get_pos(address, exact != 0, 1, layer_out, name, value, external_out);
        if (exists(status)) iteration().begin(address, exact != 0);
        return status;
    });
}

EnvStatus BVUTIL_CALL env_get_next(long name_size, char* name_buf, long value_size, char* value_buf,
                                   long* external_out) {
    return guarded<EnvStatus>(ENV_INVALID, [&] {
        return get_next({name_size, name_buf}, {value_size, value_buf}, external_out);
    });
}

} // extern "C"
