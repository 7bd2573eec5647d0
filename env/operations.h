// What the exported element operations do, behind their argument checks.
#pragma once

#include "bvutil/env.h"
#include "env/handle.h"
#include "env/lookup.h"

#include <memory>

namespace env {

// Null when the element is not found.
std::unique_ptr<EnvHandleRecord> open_sub(const Address& address, bool exact);
std::unique_ptr<EnvHandleRecord> create_sub(const Address& address);

EnvStatus close(EnvHandle env, bool close_chain);

EnvStatus check(const Address& address, bool exact);
bool exists(EnvStatus checked);

EnvStatus remove(const Address& address);
EnvStatus insert_before(const Address& address, const char* name);

long count_elements(const Address& address, bool exact);
long data_length(const Address& address, bool exact);
// The path must not be null.
long count_path(const Address& address, bool exact);

// Copies the data leaves of one environment into another; see env_sink().
EnvStatus sink(EnvHandle dst, EnvHandle src, int mode);
EnvStatus copy_block(EnvHandle dst, const Address& src, int mode);

} // namespace env
