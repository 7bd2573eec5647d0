// The header of a data file that names its byte order.
#pragma once

#include <cstdio>

// Writes the header of a new file at the stream's position; false when that failed.
bool write_byte_order(std::FILE* stream);

// Reads the header at the start of a stream: the byte order, and the position behind the header; or
// FIO_NO_HEADER, and the position at the start.
int read_byte_order(std::FILE* stream);
