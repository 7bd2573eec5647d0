#include "files/byte_order.h"

#include "bvutil/fio.h"

#include <cstddef>
#include <cstring>

namespace {

constexpr std::size_t half = 8; // the mark, then the name
constexpr char new_header[] = "1.1  @mb"
                              "INTEL   ";
static_assert(sizeof new_header - 1 == 2 * half);

} // namespace

bool write_byte_order(std::FILE* stream) {
    return std::fwrite(new_header, 2 * half, 1, stream) == 1;
}

int read_byte_order(std::FILE* stream) {
    char text[half + 1] = {};
    std::fread(text, 1, half, stream);
    // Kept: either part of the mark, anywhere, is taken for a header.
    if (!std::strstr(text, "@mb") && !std::strstr(text, "1.1")) {
        std::rewind(stream);
        return FIO_NO_HEADER;
    }
    const bool whole = std::fread(text, 1, half, stream) == half;
    return whole && std::memcmp(text, "MOTOROLA", half) == 0 ? FIO_MOTOROLA : FIO_INTEL;
}
