// Exports: files, walks and copies.
#include "bvutil/env.h"

#include "env/boundary.h"
#include "env/files.h"
#include "env/handle.h"
#include "env/operations.h"
#include "env/walk.h"

#include <cstring>

using namespace env;

namespace {

EnvStatus traverse(const Address& address, bool exact, EnvVisit callback, void* user) {
    BlockWalk walk(address, exact);
    if (walk.status() != ENV_OK) return walk.status();
    while (walk.next())
        callback(walk.sub(), walk.section(), walk.path(), user);
    return ENV_OK;
}

EnvStatus list_names(const Address& address, bool exact, char separator, std::size_t size, char* buf) {
    const Found found = find(address, exact);
    if (found.status == ENV_INVALID || found.status == ENV_BAD_PATH) return found.status;
    if (found.status != ENV_IS_BLOCK) return ENV_IS_BLOCK; // kept: -2 for "not a block"
    const ElementList* names = children_of(found.element);
    std::size_t used = 0;
    for (const Element* element = names ? names->first : nullptr; element; element = element->next) {
        const std::size_t length = std::strlen(element->name());
        if (length + 2 >= size - used) {
            buf[0] = '\0';
            return ENV_TOO_SMALL;
        }
        std::memcpy(buf + used, element->name(), length);
        used += length;
        buf[used++] = separator;
    }
    buf[used] = '\0';
    return ENV_OK;
}

} // namespace

extern "C" {

EnvStatus BVUTIL_CALL env_read(EnvReadChar read_char, void* source, EnvHandle env) {
    return for_handle(env, [&] { return read_char ? read_from(read_char, source, env) : ENV_INVALID; });
}

EnvStatus BVUTIL_CALL env_read_file(const char* file_name, EnvHandle env) {
    return for_handle(env, [&] { return read_from_file(file_name ? file_name : "", env); });
}

void BVUTIL_CALL env_write(EnvWriteChar write_char, void* sink, EnvHandle env) {
    for_handle(env, [&] {
        if (write_char) write_to(write_char, sink, env);
        return ENV_OK;
    });
}

void BVUTIL_CALL env_write_file(const char* file_name, EnvHandle env) {
    for_handle(env, [&] {
        write_to_file(file_name ? file_name : "", env);
        return ENV_OK;
    });
}

EnvStatus BVUTIL_CALL env_traverse(EnvHandle env, const char* section, const char* path, int exact,
                                   EnvVisit callback, void* user) {
    return for_handle(env, [&] {
        return callback ? traverse({env, section, path}, exact != 0, callback, user) : ENV_INVALID;
    });
}

EnvStatus BVUTIL_CALL env_traverse_leafs(EnvHandle env, EnvVisit callback, void* user) {
    return for_handle(env, [&]() -> EnvStatus {
        if (!callback) return ENV_INVALID;
        const auto visit = [&](EnvHandle leaf, const char* section, const char* path) {
            callback(leaf, section, path, user);
            return true;
        };
        return for_each_leaf(env, visit) ? ENV_OK : ENV_INVALID;
    });
}

EnvStatus BVUTIL_CALL env_list_elem_names(EnvHandle env, const char* section, const char* path, int exact,
                                          char separator, long buf_size, char* buf) {
    if (buf && buf_size >= 2) buf[0] = '\0'; // whatever fails, a null handle too
    return for_handle(env, [&]() -> EnvStatus {
        if (buf_size < 2) return ENV_TOO_SMALL;
        if (!buf) return ENV_INVALID;
        return list_names({env, section, path}, exact != 0, separator, static_cast<std::size_t>(buf_size),
                          buf);
    });
}

EnvStatus BVUTIL_CALL env_sink(EnvHandle dst, EnvHandle src, int mode) {
    return for_handle(dst, [&] { return for_handle(src, [&] { return sink(dst, src, mode); }); });
}

EnvStatus BVUTIL_CALL env_copy_block(EnvHandle dst, EnvHandle src, const char* section, const char* path,
                                     int mode) {
    return for_handle(dst, [&] {
        return for_handle(src, [&] { return copy_block(dst, {src, section, path}, mode); });
    });
}

} // extern "C"
