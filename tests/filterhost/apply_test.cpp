// Applications: the order of calls, the record's bytes, rectangles and pixels, errors, progress and abort.
#include "tests/filterhost/filter_run.h"

#include <cstdlib>
#include <malloc.h>
#include <thread>
#include <utility>

namespace {

constexpr ps::Rect nothing{};

TEST_F(FilterRun, FillsTheRecord) {
    ASSERT_TRUE(apply(300, 200, 1204));
    ASSERT_EQ(selectors(), "123");
    const ps::FilterRecord& actual = calls[1].record;

    ps::FilterRecord expected;
    std::memset(&expected, 0, sizeof expected);
    expected.imageSize = expected.floatCoord = expected.wholeSize = {200, 300};
    expected.planes = 3;
    expected.filterRect = {0, 0, 200, 300};
    expected.maxSpace = 100000000;
    expected.backColor[3] = expected.foreColor[3] = 255;
    std::memcpy(&expected.hostSig, "APRI", 4);
    expected.imageMode = 3;
    expected.imageHRes = expected.imageVRes = 0x00608000;
    expected.dummyPlaneValue = -1;
    expected.supportsAbsolute = 1;
    expected.inLayerPlanes = expected.outLayerPlanes = expected.absLayerPlanes = 3;
    expected.inTransparencyMask = expected.outTransparencyMask = expected.absTransparencyMask = 1;
    expected.inPlaneBytes = expected.outPlaneBytes = 1;
    expected.inTileHeight = expected.absTileHeight = expected.outTileHeight = expected.maskTileHeight = 256;
    expected.inTileWidth = expected.absTileWidth = expected.outTileWidth = expected.maskTileWidth = 256;
    expected.depth = 8;
    expected.abortProc = actual.abortProc;
    expected.progressProc = actual.progressProc;
    expected.hostProc = actual.hostProc;
    expected.platformData = actual.platformData;
    expected.bufferProcs = actual.bufferProcs;
    expected.processEvent = actual.processEvent;
    expected.displayPixels = actual.displayPixels;
    expected.handleProcs = actual.handleProcs;
    expected.advanceState = actual.advanceState;
    for (std::size_t i = 0; i < sizeof expected; ++i)
        EXPECT_EQ(reinterpret_cast<const std::uint8_t*>(&actual)[i],
                  reinterpret_cast<const std::uint8_t*>(&expected)[i])
            << "offset " << i;

    EXPECT_EQ(actual.bufferProcs->bufferProcsVersion, 2);
    EXPECT_EQ(actual.bufferProcs->numBufferProcs, 5);
    EXPECT_EQ(actual.handleProcs->handleProcsVersion, 1);
    EXPECT_EQ(actual.handleProcs->numHandleProcs, 8);
    actual.hostProc(1, nullptr);
    actual.processEvent(nullptr);

    // At the first parameters call nothing is said about the image yet.
    EXPECT_EQ(calls[0].record.imageSize.h, 0);
    EXPECT_EQ(calls[0].record.planes, 0);
    EXPECT_EQ(calls[0].record.maxSpace, 100000000);
}

TEST_F(FilterRun, NamesTheMainWindowOfTheThread) {
    const auto window_told = [&] {
        return static_cast<ps::PlatformData*>(calls[0].record.platformData)->hwnd;
    };
    ASSERT_TRUE(apply(1, 1));
    EXPECT_EQ(window_told(), nullptr) << "this thread has no window";

    std::thread([&] {
        const HWND window = CreateWindowA("STATIC", "main", WS_OVERLAPPEDWINDOW, 0, 0, 50, 50, nullptr,
                                          nullptr, nullptr, nullptr);
        ASSERT_NE(window, nullptr);
        PSFilter_* first = filter;
        const std::string path = files.make(property_bytes::complete_list("other", "filter"));
        AVGetPSFilterAndInfo(path.c_str(), nullptr, nullptr, &filter, nullptr);
        void* result = nullptr;
        AVApplyPSFilter(filter, 0, nullptr, nullptr, image.data(), 1, 1, 4, &result, nullptr);
        EXPECT_EQ(window_told(), window) << "the word is one for the whole process";
        AVFreeGotPSFilterImage(&result);
        AVFreeGotPSFilter(&filter);
        filter = first;
        DestroyWindow(window);
    }).join();
}

TEST_F(FilterRun, WorksInTilesFromTheImageIntoTheCopy) {
    // Inverts in 16 x 16 tiles, the last ones reaching beyond the image; the settings and the data word last.
    constexpr int width = 40, height = 20, row_bytes = 4 * width + 5;
    ps::Point next{};
    const auto ask = [&](ps::FilterRecord& record) {
        const auto edge = [](int from) { return static_cast<std::int16_t>(from + 16); };
        const ps::Rect tile{next.v, next.h, edge(next.v), edge(next.h)};
        if (next.v >= height)
            want_nothing(record);
        else
            want(record, tile, tile);
        next.h = edge(next.h);
        if (next.h >= width) next = {edge(next.v), 0};
    };
    script = [&](std::int16_t selector, ps::FilterRecord& record, std::int32_t& data, std::int16_t&) {
        if (selector == ps::selector_start) next = {};
        if (selector == ps::selector_continue) {
            EXPECT_EQ(record.inRowBytes, 48);
            EXPECT_EQ(record.outRowBytes, 48);
            const auto* from = static_cast<const std::uint8_t*>(record.inData);
            auto* to = static_cast<std::uint8_t*>(record.outData);
            for (int i = 0; i < 16 * 48; ++i)
                to[i] = static_cast<std::uint8_t>(~from[i]);
        }
        if (selector >= ps::selector_start) ask(record);
        ++data;
    };
    ASSERT_TRUE(apply(width, height, row_bytes));
    EXPECT_EQ(code, 0);
    EXPECT_EQ(selectors(), "123444444") << "no finish after a normal end";
    for (std::size_t i = 0; i < calls.size(); ++i)
        EXPECT_EQ(calls[i].data, static_cast<std::int32_t>(i));
    for (int y = 0; y < height; ++y)
        for (int i = 0; i < row_bytes; ++i) {
            const auto at = static_cast<std::size_t>(y * row_bytes + i);
            const bool inverted = i < 4 * width && i % 4 != 3;
            ASSERT_EQ(output[at], static_cast<std::uint8_t>(inverted ? ~image[at] : image[at]))
                << i << "," << y;
        }
}

// Input always comes from the caller's image, output from the copy with all that was written before.
TEST_F(FilterRun, AdvancesWithinACall) {
    constexpr ps::Rect pixel{0, 0, 1, 1};
    std::vector<std::uint8_t> seen;
    script = [&](std::int16_t selector, ps::FilterRecord& record, std::int32_t&, std::int16_t&) {
        if (selector != ps::selector_start) return;
        want(record, pixel, pixel, 3, 3);
        for (int round = 0; round < 3; ++round) {
            EXPECT_EQ(record.advanceState(), 0);
            seen.push_back(*static_cast<std::uint8_t*>(record.inData));
            auto* out = static_cast<std::uint8_t*>(record.outData);
            seen.push_back((*out)++);
        }
        want_nothing(record);
        record.maskRect = pixel; // asks for nothing without a mask
    };
    ASSERT_TRUE(apply(2, 2));
    EXPECT_EQ(selectors(), "123");
    EXPECT_EQ(seen, (std::vector<std::uint8_t>{9, 9, 9, 10, 9, 11}));
    EXPECT_EQ(output[3], 12);
    const auto& record = calls[0].record;
    EXPECT_EQ(record.advanceState(), -1) << "no application is running";
    EXPECT_EQ(record.abortProc(), 1);
    record.progressProc(1, 2);
}

TEST_F(FilterRun, GivesHostileRequestsNothingToBreak) {
    constexpr std::int16_t far_left = -32768, far_right = 32767;
    const struct {
        const char* name;
        ps::Rect rect;
        std::int16_t lo, hi;
        bool buffer;
    } cases[] = {
        {"left and above", {-4, -4, 4, 4}, 0, 2, true},
        {"wholly outside", {100, 100, 110, 110}, 0, 3, true},
        {"planes that do not exist", {0, 0, 8, 8}, -3, 9, true},
        {"no planes", {0, 0, 8, 8}, 2, 1, true},
        {"inverted planes", {0, 0, 8, 8}, 2, -2, false},
        {"all there is", {far_left, far_left, far_right, far_right}, 0, 3, false},
        {"all planes", {0, 0, 8, 8}, far_left, far_right, true},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.name);
        script = [&](std::int16_t selector, ps::FilterRecord& record, std::int32_t&, std::int16_t&) {
            if (selector == ps::selector_start) want(record, each.rect, each.rect, each.lo, each.hi);
            if (selector == ps::selector_continue) {
                EXPECT_EQ(record.inData != nullptr, each.buffer);
                EXPECT_EQ(record.outData != nullptr, each.buffer);
                want_nothing(record);
            }
        };
        ASSERT_TRUE(apply(8, 8));
        EXPECT_EQ(selectors(), "1234");
        EXPECT_EQ(output, image);
    }
}

