// Unsharp mask: adds to each pixel what a Gaussian blur takes away from it.
//
// A neighbourhood filter: it works in tiles of the size that the host prefers, and asks for an input larger
// than the output by the blur's reach. All tiles are done within the start call, through advanceState: so
// the user can stop between rows, and the host learns of it from the start call's result. The settings
// (UNSHARP_RADIUS, UNSHARP_AMOUNT in the environment) live in the parameters handle.
#include "samples/filters/plugin.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr int planes = 3;

struct Settings {
    double radius; // the Gaussian's standard deviation, in pixels
    double amount; // 1 adds the difference once
};

// The weights from the middle outwards, so that the whole bell sums up to 1.
std::vector<float> gaussian(double radius) {
    std::vector<float> weights(static_cast<std::size_t>(std::ceil(3 * radius)) + 1);
    double sum = 0;
    for (std::size_t i = 0; i < weights.size(); ++i) {
        const double distance = static_cast<double>(i) / radius;
        const double weight = std::exp(-distance * distance / 2);
        weights[i] = static_cast<float>(weight);
        sum += i == 0 ? weight : 2 * weight;
    }
    for (float& weight : weights)
        weight = static_cast<float>(weight / sum);
    return weights;
}

std::int16_t to_int16(int value) {
    return static_cast<std::int16_t>(value);
}

ps::Rect widened(const ps::Rect& rect, int reach, const ps::Rect& limits) {
    return {to_int16(std::max<int>(rect.top - reach, limits.top)),
            to_int16(std::max<int>(rect.left - reach, limits.left)),
            to_int16(std::min<int>(rect.bottom + reach, limits.bottom)),
            to_int16(std::min<int>(rect.right + reach, limits.right))};
}

// One tile: the blur goes first across, then down; beyond the image its edge pixels repeat.
class Sharpener {
  public:
    explicit Sharpener(const Settings& settings)
        : m_weights(gaussian(settings.radius)), m_amount(settings.amount) {}

    int reach() const { return static_cast<int>(m_weights.size()) - 1; }

    void sharpen(const ps::FilterRecord& record) {
        const int in_rows = record.inRect.bottom - record.inRect.top;
        const int in_columns = record.inRect.right - record.inRect.left;
        const int out_rows = record.outRect.bottom - record.outRect.top;
        const int out_columns = record.outRect.right - record.outRect.left;
        const int left = record.outRect.left - record.inRect.left;
        const int top = record.outRect.top - record.inRect.top;
        const auto* in = static_cast<const std::uint8_t*>(record.inData);
        auto* out = static_cast<std::uint8_t*>(record.outData);

        const int width = out_columns * planes;
        m_across.resize(static_cast<std::size_t>(in_rows) * static_cast<std::size_t>(width));
        for (int y = 0; y < in_rows; ++y)
            blur_across(in + y * record.inRowBytes, in_columns, left, out_columns,
                        m_across.data() + y * width);
        m_blurred.resize(static_cast<std::size_t>(width));
        for (int y = 0; y < out_rows; ++y) {
            blur_down(top + y, in_rows, width);
            add_difference(in + (top + y) * record.inRowBytes + left * planes, out + y * record.outRowBytes);
        }
    }

  private:
    void blur_across(const std::uint8_t* in, int in_columns, int left, int columns, float* out) const {
        for (int x = 0; x < columns; ++x)
            for (int plane = 0; plane < planes; ++plane) {
                const auto sample = [&](int column) {
                    return static_cast<float>(in[std::clamp(column, 0, in_columns - 1) * planes + plane]);
                };
                float sum = m_weights[0] * sample(left + x);
                for (int i = 1; i <= reach(); ++i)
                    sum += m_weights[static_cast<std::size_t>(i)] *
                           (sample(left + x - i) + sample(left + x + i));
                out[x * planes + plane] = sum;
            }
    }

