// bvutil triangulate: a Delaunay triangulation of points given as text.
#include "tools/bvutil/command.h"
#include "tools/bvutil/commands.h"
#include "tools/bvutil/console.h"
#include "tools/bvutil/json_writer.h"
#include "tools/bvutil/whole_file.h"

#include "bvutil/triangulation.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <fcntl.h>
#include <io.h>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace {

struct Options {
    std::string points, csv, svg;
    bool json = false;
};

std::string read_standard_input() {
    _setmode(_fileno(stdin), _O_BINARY);
    std::string text;
    char piece[65536];
    while (const std::size_t size = std::fread(piece, 1, sizeof piece, stdin))
        text.append(piece, size);
    if (std::ferror(stdin)) throw CommandFailed(exit_io_error, "standard input cannot be read");
    return text;
}

bool is_separator(char c) {
    return c == ',' || c == ';' || c == ' ' || c == '\t' || c == '\r';
}

// Takes a finite number and the separators behind it from the front of the line.
bool take_number(std::string_view& line, float& number) {
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number);
    line.remove_prefix(static_cast<std::size_t>(end - line.data()));
    if (error != std::errc() || !std::isfinite(number)) return false;
    if (!line.empty() && !is_separator(line.front())) return false;
    line.remove_prefix(std::min(line.find_first_not_of(" \t\r,;"), line.size()));
    return true;
}

// x and y of every line; what follows them on the line (a height, say) is not looked at. Empty lines,
// comments and one heading in front of the first point are skipped.
std::vector<float> read_points(std::string_view text, const std::string& name) {
    std::vector<float> points;
    bool heading_allowed = true;
    for (std::size_t number = 1; !text.empty(); ++number) {
        std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        line.remove_prefix(std::min(line.find_first_not_of(" \t\r"), line.size()));
        if (line.empty() || line.front() == '#') continue;
        float x = 0, y = 0;
        if (take_number(line, x) && take_number(line, y))
            points.insert(points.end(), {x, y});
        else if (!heading_allowed)
            throw CommandFailed(exit_bad_input,
                                name + ", line " + std::to_string(number) + ": not two numbers x, y");
        heading_allowed = false;
    }
    return points;
}

// The library's result, released with the library's function.
class Triangles {
  public:
    explicit Triangles(const std::vector<float>& points) {
        const float none[2] = {};
        const auto count = static_cast<unsigned int>(points.size() / 2);
        if (!Triangulieren(count, points.empty() ? none : points.data(), &m_records, &m_count))
            throw CommandFailed(exit_failed, "out of memory");
    }
    ~Triangles() { FreeTriangs(&m_records); }
    Triangles(const Triangles&) = delete;
    Triangles& operator=(const Triangles&) = delete;

    std::size_t count() const { return m_count; }
    std::span<const float, 6> operator[](std::size_t i) const {
        return std::span<const float, 6>(m_records + 6 * i, 6);
    }

  private:
    float* m_records = nullptr;
    unsigned int m_count = 0;
};