TEST_F(FilterRun, GoesOnForTheMaskAlone) {
    script = [](std::int16_t selector, ps::FilterRecord& record, std::int32_t&, std::int16_t&) {
        record.haveMask = 1;
        if (selector == ps::selector_start) record.maskRect = {0, 0, 1, 1};
        if (selector == ps::selector_continue) want_nothing(record);
    };
    ASSERT_TRUE(apply(4, 4));
    EXPECT_EQ(selectors(), "1234");
    EXPECT_EQ(calls[3].record.maskData, nullptr);
    EXPECT_EQ(calls[3].record.inData, nullptr);
}

TEST_F(FilterRun, EndsOnErrors) {
    const struct {
        std::int16_t selector, result;
        bool done;
        const char* selectors;
        int code;
    } cases[] = {
        {ps::selector_parameters, -128, false, "1", -128},  {ps::selector_parameters, 1, true, "123", 0},
        {ps::selector_prepare, -50, false, "12", -50},      {ps::selector_prepare, 2, true, "123", 0},
        {ps::selector_start, -30100, false, "123", -30100}, {ps::selector_start, 1, true, "123", 1},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(testing::Message() << each.selector << " gives " << each.result);
        script = [&](std::int16_t selector, ps::FilterRecord&, std::int32_t&, std::int16_t& result) {
            if (selector == each.selector) result = each.result;
        };
        EXPECT_EQ(apply(3, 3), each.done);
        EXPECT_EQ(selectors(), each.selectors);
        EXPECT_EQ(code, each.code);
        EXPECT_EQ(output, image) << "the copy is the caller's all the same";
    }
}

