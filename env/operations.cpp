#include "env/operations.h"

#include "env/iteration.h"
#include "env/put.h"
#include "env/report.h"

#include <cstring>

namespace env {

std::unique_ptr<EnvHandleRecord> open_sub(const Address& address, bool exact) {
    const Found found = find(address, exact);
    return found ? std::make_unique<EnvHandleRecord>(*address.env, found.element) : nullptr;
}

std::unique_ptr<EnvHandleRecord> create_sub(const Address& address) {
    if (auto sub = open_sub(address, true)) return sub;
    // The handle first: what is created needs no memory after it.
    auto sub = std::make_unique<EnvHandleRecord>(*address.env, nullptr);
    if (put(address, nullptr, 0) != ENV_OK) return nullptr;
    const Found created = find(address, true);
    if (!created) return nullptr;
    sub->pin.stand_on(address.env->tree(), created.element);
    return sub;
}

EnvStatus close(EnvHandle env, bool close_chain) {
    for (;;) {
        if (env->open_subs != 0) return ENV_BUSY;
        const EnvHandle fallback = env->is_sub() ? nullptr : env->fallback;
        iteration().forget(env);
        delete env;
        if (!close_chain || !fallback) return ENV_OK;
        env = fallback;
    }
}

EnvStatus check(const Address& address, bool exact) {
    const EnvHandle env = address.env;
    if (!env->is_sub() && !address.section) return env->tree().top().count > 0 ? ENV_IS_BLOCK : ENV_NOT_FOUND;
    if (!address.path) {
        const Found start = find_start(address);
        if (!start) return ENV_NOT_FOUND;
        if (!env->is_sub()) return ENV_IS_BLOCK;
        // Kept: an empty block counts as absent.
        const ElementList* children = children_of(start.element);
        const bool empty = start.element->kind == Kind::block && (!children || children->count < 1);
        return empty ? ENV_NOT_FOUND : start.status;
    }
    const Found found = find(address, exact);
    return found ? found.status : ENV_NOT_FOUND;
}

bool exists(EnvStatus checked) {
    return checked == ENV_IS_DATA || checked == ENV_IS_BLOCK || checked == ENV_IS_EXTERNAL;
}

EnvStatus remove(const Address& address) {
    if (!address.path && address.env->is_sub()) return ENV_INVALID;
    const Found found = find(address, true);
    if (!found) return found.status;
    address.env->tree().remove(found.element);
    return ENV_OK;
}

EnvStatus insert_before(const Address& address, const char* name) {
    const EnvHandle env = address.env;
    Tree& tree = env->tree();
    const Found found = find(address, true);
    const bool section_only = !env->is_sub() && !address.path;
    if (!found) {
        // Kept: a missing section is no failure, unless there is none at all.
        const bool swallowed = section_only && found.status == ENV_NOT_FOUND && tree.top().count > 0;
        return swallowed ? ENV_OK : found.status;
    }
    tree.insert_before(found.element, section_only ? tree.create_block(name) : tree.create_external(name, 0));
    return ENV_OK;
}

long count_elements(const Address& address, bool exact) {
    const EnvHandle env = address.env;
    if (!env->is_sub() && !address.section) return static_cast<long>(env->tree().top().count);
    const Found found = find(address, exact);
    const ElementList* children = found ? children_of(found.element) : nullptr;
    return children ? static_cast<long>(children->count) : 0;
}

long data_length(const Address& address, bool exact) {
    const Found found = find(address, exact);
    return found.status == ENV_IS_DATA ? static_cast<long>(std::strlen(found.element->text)) : 0;
}

long count_path(const Address& address, bool exact) {
    const Found found = find(address, exact);
    if (!found) return found.status == ENV_NOT_FOUND ? 0 : found.status;
    return count_named(address.env->tree(), *found.element->list, last_component(address.path));
}

} // namespace env
