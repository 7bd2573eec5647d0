// Duotone: prints the picture's lightness in a range between two inks, and shows a preview first.
//
// It borrows what it needs from the host: its tables and preview pixels are host buffers, its settings
// (DUOTONE_DARK and DUOTONE_LIGHT in the environment, as "rrggbb") a host handle, and the preview is drawn
// by the host's display procedure: before, after, and the lightness histogram. It goes to the window that
// the host names, or else into the BMP file that DUOTONE_PREVIEW names.
#include "samples/filters/plugin.h"

#include <algorithm>
#include <cstdio>
#include <windows.h>

namespace {

constexpr int planes = 3;
constexpr int levels = 256;

struct Ink {
    std::uint8_t red, green, blue;
};
struct Settings {
    Ink dark, light;
};

// A buffer of the host's for the length of a call.
class HostBuffer {
  public:
    HostBuffer(const ps::BufferProcs& procs, std::int32_t size) : m_procs(procs) {
        // Some hosts tell a failure by the code, others leave the id null.
        if (procs.allocateProc(size, &m_id) != ps::result_ok || !m_id) throw std::bad_alloc();
        m_data = reinterpret_cast<std::uint8_t*>(procs.lockProc(m_id, 0));
        std::memset(m_data, 0, static_cast<std::size_t>(size));
    }
    HostBuffer(const HostBuffer&) = delete;
    HostBuffer& operator=(const HostBuffer&) = delete;
    ~HostBuffer() {
        m_procs.unlockProc(m_id);
        m_procs.freeProc(m_id);
    }
    std::uint8_t* data() { return m_data; }