TEST_F(FilterRun, AnswersContinueErrorsWithFinishAndGoesOn) {
    int errors = 0;
    script = [&](std::int16_t selector, ps::FilterRecord& record, std::int32_t&, std::int16_t& result) {
        if (selector == ps::selector_start) want(record, nothing, {0, 0, 1, 1});
        if (selector == ps::selector_continue && ++errors < 3) result = static_cast<std::int16_t>(errors - 2);
        if (selector == ps::selector_finish) result = -99;
        if (selector == ps::selector_continue && errors == 3) want_nothing(record);
    };
    EXPECT_TRUE(apply(3, 3)); // the first continue fails, the second and third do not
    EXPECT_EQ(code, 0);
    EXPECT_EQ(selectors(), "1234544");
    for (const EntryCall& call : calls)
        EXPECT_EQ(call.result, 0) << "every slot but that of the parameters is cleared";
}

TEST_F(FilterRun, KeepsTheResultSlotForTheParametersCall) {
    script = [&](std::int16_t selector, ps::FilterRecord&, std::int32_t&, std::int16_t& result) {
        if (selector == ps::selector_parameters) result = calls.back().result; // as if it wrote nothing
        if (selector == ps::selector_prepare) result = -7;
    };
    EXPECT_FALSE(apply(1, 1));
    EXPECT_EQ(selectors(), "12");
    EXPECT_FALSE(apply(1, 1));
    EXPECT_EQ(selectors(), "1");
    EXPECT_EQ(code, -7);
}

