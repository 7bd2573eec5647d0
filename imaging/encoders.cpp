#include "imaging/encoders.h"

#include "imaging/gdiplus_objects.h"

#include <cwchar>
#include <span>
#include <vector>

std::optional<CLSID> find_encoder(const wchar_t* mime_type) {
    UINT count = 0, bytes = 0;
    if (flat::GdipGetImageEncodersSize(&count, &bytes) != Gdiplus::Ok || bytes == 0) return std::nullopt;
    // The records are followed by the texts that they point to.
    std::vector<std::byte> block(bytes);
    auto* records = reinterpret_cast<Gdiplus::ImageCodecInfo*>(block.data());
    if (flat::GdipGetImageEncoders(count, bytes, records) != Gdiplus::Ok) return std::nullopt;
    for (const Gdiplus::ImageCodecInfo& record : std::span(records, count))
        if (std::wcscmp(record.MimeType, mime_type) == 0) return record.Clsid;
    return std::nullopt;
}
