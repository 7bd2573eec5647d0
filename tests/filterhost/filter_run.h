// A plug-in whose behaviour a test scripts, and applications of it that record every call.
#pragma once

#include "bvutil/filter_host.h"
#include "tests/filterhost/plugin_files.h"

#include <cstring>
#include <functional>
#include <map>

// One call of the entry point: what the host handed over, before the script acted.
struct EntryCall {
    std::int16_t selector;
    ps::FilterRecord record;
    std::int32_t data;
    std::int16_t result;
};

class FilterRun : public testing::Test {
  protected:
    using enum ps::Selector;

    FilterRun() { open(); }
    ~FilterRun() override { AVFreeGotPSFilter(&filter); }

    void open() {
        const std::string path = files.make(property_bytes::complete_list());
        EXPECT_EQ(AVGetPSFilterAndInfo(path.c_str(), nullptr, nullptr, &filter, nullptr), 1);
        auto* behaviour = reinterpret_cast<ps::EntryPoint*>(
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA(path.c_str()), "scripted_behaviour")));
        *behaviour = [](std::int16_t selector, ps::FilterRecord* record, std::int32_t* data,
                        std::int16_t* result) {
            running->calls.push_back({selector, *record, (*data)++, *result});
            if (const auto& deed = running->at[selector]) deed(*record);
            if (running->answers.contains(selector)) *result = running->answers[selector];
        };
        running = this;
    }

    // Applies the filter to a picture. Gives the selectors called, as digits, and the code.
    std::string apply(int width, int height, int row_bytes = 0, bool repeat_last = false) {
        if (row_bytes == 0) row_bytes = 4 * width;
        image.resize(static_cast<std::size_t>(row_bytes) * static_cast<std::size_t>(height));
        for (std::size_t i = 0; i < image.size(); ++i)
            image[i] = static_cast<std::uint8_t>(i * 3 + i / 100);
        const std::vector<std::uint8_t> original = image;
        calls.clear();
        void* result = nullptr;
        int code = 4711;
        const BvUtilBool done = AVApplyPSFilter(filter, repeat_last, progress, progress_context, image.data(),
                                                width, height, row_bytes, &result, &code);
        EXPECT_EQ(done, code >= 0 ? 1 : 0);
        EXPECT_EQ(image, original) << "the caller's image was written to";
        const auto* bytes = static_cast<const std::uint8_t*>(result);
        output.assign(bytes, bytes + image.size());
        EXPECT_EQ(AVFreeGotPSFilterImage(&result), 1);
        EXPECT_EQ(result, nullptr);
        std::string selectors;
        for (const EntryCall& call : calls)
            selectors += static_cast<char>('0' + call.selector);
        return selectors + " " + std::to_string(code);
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
    AVPSFilterProgress progress = nullptr;
    void* progress_context = nullptr;

    // What the plug-in does at a selector, and the result that it writes then, if any.
    std::map<int, std::function<void(ps::FilterRecord&)>> at;
    std::map<int, std::int16_t> answers{{selector_parameters, std::int16_t{0}}};

    std::vector<EntryCall> calls;
    std::vector<std::uint8_t> image, output;

  private:
    static inline FilterRun* running = nullptr;
};