TEST_F(FilterRun, RepeatsTheLastSettings) {
    BvUtilBool can_repeat = 9;
    EXPECT_EQ(AVPSFilterCanDoLastFilter(filter, &can_repeat), 1);
    EXPECT_EQ(can_repeat, 0);

    char data[] = "settings";
    char* pointer = data;
    std::int16_t parameters_result = -1;
    script = [&](std::int16_t selector, ps::FilterRecord& record, std::int32_t&, std::int16_t& result) {
        if (selector != ps::selector_parameters) return;
        record.parameters = &pointer;
        result = parameters_result;
    };
    EXPECT_FALSE(apply(1, 1, 0, true)) << "nothing to repeat yet: the user is asked";
    EXPECT_EQ(selectors(), "1");
    AVPSFilterCanDoLastFilter(filter, &can_repeat);
    EXPECT_EQ(can_repeat, 1) << "settings count whatever the call's result";

    parameters_result = 0;
    EXPECT_TRUE(apply(1, 1, 0, true));
    EXPECT_EQ(selectors(), "23");
    EXPECT_EQ(calls[0].record.parameters, &pointer);
    EXPECT_TRUE(apply(1, 1));
    EXPECT_EQ(selectors(), "123");
    EXPECT_EQ(calls[0].record.parameters, &pointer);

    EXPECT_EQ(AVPSFilterCanDoLastFilter(nullptr, &can_repeat), 1);
    EXPECT_EQ(can_repeat, 0);
    EXPECT_EQ(AVPSFilterCanDoLastFilter(filter, nullptr), 1);
}

struct Told {
    std::vector<float> fractions;
    BvUtilBool go_on = 0x80; // any bit counts
};
BvUtilBool BVUTIL_STDCALL tell(float fraction, void* context) {
    static_cast<Told*>(context)->fractions.push_back(fraction);
    return static_cast<Told*>(context)->go_on;
}

// A stop that a progress report met with is remembered until the end of the application.
TEST_F(FilterRun, ReportsProgressAndStops) {
    Told told;
    std::string answers;
    script = [&](std::int16_t selector, ps::FilterRecord& record, std::int32_t&, std::int16_t&) {
        const auto ask = [&] { answers += record.abortProc() ? 's' : 'g'; };
        if (selector == ps::selector_parameters) ask(); // no callback yet
        if (selector != ps::selector_start) return;
        ask();
        record.progressProc(1, 3);
        told.go_on = 0;
        ask();
        told.go_on = 1;
        ask();
        told.go_on = 0;
        record.progressProc(2, 3);
        told.go_on = 1;
        ask();
        record.progressProc(3, 3);
        ask();
    };
    EXPECT_TRUE(apply(1, 1)) << "without a callback";
    EXPECT_EQ(answers, "gggggg");

    answers.clear();
    progress_context = &told;
    progress = tell;
    EXPECT_TRUE(apply(1, 1));
    EXPECT_EQ(answers, "ggsgss");
    EXPECT_EQ(told.fractions, (std::vector<float>{0, 1 / 3.f, 1 / 3.f, 1 / 3.f, 2 / 3.f, 1}));
    answers.clear();
    EXPECT_TRUE(apply(1, 1));
    EXPECT_EQ(answers, "ggsgss") << "the next application begins anew";
}

