// The commands of each family but env: what they print, write and refuse.
#include "tests/imaging/bmp_bytes.h"
#include "tests/support/calculator_registration.h"
#include "tests/tools/commands.h"

namespace {

TEST_F(Commands, CalcEvaluatesAndExplains) {
    const HiddenCalculatorRegistration hidden;
    expect("calc", {{"1", 4, "regsvr32 BvCalc.dll"}});
    const HMODULE component = LoadLibraryA("BvCalc.dll");
    reinterpret_cast<HRESULT(WINAPI*)()>(
        reinterpret_cast<void*>(GetProcAddress(component, "DllRegisterServer")))();
    const ProgramRun run = bvutil("calc --form fraction --digits 8 \"a = 2,5\" \"a * sin(30)\" 1/0 7");
    EXPECT_EQ(run.code, 2);
    EXPECT_EQ(run.out, "2 1/2\n1 1/4\n");
    EXPECT_EQ(run.err, "bvutil: 1/0: division by zero at position 2\n");
    EXPECT_EQ(bvutil("calc --json --form fixed --digits 3 1/8 1/0").out,
              "[{\"expression\":\"1/8\",\"value\":0.125,\"text\":\"0.125\"}]\n")
        << "closed after a failure";
    FreeLibrary(component);
}

TEST_F(Commands, IniMaterialAndFioPrintAndChangeWhatIsThere) {
    write("p.ini", "[A]\r\nx=1,5\r\nempty=\r\nword=abc\r\n[B]\r\ny=2.50\r\n");
    write("m.mat", "[Material]\r\nName=Holz\r\n[Holz]\r\nOe=4\r\nBits=6\r\n");
    write("no.mat", "[Material]\r\n");
    write("d.dat", "1.1  @mbMOTOROLAdata");
    write("plain.dat", "data");
    expect("ini", {{"get p.ini a X", 0, "1,5\n"},
                   {"get p.ini A empty", 0, "\n"},
                   {"get p.ini A x --as doubles", 0, "1\n5\n"},
                   {"get p.ini B y --as double", 0, "2.5\n"},
                   {"get p.ini B y --as long", 0, "2\n"},
                   {"get p.ini A word --as doubles", 2, ""},
                   {"get p.ini A empty --as double", 2, ""},
                   {"get p.ini A none --as long", 1, ""},
                   {"get none.ini A x", 3, ""},
                   {"get . A x", 3, ""},
                   {"list p.ini", 0, "[A]\nx=1,5\nempty=\nword=abc\n[B]\ny=2.50\n"},
                   {"list p.ini b", 0, "[B]\ny=2.50\n"},
                   {"list p.ini C", 1, ""},
                   {"set p.ini B y \"/3 4\"", 0, ""},
                   {"set new.ini N k v", 0, ""},
                   {"set no/such.ini N k v", 3, ""},
                   {"get new.ini N k", 0, "v\n"},
                   {"get p.ini", 64, ""},
                   {"get p.ini A x --as doubles --json", 0, "...\"value\":[1,5]}\n"},
                   {"list p.ini B --json", 0,
                    "...[{\"name\":\"B\",\"values\":[{\"key\":\"y\",\"value\":\"/3 4\"}]}]}\n"}});
    EXPECT_EQ(read("p.ini"), "[A]\r\nx=1,5\r\nempty=\r\nword=abc\r\n[B]\r\ny=/3 4\r\n");
    expect("material",
           {{"show m.mat", 0, "...\nshading constants   -0.125 7.11111 8\nbits                6\n"},
            {"show m.mat --preview sphere.xyz", 2, ""},
            {"show no.mat", 2, ""},
            {"show none.mat", 3, ""},
            {"show m.mat --json", 0, "...[-0.125,7.111111,8],\"bits\":6,\"test_texture\":null}\n"}});
    expect(
        "fio",
        {{"info d.dat", 0, "...MOTOROLA (big-endian)\ndata                4 bytes from byte 16\n"},
         {"info plain.dat", 0, "...not stated: no header\ndata                4 bytes from byte 0\n"},
         {"info none.dat", 3, ""},
         {"info d.dat --json", 0, "...,\"byte_order\":\"big-endian\",\"data_begin\":16,\"data_size\":4}\n"},
         {"info plain.dat --json", 0, "...,\"byte_order\":null,\"data_begin\":0,"}});
}

class PictureCommands : public Commands {
  protected:
    using Pixels = std::vector<std::uint32_t>; // RRGGBB, from the upper left corner

    void write_picture(const std::string& name, std::size_t width, const Pixels& pixels) const {
        std::string rows;
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            const std::size_t y = pixels.size() / width - 1 - i / width;
            rows += packed({{pixels[y * width + i % width], 3}});
            if (i % width == width - 1) rows.append(width % 4, '\0');
        }
        const BmpFields fields{static_cast<int>(width), static_cast<int>(pixels.size() / width)};
        write(name, bmp_file(fields, rows).replace(10, 4, packed({{54, 4}})));
    }
    // Of a picture of any depth, or nothing.
    Pixels picture(const std::string& name) const {
        const std::string file = read(name);
        if (file.size() < 54) return {};
        const auto byte = [&](std::size_t at) { return static_cast<std::uint8_t>(file.at(at)); };
        const std::size_t width = byte(18), height = byte(22), step = byte(28) / 8u;
        Pixels pixels;
        for (std::size_t i = 0; i < width * height; ++i) {
            const std::size_t at =
                byte(10) + (height - 1 - i / width) * ((width * step + 3) / 4 * 4) + i % width * step;
            pixels.push_back(byte(at) | byte(at + 1) << 8 | byte(at + 2) << 16);
        }
        return pixels;
    }
};

