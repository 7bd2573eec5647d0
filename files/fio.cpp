#include "bvutil/fio.h"

#include "bvutil/strings.h"
#include "files/byte_order.h"
#include "module/guarded.h"
#include "module/handles.h"

#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

namespace {

constexpr int failure = -1;
char unknown_path[] = "????"; // shared, never freed

struct FreeHandle {
    void operator()(FioFile* h) const noexcept {
        if (h->path != unknown_path) std::free(h->path);
        std::free(h);
    }
};
using Handle = std::unique_ptr<FioFile, FreeHandle>; // owns all but the stream

// The C runtime's mode text; empty unless exactly one kind of access is asked for.
std::string mode_text(int mode) {
    std::string text;
    if (mode & FIO_READ) text += 'r';
    if (mode & FIO_WRITE) text += 'w';
    if (mode & FIO_APPEND) text += 'a';
    if (text.size() != 1) return {};
    if (mode & FIO_UPDATE) text += '+';
    text += mode & FIO_TEXT ? 't' : 'b';
    return text;
}

std::string full_path(const char* dir, const char* file) {
    std::string path((dir ? std::strlen(dir) : 0) + std::strlen(file) + 3, '\0');
    if (!BvUtil_Makepath(path.data(), "", dir, file)) return {};
    path.resize(std::strlen(path.c_str()));
    return path;
}

Handle make_handle(std::FILE* stream, int mode, const std::string& path) {
    Handle h(static_cast<FioFile*>(std::malloc(sizeof(FioFile))));
    if (!h) return h;
    auto* const copy = static_cast<char*>(std::malloc(path.size() + 1));
    *h = {stream, FIO_INTEL, mode, copy ? std::strcpy(copy, path.c_str()) : unknown_path};
    return h;
}

bool start_header(FioFile& h) {
    if (h.mode & FIO_WRITE) {
        if (!write_byte_order(h.stream)) return false;
    } else {
        h.byteOrder = read_byte_order(h.stream);
    }
    // The caller may go on in either direction.
    return !(h.mode & FIO_UPDATE) || std::fseek(h.stream, 0, SEEK_CUR) == 0;
}

FioFile* open(const char* dir, const char* file, int mode) {
    const std::string access = mode_text(mode);
    if (access.empty()) return nullptr;
    const std::string path = full_path(dir, file);
    unique_stream stream(std::fopen(path.c_str(), access.c_str()));
    if (!stream) return nullptr;
    Handle h = make_handle(stream.get(), mode, path);
    if (!h) return nullptr;
    const bool has_header = (mode & (FIO_HEADER | FIO_TEXT | FIO_APPEND)) == FIO_HEADER;
    if (has_header && !start_header(*h)) return nullptr;
    stream.release();
    return h.release();
}

// Asked before the runtime is: reading a stream that is open for writing alone takes what its buffer holds.
bool reads(const FioFile* h) {
    return h && (h->mode & (FIO_READ | FIO_UPDATE)) != 0;
}
bool writes(const FioFile* h) {
    return h && (h->mode & (FIO_WRITE | FIO_APPEND | FIO_UPDATE)) != 0;
}

} // namespace

extern "C" FioFile* BVUTIL_CALL fio_open(const char* dir, const char* file, int mode) {
    if (!file) return nullptr;
    return guarded(static_cast<FioFile*>(nullptr), [&] { return open(dir, file, mode); });
}

extern "C" int BVUTIL_CALL fio_close(FioFile* h) {
    if (!h) return 0;
    const Handle owner(h);
    return std::fclose(h->stream) == 0 ? 0 : failure;
}

extern "C" int BVUTIL_CALL fio_flush(FioFile* h) {
    return h && std::fflush(h->stream) == 0 ? 0 : failure;
}

extern "C" int BVUTIL_CALL fio_getchar(FioFile* h, char* c) {
    if (!reads(h)) return failure;
    const int read = std::fgetc(h->stream);
    if (read == EOF || !c) return read == EOF ? failure : read;
    *c = static_cast<char>(read);
    return 0;
}

extern "C" int BVUTIL_CALL fio_putchar(FioFile* h, char c) {
    return writes(h) && std::fputc(static_cast<unsigned char>(c), h->stream) != EOF ? 0 : failure;
}

extern "C" int BVUTIL_CALL fio_getstring(FioFile* h, int maxLen, char* buffer) {
    return reads(h) ? BvUtil_GetString(h->stream, maxLen, buffer) : failure;
}

extern "C" int BVUTIL_CALL fio_putstring(FioFile* h, const char* text, int width) {
    return writes(h) ? BvUtil_PutString(h->stream, text, width) : failure;
}

extern "C" int BVUTIL_CALL fio_seek(FioFile* h, long offset, int origin) {
    if (!h) return failure;
    const int from = origin == 0 ? SEEK_SET : origin == 1 ? SEEK_CUR : SEEK_END;
    return std::fseek(h->stream, offset, from) == 0 ? 0 : failure;
}

extern "C" long BVUTIL_CALL fio_tell(FioFile* h) {
    // The runtime's own answer beyond 2 GB is the position's lower half.
    std::fpos_t position;
    if (!h || std::fgetpos(h->stream, &position) != 0 || position > LONG_MAX) return failure;
    return static_cast<long>(position);
}
