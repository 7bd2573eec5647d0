// Pixel conversions and Base64 against copying the same bytes, on an image of 4000 x 3000 pixels. (The copy's
// bytes are those of the larger side.)
#include "bench/bench.h"

#include "bvutil/gdi_bitmaps.h"
#include "imaging/base64.h"
#include "imaging/pixel_rows.h"
#include "imaging/raw_pixels.h"

#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>

namespace {

constexpr std::size_t width = 4000, height = 3000, pixels = width * height;
constexpr int runs = 15;

// The obvious loop: three bytes, four characters.
void encode_bytewise(const std::vector<std::uint8_t>& bytes, char* out) {
    const char* alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    for (std::size_t i = 0; i + 3 <= bytes.size(); i += 3) {
        *out++ = alphabet[bytes[i] >> 2];
        *out++ = alphabet[(bytes[i] & 3) << 4 | bytes[i + 1] >> 4];
        *out++ = alphabet[(bytes[i + 1] & 15) << 2 | bytes[i + 2] >> 6];
        *out++ = alphabet[bytes[i + 2] & 63];
    }
}

void show_conversions() {
    std::vector<std::uint8_t> wide(pixels * 4), narrow(pixels * 3), indices(pixels), palette(1024),
        out(pixels * 4);
    for (std::size_t i = 0; i < wide.size(); ++i)
        wide[i] = static_cast<std::uint8_t>(i * 7 ^ i >> 9);
    std::copy_n(wide.begin(), narrow.size(), narrow.begin());
    std::copy_n(wide.begin(), indices.size(), indices.begin());
    const double copy = bench::median_ms(runs, [&] { std::memcpy(out.data(), wide.data(), wide.size()); });
    std::printf("memcpy of %zu MB: %.2f ms\n", wide.size() / 1000000, copy);

    const auto keyed = [&](const std::vector<std::uint8_t>& from, int step) {
        const RawRows rows{from.data(), width, height, static_cast<int>(width) * step, step};
        return convert_rows(rows, width * 4, 4, {255, true}, true);
    };
    const struct {
        const char* name;
        std::function<void()> work;
    } cases[] = {
        {"24 to 32 bits", [&] { widen_24(out.data(), narrow.data(), pixels, 0); }},
        {"  with SSE2 only", [&] { widen_24(out.data(), narrow.data(), pixels, 0, CpuLevel::sse2); }},
        {"32 to 24 bits", [&] { narrow_32(out.data(), wide.data(), pixels); }},
        {"  with SSE2 only", [&] { narrow_32(out.data(), wide.data(), pixels, CpuLevel::sse2); }},
        {"8 to 32 bits", [&] { widen_8(out.data(), indices.data(), pixels, palette.data()); }},
        {"white keyed, 32 bits", [&] { key_white(out.data(), wide.data(), pixels, 255); }},
        {"a copy into a new buffer",
         [&] {
             const auto copied = std::make_unique_for_overwrite<char[]>(pixels * 4);
             std::memcpy(copied.get(), wide.data(), pixels * 4);
             asm volatile("" : : "r"(copied.get()) : "memory"); // or there would be no copy
         }},
        {"  import from 32 bits, with its new buffer", [&] { keyed(wide, 4); }},
        {"  import from 24 bits, with its new buffer", [&] { keyed(narrow, 3); }},
    };
    for (const auto& c : cases) {
        const double time = bench::median_ms(runs, c.work);
        std::printf("%-44s %7.2f ms  %5.2f x memcpy\n", c.name, time, time / copy);
    }
}

void show_base64() {
    const std::vector<std::uint8_t> bytes(48000000, 0xA7);
    std::vector<char> out(static_cast<std::size_t>(base64_length(bytes.size())));
    const auto show = [&](const char* name, auto work) {
        const double time = bench::median_ms(runs, work);
        std::printf("%-44s %7.2f ms  %5.2f GB/s\n", name, time,
                    static_cast<double>(bytes.size()) / time / 1e6);
    };
    show("Base64, byte by byte", [&] { encode_bytewise(bytes, out.data()); });
    for (const auto& [name, level] : {std::pair{"Base64, SSE2 only", CpuLevel::sse2},
                                      {"Base64, SSSE3", CpuLevel::ssse3},
                                      {"Base64, AVX2", CpuLevel::avx2}})
        if (level <= cpu_level()) show(name, [&, level = level] { base64_encode(bytes, out.data(), level); });
}

// A disc, and columns of single pixels: few rectangles, and as many as there can be.
void show_regions() {
    for (const bool disc : {true, false}) {
        BITMAPINFO info{};
        info.bmiHeader = {sizeof info.bmiHeader, width, height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        void* bits = nullptr;
        const HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
        for (int y = 0; y < static_cast<int>(height); ++y)
            for (int x = 0; x < static_cast<int>(width); ++x) {
                const int dx = x - 2000, dy = y - 1500;
                const bool opaque = disc ? dx * dx + dy * dy < 1400 * 1400 : y < 200 && (x ^ y) & 1;
                static_cast<std::uint32_t*>(
                    bits)[static_cast<std::size_t>(y) * width + static_cast<std::size_t>(x)] =
                    opaque ? 0x336699u : 0xFFFFFFu;
            }
        const double time =
            bench::median_ms(3, [&] { DeleteObject(BvUtil_CreateRegionFromBitmap(bitmap, 0xFFFFFF)); });
        std::printf("%-44s %7.2f ms\n", disc ? "region of a disc" : "region of 400,000 single pixels", time);
        DeleteObject(bitmap);
    }
}

} // namespace

int main() {
    show_conversions();
    show_base64();
    show_regions();
}
