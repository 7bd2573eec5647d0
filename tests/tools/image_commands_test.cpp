// bvutil image, run as a program.
#include "tests/imaging/bmp_bytes.h"
#include "tests/support/run_program.h"

#include <gtest/gtest.h>

namespace {

class ImageCommands : public testing::Test {
  protected:
    ProgramRun image(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "image");
        return run_program("bvutil.exe", arguments, dir.path());
    }
    // A picture of four pixels in a row, each given as RRGGBB.
    void write_row(const char* name, std::initializer_list<std::uint32_t> pixels) const {
        std::string row;
        for (const std::uint32_t pixel : pixels)
            put(row, pixel, 3);
        write_file(dir.file(name), bmp_file({4, 1, 24}, row).replace(10, 4, std::string("\x36\0\0\0", 4)));
    }
    // The colours of such a picture, whatever its depth.
    std::vector<std::uint32_t> row_of(const char* name) const {
        const std::string file = read_file(dir.file(name));
        std::vector<std::uint32_t> row;
        const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(file.at(at)); };
        const std::size_t step = byte(28) / 8u;
        for (std::size_t at = byte(10); row.size() < byte(18); at += step)
            row.push_back(byte(at) | byte(at + 1) << 8 | byte(at + 2) << 16);
        return row;
    }

    TempDir dir;
};

TEST_F(ImageCommands, TellConvertAndResize) {
    write_row("in.bmp", {0x102030, 0x405060, 0xFF00FF, 0xFFFFFF});
    const ProgramRun info = image({"info", "in.bmp"});
    EXPECT_EQ(info.code, 0) << info.err;
    EXPECT_EQ(info.out.substr(0, 52), "size:       4 x 1\ndepth:      24 bits per pixel\nreso") << info.out;
    ASSERT_EQ(image({"convert", "in.bmp", "out.bmp"}).code, 0);
    EXPECT_EQ(row_of("out.bmp"), row_of("in.bmp"));
    ASSERT_EQ(image({"convert", "in.bmp", "out", "--format", "tiff"}).code, 0);
    EXPECT_EQ(read_file(dir.file("out")).substr(0, 3), "II*");
    ASSERT_EQ(image({"convert", "in.bmp", "out.png"}).code, 0);
    EXPECT_EQ(read_file(dir.file("out.png")).substr(1, 3), "PNG");
    ASSERT_EQ(image({"convert", "out.png", "back.bmp"}).code, 0);
    EXPECT_EQ(row_of("back.bmp"), row_of("in.bmp"));
    ASSERT_EQ(image({"resize", "in.bmp", "in.bmp", "8", "3"}).code, 0) << "in place";
    EXPECT_EQ(image({"info", "in.bmp"}).out.substr(0, 17), "size:       8 x 3");
}

TEST_F(ImageCommands, EncodeTheWholeFile) {
    for (const auto& [bytes, text] :
         {std::pair<std::string, std::string>{"", ""}, {"foo", "Zm9v"}, {"fooba", "Zm9vYmE="}}) {
        write_file(dir.file("in"), bytes);
        EXPECT_EQ(image({"base64", "in"}).out, text + "\n");
        EXPECT_EQ(image({"base64", "in", "out.txt"}).code, 0);
        EXPECT_EQ(read_file(dir.file("out.txt")), text);
    }
}

TEST_F(ImageCommands, CombineAndOutline) {
    write_row("in.bmp", {0x102030, 0xFF00FF, 0xFF00FF, 0x405060});
    write_row("ground.bmp", {0x010101, 0x020202, 0x030303, 0x040404});
    ASSERT_EQ(image({"transparent", "in.bmp", "ground.bmp", "out.bmp", "--at", "1", "0"}).code, 0);
    EXPECT_EQ(row_of("out.bmp"), (std::vector<std::uint32_t>{0x010101, 0x102030, 0x030303, 0x040404}));
    EXPECT_EQ(image({"region", "in.bmp", "out.bmp"}).out, "rectangles: 2\nbounds:     0, 0 to 4, 1\n");
    EXPECT_EQ(image({"region", "in.bmp", "--key", "102030"}).out,
              "rectangles: 1\nbounds:     1, 0 to 4, 1\n");
    EXPECT_EQ(
        image({"region", "in.bmp", "--json"}).out,
        "{\"file\":\"in.bmp\",\"bounds\":{\"left\":0,\"top\":0,\"right\":4,\"bottom\":1},\"rectangles\":["
        "{\"left\":0,\"top\":0,\"right\":1,\"bottom\":1},{\"left\":3,\"top\":0,\"right\":4,\"bottom\":1}]}"
        "\n");
    EXPECT_TRUE(image({"info", "in.bmp", "--json"})
                    .out.starts_with(
                        "{\"file\":\"in.bmp\",\"width\":4,\"height\":1,\"bits_per_pixel\":24,\"dpi_x\":"));
    EXPECT_EQ(image({"emboss", "in.bmp", "out.bmp"}).code, 0);
}

TEST_F(ImageCommands, SayWhatIsWrong) {
    write_row("in.bmp", {1, 2, 3, 4});
    write_file(dir.file("text.txt"), "no picture");
    const struct {
        std::vector<std::string> arguments;
        int code;
    } cases[] = {{{"info", "none.bmp"}, 3},
                 {{"info", "text.txt"}, 2},
                 {{"convert", "in.bmp", "out.xyz"}, 2},
                 {{"convert", "in.bmp", "no\\such\\out.bmp"}, 3},
                 {{"resize", "in.bmp", "out.bmp", "0", "5"}, 64},
                 {{"region", "in.bmp", "--key", "12345"}, 2},
                 {{"region", "in.bmp", "--key", "0x1234"}, 2},
                 {{"transparent", "in.bmp", "in.bmp", "out.bmp", "--at", "65536", "0"}, 64},
                 {{"base64", "none"}, 3}};
    for (const auto& c : cases) {
        const ProgramRun run = image(c.arguments);
        EXPECT_EQ(run.code, c.code) << c.arguments[0] << " " << c.arguments[1];
        EXPECT_NE(run.err, "");
    }
    EXPECT_FALSE(std::filesystem::exists(dir.file("out.bmp")));
}

} // namespace
