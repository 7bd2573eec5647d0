// A plug-in whose behaviour a test scripts, and applications of it that record every call.
#pragma once

#include "bvutil/filter_host.h"
#include "tests/filterhost/plugin_files.h"

#include <cstring>
#include <functional>
#include <string>
#include <vector>

// One call of the entry point: what the host handed over, before the script acted.
struct EntryCall {
    std::int16_t selector;
    ps::FilterRecord record;
    std::int32_t data;
    std::int16_t result;
};

class FilterRun : public testing::Test {
  protected:
    // What the plug-in does in a call; by default nothing but writing success.
    using Script = std::function<void(std::int16_t selector, ps::FilterRecord& record, std::int32_t& data,
                                      std::int16_t& result)>;

    FilterRun() {
        const std::string path = files.make(property_bytes::complete_list());
        EXPECT_EQ(AVGetPSFilterAndInfo(path.c_str(), nullptr, nullptr, &filter, nullptr), 1);
        auto* behaviour = reinterpret_cast<ps::EntryPoint*>(
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA(path.c_str()), "scripted_behaviour")));
        *behaviour = [](std::int16_t selector, ps::FilterRecord* record, std::int32_t* data,
                        std::int16_t* result) {
            running->calls.push_back({selector, *record, *data, *result});
            if (selector == ps::selector_parameters) *result = 0;
            if (running->script) running->script(selector, *record, *data, *result);
        };
        running = this;
    }
    ~FilterRun() override {
        AVFreeGotPSFilter(&filter);
        running = nullptr;
    }

    // Applies the filter to a picture of the given size and keeps the outcome.
    bool apply(int width, int height, int row_bytes = 0, bool repeat_last = false) {
        if (row_bytes == 0) row_bytes = 4 * width;
        image.resize(static_cast<std::size_t>(row_bytes) * static_cast<std::size_t>(height));
        for (std::size_t i = 0; i < image.size(); ++i)
            image[i] = static_cast<std::uint8_t>(i * 3 + i / 100);
        const std::vector<std::uint8_t> original = image;
        calls.clear();
        void* result = nullptr;
        code = 4711;
        const BvUtilBool done = AVApplyPSFilter(filter, repeat_last, progress, progress_context, image.data(),
                                                width, height, row_bytes, &result, &code);
        EXPECT_TRUE(done == 0 || done == 1);
        EXPECT_EQ(image, original) << "the caller's image was written to";
        const auto* bytes = static_cast<const std::uint8_t*>(result);
        output.assign(bytes, bytes + (bytes ? image.size() : 0));
        EXPECT_EQ(AVFreeGotPSFilterImage(&result), 1);
        EXPECT_EQ(result, nullptr);
        return done != 0;
    }

    // The selectors called, as digits.
    std::string selectors() const {
        std::string digits;
        for (const EntryCall& call : calls)
            digits += static_cast<char>('0' + call.selector);
        return digits;
    }

    static void want(ps::FilterRecord& record, const ps::Rect& in, const ps::Rect& out, std::int16_t lo = 0,
                     std::int16_t hi = 2) {
        record.inRect = in;
        record.outRect = out;
        record.inLoPlane = record.outLoPlane = lo;
        record.inHiPlane = record.outHiPlane = hi;
    }
    static void want_nothing(ps::FilterRecord& record) {
        record.inRect = record.outRect = record.maskRect = {};
    }

    PluginFiles files;
    PSFilter_* filter = nullptr;
    Script script;
    AVPSFilterProgress progress = nullptr;
    void* progress_context = nullptr;

    std::vector<EntryCall> calls;
    std::vector<std::uint8_t> image;
    std::vector<std::uint8_t> output;
    int code = 0;

  private:
    static inline FilterRun* running = nullptr;
};
