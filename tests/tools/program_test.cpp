// What holds for all commands of bvutil: help, examples, JSON, exit codes, and the characters that it takes.
#include "tests/support/calculator_registration.h"
#include "tests/tools/commands.h"
#include "tests/tools/json_text.h"

namespace {

namespace fs = std::filesystem;

class Program : public Commands {};

// Everything that the examples work on.
void prepare_samples(const std::string& folder) {
    for (const char* file : {"settings/site.env", "settings/user.env", "profiles/zeichnung.ini",
                             "profiles/eiche.mat", "profiles/punkte.dat", "terrain/survey.csv"})
        fs::copy(std::string(SOURCE_DIR "/samples/") + file, folder);
    for (const char* filter : {"auto_levels.8bf", "unsharp_mask.8bf"})
        fs::copy(program_path(std::string("filters\\") + filter), folder);
    run_program("samples\\badge.exe", {"badge.bmp", "pattern.bmp"}, folder);
    run_program("samples\\landscape.exe", {"landscape.bmp"}, folder);
    write_file(folder + "\\mb.ini", "");
}

// What stands behind a mark in the text, up to another; the text goes on there.
std::string cut_out(std::string& text, const std::string& mark, const std::string& end) {
    text.erase(0, std::min(text.find(mark), text.size() - mark.size()) + mark.size());
    return text.substr(0, text.find(end));
}

TEST_F(Program, RunsEveryExampleOfItsHelp) {
    const HiddenCalculatorRegistration hidden;
    const HMODULE component = LoadLibraryA("BvCalc.dll");
    reinterpret_cast<HRESULT(WINAPI*)()>(
        reinterpret_cast<void*>(GetProcAddress(component, "DllRegisterServer")))();
    const TempDir samples;
    prepare_samples(samples.path());
    std::string help = bvutil("help --json").out;
    EXPECT_TRUE(JsonText::is_valid(help));
    int commands = 0;
    for (; help.find("\"command\"") != help.npos; ++commands) {
        const std::string name = cut_out(help, "\"command\":\"bvutil ", "\"");
        const bool has_json = cut_out(help, "\"json\":", ",") == "true";
        std::string examples = cut_out(help, "\"examples\":[", "\"]}");
        std::erase(examples, '\\');
        fs::remove_all(dir.path());
        fs::copy(samples.path(), dir.path());
        EXPECT_FALSE(examples.empty()) << name;
        while (examples.find("\"bvutil ") != examples.npos) {
            const std::string example = cut_out(examples, "\"bvutil ", "\",\"");
            SCOPED_TRACE(example);
            const ProgramRun run = bvutil(example);
            EXPECT_EQ(run.code, 0) << run.err;
            // A second way to print excludes the first.
            if (!has_json || example.ends_with("--text")) continue;
            const ProgramRun json = bvutil(std::string(example).insert(name.size(), " --json"));
            EXPECT_EQ(json.code, 0) << json.err;
            EXPECT_TRUE((run.out.empty() && json.out.empty()) || JsonText::is_valid(json.out)) << json.out;
        }
    }
    EXPECT_GE(commands, 24);
    FreeLibrary(component);
}

// The help of a command names it; the README has the exit codes that the program has.
TEST_F(Program, TellsItsCommandsAndCodes) {
    const std::string version = bvutil("--version").out;
    EXPECT_TRUE(std::regex_match(version, std::regex("bvutil \\d+\\.\\d+\\.\\d+\n"))) << version;
    const std::string codes = bvutil("help exit-codes").out, readme = read_file(SOURCE_DIR "/README.md");
    expect("", {{"env get --help", 0, bvutil("help env get").out},
                {"image --help", 0, "...Usage: bvutil image [OPTIONS] COMMAND\n"},
                {"--help", 0, "..." + codes}});
    std::string json = bvutil("help exit-codes --json").out, code;
    while (json.find("\"code\"") != json.npos) {
        code = cut_out(json, "\"code\":", ",");
        const std::string meaning = cut_out(json, "\"meaning\":\"", "\"");
        EXPECT_NE(readme.find("| " + code + " | " + meaning + " |"), std::string::npos) << code;
    }
    EXPECT_EQ(code, "64");
    const ProgramRun timed = bvutil("help exit-codes --time");
    EXPECT_EQ(timed.out, codes);
    EXPECT_TRUE(timed.err.starts_with("bvutil: time: 0.0") && timed.err.ends_with(" s\n")) << timed.err;
}

TEST_F(Program, SaysWhatTheCommandLineShouldHave) {
    expect("", {{"", 64, "bvutil: a command is missing: one of env, ini, "},
                {"evn", 64, "bvutil: there is no command \"evn\": one of env, ini, "},
                {"env", 64, "bvutil: env: a command is missing: one of show, get, "},
                {"env shw a.env", 64, "bvutil: env: there is no command \"shw\": one of show, "},
                {"env get a.env", 64,
                 "bvutil: env get: SECTION is required\nusage: bvutil env get [OPTIONS] FILE SECTION [PATH]\n"
                 "more:  bvutil env get --help\n"},
                {"env get a b c d", 64, "bvutil: env get: \"d\" is one argument too many\n"},
                {"env get a b --deeep", 64, "bvutil: env get: there is no option --deeep\n"},
                {"env get a b --as int", 64, "bvutil: env get: --as: int not in {text,long,"},
                {"env set a b c --json", 64, "bvutil: env set: there is no option --json\n"},
                {"image resize a.bmp b.bmp 0 9", 64, "bvutil: image resize: WIDTH: 0 is not a number of pix"},
                {"image resize a.bmp 5 9", 64, "bvutil: image resize: --output is required\n"},
                {"image convert a.bmp b --format xyz", 64, "bvutil: image convert: --format: xyz not in {"},
                {"help env gte", 1, "bvutil: there is no command or topic \"gte\" in bvutil env\n"}});
}

TEST_F(Program, TakesWhatTheCodePageHoldsAndRefusesTheRest) {
    write("\xE4.env", "[S]\n k = \xFC\"\\\x01\n");
    expect("env get \xE4.env S k", {{"", 0, "\u00FC\"\\\x01\n"},
                                    {"--json", 0,
                                     "{\"file\":\"\u00E4.env\",\"section\":\"S\",\"path\":\"k\","
                                     "\"value\":\"\u00FC\\\"\\\\\\u0001\"}\n"}});
    const ProgramRun refused = run_line(L"bvutil.exe env get \u03A9.env S k", dir.path());
    EXPECT_EQ(refused.code, 64);
    EXPECT_TRUE(
        refused.err.starts_with("bvutil: the argument \"\u03A9.env\" holds a character that code page "))
        << refused.err;
}

} // namespace
