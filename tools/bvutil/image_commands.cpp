// bvutil image: pictures shown, converted, resized, encoded, embossed, combined and outlined.
#include "bvutil/gdi_bitmaps.h"
#include "bvutil/gdiplus_services.h"
#include "bvutil/text_exchange.h"
#include "tools/bvutil/command.h"
#include "tools/bvutil/commands.h"
#include "tools/bvutil/console.h"
#include "tools/bvutil/drawing_surface.h"
#include "tools/bvutil/json_writer.h"
#include "tools/bvutil/whole_file.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <span>
#include <string>
#include <vector>
#include <windows.h>

namespace {

struct Arguments {
    std::string input, ground, output, format, key = "FF00FF";
    int width = 0, height = 0;
    bool json = false;
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
    if (arguments.json)
        return JsonWriter()
            .begin_object()
            .member("file", arguments.input)
            .member("width", facts.width)
            .member("height", facts.height)
            .member("bits_per_pixel", facts.bits_per_pixel)
            .member("dpi_x", facts.dots_per_inch_x)
            .member("dpi_y", facts.dots_per_inch_y)
            .end_object()
            .print();
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

constexpr int largest_side = 20000;

// A side that is no number was not taken for one: it would have become the output's name.
void expect_side(const char* name, int side) {
    if (side < 1 || side > largest_side)
        throw CLI::ValidationError(name, std::to_string(side) + " is not a number of pixels from 1 to " +
                                             std::to_string(largest_side));
}

void resize(const Arguments& arguments) {
    expect_side("WIDTH", arguments.width);
    expect_side("HEIGHT", arguments.height);
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
        if (!arguments.json) return print(text + "\n");
        return JsonWriter()
            .begin_object()
            .member("file", arguments.input)
            .member("base64", text)
            .end_object()
            .print();
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

// What of a picture has not one colour, as rectangles.
class Outline {
  public:
    Outline(const std::string& picture, DWORD key)
        : m_region(BvUtil_CreateRegionFromBitmap(load(picture)->take_bitmap(), key)) {
        if (!m_region) throw CommandFailed(exit_failed, "there is not enough memory for the region");
        m_data.resize(GetRegionData(m_region, 0, nullptr));
        GetRegionData(m_region, static_cast<DWORD>(m_data.size()), reinterpret_cast<RGNDATA*>(m_data.data()));
    }
    ~Outline() { DeleteObject(m_region); }
    Outline(const Outline&) = delete;
    Outline& operator=(const Outline&) = delete;

    HRGN region() const { return m_region; }
    RECT box() const {
        RECT box{};
        GetRgnBox(m_region, &box);
        return box;
    }
    std::span<const RECT> rectangles() const {
        const auto* data = reinterpret_cast<const RGNDATA*>(m_data.data());
        return {reinterpret_cast<const RECT*>(data->Buffer), data->rdh.nCount};
    }

  private:
    HRGN m_region;
    std::vector<char> m_data;
};

void write(JsonWriter& json, const RECT& box) {
    json.begin_object()
        .member("left", box.left)
        .member("top", box.top)
        .member("right", box.right)
        .member("bottom", box.bottom)
        .end_object();
}

void print_outline(const Outline& outline) {
    const RECT box = outline.box();
    char text[120];
    std::snprintf(text, sizeof text, "rectangles: %zu\nbounds:     %ld, %ld to %ld, %ld\n",
                  outline.rectangles().size(), box.left, box.top, box.right, box.bottom);
    print(text);
}

void write_outline(const Outline& outline, const std::string& file) {
    JsonWriter json;
    json.begin_object().member("file", file);
    write(json.key("bounds"), outline.box());
    json.key("rectangles").begin_array();
    for (const RECT& rectangle : outline.rectangles())
        write(json, rectangle);
    json.end_array().end_object().print();
}

// The picture paled, with the rectangles in two tints and their outline.
void draw_outline(const Outline& outline, const Arguments& arguments) {
    const int format = format_code(arguments.format, arguments.output);
    const auto shown = load(arguments.input);
    gdiPlusFillRect(shown->dc(), 170, 255, 255, 255, shown->width(), shown->height());
    const HBRUSH tints[] = {CreateSolidBrush(RGB(160, 195, 240)), CreateSolidBrush(RGB(105, 150, 215))};
    const HBRUSH frame = CreateSolidBrush(RGB(200, 0, 0));
    std::size_t number = 0;
    for (const RECT& rectangle : outline.rectangles())
        FillRect(shown->dc(), &rectangle, tints[number++ % 2]);
    FrameRgn(shown->dc(), outline.region(), frame, 2, 2);
    for (const HBRUSH brush : {tints[0], tints[1], frame})
        DeleteObject(brush);
    save_bitmap(shown->take_bitmap(), arguments.output, format);
}

void tell_region(const Arguments& arguments) {
    const Outline outline(arguments.input, colour_of(arguments.key));
    if (!arguments.output.empty()) draw_outline(outline, arguments);
    if (arguments.json)
        write_outline(outline, arguments.input);
    else
        print_outline(outline);
}

// The commands of the group, all on a picture.
class Group {
  public:
    explicit Group(CLI::App& app)
        : m_group(add_group(app, "image", "Pictures: BMP, JPEG, GIF, TIFF and PNG",
                            "A picture is saved in the format of its extension, or of --format.")) {}

    CLI::App* add(const CommandHelp& help, void (*run)(const Arguments&)) {
        CLI::App* const command = add_command(m_group, help, [run, arguments = m_arguments] {
            const GdiPlusSession session;
            run(*arguments);
        });
        command->add_option("INPUT", m_arguments->input, "Picture to read")->required();
        return command;
    }
    CLI::Option* add_picture(CLI::App* command) {
        command->add_option("--format", m_arguments->format, "Format of the picture written")
            ->check(CLI::IsMember({"bmp", "jpeg", "jpg", "gif", "tiff", "tif", "png"}, CLI::ignore_case));
        return add_output(command, m_arguments->output, "Picture to write");
    }
    void add_key(CLI::App* command) {
        command->add_option("--key", m_arguments->key, "The transparent colour, FF00FF unless given")
            ->type_name("RRGGBB");
    }
    Arguments& arguments() { return *m_arguments; }

  private:
    CLI::App& m_group;
    std::shared_ptr<Arguments> m_arguments = std::make_shared<Arguments>();
};

void add_resize(Group& group) {
    CLI::App* const command = group.add({"resize",
                                         "Save in another size, bicubic",
                                         {"bvutil image resize landscape.bmp small.jpg 240 160",
                                          "bvutil image resize landscape.bmp 240 160 -o small.jpg"}},
                                        resize);
    // Numbers are sides: a picture named by -o leaves the first of them to WIDTH.
    command->validate_positionals();
    group.add_picture(command)->required()->check(CLI::Validator(
        [](const std::string& name) {
            return name.find_first_not_of("-0123456789") == std::string::npos ? "a number is no picture" : "";
        },
        ""));
    command->add_option("WIDTH", group.arguments().width, "Pixels")->required();
    command->add_option("HEIGHT", group.arguments().height, "Pixels")->required();
}

void add_combine(Group& group) {
    CLI::App* const command =
        group.add({"transparent",
                   "Draw it over another one, leaving out one colour",
                   {"bvutil image transparent badge.bmp pattern.bmp on_pattern.png --key FF00FF --at 40 20"}},
                  combine);
    command->add_option("GROUND", group.arguments().ground, "Picture to draw on")->required();
    group.add_picture(command)->required();
    group.add_key(command);
    command->add_option("--at", group.arguments().at, "Upper left corner on the ground")
        ->expected(2)
        ->check(CLI::Range(-32768, 32767))
        ->type_name("X Y");
}

} // namespace

void add_image_commands(CLI::App& app) {
    Group group(app);
    add_json(group.add({"info", "Tell size, depth and resolution", {"bvutil image info landscape.bmp"}},
                       show_info),
             group.arguments().json);
    group
        .add_picture(group.add(
            {"convert", "Save in another format", {"bvutil image convert landscape.bmp landscape.png"}},
            convert))
        ->required();
    add_resize(group);
    CLI::App* const base64 =
        group.add({"base64",
                   "Print the file as Base64, or write it to a file",
                   {"bvutil image base64 badge.bmp", "bvutil image base64 badge.bmp -o badge.txt"}},
                  encode);
    add_output(base64, group.arguments().output, "Text file to write");
    add_json(base64, group.arguments().json);
    group
        .add_picture(group.add({"emboss",
                                "Draw it as a disabled control shows it",
                                {"bvutil image emboss badge.bmp embossed.png"}},
                               emboss))
        ->required();
    add_combine(group);
    CLI::App* const region = group.add(
        {"region",
         "Tell which rectangles hold what has not one colour, and draw them",
         {"bvutil image region badge.bmp --key FF00FF", "bvutil image region badge.bmp -o region.png"}},
        tell_region);
    add_json(region, group.arguments().json);
    group.add_picture(region);
    group.add_key(region);
}