// The shortest text that reads back as the same number.
void append(std::string& text, float number) {
    char digits[32];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

std::string as_csv(const Triangles& triangles) {
    std::string text = "x1,y1,x2,y2,x3,y3\r\n";
    for (std::size_t i = 0; i < triangles.count(); ++i)
        for (std::size_t n = 0; n < 6; ++n) {
            append(text, triangles[i][n]);
            text += n < 5 ? "," : "\r\n";
        }
    return text;
}

// The points' box, fitted to a picture whose longer side is `longer_side`; y points up.
class Frame {
  public:
    explicit Frame(const std::vector<float>& points) {
        for (std::size_t i = 0; i < points.size(); i += 2) {
            m_left = std::min<double>(m_left, points[i]), m_right = std::max<double>(m_right, points[i]);
            m_bottom = std::min<double>(m_bottom, points[i + 1]),
            m_top = std::max<double>(m_top, points[i + 1]);
        }
        if (points.empty()) m_left = m_right = m_bottom = m_top = 0;
        const double extent = std::max(m_right - m_left, m_top - m_bottom);
        m_scale = extent > 0 ? longer_side / extent : 1;
    }
    float x(float value) const { return rounded(margin + (value - m_left) * m_scale); }
    float y(float value) const { return rounded(margin + (m_top - value) * m_scale); }
    float width() const { return x(static_cast<float>(m_right)) + margin; }
    float height() const { return y(static_cast<float>(m_bottom)) + margin; }

  private:
    static float rounded(double value) { return static_cast<float>(std::round(value * 100) / 100); }

    static constexpr float longer_side = 1200, margin = 10;
    double m_left = std::numeric_limits<double>::max(), m_right = -m_left, m_bottom = m_left, m_top = -m_left;
    double m_scale = 1;
};

std::string as_svg(const std::vector<float>& points, const Triangles& triangles) {
    const Frame frame(points);
    std::string size;
    append(size, frame.width());
    size += "\" height=\"";
    append(size, frame.height());
    std::string text =
        "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + size +
        "\">\n"
        "<rect width=\"100%\" height=\"100%\" fill=\"#fff\"/>\n"
        "<g fill=\"#dce9f2\" stroke=\"#24506e\" stroke-width=\"0.6\" stroke-linejoin=\"round\">\n";
    const auto corner = [&](float x, float y) {
        append(text, frame.x(x));
        text += ' ';
        append(text, frame.y(y));
    };
    for (std::size_t i = 0; i < triangles.count(); ++i) {
        const auto t = triangles[i];
        text += "<path d=\"M";
        corner(t[0], t[1]);
        text += 'L';
        corner(t[2], t[3]);
        text += 'L';
        corner(t[4], t[5]);
        text += "Z\"/>\n";
    }
    text += "</g>\n<path stroke=\"#b3261e\" stroke-width=\"2\" stroke-linecap=\"round\" d=\"";
    for (std::size_t i = 0; i < points.size(); i += 2) {
        text += 'M';
        corner(points[i], points[i + 1]);
        text += "h0";
    }
    return text + "\"/>\n</svg>\n";
}

void write_file(const std::string& path, std::string_view bytes) {
    ReplacementFile file(path);
    file.put(bytes);
    file.close();
    file.replace();
}

// With every triangle when there is no file that has them.
void write_json(const std::vector<float>& points, const Triangles& triangles, bool all) {
    JsonWriter json;
    json.begin_object().member("point_count", points.size() / 2).member("triangle_count", triangles.count());
    if (all) {
        json.key("triangles").begin_array();
        for (std::size_t i = 0; i < triangles.count(); ++i) {
            json.begin_array();
            for (const float coordinate : triangles[i])
                json.value(coordinate);
            json.end_array();
        }
        json.end_array();
    }
    json.end_object().print();
}

void triangulate(const Options& options) {
    const bool from_input = options.points == "-";
    const std::vector<float> points =
        read_points(from_input ? read_standard_input() : read_whole_file(options.points),
                    from_input ? "standard input" : options.points);
    const Triangles triangles(points);
    if (!options.csv.empty()) write_file(options.csv, as_csv(triangles));
    if (!options.svg.empty()) write_file(options.svg, as_svg(points, triangles));
    const bool printed = options.csv.empty() && options.svg.empty();
    if (options.json)
        write_json(points, triangles, printed);
    else if (printed)
        print_utf8(as_csv(triangles));
    else
        print_utf8(std::to_string(points.size() / 2) + " points, " + std::to_string(triangles.count()) +
                   " triangles\n");
}

} // namespace

void add_triangulate_commands(CLI::App& app) {
    const auto options = std::make_shared<Options>();
    CLI::App* const command =
        add_command(app,
                    {"triangulate",
                     "Triangulate points (Delaunay)",
                     {"bvutil triangulate survey.csv",
                      "bvutil triangulate survey.csv --svg survey.svg --csv triangles.csv"},
                     "Without --csv and --svg the triangles are printed."},
                    [options] { triangulate(*options); });
    command->add_option("POINTS", options->points, "CSV file, x and y on each line; - for standard input")
        ->default_val("-");
    command->add_option("--csv", options->csv, "Write the triangles as CSV")->type_name("FILE");
    command->add_option("--svg", options->svg, "Draw the triangles as SVG")->type_name("FILE");
    add_json(command, options->json);
}