  private:
    const ps::BufferProcs& m_procs;
    ps::BufferID m_id = nullptr;
    std::uint8_t* m_data = nullptr;
};

Ink ink_setting(const char* variable, Ink otherwise) {
    const char* text = std::getenv(variable);
    unsigned red, green, blue;
    if (!text || std::sscanf(text, "%2x%2x%2x", &red, &green, &blue) != 3) return otherwise;
    return {static_cast<std::uint8_t>(red), static_cast<std::uint8_t>(green),
            static_cast<std::uint8_t>(blue)};
}

// Lightness as the eye weighs the colours, in 256ths.
int lightness(const std::uint8_t* rgb) {
    return (77 * rgb[0] + 150 * rgb[1] + 29 * rgb[2]) >> 8;
}

// The colour of each level of lightness.
void fill_table(std::uint8_t* table, const Settings& settings) {
    const auto mix = [](int level, int dark, int light) {
        return static_cast<std::uint8_t>((dark * (255 - level) + light * level + 127) / 255);
    };
    for (int level = 0; level < levels; ++level, table += planes) {
        table[0] = mix(level, settings.dark.red, settings.light.red);
        table[1] = mix(level, settings.dark.green, settings.light.green);
        table[2] = mix(level, settings.dark.blue, settings.light.blue);
    }
}

void print_row(const std::uint8_t* in, std::uint8_t* out, int columns, const std::uint8_t* table) {
    for (int x = 0; x < columns; ++x)
        std::memcpy(out + x * planes, table + lightness(in + x * planes) * planes, planes);
}

// The preview: two small pictures side by side, and below them the histogram.
constexpr int small_width = 160;
constexpr int small_height = 120;
constexpr int histogram_height = 60;
constexpr int preview_width = 2 * small_width;
constexpr int preview_height = small_height + histogram_height;

// Fills one small picture with the nearest pixels of the input.
void shrink(const ps::FilterRecord& record, std::uint8_t* small) {
    const int columns = record.inRect.right - record.inRect.left;
    const int rows = record.inRect.bottom - record.inRect.top;
    const auto* in = static_cast<const std::uint8_t*>(record.inData);
    for (int y = 0; y < small_height; ++y)
        for (int x = 0; x < small_width; ++x, small += planes)
            std::memcpy(small,
                        in + y * rows / small_height * record.inRowBytes + x * columns / small_width * planes,
                        planes);
}

// Dark columns on light ground, one per two levels, as high as their share of the pixels.
void draw_histogram(const std::uint8_t* small, std::uint8_t* grey) {
    constexpr std::uint8_t ground = 230, column = 40;
    int counts[preview_width] = {};
    int most = 1;
    for (int i = 0; i < small_width * small_height; ++i) {
        int& count = counts[lightness(small + i * planes) * preview_width / levels];
        most = std::max(most, ++count);
    }
    for (int y = 0; y < histogram_height; ++y)
        for (int x = 0; x < preview_width; ++x)
            *grey++ = counts[x] * histogram_height > (histogram_height - 1 - y) * most ? column : ground;
}

ps::PSPixelMap describe(std::uint8_t* pixels, int width, int height, ps::ImageMode mode) {
    const int pixel_bytes = mode == ps::mode_rgb ? planes : 1;
    return {1, {0, 0, height, width}, mode, width * pixel_bytes, pixel_bytes, 1, pixels};
}

void draw_preview(ps::FilterRecord& record, const Settings& settings, HDC target) {
    const ps::BufferProcs& buffers = *record.bufferProcs;
    HostBuffer table(buffers, levels * planes);
    HostBuffer before(buffers, small_width * small_height * planes);
    HostBuffer after(buffers, small_width * small_height * planes);
    HostBuffer histogram(buffers, preview_width * histogram_height);
    fill_table(table.data(), settings);
    shrink(record, before.data());
    print_row(before.data(), after.data(), small_width * small_height, table.data());
    draw_histogram(before.data(), histogram.data());

    const ps::PSPixelMap left = describe(before.data(), small_width, small_height, ps::mode_rgb);
    const ps::PSPixelMap right = describe(after.data(), small_width, small_height, ps::mode_rgb);
    const ps::PSPixelMap below = describe(histogram.data(), preview_width, histogram_height, ps::mode_grey);
    record.displayPixels(&left, &left.bounds, 0, 0, target);
    record.displayPixels(&right, &right.bounds, 0, small_width, target);
    record.displayPixels(&below, &below.bounds, small_height, 0, target);
}

void write_bmp(const char* path, const BITMAPINFOHEADER& info, const void* pixels, DWORD size) {
    std::FILE* file = std::fopen(path, "wb");
    if (!file) return;
    BITMAPFILEHEADER header{};
    header.bfType = 0x4D42;
    header.bfOffBits = sizeof header + sizeof info;
    header.bfSize = header.bfOffBits + size;
    std::fwrite(&header, sizeof header, 1, file);
    std::fwrite(&info, sizeof info, 1, file);
    std::fwrite(pixels, size, 1, file);
    std::fclose(file);
}

void preview_into_file(ps::FilterRecord& record, const Settings& settings, const char* path) {
    BITMAPINFO info{};
    info.bmiHeader = {sizeof info.bmiHeader, preview_width, preview_height, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    const HDC memory = CreateCompatibleDC(nullptr);
    void* pixels = nullptr;
    const HBITMAP bitmap = CreateDIBSection(memory, &info, DIB_RGB_COLORS, &pixels, nullptr, 0);
    if (bitmap) {
        const HGDIOBJ former = SelectObject(memory, bitmap);
        draw_preview(record, settings, memory);
        GdiFlush();
        write_bmp(path, info.bmiHeader, pixels, preview_width * planes * preview_height);
        SelectObject(memory, former);
        DeleteObject(bitmap);
    }
    DeleteDC(memory);
}

void preview(ps::FilterRecord& record, const Settings& settings) {
    const auto window = static_cast<HWND>(static_cast<const ps::PlatformData*>(record.platformData)->hwnd);
    const char* path = std::getenv("DUOTONE_PREVIEW");
    if (window) {
        const HDC target = GetDC(window);
        draw_preview(record, settings, target);
        ReleaseDC(window, target);
    } else if (path) {
        preview_into_file(record, settings, path);
    }
}

// Looks at the whole image for the preview, then asks for it once more to work on.
std::int16_t start(ps::FilterRecord& record) {
    Settings settings;
    if (!load_settings(record, settings)) return ps::result_filter_bad_parameters;
    request_rgb(record, record.filterRect, {});
    if (const ps::OSErr error = record.advanceState()) return error;
    if (record.inData) preview(record, settings);
    request_rgb(record, record.filterRect, record.filterRect);
    return ps::result_ok;
}

std::int16_t work(ps::FilterRecord& record) {
    const ps::Rect area = record.outRect;
    const auto* in = static_cast<const std::uint8_t*>(record.inData);
    auto* out = static_cast<std::uint8_t*>(record.outData);
    request_nothing(record);
    Settings settings;
    if (!in || !out || !load_settings(record, settings)) return ps::result_out_of_memory;
    HostBuffer table(*record.bufferProcs, levels * planes);
    fill_table(table.data(), settings);
    const int rows = area.bottom - area.top;
    for (int y = 0; y < rows; ++y, in += record.inRowBytes, out += record.outRowBytes) {
        print_row(in, out, area.right - area.left, table.data());
        if (y % 64 == 0) record.progressProc(y, rows);
    }
    record.progressProc(rows, rows);
    return ps::result_ok;
}

std::int16_t duotone(std::int16_t selector, ps::FilterRecord& record, std::int32_t&) {
    switch (selector) {
    case ps::selector_parameters: {
        const Settings settings{ink_setting("DUOTONE_DARK", {0x1B, 0x26, 0x4F}),
                                ink_setting("DUOTONE_LIGHT", {0xFF, 0xF1, 0xD6})};
        return save_settings(record, settings) ? ps::result_ok : ps::result_out_of_memory;
    }
    case ps::selector_prepare:
        return is_rgb(record) ? ps::result_ok : ps::result_filter_bad_mode;
    case ps::selector_start:
        return start(record);
    case ps::selector_continue:
        return work(record);
    default:
        return ps::result_ok;
    }
}

} // namespace

FILTER_ENTRY_POINT(duotone)
