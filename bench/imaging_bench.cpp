// Pixel conversions on an image of 4000 x 3000 pixels, and a file of 8 MB as Base64.
#include "bench/copying.h"

#include "bvutil/gdi_bitmaps.h"
#include "bvutil/gdiplus_services.h"
#include "bvutil/text_exchange.h"
#include "imaging/base64.h"
#include "imaging/pixel_rows.h"
#include "imaging/raw_pixels.h"
#include "module/pixel_shuffle.h"

#include <cstdio>
#include <memory>

namespace {

constexpr std::size_t width = 4000, height = 3000, pixels = width * height;
constexpr double goal = 1.5;

using Bytes = std::vector<std::uint8_t>;

void show_kernels(const bench::Table& table, bench::Copying& copying, const Bytes& wide,
                  const Bytes& narrow) {
    const Bytes palette(1024);
    constexpr std::uint8_t places[] = {0, 1, 2};
    constexpr SampleOrder order(places);
    Bytes out(pixels * 4);
    const auto compare = [&](const char* name, std::size_t step, std::size_t out_step, double limit,
                             auto work) {
        copying.compare(table, name, pixels * (step + out_step), limit, work);
    };
    compare("24 to 32 bits", 3, 4, goal, [&] { widen_24(out.data(), narrow.data(), pixels, 0); });
    compare("  with SSE2 only", 3, 4, 0,
            [&] { widen_samples(order, out.data(), narrow.data(), pixels, 0, CpuLevel::sse2); });
    compare("32 to 24 bits", 4, 3, goal, [&] { narrow_32(out.data(), wide.data(), pixels); });
    compare("  with SSE2 only", 4, 3, 0,
            [&] { gather_samples(order, wide.data(), out.data(), pixels, CpuLevel::sse2); });
    compare("8 to 32 bits", 1, 4, 0, [&] { widen_8(out.data(), narrow.data(), pixels, palette.data()); });
    compare("32 to 32 bits, colour-keyed", 4, 4, goal,
            [&] { key_white(out.data(), wide.data(), pixels, 255); });
    compare("24 to 32 bits, colour-keyed", 3, 4, goal,
            [&] { widen_24_keyed(out.data(), narrow.data(), pixels, 255); });
}

// Most of their time goes to the system, which finds the pages of the new buffer.
void show_imports(const bench::Table& table, bench::Copying& copying, const Bytes& wide,
                  const Bytes& narrow) {
    const auto new_copy = [&] {
        const auto copied = std::make_unique_for_overwrite<char[]>(pixels * 4);
        std::memcpy(copied.get(), wide.data(), pixels * 4);
        asm volatile("" : : "r"(copied.get()) : "memory"); // or there would be no copy
    };
    copying.compare(table, "memcpy of 32 bits into a new buffer", pixels * 8, 0, new_copy);
    gdiPlusInit();
    for (const int step : {4, 3}) {
        const Bytes& from = step == 4 ? wide : narrow;
        const RawRows rows{from.data(), width, height, static_cast<int>(width) * step, step};
        const std::size_t traffic = pixels * static_cast<std::size_t>(step + 4);
        copying.compare(table, step == 4 ? "  keyed, from 32 bits" : "  keyed, from 24 bits", traffic, 0,
                        [&] {
                            convert_rows(rows, width * 4, 4, {255, true}, true);
                        });
        copying.compare(table, "    and through GDI+: gdiPlusBitmapFromBits", traffic, 0, [&] {
            BvUtilImage image = nullptr;
            gdiPlusBitmapFromBits(from.data(), width, height, step, 4, 255, 1, &image);
            gdiPlusFreeImage(image);
        });
    }
    gdiPlusExit();
}

// The obvious loop: three bytes, four characters.
void encode_bytewise(const Bytes& bytes, char* out) {
    const char* alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    for (std::size_t i = 0; i + 3 <= bytes.size(); i += 3) {
        *out++ = alphabet[bytes[i] >> 2];
        *out++ = alphabet[(bytes[i] & 3) << 4 | bytes[i + 1] >> 4];
        *out++ = alphabet[(bytes[i + 1] & 15) << 2 | bytes[i + 2] >> 6];
        *out++ = alphabet[bytes[i + 2] & 63];
    }
}

constexpr std::size_t file_size = 8000000;

void show_base64(const bench::Table& table, const Bytes& image) {
    const Bytes bytes(image.begin(), image.begin() + file_size);
    std::vector<char> out(static_cast<std::size_t>(base64_length(file_size))), copied(out);
    const double copy =
        bench::median_ms(21, [&] { std::memcpy(copied.data(), out.data(), (file_size + out.size()) / 2); });
    const auto show = [&](const char* name, bench::Goal limit, auto work) {
        const double time = bench::median_ms(21, work);
        table.row(name, file_size / time / 1e6, "GB/s", limit, time, {copy});
    };
    show("Base64 of 8 MB, byte by byte", {}, [&] { encode_bytewise(bytes, out.data()); });
    for (const auto& [name, level] : {std::pair{"  with SSE2 only", CpuLevel::sse2},
                                      {"  with SSSE3", CpuLevel::ssse3},
                                      {"  with AVX2", CpuLevel::avx2}})
        if (level <= cpu_level())
            show(name, {level == cpu_level() ? 3.0 : 0, true},
                 [&, level = level] { base64_encode(bytes, out.data(), level); });
}

void read_file(const char* name, std::vector<char>& to) {
    std::FILE* file = std::fopen(name, "rb");
    std::fread(to.data(), 1, file_size, file);
    std::fclose(file);
}

// The yardstick reads the file into memory that was touched before, and copies a text of the length.
void show_file(const Bytes& image) {
    const char* name = "bench_imaging.bin";
    std::FILE* file = std::fopen(name, "wb");
    std::fwrite(image.data(), 1, file_size, file);
    std::fclose(file);
    std::vector<char> out(static_cast<std::size_t>(base64_length(file_size))), copied(out);
    int length = 0;
    const auto read_and_copy = [&] {
        read_file(name, copied);
        std::memcpy(copied.data(), out.data(), out.size());
    };
    const bench::Table table({"read + copy"});
    const double yardstick = bench::median_ms(21, read_and_copy);
    const double time = bench::median_ms(21, read_and_copy, [&] { jpgToXML(name, out.data(), &length, 0); });
    table.row("jpgToXML of 8 MB", time, "ms", {std::round(200 * yardstick) / 100}, time, {yardstick});
    const double asking = bench::median_ms(21, [&] { jpgToXML(name, nullptr, &length, 1); });
    table.row("  its length only", asking, "ms", {}, asking, {yardstick});
    std::remove(name);
}

// A disc, and columns of single pixels: few rectangles, and as many as there can be.
void show_regions(const bench::Table& table) {
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
        table.row(disc ? "region of a disc" : "region of 400,000 single pixels", time, "ms", {});
        DeleteObject(bitmap);
    }
}

} // namespace

int main() {
    Bytes wide(pixels * 4), narrow;
    for (std::size_t i = 0; i < wide.size(); ++i)
        wide[i] = static_cast<std::uint8_t>(i * 7 ^ i >> 9);
    narrow.assign(wide.begin(), wide.begin() + pixels * 3);
    const bench::Table table({"memcpy"});
    {
        bench::Copying copying(pixels * 8);
        show_kernels(table, copying, wide, narrow);
        show_imports(table, copying, wide, narrow);
    }
    show_base64(table, wide);
    show_regions(table);
    show_file(wide);
}
