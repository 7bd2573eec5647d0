// What the sample plug-ins share: small steps that every plug-in takes.
#pragma once

#include "filterhost/filter_record.h"

#include <cstdlib>
#include <cstring>
#include <new>

// The entry point, under the name that the property list gives. Nothing thrown may reach the host.
#define FILTER_ENTRY_POINT(filter)                                                                           \
    extern "C" __declspec(dllexport) void PS_CALL FilterMain(                                                \
        std::int16_t selector, ps::FilterRecord* record, std::int32_t* data, std::int16_t* result) {         \
        try {                                                                                                \
            *result = filter(selector, *record, *data);                                                      \
        } catch (const std::bad_alloc&) {                                                                    \
            *result = ps::result_out_of_memory;                                                              \
        }                                                                                                    \
    }

inline bool is_rgb(const ps::FilterRecord& record) {
    return record.imageMode == ps::mode_rgb && record.planes >= 3;
}

// Asks for red, green and blue of these rectangles next; empty ones ask for nothing.
inline void request_rgb(ps::FilterRecord& record, const ps::Rect& in, const ps::Rect& out) {
    record.inRect = in;
    record.outRect = out;
    record.inLoPlane = record.outLoPlane = 0;
    record.inHiPlane = record.outHiPlane = 2;
}

inline void request_nothing(ps::FilterRecord& record) {
    record.inRect = record.outRect = record.maskRect = {};
}

// A number from the environment, in place of the dialog that a plug-in with a face would show.
inline double number_setting(const char* variable, double otherwise, double least, double most) {
    const char* text = std::getenv(variable);
    if (!text) return otherwise;
    char* end = nullptr;
    const double value = std::strtod(text, &end);
    if (end == text) return otherwise;
    return value < least ? least : value > most ? most : value; // NaN falls through to neither
}

// Settings live in a handle of the host's, which gives them back when the last filter is repeated. The
// handle is made at the first parameters call and used again at the next.
template <class Settings>
bool save_settings(ps::FilterRecord& record, const Settings& settings) {
    const ps::HandleProcs& procs = *record.handleProcs;
    if (!record.parameters) record.parameters = procs.newProc(sizeof settings);
    if (!record.parameters) return false;
    std::memcpy(procs.lockProc(record.parameters, 0), &settings, sizeof settings);
    procs.unlockProc(record.parameters);
    return true;
}

template <class Settings>
bool load_settings(const ps::FilterRecord& record, Settings& settings) {
    const ps::HandleProcs& procs = *record.handleProcs;
    if (!record.parameters || procs.getSizeProc(record.parameters) != sizeof settings) return false;
    std::memcpy(&settings, procs.lockProc(record.parameters, 0), sizeof settings);
    procs.unlockProc(record.parameters);
    return true;
}
