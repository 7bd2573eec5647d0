// bvutil image: pictures shown, converted, resized, encoded, embossed, combined and outlined.
#include "bvutil/gdi_bitmaps.h"
#include "bvutil/gdiplus_services.h"
#include "bvutil/text_exchange.h"
#include "tools/bvutil/commands.h"
#include "tools/bvutil/console.h"
#include "tools/bvutil/drawing_surface.h"
#include "tools/bvutil/whole_file.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>
#include <windows.h>

namespace {

struct Arguments {
    std::string input, ground, output, format, key = "FF00FF";
    int width = 0, height = 0;
    std::vector<int> at = {0, 0};
};

// A picture file on a surface of its size; the file is closed again.
std::unique_ptr<DrawingSurface> load(const std::string& path) {
    const PictureFile file(path);
    auto surface = std::make_unique<DrawingSurface>(file.facts().width, file.facts().height);
    file.draw(*surface, 0, 0);
    return surface;
}

// RRGGBB as a number of that order.
DWORD colour_of(const std::string& text) {
    if (text.size() != 6 || text.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
        throw CommandFailed(exit_bad_input, "'" + text + "' is no colour: six digits, RRGGBB");
    return std::strtoul(text.c_str(), nullptr, 16);
}

COLORREF colorref_of(DWORD colour) {
    return RGB(colour >> 16 & 255, colour >> 8 & 255, colour & 255);
}

void show_info(const Arguments& arguments) {
    const PictureFacts facts = PictureFile(arguments.input).facts();
    char text[200];
    std::snprintf(text, sizeof text,
                  "size:       %d x %d\ndepth:      %d bits per pixel\nresolution: %.4g x %.4g dpi\n",
                  facts.width, facts.height, facts.bits_per_pixel, facts.dots_per_inch_x,
                  facts.dots_per_inch_y);
    print(text);
}

void convert(const Arguments& arguments) {
    const int format = format_code(arguments.format, arguments.output);
    save_bitmap(load(arguments.input)->take_bitmap(), arguments.output, format);
}

void resize(const Arguments& arguments) {
    const int format = format_code(arguments.format, arguments.output);
    save_bitmap(load(arguments.input)->take_bitmap(), arguments.output, format,
                {arguments.width, arguments.height});
}

// The whole text; the library leaves out the last character.
std::string base64_of(const std::string& path) {
    const std::string bytes = read_whole_file(path);
    int length = 0;
    if (!jpgToXML(path.c_str(), nullptr, &length, 1))
        throw CommandFailed(exit_io_error, path + " cannot be read");
    std::string text(static_cast<std::size_t>(length), '=');
    if (!jpgToXML(path.c_str(), text.data(), nullptr, 0))
        throw CommandFailed(exit_io_error, path + " cannot be read");
    constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    if (length > 0 && bytes.size() % 3 == 0) text.back() = alphabet[bytes.back() & 63];
    return text;
}

void encode(const Arguments& arguments) {
    const std::string text = base64_of(arguments.input);
    if (arguments.output.empty()) {
        print(text + "\n");
        return;
    }
    ReplacementFile file(arguments.output);
    file.put(text);
    file.close();
    file.replace();
}

void emboss(const Arguments& arguments) {
    const int format = format_code(arguments.format, arguments.output);
    const auto picture = load(arguments.input);
    DrawingSurface result(picture->width(), picture->height());
    if (!BvUtil_DrawEmbossedBitmap(result.dc(), 0, 0, result.width(), result.height(), picture->take_bitmap(),
                                   0, 0))
        throw CommandFailed(exit_failed, "the picture cannot be drawn");
    save_bitmap(result.take_bitmap(), arguments.output, format);
}

void combine(const Arguments& arguments) {
    const int format = format_code(arguments.format, arguments.output);
    const COLORREF key = colorref_of(colour_of(arguments.key));
    const auto picture = load(arguments.input), ground = load(arguments.ground);
    if (!BvUtil_DrawTransparentBitmap(ground->dc(), picture->take_bitmap(),
                                      static_cast<short>(arguments.at[0]),
                                      static_cast<short>(arguments.at[1]), key))
        throw CommandFailed(exit_failed, "the picture cannot be drawn");
    save_bitmap(ground->take_bitmap(), arguments.output, format);
}

struct RegionOwner {
    HRGN region;
    ~RegionOwner() { DeleteObject(region); }
};

void outline(const Arguments& arguments) {
    const auto picture = load(arguments.input);
    const RegionOwner owner{BvUtil_CreateRegionFromBitmap(picture->take_bitmap(), colour_of(arguments.key))};
    if (!owner.region) throw CommandFailed(exit_failed, "there is not enough memory for the region");
    RECT box{};
    GetRgnBox(owner.region, &box);
    std::vector<char> data(GetRegionData(owner.region, 0, nullptr));
    auto* header = reinterpret_cast<RGNDATA*>(data.data());
    GetRegionData(owner.region, static_cast<DWORD>(data.size()), header);
    char text[120];
    std::snprintf(text, sizeof text, "rectangles: %lu\nbounds:     %ld, %ld to %ld, %ld\n",
                  header->rdh.nCount, box.left, box.top, box.right, box.bottom);
    print(text);
    if (arguments.output.empty()) return;

    const int format = format_code(arguments.format, arguments.output);
    const auto shown = load(arguments.input);
    gdiPlusFillRect(shown->dc(), 170, 255, 255, 255, shown->width(), shown->height()); // paled
    const auto* rectangles = reinterpret_cast<const RECT*>(header->Buffer);
    const HBRUSH tints[] = {CreateSolidBrush(RGB(160, 195, 240)), CreateSolidBrush(RGB(105, 150, 215))};
    const HBRUSH frame = CreateSolidBrush(RGB(200, 0, 0));
    for (DWORD i = 0; i < header->rdh.nCount; ++i)
        FillRect(shown->dc(), &rectangles[i], tints[i % 2]);
    FrameRgn(shown->dc(), owner.region, frame, 2, 2);
    for (const HBRUSH brush : {tints[0], tints[1], frame})
        DeleteObject(brush);
    save_bitmap(shown->take_bitmap(), arguments.output, format);
}

// GDI+ from its start to its end around one command.
template <class Command>
auto with_gdiplus(Command command, std::shared_ptr<const Arguments> arguments) {
    return [=] {
        const GdiPlusSession session;
        command(*arguments);
    };
}

} // namespace

void add_image_commands(CLI::App& app) {
    auto* group =
        app.add_subcommand("image", "Pictures: BMP, JPEG, GIF, TIFF and PNG in, the first four out");
    group->require_subcommand(1);
    const auto arguments = std::make_shared<Arguments>();
    const auto add = [&](const char* name, const char* description, auto command) {
        auto* sub = group->add_subcommand(name, description);
        sub->add_option("input", arguments->input, "Picture to read")->required();
        sub->callback(with_gdiplus(command, arguments));
        return sub;
    };
    const auto add_output = [&](CLI::App* sub, bool required) {
        sub->add_option("output", arguments->output, "Picture to write")->required(required);
        sub->add_option("--format", arguments->format,
                        "bmp, jpeg, gif, tiff or png; else the extension says it");
    };
    const auto add_key = [&](CLI::App* sub) {
        sub->add_option("--key", arguments->key, "The transparent colour, FF00FF unless given")
            ->type_name("RRGGBB");
    };

    add("info", "Tell size, depth and resolution", show_info);
    add_output(add("convert", "Save in another format", convert), true);
    auto* resized = add("resize", "Save in another size, bicubic", resize);
    add_output(resized, true);
    resized->add_option("width", arguments->width, "Pixels")->required()->check(CLI::Range(1, 20000));
    resized->add_option("height", arguments->height, "Pixels")->required()->check(CLI::Range(1, 20000));
    add("base64", "Print the file as Base64, or write it to a file", encode)
        ->add_option("output", arguments->output, "Text file to write");
    add_output(add("emboss", "Draw it as a disabled control shows it", emboss), true);
    auto* over = add("transparent", "Draw it over another one, leaving out one colour", combine);
    over->add_option("ground", arguments->ground, "Picture to draw on")->required();
    add_output(over, true);
    add_key(over);
    over->add_option("--at", arguments->at, "Upper left corner on the ground")
        ->expected(2)
        ->check(CLI::Range(-32768, 32767))
        ->type_name("X Y");
    auto* region =
        add("region", "Tell which rectangles hold what has not one colour, and draw them", outline);
    add_output(region, false);
    add_key(region);
}
