// Exports: environments and elements.
#include "bvutil/env.h"

#include "env/boundary.h"
#include "env/operations.h"

using namespace env;

extern "C" {

EnvHandle BVUTIL_CALL env_open(long layer_tag, EnvHandle fallback) {
    return guarded<EnvHandle>(nullptr, [&] { return new EnvHandleRecord(layer_tag, fallback); });
}

EnvStatus BVUTIL_CALL env_close(EnvHandle env, int close_chain) {
    return for_handle(env, [&] { return close(env, close_chain != 0); });
}

EnvHandle BVUTIL_CALL env_open_subenv(EnvHandle env, const char* section, const char* path, int exact) {
    return for_handle<EnvHandle>(env, nullptr, [&] {
        return open_sub({env, section, path}, exact != 0).release();
    });
}

EnvHandle BVUTIL_CALL env_create_subenv(EnvHandle env, const char* section, const char* path) {
    return for_handle<EnvHandle>(env, nullptr, [&] { return create_sub({env, section, path}).release(); });
}

EnvStatus BVUTIL_CALL env_check(EnvHandle env, const char* section, const char* path, int exact) {
    return for_handle(env, [&] { return check({env, section, path}, exact != 0); });
}

int BVUTIL_CALL env_exist(EnvHandle env, const char* section, const char* path, int exact) {
    return exists(env_check(env, section, path, exact));
}

int BVUTIL_CALL env_exist_block(EnvHandle env, const char* section, const char* path, int exact) {
    return env_check(env, section, path, exact) == ENV_IS_BLOCK;
}

int BVUTIL_CALL env_exist_data(EnvHandle env, const char* section, const char* path, int exact) {
    return env_check(env, section, path, exact) == ENV_IS_DATA;
}

int BVUTIL_CALL env_exist_external(EnvHandle env, const char* section, const char* path, int exact) {
    return env_check(env, section, path, exact) == ENV_IS_EXTERNAL;
}

EnvStatus BVUTIL_CALL env_delete(EnvHandle env, const char* section, const char* path) {
    return for_handle(env, [&] { return remove({env, section, path}); });
}

EnvStatus BVUTIL_CALL env_insert_before(EnvHandle env, const char* section, const char* path,
                                        const char* name) {
    return for_handle(env, [&] { return name ? insert_before({env, section, path}, name) : ENV_INVALID; });
}

long BVUTIL_CALL env_count_elements(EnvHandle env, const char* section, const char* path, int exact) {
    return for_handle<long>(env, ENV_INVALID, [&] {
        return count_elements({env, section, path}, exact != 0);
    });
}

long BVUTIL_CALL env_data_length(EnvHandle env, const char* section, const char* path, int exact) {
    return for_handle<long>(env, 0, [&] { return data_length({env, section, path}, exact != 0); });
}

} // extern "C"
