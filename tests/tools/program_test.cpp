// What holds for all commands of bvutil: help, examples, JSON, exit codes, and the text that reaches a
// console.
#include "tests/support/calculator_registration.h"
#include "tests/support/run_program.h"
#include "tests/tools/json_text.h"

#include <gtest/gtest.h>

#include <map>
#include <regex>

namespace {

namespace fs = std::filesystem;

// A folder with everything that the examples work on.
class SampleFolder {
  public:
    explicit SampleFolder(const SampleFolder* other = nullptr) {
        if (other) {
            for (const auto& file : fs::directory_iterator(other->path()))
                copy(file.path());
            return;
        }
        for (const char* file : {"settings/site.env", "settings/user.env", "profiles/zeichnung.ini",
                                 "profiles/eiche.mat", "profiles/punkte.dat", "terrain/survey.csv"})
            copy(std::string(SOURCE_DIR "/samples/") + file);
        for (const char* filter : {"auto_levels", "unsharp_mask"})
            copy(program_path(std::string("filters\\") + filter + ".8bf"));
        run_program("samples\\badge.exe", {"badge.bmp", "pattern.bmp"}, path());
        run_program("samples\\landscape.exe", {"landscape.bmp"}, path());
        write_file(m_dir.file("mb.ini"), "");
    }
    const std::string& path() const { return m_dir.path(); }
    // Runs a command line as a user types it.
    ProgramRun run(const std::string& line) const {
        const std::string name = "bvutil";
        EXPECT_TRUE(line.starts_with(name + " ")) << line;
        const std::string whole = quoted(program_path("bvutil.exe")) + line.substr(name.size());
        return run_line(std::wstring(whole.begin(), whole.end()), path());
    }

  private:
    void copy(const fs::path& file) const { fs::copy_file(file, m_dir.file(file.filename().string())); }