TEST_F(PictureCommands, MaterialPreviewIsALitSphere) {
    write("m.mat", "[Material]\r\nName=Rot\r\n[Rot]\r\nalpha=1\r\nRGBDiffus=1,0,0\r\n"
                   "kspiegel=1e38\r\nRGBSpiegel=nan,0,0\r\n");
    ASSERT_EQ(bvutil("material show m.mat --preview m.bmp").code, 0);
    const Pixels sphere = picture("m.bmp");
    ASSERT_EQ(sphere.size(), 160u * 160);
    EXPECT_EQ(sphere[0], 0xEBEBEBu) << "a light square";
    EXPECT_EQ(sphere[159 * 160], 0xC7C7C7u) << "a dark one";
    EXPECT_EQ(sphere[130 * 160 + 120] & 0xFF00FF, 0x660000u) << "ambient light alone";
    EXPECT_GT(sphere[60 * 160 + 60] >> 16, sphere[100 * 160 + 100] >> 16);
}

TEST_F(PictureCommands, FilterAppliesPlugins) {
    for (const char* name : {"auto_levels.8bf", "unsharp_mask.8bf", "duotone.8bf"})
        std::filesystem::copy_file(program_path(std::string("filters\\") + name), dir.file(name));
    write_picture("in.bmp", 3, {0x4D0A32, 0x4D1464, 0x4D1E96, 0x4D28C8, 0x4D0A32, 0x4D0A32});
    write("text.txt", "neither a picture nor a plug-in");
    expect("filter",
           {{"info unsharp_mask.8bf", 0, "category: Sharpen\nname:     Unsharp mask\n"},
            {"apply auto_levels.8bf in.bmp levels.bmp", 0, ""}, // no bar without a console
            {"apply unsharp_mask.8bf in.bmp 1.bmp", 0, ""},
            {"apply unsharp_mask.8bf 1.bmp 2.bmp", 0, ""},
            {"apply unsharp_mask.8bf in.bmp again.bmp --again 1", 0, ""},
            {"apply unsharp_mask.8bf in.bmp repeated.bmp --again 1 --repeat-last", 0, ""},
            {"apply auto_levels.8bf in.bmp in.bmp", 0, ""},
            {"info missing.8bf", 3, "bvutil: there is no file missing.8bf\n"},
            {"info text.txt", 2, "bvutil: text.txt is not a filter plug-in for 32-bit programs\n"},
            {"apply duotone.8bf missing.bmp out.bmp", 3, "bvutil: there is no file missing.bmp\n"},
            {"apply duotone.8bf text.txt out.bmp", 2, "bvutil: text.txt is not a picture that can be read\n"},
            {"apply duotone.8bf in.bmp out.xyz", 2, ""},
            {"apply duotone.8bf in.bmp no_folder\\out.bmp", 3, ""},
            {"apply duotone.8bf in.bmp", 64, ""},
            {"apply duotone.8bf in.bmp out.bmp --again -1", 64, ""}});
    // Each colour is stretched by itself, and one of a single level stays.
    EXPECT_EQ(picture("levels.bmp"), (Pixels{0x4D0000, 0x4D5555, 0x4DAAAA, 0x4DFFFF, 0x4D0000, 0x4D0000}));
    EXPECT_EQ(read("levels.bmp").size(), 54u + 24);
    EXPECT_EQ(read("in.bmp"), read("levels.bmp"));
    EXPECT_NE(read("2.bmp"), read("1.bmp"));
    EXPECT_EQ(read("again.bmp"), read("2.bmp"));
    EXPECT_EQ(read("repeated.bmp"), read("2.bmp"));
    EXPECT_FALSE(std::filesystem::exists(dir.file("out.bmp")));
}

