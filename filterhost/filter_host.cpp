#include "bvutil/filter_host.h"

#include "filterhost/application.h"
#include "filterhost/host_state.h"
#include "filterhost/ps_filter.h"
#include "module/own_arithmetic.h"

#include <cstring>
#include <new>

namespace {

constexpr int open_failed = -1;
constexpr unsigned delete_memory = 1;

void close(PSFilter_*& filter) {
    if (filter) filter->destroy(delete_memory);
    filter = nullptr;
}

// Opens the plug-in; the texts receive the object's own arrays. The code is 0 or `open_failed`.
int open(const char* file_name, PSFilter_*& filter, char*& category, char*& name) {
    int error = open_failed;
    filter = new (std::nothrow) PSFilter_(file_name, &category, &name, &error);
    return category || name ? error : open_failed;
}

// A copy for a caller that wants one; false when there is no memory for it.
bool hand_out(char** out, const char* text) {
    if (!out) return true;
    *out = text ? _strdup(text) : nullptr;
    return *out || !text;
}

void release(char** text) {
    if (!text) return;
    std::free(*text);
    *text = nullptr;
}

HostState the_host;

} // namespace

HostState& host_state() {
    return the_host;
}

extern "C" BvUtilBool BVUTIL_CALL AVGetPSFilterAndInfo(const char* fileName, char** category, char** name,
                                                       PSFilter_** filter, int* error) {
    if (!filter) return 0;
    char* own_category = nullptr;
    char* own_name = nullptr;
    *filter = nullptr;
    int code = calculated(open_failed, [&] { return open(fileName, *filter, own_category, own_name); });
    const bool category_copied = hand_out(category, own_category), name_copied = hand_out(name, own_name);
    if (!category_copied || !name_copied) {
        AVFreeGotPSFilterInfo(category, name);
        code = open_failed;
    }
    if (error) *error = code;
    if (code < 0) close(*filter);
    return code >= 0;
}

extern "C" BvUtilBool BVUTIL_CALL AVFreeGotPSFilterInfo(char** category, char** name) {
    release(category);
    release(name);
    return 1;
}

extern "C" BvUtilBool BVUTIL_CALL AVFreeGotPSFilter(PSFilter_** filter) {
    if (filter) close(*filter);
    return 1;
}

extern "C" BvUtilBool BVUTIL_CALL AVApplyPSFilter(PSFilter_* filter, BvUtilBool repeatLast,
                                                  AVPSFilterProgress progress, void* context,
                                                  const void* image, int width, int height, int rowBytes,
                                                  void** outImage, int* result) {
    if (!filter || !image || !outImage) return 0;
    const Application application{repeatLast != 0, progress, context, static_cast<const std::byte*>(image),
                                  width,           height,   rowBytes};
    const Outcome outcome = guarded(no_memory, [&] { return apply(*filter, application, outImage); });
    if (outcome.told && result) *result = outcome.code;
    return outcome.code >= 0;
}

extern "C" BvUtilBool BVUTIL_CALL AVPSFilterCanDoLastFilter(PSFilter_* filter, BvUtilBool* canDo) {
    if (canDo) *canDo = filter && filter->saved_parameters;
    return 1;
}

extern "C" BvUtilBool BVUTIL_CALL AVFreeGotPSFilterImage(void** image) {
    if (!image) return 1;
    delete[] static_cast<std::int32_t*>(*image);
    *image = nullptr;
    return 1;
}
