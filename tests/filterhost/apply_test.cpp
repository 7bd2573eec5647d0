// Applications: the order of calls, the record's bytes, rectangles and pixels, errors, progress and abort.
#include "tests/filterhost/filter_run.h"

#include <cstdlib>
#include <malloc.h>
#include <thread>
#include <utility>
#include <xmmintrin.h>

namespace {

constexpr ps::Rect pixel{0, 0, 1, 1};

TEST_F(FilterRun, FillsTheRecord) {
    ASSERT_EQ(apply(300, 200, 1204), "123 0");
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
    const auto bytes = [](const ps::FilterRecord& r) { return reinterpret_cast<const char*>(&r); };
    const char* const end = bytes(expected) + sizeof expected;
    EXPECT_EQ(std::mismatch(bytes(expected), end, bytes(actual)).first - bytes(expected), sizeof expected);

    EXPECT_EQ(std::memcmp(actual.bufferProcs, "\2\0\5", 4), 0) << "version and number of procedures";
    EXPECT_EQ(std::memcmp(actual.handleProcs, "\1\0\x8", 4), 0);
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
    apply(1, 1);
    EXPECT_EQ(window_told(), nullptr) << "this thread has no window";
    std::thread([&] {
        const HWND window = CreateWindowA("STATIC", "main", WS_OVERLAPPEDWINDOW, 0, 0, 50, 50, nullptr,
                                          nullptr, nullptr, nullptr);
        AVFreeGotPSFilter(&filter);
        open();
        apply(1, 1);
        EXPECT_EQ(window_told(), window) << "the word is one for the whole process";
        DestroyWindow(window);
    }).join();
}

TEST_F(FilterRun, WorksInTilesFromTheImageIntoTheCopy) {
    // Inverts in tiles of 16 x 16, the last ones reaching beyond the image.
    constexpr int width = 40, height = 20, row_bytes = 4 * width + 5;
    constexpr ps::Rect tiles[] = {{0, 0, 16, 16},  {0, 16, 16, 32},  {0, 32, 16, 48},
                                  {16, 0, 32, 16}, {16, 16, 32, 32}, {16, 32, 32, 48}};
    std::size_t next = 0;
    at[selector_start] = [&](ps::FilterRecord& record) {
        if (next == std::size(tiles)) return want_nothing(record);
        want(record, tiles[next], tiles[next]);
        ++next;
    };
    at[selector_continue] = [&](ps::FilterRecord& record) {
        EXPECT_EQ(record.inRowBytes, 48);
        EXPECT_EQ(record.outRowBytes, 48);
        const auto* from = static_cast<const std::uint8_t*>(record.inData);
        std::transform(from, from + 16 * 48, static_cast<std::uint8_t*>(record.outData),
                       [](std::uint8_t sample) { return static_cast<std::uint8_t>(~sample); });
        at[selector_start](record);
    };
    EXPECT_EQ(apply(width, height, row_bytes), "123444444 0") << "no finish after a normal end";
    EXPECT_EQ(calls[8].data, 8) << "the plug-in's own word goes from call to call";
    std::vector<std::uint8_t> expected = image;
    for (std::size_t i = 0; i < expected.size(); ++i)
        if (i % row_bytes < 4 * width && i % row_bytes % 4 != 3) expected[i] ^= 0xFF;
    EXPECT_EQ(output, expected);
}

// Input always comes from the caller's image, output from the copy with all that was written before.
TEST_F(FilterRun, AdvancesWithinACall) {
    std::vector<int> seen;
    at[selector_start] = [&](ps::FilterRecord& record) {
        want(record, pixel, pixel, 3, 3);
        for (int round = 0; round < 3; ++round) {
            seen.push_back(record.advanceState());
            seen.push_back(*static_cast<std::uint8_t*>(record.inData));
            seen.push_back((*static_cast<std::uint8_t*>(record.outData))++);
        }
        want_nothing(record);
        record.maskRect = pixel; // asks for nothing without a mask
    };
    EXPECT_EQ(apply(2, 2), "123 0");
    EXPECT_EQ(seen, (std::vector<int>{0, 9, 9, 0, 9, 10, 0, 9, 11}));
    EXPECT_EQ(output[3], 12);
    const ps::FilterRecord& record = calls[0].record; // no application is running any more
    EXPECT_EQ(record.advanceState(), -1);
    EXPECT_EQ(record.abortProc(), 1);
    record.progressProc(1, 2);
}

TEST_F(FilterRun, GivesHostileRequestsNothingToBreak) {
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
        {"all there is", {-32768, -32768, 32767, 32767}, 0, 3, false},
        {"all planes", {0, 0, 8, 8}, -32768, 32767, true},
        {"a mask alone", {}, 0, 2, false},
    };
    at[selector_continue] = want_nothing;
    for (const auto& each : cases) {
        SCOPED_TRACE(each.name);
        at[selector_start] = [&](ps::FilterRecord& record) {
            want(record, each.rect, each.rect, each.lo, each.hi);
            record.haveMask = each.rect.bottom == 0;
            record.maskRect = pixel;
        };
        EXPECT_EQ(apply(8, 8), "1234 0");
        EXPECT_EQ(calls[3].record.inData != nullptr, each.buffer);
        EXPECT_EQ(calls[3].record.outData != nullptr, each.buffer);
        EXPECT_EQ(calls[3].record.maskData, nullptr);
        EXPECT_EQ(output, image);
    }
}