    void blur_down(int row, int rows, int width) {
        const auto line = [&](int y) { return m_across.data() + std::clamp(y, 0, rows - 1) * width; };
        for (int x = 0; x < width; ++x)
            m_blurred[static_cast<std::size_t>(x)] = m_weights[0] * line(row)[x];
        for (int i = 1; i <= reach(); ++i) {
            const float* above = line(row - i);
            const float* below = line(row + i);
            const float weight = m_weights[static_cast<std::size_t>(i)];
            for (int x = 0; x < width; ++x)
                m_blurred[static_cast<std::size_t>(x)] += weight * (above[x] + below[x]);
        }
    }

    void add_difference(const std::uint8_t* in, std::uint8_t* out) const {
        const auto amount = static_cast<float>(m_amount);
        for (std::size_t i = 0; i < m_blurred.size(); ++i) {
            const auto sample = static_cast<float>(in[i]);
            const float sharp = sample + amount * (sample - m_blurred[i]);
            out[i] = static_cast<std::uint8_t>(std::clamp(sharp + 0.5f, 0.0f, 255.0f));
        }
    }

    std::vector<float> m_weights;
    double m_amount;
    std::vector<float> m_across;
    std::vector<float> m_blurred;
};

std::int16_t sharpen_tile(ps::FilterRecord& record, Sharpener& sharpener, const ps::Rect& tile) {
    request_rgb(record, widened(tile, sharpener.reach(), record.filterRect), tile);
    if (const ps::OSErr error = record.advanceState()) return error;
    if (!record.inData || !record.outData) return ps::result_out_of_memory;
    sharpener.sharpen(record);
    return ps::result_ok;
}

std::int16_t sharpen_all(ps::FilterRecord& record, Sharpener& sharpener) {
    const ps::Rect area = record.filterRect;
    const int tile_width = std::max<int>(record.outTileWidth, 16);
    const int tile_height = std::max<int>(record.outTileHeight, 16);
    for (int top = area.top; top < area.bottom; top += tile_height)
        for (int left = area.left; left < area.right; left += tile_width) {
            const int done = (top - area.top) * (area.right - area.left) + (left - area.left) * tile_height;
            record.progressProc(done, (area.bottom - area.top) * (area.right - area.left));
            if (record.abortProc()) return ps::result_user_cancelled;
            const ps::Rect tile{to_int16(top), to_int16(left),
                                to_int16(std::min<int>(top + tile_height, area.bottom)),
                                to_int16(std::min<int>(left + tile_width, area.right))};
            if (const std::int16_t error = sharpen_tile(record, sharpener, tile)) return error;
        }
    record.progressProc(1, 1);
    return ps::result_ok;
}

std::int16_t start(ps::FilterRecord& record) {
    Settings settings;
    if (!load_settings(record, settings)) return ps::result_filter_bad_parameters;
    Sharpener sharpener(settings);
    const std::int16_t result = sharpen_all(record, sharpener);
    // Without rectangles the host writes the last tile back and makes no continue call.
    request_nothing(record);
    // After an error it makes no exchange of its own, and would give the tile to the next image.
    if (result != ps::result_ok) record.advanceState();
    return result;
}

std::int16_t unsharp_mask(std::int16_t selector, ps::FilterRecord& record, std::int32_t&) {
    switch (selector) {
    case ps::selector_parameters: {
        const Settings settings{number_setting("UNSHARP_RADIUS", 2, 0.3, 50),
                                number_setting("UNSHARP_AMOUNT", 1, 0, 10)};
        return save_settings(record, settings) ? ps::result_ok : ps::result_out_of_memory;
    }
    case ps::selector_prepare:
        return is_rgb(record) ? ps::result_ok : ps::result_filter_bad_mode;
    case ps::selector_start:
        return start(record);
    default:
        return ps::result_ok;
    }
}

} // namespace

FILTER_ENTRY_POINT(unsharp_mask)
