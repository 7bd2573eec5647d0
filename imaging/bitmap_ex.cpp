#include "imaging/bitmap_ex.h"

#include "imaging/pixel_rows.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::uint32_t headers_size = sizeof(BmpFileHeader) + sizeof(BmpInfoHeader);
constexpr std::size_t chunk_size = 256 * 1024;
constexpr std::uint64_t largest_data = 0x7FFFFFFF;

template <class Record>
bool read_record(ByteSource& source, Record& record) {
    const auto bytes = source.next(sizeof record);
    if (bytes.size() < sizeof record) return false;
    std::memcpy(&record, bytes.data(), sizeof record);
    return true;
}

std::uint64_t pitch_of(std::int32_t width, std::uint32_t bytes_per_pixel) {
    return (static_cast<std::uint64_t>(width) * bytes_per_pixel + 3) / 4 * 4;
}

std::size_t rows_per_chunk(std::size_t pitch) {
    return std::max<std::size_t>(1, chunk_size / pitch);
}

} // namespace

CBitmapEx::~CBitmapEx() = default;

void CBitmapEx::release() noexcept {
    m_pixels.reset();
    m_data_size = 0;
}

void CBitmapEx::load(ByteSource& source, const Layout& layout) {
    release();
    if (layout.has_file_header && !read_record(source, m_file)) return;
    if (!read_record(source, m_info)) return;
    load_palette_and_rows(source, layout);
}

void CBitmapEx::load(const BmpFileHeader& file, const BmpInfoHeader& info, ByteSource& source) {
    release();
    m_file = file;
    m_info = info;
    load_palette_and_rows(source, palette_and_rows);
}

void CBitmapEx::load_palette_and_rows(ByteSource& source, const Layout& layout) {
    m_bytes_per_pixel = m_info.bit_count / 8u;
    m_row_pitch = static_cast<std::uint32_t>(pitch_of(m_info.width, m_bytes_per_pixel));
    if (m_info.bit_count < 8) return;
    const bool has_palette = m_info.bit_count == 8;
    if (has_palette) {
        m_palette_entries = m_info.colours_used ? m_info.colours_used : 256;
        source.seek(layout.palette_at);
        read_palette(source);
    }
    const std::uint64_t entries = has_palette || !layout.only_own_palette ? m_palette_entries : 0;
    source.seek(layout.pixels_at + 4 * entries);
    read_rows(source);
}

// Entries beyond the 256 that an index can name are passed over.
void CBitmapEx::read_palette(ByteSource& source) {
    const auto bytes = source.next(std::min<std::size_t>(m_palette_entries, 256) * 4);
    std::copy(bytes.begin(), bytes.end(), m_palette);
}

void CBitmapEx::read_rows(ByteSource& source) {
    if (m_info.width <= 0 || m_info.height <= 0) return;
    const auto height = static_cast<std::size_t>(m_info.height);
    const std::uint64_t source_pitch = pitch_of(m_info.width, m_bytes_per_pixel);
    const std::uint64_t pitch = pitch_of(m_info.width, 4);
    if (std::max(source_pitch, pitch) * height > largest_data) return;

    const auto from_pitch = static_cast<std::size_t>(source_pitch);
    const auto to_pitch = static_cast<std::size_t>(pitch);
    auto pixels = std::make_unique_for_overwrite<std::uint8_t[]>(height * to_pitch);
    std::uint8_t* to = pixels.get();
    std::uint8_t* const end = to + height * to_pitch;
    for (std::size_t y = 0; y < height;) {
        const std::size_t rows = std::min(rows_per_chunk(from_pitch), height - y);
        const auto bytes = source.next(rows * from_pitch);
        for (std::size_t at = 0; at < bytes.size(); at += from_pitch, to += to_pitch) {
            const std::size_t whole_pixels = std::min(to_pitch / 4, (bytes.size() - at) / m_bytes_per_pixel);
            convert_row(to, bytes.data() + at, whole_pixels);
            std::fill(to + whole_pixels * 4, to + to_pitch, std::uint8_t{0});
        }
        if (bytes.size() < rows * from_pitch) break;
        y += rows;
    }
    std::fill(to, end, std::uint8_t{0});
    m_pixels = std::move(pixels);
    set_format(32);
}

void CBitmapEx::convert_row(std::uint8_t* to, const std::uint8_t* from, std::size_t pixels) const {
    switch (m_info.bit_count) {
    case 8:
        return widen_8(to, from, pixels, m_palette);
    case 16:
        return widen_555(to, from, pixels);
    case 24:
        return widen_24(to, from, pixels, 0);
    case 32:
        std::memcpy(to, from, pixels * 4);
        return;
    default: // no format of BMP files
        std::memset(to, 0, pixels * 4);
    }
}

void CBitmapEx::set_format(std::uint16_t bits) noexcept {
    m_info.bit_count = bits;
    m_bytes_per_pixel = bits / 8u;
    m_row_pitch = static_cast<std::uint32_t>(pitch_of(m_info.width, m_bytes_per_pixel));
    m_data_size = m_pixels ? m_row_pitch * static_cast<std::uint32_t>(m_info.height) : 0;
    m_file.file_size = m_data_size + headers_size;
    m_file.pixel_offset = headers_size;
}

CBitmapEx::DrawingHeader CBitmapEx::drawing_header() const noexcept {
    DrawingHeader header{m_info, m_palette_entries, {}};
    header.info.header_size = std::min<std::uint32_t>(m_info.header_size, sizeof m_info);
    std::memcpy(header.palette, m_palette, sizeof m_palette);
    return header;
}

std::vector<std::uint8_t> CBitmapEx::buffer_for_saving() const {
    if (!m_pixels) return {};
    const auto pitch = static_cast<std::size_t>(pitch_of(m_info.width, 3));
    const std::size_t rows = std::min(rows_per_chunk(pitch), static_cast<std::size_t>(m_info.height));
    return std::vector<std::uint8_t>(rows * pitch);
}

void CBitmapEx::save(std::FILE* stream, std::vector<std::uint8_t> buffer) {
    const auto height = m_pixels ? static_cast<std::size_t>(m_info.height) : 0;
    const auto width = m_pixels ? static_cast<std::size_t>(m_info.width) : 0;
    const auto pitch = static_cast<std::size_t>(pitch_of(static_cast<std::int32_t>(width), 3));

    set_format(24);
    if (stream) {
        std::fwrite(&m_file, sizeof m_file, 1, stream);
        std::fwrite(&m_info, sizeof m_info, 1, stream);
        for (std::size_t y = 0; y < height;) {
            const std::size_t rows = std::min(buffer.size() / pitch, height - y);
            for (std::size_t i = 0; i < rows; ++i, ++y) // the padding stays 0
                narrow_32(buffer.data() + i * pitch, m_pixels.get() + y * width * 4, width);
            std::fwrite(buffer.data(), pitch, rows, stream);
        }
    }
    set_fourth(m_pixels.get(), m_pixels.get(), width * height, 0);
    set_format(32);
}

void CBitmapEx::flip() noexcept {
    const auto height = static_cast<std::size_t>(m_info.height);
    for (std::size_t i = 0; i < height / 2; ++i)
        std::swap_ranges(m_pixels.get() + i * m_row_pitch, m_pixels.get() + (i + 1) * m_row_pitch,
                         m_pixels.get() + (height - 1 - i) * m_row_pitch);
}