TEST_F(FilterRun, EndsOnErrors) {
    const struct {
        std::int16_t selector, result;
        const char* outcome;
    } cases[] = {{selector_parameters, -128, "1 -128"},  {selector_parameters, 1, "123 0"},
                 {selector_prepare, -50, "12 -50"},      {selector_prepare, 2, "123 0"},
                 {selector_start, -30100, "123 -30100"}, {selector_start, 1, "123 1"}};
    for (const auto& each : cases) {
        answers = {{selector_parameters, std::int16_t{0}}};
        answers[each.selector] = each.result;
        EXPECT_EQ(apply(3, 3), each.outcome);
        EXPECT_EQ(output, image) << "the copy is the caller's all the same";
    }
    // An error while continuing is answered with the finish call, and then the work goes on.
    int continued = 0;
    at[selector_start] = [&](ps::FilterRecord& record) { want(record, {}, pixel); };
    at[selector_continue] = [&](ps::FilterRecord& record) {
        answers = {{selector_continue, continued == 0 ? std::int16_t{-1} : std::int16_t{0}},
                   {selector_finish, std::int16_t{-99}}};
        if (++continued == 3) want_nothing(record);
    };
    answers = {{selector_parameters, std::int16_t{0}}};
    EXPECT_EQ(apply(3, 3), "1234544 0");
    // The result slot is cleared for every call but that of the parameters.
    answers = {{selector_prepare, std::int16_t{-7}}};
    EXPECT_EQ(apply(1, 1), "12 -7");
    EXPECT_EQ(apply(1, 1), "1 -7");
}

TEST_F(FilterRun, RepeatsTheLastSettings) {
    const auto can_repeat = [&](PSFilter_* asked) {
        BvUtilBool can = 9;
        EXPECT_EQ(AVPSFilterCanDoLastFilter(asked, &can), 1);
        return can;
    };
    EXPECT_EQ(can_repeat(filter), 0);
    char data[] = "settings";
    char* pointer = data;
    at[selector_parameters] = [&](ps::FilterRecord& record) { record.parameters = &pointer; };
    answers[selector_parameters] = -1;
    EXPECT_EQ(apply(1, 1, 0, true), "1 -1") << "nothing to repeat yet: the user is asked";
    EXPECT_EQ(can_repeat(filter), 1) << "settings count whatever the call's result";
    answers[selector_parameters] = 0;
    EXPECT_EQ(apply(1, 1, 0, true), "23 0");
    EXPECT_EQ(calls[0].record.parameters, &pointer);
    EXPECT_EQ(apply(1, 1), "123 0");
    EXPECT_EQ(calls[0].record.parameters, &pointer);
    EXPECT_EQ(can_repeat(nullptr), 0);
    EXPECT_EQ(AVPSFilterCanDoLastFilter(filter, nullptr), 1);
}

struct Told {
    std::vector<float> fractions;
    BvUtilBool go_on;
};
BvUtilBool BVUTIL_STDCALL tell(float fraction, void* context) {
    static_cast<Told*>(context)->fractions.push_back(fraction);
    return static_cast<Told*>(context)->go_on;
}

// A stop that a progress report met with is remembered until the end of the application.
TEST_F(FilterRun, ReportsProgressAndStops) {
    Told told;
    std::string said;
    at[selector_parameters] = [&](ps::FilterRecord& record) { said += record.abortProc() ? 's' : 'g'; };
    at[selector_start] = [&](ps::FilterRecord& record) {
        const auto ask = [&](BvUtilBool go_on) {
            told.go_on = go_on;
            said += record.abortProc() ? 's' : 'g';
        };
        ask(0x80);          // any bit counts
        _mm_setcsr(0x3F80); // the plug-in rounds downwards for itself
        record.progressProc(1, 3);
        ask(0);
        ask(1);
        told.go_on = 0;
        record.progressProc(2, 3);
        ask(1);
        record.progressProc(3, 3);
        ask(1);
    };
    apply(1, 1);
    EXPECT_EQ(said, "gggggg") << "without a callback";
    progress_context = &told;
    progress = tell;
    for (const char* time : {"the first", "the next begins anew"}) {
        said.clear();
        told.fractions.clear();
        apply(1, 1);
        EXPECT_EQ(said, "ggsgss") << time;
        EXPECT_EQ(told.fractions, (std::vector<float>{0, 1 / 3.f, 1 / 3.f, 1 / 3.f, 2 / 3.f, 1}));
    }
}

