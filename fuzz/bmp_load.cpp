// BMP images from every layout, one after the other into one object: whatever comes, it holds 32-bit pixels
// of the size that its headers tell, or none.
#include "fuzz/require.h"
#include "imaging/bitmap_ex.h"

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

// Sizes that are only slow: the bytes that an image claims are set to zero, wherever it is cut.
bool is_large(std::span<const std::uint8_t> image, std::size_t header_at) {
    BmpInfoHeader info;
    SpanSource source(image);
    source.seek(header_at);
    const auto bytes = source.next(sizeof info);
    if (bytes.size() < sizeof info) return false;
    std::copy(bytes.begin(), bytes.end(), reinterpret_cast<std::uint8_t*>(&info));
    return info.width > 0 && info.height > 0 &&
           std::uint64_t(info.width) * std::uint64_t(info.height) > 1 << 12;
}

// What is written reads as the same pixels, which have no fourth bytes.
void check_file(CBitmapEx& bitmap) {
    std::vector<std::uint8_t> file(54 + std::size_t{bitmap.pixel_data_size()} + 1); // fmemopen() may end it
    std::FILE* const stream = fmemopen(file.data(), file.size(), "wb");
    bitmap.save(stream, bitmap.buffer_for_saving());
    file.resize(static_cast<std::size_t>(std::ftell(stream)));
    std::fclose(stream);
    CBitmapEx again;
    SpanSource source(file);
    again.load(source, CBitmapEx::file);
    require(again.pixel_data_size() == bitmap.pixel_data_size());
    require(std::equal(again.pixels(), again.pixels() + again.pixel_data_size(), bitmap.pixels()));
}

void check(CBitmapEx& bitmap) {
    const auto header = bitmap.drawing_header();
    require(header.info.header_size <= 40 && header.info.width == bitmap.info().width);
    if (!bitmap.pixels()) {
        require(bitmap.pixel_data_size() == 0);
        return;
    }
    const auto size = static_cast<std::uint32_t>(bitmap.info().width) *
                      static_cast<std::uint32_t>(bitmap.info().height) * 4;
    require(bitmap.info().bit_count == 32 && bitmap.pixel_data_size() == size);
    require(bitmap.file_header().file_size == size + 54 && bitmap.file_header().pixel_offset == 54);
    const std::uint32_t first = bitmap.pixels()[0], last = bitmap.pixels()[size - 1];
    bitmap.flip();
    bitmap.flip();
    require(bitmap.pixels()[0] == first && bitmap.pixels()[size - 1] == last);
    bitmap.save(nullptr, {});
    require(bitmap.pixels()[size - 1] == 0 && bitmap.pixels()[0] == first);
    check_file(bitmap);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    // The first byte says in which order the layouts are tried; what is held before decides where pixels
    // begin.
    const unsigned order = *data;
    const std::span image(data + 1, size - 1);
    CBitmapEx bitmap;
    const CBitmapEx::Layout layouts[] = {CBitmapEx::file, CBitmapEx::file_image, CBitmapEx::bare_image};
    for (unsigned i = 0; i < 3; ++i) {
        const auto& layout = layouts[(order + i) % 3];
        if (is_large(image, layout.has_file_header ? 14 : 0)) continue;
        SpanSource source(image);
        bitmap.load(source, layout);
        check(bitmap);
    }
    if (is_large(image, 14) || image.size() < 54) return 0;
    BmpFileHeader file;
    BmpInfoHeader info;
    std::copy_n(image.data(), 14, reinterpret_cast<std::uint8_t*>(&file));
    std::copy_n(image.data() + 14, 40, reinterpret_cast<std::uint8_t*>(&info));
    SpanSource rest(image.subspan(54));
    bitmap.load(file, info, rest);
    check(bitmap);
    return 0;
}
