// bvutil filter, run as a program.
#include "tests/support/run_program.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

class FilterCommands : public testing::Test {
  protected:
    FilterCommands() {
        char self[MAX_PATH];
        GetModuleFileNameA(nullptr, self, sizeof self);
        const auto filters = std::filesystem::path(self).parent_path().parent_path() / "filters";
        for (const auto& entry : std::filesystem::directory_iterator(filters))
            if (entry.path().extension() == ".8bf")
                std::filesystem::copy_file(entry.path(), dir.file(entry.path().filename().string()));
        write_file(dir.file("in.bmp"), bmp());
        write_file(dir.file("text.txt"), "neither a picture nor a plug-in");
    }

    ProgramRun filter(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "filter");
        return run_program("bvutil.exe", arguments, dir.path());
    }

    // Three grey pixels over three others, 24 bits, bottom-up; rows have 3 bytes of filler.
    static std::string bmp(const char* levels = "\x64\x96\xA0\x32\x64\x78") {
        std::string rows;
        for (int i = 0; i < 6; ++i) {
            rows.append(3, levels[i]);
            if (i % 3 == 2) rows.append(3, '\0');
        }
        BITMAPINFOHEADER info{sizeof info, 3, 2, 1, 24, BI_RGB, 24, 0, 0, 0, 0};
        BITMAPFILEHEADER header{0x4D42, 54 + 24, 0, 0, 54};
        std::string bytes(54, '\0');
        std::memcpy(bytes.data(), &header, sizeof header);
        std::memcpy(bytes.data() + sizeof header, &info, sizeof info);
        return bytes + rows;
    }

    TempDir dir;
};

TEST_F(FilterCommands, TellWhatAPluginIs) {
    const ProgramRun run = filter({"info", "unsharp_mask.8bf"});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(run.out, "category: Sharpen\nname:     Unsharp mask\n");
}

TEST_F(FilterCommands, ApplyAPluginToAPicture) {
    const ProgramRun run = filter({"apply", "auto_levels.8bf", "in.bmp", "out.bmp"});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(run.out + run.err, "") << "no bar without a console";
    // 50 becomes 0 and 160 becomes 255.
    const std::string written = read_file(dir.file("out.bmp")), expected = bmp("\x73\xE7\xFF\x00\x73\xA2");
    EXPECT_EQ(written.substr(0, 38), expected.substr(0, 38)); // up to the resolution, which is the screen's
    EXPECT_EQ(written.substr(54), expected.substr(54));
    EXPECT_EQ(filter({"apply", "auto_levels.8bf", "in.bmp", "in.bmp"}).code, 0) << "in place";
    EXPECT_EQ(read_file(dir.file("in.bmp")), read_file(dir.file("out.bmp")));
}

TEST_F(FilterCommands, ApplyAgainToTheResult) {
    ASSERT_EQ(filter({"apply", "unsharp_mask.8bf", "in.bmp", "1.bmp"}).code, 0);
    ASSERT_EQ(filter({"apply", "unsharp_mask.8bf", "1.bmp", "2.bmp"}).code, 0);
    for (const std::vector<std::string>& how : {std::vector<std::string>{}, {"--repeat-last"}}) {
        std::vector<std::string> arguments{"apply",     "unsharp_mask.8bf", "in.bmp",
                                           "twice.bmp", "--again",          "1"};
        arguments.insert(arguments.end(), how.begin(), how.end());
        const ProgramRun run = filter(arguments);
        EXPECT_EQ(run.code, 0) << run.err;
        EXPECT_EQ(read_file(dir.file("twice.bmp")), read_file(dir.file("2.bmp")));
    }
    EXPECT_NE(read_file(dir.file("2.bmp")), read_file(dir.file("1.bmp")));
}

TEST_F(FilterCommands, SayWhatIsWrong) {
    const struct {
        std::vector<std::string> arguments;
        int code;
        const char* message;
    } cases[] = {
        {{"info", "missing.8bf"}, 3, "bvutil: there is no file missing.8bf\n"},
        {{"info", "text.txt"}, 2, "bvutil: text.txt is not a filter plug-in for 32-bit programs\n"},
        {{"apply", "duotone.8bf", "missing.bmp", "out.bmp"}, 3, "bvutil: there is no file missing.bmp\n"},
        {{"apply", "duotone.8bf", "text.txt", "out.bmp"},
         2,
         "bvutil: text.txt is not a picture that can be read\n"},
        {{"apply", "duotone.8bf", "in.bmp", "out.xyz"}, 2, nullptr},
        {{"apply", "duotone.8bf", "in.bmp", "no_folder\\out.bmp"}, 3, nullptr},
        {{"apply", "duotone.8bf", "in.bmp"}, 64, nullptr},
        {{"apply", "duotone.8bf", "in.bmp", "out.bmp", "--again", "-1"}, 64, nullptr},
    };
    for (const auto& each : cases) {
        const ProgramRun run = filter(each.arguments);
        EXPECT_EQ(run.code, each.code) << run.err;
        if (each.message) {
            EXPECT_EQ(run.err, each.message);
        }
        EXPECT_FALSE(std::filesystem::exists(dir.file("out.bmp")));
    }
}

} // namespace
