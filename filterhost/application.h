// One application of a filter to an image.
#pragma once

#include "filterhost/ps_filter.h"

struct Application {
    bool repeat_last;
    AVPSFilterProgress progress;
    void* context;
    const std::byte* image;
    int width;
    int height;
    int row_bytes;
};

// What AVApplyPSFilter gives: the plug-in's code, and whether the caller is told it.
struct Outcome {
    int code;
    bool told;
};

constexpr Outcome no_memory{-1, false};

// Runs the filter. The output receives the copy of the image with the filter's work in it, made with new[];
// it stays the caller's whatever the outcome, and is left alone when there is no memory for it.
Outcome apply(PSFilter_& filter, const Application& application, void** output);
