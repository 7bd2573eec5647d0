// bvutil ini, material and fio, run as programs on files of their own.
#include "tests/support/run_program.h"

#include <gtest/gtest.h>

#include <array>

namespace {

constexpr char profile[] = "[A]\r\nx=1,5\r\nempty=\r\nword=abc\r\n[B]\r\ny=2.50\r\n";

TEST(FilesCommands, PrintAndChangeWhatIsThere) {
    const TempDir dir;
    write_file(dir.file("p.ini"), profile);
    write_file(dir.file("m.mat"), "[Material]\r\nName=Holz\r\n[Holz]\r\nOe=4\r\nBits=6\r\n");
    write_file(dir.file("no.mat"), "[Material]\r\n");
    write_file(dir.file("d.dat"), "1.1  @mbMOTOROLAdata");
    write_file(dir.file("plain.dat"), "data");
    const struct {
        std::vector<std::string> arguments;
        int code;
        std::string out; // the whole of it, or a part after "..."
    } cases[] = {
        {{"ini", "get", "p.ini", "a", "X"}, 0, "1,5\n"},
        {{"ini", "get", "p.ini", "A", "empty"}, 0, "\n"},
        {{"ini", "get", "p.ini", "A", "x", "--as", "doubles"}, 0, "1\n5\n"},
        {{"ini", "get", "p.ini", "B", "y", "--as", "double"}, 0, "2.5\n"},
        {{"ini", "get", "p.ini", "B", "y", "--as", "long"}, 0, "2\n"},
        {{"ini", "get", "p.ini", "A", "word", "--as", "doubles"}, 2, ""},
        {{"ini", "get", "p.ini", "A", "empty", "--as", "double"}, 2, ""},
        {{"ini", "get", "p.ini", "A", "none", "--as", "long"}, 1, ""},
        {{"ini", "get", "none.ini", "A", "x"}, 3, ""},
        {{"ini", "get", ".", "A", "x"}, 3, ""},
        {{"ini", "list", "p.ini"}, 0, "[A]\nx=1,5\nempty=\nword=abc\n[B]\ny=2.50\n"},
        {{"ini", "list", "p.ini", "b"}, 0, "[B]\ny=2.50\n"},
        {{"ini", "list", "p.ini", "C"}, 1, ""},
        {{"ini", "set", "p.ini", "B", "y", "/3 4"}, 0, ""},
        {{"ini", "set", "new.ini", "N", "k", "v"}, 0, ""},
        {{"ini", "set", "no/such.ini", "N", "k", "v"}, 3, ""},
        {{"ini", "get", "new.ini", "N", "k"}, 0, "v\n"},
        {{"ini", "get", "p.ini"}, 64, ""},
        {{"material", "show", "m.mat"},
         0,
         "...\nshading constants   -0.125 7.11111 8\nbits                6\n"},
        {{"material", "show", "m.mat", "--preview", "sphere.xyz"}, 2, ""},
        {{"material", "show", "no.mat"}, 2, ""},
        {{"material", "show", "none.mat"}, 3, ""},
        {{"fio", "info", "d.dat"},
         0,
         "...\nbyte order          MOTOROLA (big-endian)\ndata                4 bytes from byte 16\n"},
        {{"fio", "info", "plain.dat"},
         0,
         "...\nbyte order          not stated: no header\ndata                4 bytes from byte 0\n"},
        {{"fio", "info", "none.dat"}, 3, ""},
        {{"ini", "get", "new.ini", "N", "k", "--json"},
         0,
         "{\"file\":\"new.ini\",\"section\":\"N\",\"key\":\"k\",\"value\":\"v\"}\n"},
        {{"ini", "get", "p.ini", "A", "x", "--as", "doubles", "--json"}, 0, "...\"value\":[1,5]}\n"},
        {{"ini", "list", "p.ini", "B", "--json"},
         0,
         "{\"file\":\"p.ini\",\"sections\":[{\"name\":\"B\",\"values\":["
         "{\"key\":\"y\",\"value\":\"/3 4\"}]}]}\n"},
        {{"material", "show", "m.mat", "--json"},
         0,
         "...,\"exponent\":4,\"shading_constants\":[-0.125,7.111111,8],\"bits\":6,\"test_texture\":null}\n"},
        {{"fio", "info", "d.dat", "--json"},
         0,
         "...,\"byte_order\":\"big-endian\",\"data_begin\":16,\"data_size\":4}\n"},
        {{"fio", "info", "plain.dat", "--json"}, 0, "...,\"byte_order\":null,\"data_begin\":0,"},
    };
    for (const auto& [arguments, code, out] : cases) {
        const ProgramRun run = run_program("bvutil.exe", arguments, dir.path());
        SCOPED_TRACE(arguments[0] + " " + arguments[1] + " " + arguments[2] + ": " + run.err);
        EXPECT_EQ(run.code, code);
        EXPECT_EQ(run.err.empty(), code == 0);
        if (out.starts_with("..."))
            EXPECT_NE(run.out.find(out.substr(3)), std::string::npos) << run.out;
        else
            EXPECT_EQ(run.out, out);
    }
    EXPECT_EQ(read_file(dir.file("p.ini")), "[A]\r\nx=1,5\r\nempty=\r\nword=abc\r\n[B]\r\ny=/3 4\r\n");
}

TEST(FilesCommands, DrawALitSphereOfAMaterial) {
    const TempDir dir;
    write_file(dir.file("m.mat"), "[Material]\r\nName=Rot\r\n[Rot]\r\nalpha=1\r\nRGBDiffus=1,0,0\r\n"
                                  "kspiegel=1e38\r\nRGBSpiegel=nan,0,0\r\n");
    ASSERT_EQ(run_program("bvutil.exe", {"material", "show", "m.mat", "--preview", "m.bmp"}, dir.path()).code,
              0);
    const std::string bmp = read_file(dir.file("m.bmp"));
    ASSERT_EQ(bmp.substr(18, 8), std::string("\xA0\0\0\0\xA0\0\0\0", 8));
    const auto pixel = [&](std::size_t x, std::size_t y) {
        const std::size_t step = static_cast<std::size_t>(bmp[28]) / 8,
                          at = 54 + ((159 - y) * 160 + x) * step;
        return std::array{static_cast<BYTE>(bmp.at(at)), static_cast<BYTE>(bmp.at(at + 1)),
                          static_cast<BYTE>(bmp.at(at + 2))};
    };
    const std::array<BYTE, 3> light_square{235, 235, 235}, dark_square{199, 199, 199};
    EXPECT_EQ(pixel(0, 0), light_square);
    EXPECT_EQ(pixel(0, 159), dark_square);
    const auto shaded = pixel(120, 130);
    EXPECT_EQ(shaded[0], 0);
    EXPECT_EQ(shaded[2], 102) << "ambient light alone";
    EXPECT_GT(pixel(60, 60)[2], pixel(100, 100)[2]);
}

} // namespace