// What the host takes back is what the record then holds, whatever the plug-in did to its pointers.
TEST_F(FilterRun, TakesBackWhatTheRecordHolds) {
    static std::vector<void*> kept;
    const struct {
        std::uint8_t written; // into every byte; 0: nothing is
        void (*change)(void*& data);
    } cases[] = {{7, [](void*& data) { data = static_cast<char*>(data) + 16; }},
                 {0, [](void*& data) { std::free(std::exchange(data, nullptr)); }},
                 {0, [](void*& data) { kept.push_back(std::exchange(data, nullptr)); }},
                 {9, [](void*& data) { data = std::memset(std::realloc(data, 20), 9, 20); }},
                 {8, nullptr}}; // input and output are swapped
    at[selector_start] = [](ps::FilterRecord& record) { want(record, {0, 0, 2, 2}, {0, 0, 2, 2}, 0, 3); };
    for (const auto& each : cases) {
        at[selector_continue] = [&](ps::FilterRecord& record) {
            std::memset(record.inData, 8, 16);
            std::memset(record.outData, 7, 16);
            if (each.change)
                each.change(record.inData), each.change(record.outData);
            else
                std::swap(record.inData, record.outData);
            want_nothing(record);
        };
        apply(2, 2);
        EXPECT_EQ(output, each.written ? std::vector<std::uint8_t>(16, each.written) : image);
    }
    for (void* data : kept) { // still the plug-in's
        EXPECT_EQ(_msize(data), 16u);
        std::free(data);
    }
}

// An early end leaves buffers in the record, for the next application or for nobody.
TEST_F(FilterRun, LeavesBuffersInTheRecordAtAnEarlyEnd) {
    void* left = nullptr;
    at[selector_start] = [&](ps::FilterRecord& record) {
        want(record, {0, 0, 2, 2}, pixel, 0, 3);
        record.advanceState();
        left = std::memset(record.outData, 77, 4);
        want_nothing(record);
    };
    answers[selector_start] = 1;
    EXPECT_EQ(apply(2, 2), "123 1");
    EXPECT_EQ(output, image);
    at.clear();
    answers.erase(selector_start);
    EXPECT_EQ(apply(2, 2), "123 0");
    EXPECT_EQ(calls[2].record.outData, left);
    std::fill_n(image.begin(), 4, std::uint8_t{77});
    EXPECT_EQ(output, image);
}

TEST_F(FilterRun, RefusesWhatCannotBeDone) {
    std::uint8_t bytes[4] = {};
    void* result = nullptr;
    int told = 55;
    const auto refuses = [&](PSFilter_* f, const void* from, int height, int row_bytes, void** to) {
        return AVApplyPSFilter(f, 0, nullptr, nullptr, from, 1, height, row_bytes, to, &told) == 0;
    };
    EXPECT_TRUE(refuses(nullptr, bytes, 1, 4, &result));
    EXPECT_TRUE(refuses(filter, nullptr, 1, 4, &result));
    EXPECT_TRUE(refuses(filter, bytes, 1, 4, nullptr));
    EXPECT_TRUE(refuses(filter, bytes, 0x7FFFFFFF, 0x7FFFFFFF, &result));
    EXPECT_TRUE(refuses(filter, bytes, 30000, 30000, &result)) << "four times this is beyond 32 bits";
    EXPECT_TRUE(refuses(filter, bytes, -1, 4, &result));
    EXPECT_TRUE(refuses(filter, bytes, 1, -4, &result));
    EXPECT_EQ(told, 55);
    EXPECT_EQ(result, nullptr);
    EXPECT_TRUE(calls.empty());
    EXPECT_EQ(AVApplyPSFilter(filter, 0, nullptr, nullptr, bytes, 1, 1, 4, &result, nullptr), 1);
    AVFreeGotPSFilterImage(&result);
    EXPECT_EQ(AVFreeGotPSFilterImage(&result), 1);
    EXPECT_EQ(AVFreeGotPSFilterImage(nullptr), 1);
}

} // namespace
