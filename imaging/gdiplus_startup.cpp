#include "bvutil/gdiplus_services.h"

#include "imaging/encoders.h"
#include "imaging/gdiplus_objects.h"
#include "imaging/wide_text.h"
#include "module/guarded.h"

namespace {

struct GdiplusState {
    ULONG_PTR token = 0;
    bool started = false; // kept: never cleared, GDI+ is started once in a process
} state;

} // namespace

extern "C" int BVUTIL_CALL gdiPlusInit(void) {
    if (state.started) return 1;
    Gdiplus::GdiplusStartupInput input; // version 1, no callback, nothing suppressed
    Gdiplus::GdiplusStartup(&state.token, &input, nullptr);
    state.started = true;
    return 1;
}

extern "C" int BVUTIL_CALL gdiPlusExit(void) {
    Gdiplus::GdiplusShutdown(state.token);
    return 1;
}

extern "C" int BVUTIL_CALL gdiPlusLoad(void) {
    return 1;
}

extern "C" int BVUTIL_CALL gdiPlusGetEncoderClsid(const char* mimeType, CLSID* clsid) {
    if (!mimeType || !clsid) return 0;
    return guarded(0, [&] {
        const auto found = find_encoder(widen(mimeType, CP_ACP).c_str());
        if (!found) return 0;
        *clsid = *found;
        return 1;
    });
}
