// Reading and writing whole environments.
#pragma once

#include "bvutil/env.h"

#include <string_view>

namespace env {

// Each replaces all sections of a main environment.
EnvStatus read_from(EnvReadChar read_char, void* source, EnvHandle env);
EnvStatus read_from_file(const char* file_name, EnvHandle env);

void write_to(EnvWriteChar write_char, void* sink, EnvHandle env);
void write_to_file(const char* file_name, EnvHandle env);

} // namespace env