// What the host takes back is what the record then holds, whatever the plug-in did to its pointers.
TEST_F(FilterRun, TakesBackWhatTheRecordHolds) {
    enum Deed { moves_along, frees, keeps, replaces, swaps };
    const struct {
        Deed deed;
        std::uint8_t written; // into every byte; 0: nothing is
    } cases[] = {{moves_along, 7}, {frees, 0}, {keeps, 0}, {replaces, 9}, {swaps, 8}};
    constexpr ps::Rect all{0, 0, 2, 2};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.deed);
        void* kept[2] = {};
        script = [&](std::int16_t selector, ps::FilterRecord& record, std::int32_t&, std::int16_t&) {
            if (selector == ps::selector_start) want(record, all, all, 0, 3);
            if (selector != ps::selector_continue) return;
            std::memset(record.inData, 8, 16);
            std::memset(record.outData, 7, 16);
            for (void** data : {&record.inData, &record.outData}) {
                if (each.deed == moves_along) *data = static_cast<char*>(*data) + 16;
                if (each.deed == frees || each.deed == replaces) std::free(*data);
                if (each.deed == keeps) kept[data == &record.outData] = *data;
                if (each.deed == frees || each.deed == keeps) *data = nullptr;
                if (each.deed == replaces) *data = std::memset(std::malloc(16), 9, 16);
            }
            if (each.deed == swaps) std::swap(record.inData, record.outData);
            want_nothing(record);
        };
        ASSERT_TRUE(apply(2, 2));
        EXPECT_EQ(output, each.written ? std::vector<std::uint8_t>(16, each.written) : image);
        for (void* data : kept) { // still the plug-in's
            EXPECT_TRUE(!data || _msize(data) == 16);
            std::free(data);
        }
    }
}

// An early end leaves buffers in the record, for the next application or for nobody.
TEST_F(FilterRun, LeavesBuffersInTheRecordAtAnEarlyEnd) {
    void* left = nullptr;
    script = [&](std::int16_t selector, ps::FilterRecord& record, std::int32_t&, std::int16_t& result) {
        if (selector != ps::selector_start) return;
        want(record, {0, 0, 2, 2}, {0, 0, 1, 1}, 0, 3);
        record.advanceState();
        left = std::memset(record.outData, 77, 4);
        want_nothing(record);
        result = 1;
    };
    EXPECT_TRUE(apply(2, 2));
    EXPECT_EQ(output, image);
    script = nullptr;
    void* const expected = left;
    EXPECT_TRUE(apply(2, 2));
    for (const EntryCall& call : calls)
        EXPECT_EQ(call.record.outData, expected);
    std::fill_n(image.begin(), 4, std::uint8_t{77});
    EXPECT_EQ(output, image);
}

TEST_F(FilterRun, RefusesWhatCannotBeDone) {
    std::uint8_t pixel[4] = {};
    void* result = nullptr;
    int told = 55;
    const auto try_with = [&](PSFilter_* f, const void* from, int height, int row_bytes, void** to) {
        return AVApplyPSFilter(f, 0, nullptr, nullptr, from, 1, height, row_bytes, to, &told);
    };
    EXPECT_EQ(try_with(nullptr, pixel, 1, 4, &result), 0);
    EXPECT_EQ(try_with(filter, nullptr, 1, 4, &result), 0);
    EXPECT_EQ(try_with(filter, pixel, 1, 4, nullptr), 0);
    EXPECT_EQ(try_with(filter, pixel, 0x7FFFFFFF, 0x7FFFFFFF, &result), 0);
    EXPECT_EQ(try_with(filter, pixel, 30000, 30000, &result), 0) << "four times this is beyond 32 bits";
    EXPECT_EQ(try_with(filter, pixel, -1, 4, &result), 0);
    EXPECT_EQ(try_with(filter, pixel, 1, -4, &result), 0);
    EXPECT_EQ(told, 55);
    EXPECT_EQ(result, nullptr);
    EXPECT_EQ(selectors(), "");

    EXPECT_EQ(AVApplyPSFilter(filter, 0, nullptr, nullptr, pixel, 1, 1, 4, &result, nullptr), 1);
    EXPECT_EQ(AVFreeGotPSFilterImage(&result), 1);
    EXPECT_EQ(AVFreeGotPSFilterImage(&result), 1);
    EXPECT_EQ(AVFreeGotPSFilterImage(nullptr), 1);
}

} // namespace
