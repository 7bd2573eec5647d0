// The bitmap behind the bmpEx functions: any uncompressed BMP image of 8 bits per pixel or more, held
// with 32.
#pragma once

#include "imaging/byte_source.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

#pragma pack(push, 1)
struct BmpFileHeader {
    std::uint16_t type;
    std::uint32_t file_size;
    std::uint16_t reserved[2];
    std::uint32_t pixel_offset;
};
#pragma pack(pop)
static_assert(sizeof(BmpFileHeader) == 14);

struct BmpInfoHeader {
    std::uint32_t header_size;
    std::int32_t width, height;
    std::uint16_t planes, bit_count;
    std::uint32_t compression, image_size;
    std::int32_t x_resolution, y_resolution;
    std::uint32_t colours_used, colours_important;
};
static_assert(sizeof(BmpInfoHeader) == 40);

class CBitmapEx {
  public:
    // Where the parts of an image lie in its source. Pixels begin behind as many palette entries as are held.
    struct Layout {
        bool has_headers;
        bool has_file_header;
        unsigned palette_at;
        unsigned pixels_at;
        bool only_own_palette; // an image without a palette has its pixels first, whatever is held
    };
    static constexpr Layout file{true, true, 54, 54, true};
    static constexpr Layout file_image{true, true, 54, 54, false};
    static constexpr Layout bare_image{true, false, 54, 40, false}; // kept: palette and pixels overlap
    static constexpr Layout palette_and_rows{false, false, 0, 0, false};

    CBitmapEx() noexcept = default;
    virtual ~CBitmapEx();
    CBitmapEx(const CBitmapEx&) = delete;
    CBitmapEx& operator=(const CBitmapEx&) = delete;

    // Replaces the image. Rows and pixels that the source does not have are 0. No pixels are held afterwards
    // when the headers are cut short, for less than 8 bits per pixel, a width or height below 1, more pixel
    // data than 2 GB, and when memory runs out (that is thrown).
    void load(ByteSource& source, const Layout& layout);
    // The same with the headers given.
    void load(const BmpFileHeader& file, const BmpInfoHeader& info, ByteSource& source);

    // What save() needs to write to a stream: had before a file is opened, and emptied.
    std::vector<std::uint8_t> buffer_for_saving() const;
    // Writes the image with 24 bits per pixel, by way of that buffer; to no stream when it is null.
    // Afterwards the held pixels have lost their fourth bytes: they have been through 24 bits. Without
    // pixels, only the headers are written.
    void save(std::FILE* stream, std::vector<std::uint8_t> buffer);

    // Turns the order of the rows round.
    void flip() noexcept;

    const BmpInfoHeader& info() const { return m_info; }
    const BmpFileHeader& file_header() const { return m_file; }
    // The rows, bottom row first; null when no pixels are held.
    const std::uint8_t* pixels() const { return m_pixels.get(); }
    std::uint32_t pixel_data_size() const { return m_data_size; }

    // The info header with what the platform may look for behind it: colour masks and entries. A size beyond
    // the 40 bytes that are held is given as 40: it changes nothing in what is drawn, but what records a
    // drawing copies that many.
    struct DrawingHeader {
        BmpInfoHeader info;
        std::uint32_t palette_entries;
        std::uint8_t palette[256 * 4];
    };
    DrawingHeader drawing_header() const noexcept;

  private:
    void release() noexcept;
    void load_palette_and_rows(ByteSource& source, const Layout& layout);
    void read_palette(ByteSource& source);
    void read_rows(ByteSource& source);
    void convert_row(std::uint8_t* to, const std::uint8_t* from, std::size_t pixels) const;
    void set_format(std::uint16_t bits) noexcept;

    BmpFileHeader m_file{};
    BmpInfoHeader m_info{};
    std::uint32_t m_palette_entries = 0;
    std::uint8_t m_palette[256 * 4] = {};
    std::uint32_t m_row_pitch = 0;
    std::uint32_t m_bytes_per_pixel = 0;
    std::uint32_t m_data_size = 0;
    std::unique_ptr<std::uint8_t[]> m_pixels;
};