TEST_F(PictureCommands, ImageConvertsResizesCombinesAndOutlines) {
    write_picture("in.bmp", 4, {0x102030, 0xFF00FF, 0xFF00FF, 0x405060});
    write_picture("ground.bmp", 4, {0x010101, 0x020202, 0x030303, 0x040404});
    write("text.txt", "foo");
    write("fooba", "fooba");
    write("empty", "");
    const std::string both =
        "{\"left\":0,\"top\":0,\"right\":1,\"bottom\":1},{\"left\":3,\"top\":0,\"right\":4,\"bottom\":1}";
    expect(
        "image",
        {{"info in.bmp", 0, "...size:       4 x 1\ndepth:      24 bits per pixel\nreso"},
         {"info in.bmp --json", 0,
          "...{\"file\":\"in.bmp\",\"width\":4,\"height\":1,\"bits_per_pixel\":24,\"dpi_x\":"},
         {"convert in.bmp same.bmp", 0, ""},
         {"convert in.bmp out --format tiff", 0, ""},
         {"convert in.bmp out.png", 0, ""},
         {"convert out.png back.bmp", 0, ""},
         {"transparent in.bmp ground.bmp both.bmp --at 1 0", 0, ""},
         {"region in.bmp region.bmp", 0, "rectangles: 2\nbounds:     0, 0 to 4, 1\n"},
         {"region in.bmp --key 102030", 0, "rectangles: 1\nbounds:     1, 0 to 4, 1\n"},
         {"region in.bmp --json", 0,
          "{\"file\":\"in.bmp\",\"bounds\":{\"left\":0,\"top\":0,\"right\":4,\"bottom\":1},\"rectangles\":[" +
              both + "]}\n"},
         {"emboss in.bmp embossed.bmp", 0, ""},
         {"base64 text.txt", 0, "Zm9v\n"},
         {"base64 fooba", 0, "Zm9vYmE=\n"},
         {"base64 empty", 0, "\n"},
         {"base64 fooba coded.txt", 0, ""},
         {"base64 empty coded-empty.txt", 0, ""},
         {"info none.bmp", 3, ""},
         {"info text.txt", 2, ""},
         {"convert in.bmp out.xyz", 2, ""},
         {"convert in.bmp no\\such\\out.bmp", 3, ""},
         {"resize in.bmp out.bmp 0 5", 64, ""},
         {"region in.bmp --key 12345", 2, ""},
         {"region in.bmp --key 0x1234", 2, ""},
         {"transparent in.bmp in.bmp out.bmp --at 65536 0", 64, ""},
         {"base64 none", 3, ""}});
    EXPECT_FALSE(std::filesystem::exists(dir.file("out.bmp")));
    EXPECT_EQ(picture("same.bmp"), picture("in.bmp"));
    EXPECT_EQ(picture("back.bmp"), picture("in.bmp"));
    EXPECT_EQ(read("out").substr(0, 3) + read("out.png").substr(1, 3), "II*PNG");
    EXPECT_EQ(picture("both.bmp"), (Pixels{0x010101, 0x102030, 0x030303, 0x040404}));
    EXPECT_EQ(read("coded.txt") + "," + read("coded-empty.txt"), "Zm9vYmE=,");
    expect("image", {{"resize in.bmp in.bmp 8 3", 0, ""}, {"info in.bmp", 0, "...size:       8 x 3"}});
}

TEST_F(Commands, TriangulateReadsPointsAndWritesTrianglesAndAPicture) {
    write("points.csv", "x,y,height\r\n0,0,9\r\n# a comment\r\n\r\n2; 4\n4\t0.5 x\n-0.0,0");
    write("p.csv", "0,0\n1,0\n0,0.1\n");
    const std::string triangle = "x1,y1,x2,y2,x3,y3\r\n0,0,2,4,4,0.5\r\n",
                      counts = "{\"point_count\":3,\"triangle_count\":1";
    expect("triangulate", {{"points.csv", 0, triangle},
                           {"points.csv --csv t.csv --svg t.svg", 0, "4 points, 1 triangles\n"},
                           {"p.csv --json", 0, counts + ",\"triangles\":[[0,0,0,0.1,1,0]]}\n"},
                           {"p.csv --json --csv other.csv", 0, counts + "}\n"},
                           {"none.csv", 3, ""}});
    EXPECT_EQ(read("t.csv"), triangle);
    EXPECT_NE(read("t.svg").find("<path d=\"M10 1210L610 10L1210 1060Z\"/>"), std::string::npos);
    for (const char* line : {"1", "1,a", "1e99,0", "nan,0", "1 2x", ",1,2"}) {
        write("points.csv", std::string("0,0\n") + line + "\n");
        expect("triangulate", {{"points.csv --csv no.csv", 2, "points.csv, line 2"}});
    }
    EXPECT_FALSE(std::filesystem::exists(dir.file("no.csv")));
}

TEST_F(Commands, WhereShowsWhatThereIsAndDoesNotWait) {
    const TempDir mb;
    SetEnvironmentVariableA("MB", mb.path().c_str());
    const ProgramRun without = bvutil("where");
    write_file(mb.file("mb4.ini"), "");
    const ProgramRun with = bvutil("where");
    expect("where", {{"", 0, "...\\Brenvik Morvane +2011\\Programm\n"},
                     {"", 0, "...\nsystem version      6.1\n"},
                     {"--json", 0, "...\\mb4.ini\",\"program_data\":\""},
                     {"--json", 0, "...\",\"system_version\":\"6.1\"}\n"}});
    SetEnvironmentVariableA("MB", nullptr);
    std::string found = mb.file("mb4.ini");
    found = "configuration file  " + std::string(_strlwr(found.data())) + "\n";
    EXPECT_TRUE(with.out.starts_with(found)) << with.out;
    // Another program's file in C:\ would count too.
    EXPECT_EQ(without.code, without.out.starts_with("configuration file  none\n") ? 1 : 0) << without.err;
}

} // namespace