    TempDir m_dir;
};

struct CommandEntry {
    bool json = false;
    std::vector<std::string> examples;
};

// By name, as bvutil itself lists them.
std::map<std::string, CommandEntry> all_commands() {
    const TempDir folder;
    const ProgramRun help = run_program("bvutil.exe", {"help", "--json"}, folder.path());
    std::map<std::string, CommandEntry> commands;
    CommandEntry* entry = nullptr;
    for (const auto& [place, value] : JsonText::scalars(help.out)) {
        if (place.ends_with("/command")) entry = &commands[value];
        if (place.ends_with("/json")) entry->json = value == "true";
        if (place.find("/examples/") == place.npos) continue;
        std::string line = value;
        for (std::size_t at = line.find('\\'); at != line.npos; at = line.find('\\', at + 1))
            line.erase(at, 1);
        entry->examples.push_back(line);
    }
    return commands;
}

TEST(Program, RunsEveryExampleOfItsHelp) {
    const HiddenCalculatorRegistration hidden;
    const HMODULE component = LoadLibraryA("BvCalc.dll");
    reinterpret_cast<HRESULT(WINAPI*)()>(
        reinterpret_cast<void*>(GetProcAddress(component, "DllRegisterServer")))();
    const SampleFolder samples;
    const auto commands = all_commands();
    EXPECT_GE(commands.size(), 24U);
    for (const auto& [name, command] : commands) {
        const SampleFolder folder(&samples);
        EXPECT_FALSE(command.examples.empty()) << name;
        for (const std::string& example : command.examples) {
            SCOPED_TRACE(example);
            const ProgramRun run = folder.run(example);
            EXPECT_EQ(run.code, 0) << run.err;
            // A second way to print excludes the first.
            if (!command.json || example.ends_with("--text")) continue;
            const ProgramRun json = folder.run(std::string(example).insert(name.size(), " --json"));
            EXPECT_EQ(json.code, 0) << json.err;
            if (!json.out.empty() || !run.out.empty()) {
                EXPECT_NO_THROW(JsonText::scalars(json.out)) << json.out.substr(0, 400);
            }
        }
    }
    FreeLibrary(component);
}

// The help of a command names it; the README has the exit codes that the program has.
TEST(Program, TellsItsCommandsAndCodes) {
    const TempDir folder;
    const auto run = [&](std::vector<std::string> arguments) {
        return run_program("bvutil.exe", arguments, folder.path());
    };
    EXPECT_TRUE(std::regex_match(run({"--version"}).out, std::regex("bvutil \\d+\\.\\d+\\.\\d+\n")));
    EXPECT_EQ(run({"env", "get", "--help"}).out, run({"help", "env", "get"}).out);
    EXPECT_NE(run({"image", "--help"}).out.find("Usage: bvutil image [OPTIONS] COMMAND\n"),
              std::string::npos);
    EXPECT_NE(run({"--help"}).out.find(run({"help", "exit-codes"}).out), std::string::npos);
    const std::string readme = read_file(SOURCE_DIR "/README.md");
    std::string code;
    for (const auto& [place, value] : JsonText::scalars(run({"help", "exit-codes", "--json"}).out)) {
        if (place.ends_with("/code")) code = value;
        if (place.ends_with("/meaning")) {
            EXPECT_NE(readme.find("| " + code + " | " + value + " |"), std::string::npos) << code;
        }
    }
    EXPECT_EQ(code, "64");
    const ProgramRun timed = run({"help", "exit-codes", "--time"});
    EXPECT_EQ(timed.out, run({"help", "exit-codes"}).out);
    EXPECT_TRUE(timed.err.starts_with("bvutil: time: 0.0") && timed.err.ends_with(" s\n")) << timed.err;
}

TEST(Program, SaysWhatTheCommandLineShouldHave) {
    const TempDir folder;
    const struct {
        std::vector<std::string> arguments;
        int code;
        std::string begin; // of what it says
    } cases[] = {
        {{}, 64, "a command is missing: one of env, ini, "},
        {{"evn"}, 64, "there is no command \"evn\": one of env, ini, "},
        {{"env"}, 64, "env: a command is missing: one of show, get, "},
        {{"env", "shw", "a.env"}, 64, "env: there is no command \"shw\": one of show, "},
        {{"env", "get", "a.env"},
         64,
         "env get: SECTION is required\nusage: bvutil env get [OPTIONS] FILE SECTION [PATH]\n"
         "more:  bvutil env get --help\n"},
        {{"env", "get", "a", "b", "c", "d"}, 64, "env get: \"d\" is one argument too many\n"},
        {{"env", "get", "a", "b", "--deeep"}, 64, "env get: there is no option --deeep\n"},
        {{"env", "get", "a", "b", "--as", "int"}, 64, "env get: --as: int not in {text,long,"},
        {{"env", "set", "a", "b", "c", "--json"}, 64, "env set: there is no option --json\n"},
        {{"image", "resize", "a.bmp", "b.bmp", "0", "9"},
         64,
         "image resize: WIDTH: 0 is not a number of pix"},
        {{"image", "resize", "a.bmp", "5", "9"}, 64, "image resize: --output is required\n"},
        {{"image", "convert", "a.bmp", "b", "--format", "xyz"}, 64, "image convert: --format: xyz not in {"},
        {{"help", "env", "gte"}, 1, "there is no command or topic \"gte\" in bvutil env\n"},
    };
    for (const auto& [arguments, code, begin] : cases) {
        const ProgramRun run = run_program("bvutil.exe", arguments, folder.path());
        EXPECT_EQ(run.code, code) << run.err;
        EXPECT_EQ(run.err.substr(0, begin.size() + 8), "bvutil: " + begin);
        EXPECT_EQ(run.out, "");
    }
}

TEST(Program, TakesWhatTheCodePageHoldsAndRefusesTheRest) {
    const TempDir folder;
    write_file(folder.file("\xE4.env"), "[S]\n k = \xFC\"\\\x01\n");
    const std::wstring program = std::filesystem::path(program_path("bvutil.exe")).wstring();
    const auto run = [&](const wchar_t* arguments) {
        return run_line(L"\"" + program + L"\"" + arguments, folder.path());
    };
    EXPECT_EQ(run(L" env get \u00E4.env S k").out, "\u00FC\"\\\x01\n");
    EXPECT_EQ(
        run(L" env get \u00E4.env S k --json").out,
        "{\"file\":\"\u00E4.env\",\"section\":\"S\",\"path\":\"k\",\"value\":\"\u00FC\\\"\\\\\\u0001\"}\n");
    const ProgramRun refused = run(L" env get \u03A9.env S k");
    EXPECT_EQ(refused.code, 64);
    EXPECT_TRUE(
        refused.err.starts_with("bvutil: the argument \"\u03A9.env\" holds a character that code page "))
        << refused.err;
}

} // namespace
