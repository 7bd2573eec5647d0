// bvutil env, run as a program on real files.
#include "tests/support/run_program.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using Arguments = std::vector<std::string>;

const std::string tree = "; defaults\r\n[view]\r\n  scale = 100\r\n  layers ={\r\n    name =walls\r\n"
                         "    name =roofs\r\n    none ={\r\n    }\r\n  }\r\n  pens = 0.5, 1\r\n";

class EnvCommands : public testing::Test {
  protected:
    ProgramRun env(Arguments arguments) {
        arguments.insert(arguments.begin(), "env");
        return run_program("bvutil.exe", arguments, m_dir.path());
    }
    void write(const std::string& name, const std::string& text) { write_file(m_dir.file(name), text); }
    std::string read(const std::string& name) { return read_file(m_dir.file(name)); }
    // What a failed or interrupted change could leave behind.
    std::size_t files() {
        const std::filesystem::directory_iterator all(m_dir.path());
        return static_cast<std::size_t>(std::distance(begin(all), end(all)));
    }

    TempDir m_dir;
};

TEST_F(EnvCommands, ShowsEveryElement) {
    write("a.env", tree + "[view]\r\n  again = \x01\xFC\r\n[empty]\r\n");
    EXPECT_EQ(env({"show", "a.env"}).out, "a.env\n"
                                          "├── [view]\n"
                                          "│   ├── scale = 100\n"
                                          "│   ├── layers\n"
                                          "│   │   ├── name@1 = walls\n"
                                          "│   │   ├── name@2 = roofs\n"
                                          "│   │   └── none (empty block)\n"
                                          "│   └── pens = 0.5, 1\n"
                                          "├── [view]\n"
                                          "│   └── again = \\x01\u00FC\n"
                                          "└── [empty] (empty block)\n");
    EXPECT_EQ(env({"show", "--text", "a.env"}).out.substr(0, 32), "[view]\n  scale =100\n  layers ={\n");
}

TEST_F(EnvCommands, ReadsAndReports) {
    write("a.env", tree);
    write("site.env", "[view]\n  unit = mm\n  scale = 7\n[print]\n  paper = A4\n  a@b = odd\n");
    write("low.env", "[view]\n scale ={\n k = 1\n }\n unit = mm\n layers ={\n name =x\n name =y\n name =z\n"
                     " }\n gap ={\n }\n gap = 6\n[view]\n gap = 0\n gap = 7\n late = 1\n");
    write("brace.env", "[S]\r\n a = b\\\r\n }\r\n }");
    write("empty.env", "");
    write("cut.env", "[S]\n a = 1\n\xFF b = 2\n");
    struct Case {
        Arguments arguments;
        int code;
        std::string out; // or a part of the error output
    };
    const Case cases[] = {
        {{"get", "a.env", "view", "scale", "--as", "long"}, 0, "100\n"},
        {{"get", "a.env", "view", "layers@name@2"}, 0, "roofs\n"},
        {{"get", "a.env", "view", "name@2", "--deep"}, 0, "roofs\n"},
        {{"get", "a.env", "view", "pens", "--as", "doubles"}, 0, "0.5\n1\n"},
        {{"get", "a.env", "view", "layers"},
         0,
         "[view] layers\n├── name@1 = walls\n├── name@2 = roofs\n└── none (empty block)\n"},
        {{"get", "a.env", "view", "unit", "--fallback", "site.env", "--which"}, 0, "site.env: mm\n"},
        {{"get", "a.env", "view", "scale", "--fallback", "site.env", "--which"}, 0, "a.env: 100\n"},
        {{"get", "a.env", "print", "--fallback", "site.env"}, 0, "[print]\n├── paper = A4\n└── a@b = odd\n"},
        {{"get", "site.env", "print", "a@b", "--delimiter", "/"}, 0, "odd\n"},
        {{"list", "site.env"}, 0, "view\nprint\n"},
        {{"list", "a.env", "view", "layers"}, 0, "name@1\nname@2\nnone\n"},
        {{"list", "a.env", "view", "layers@none"}, 0, ""},
        {{"show", "site.env", "--json"},
         0,
         "{\"file\":\"site.env\",\"sections\":[{\"name\":\"view\",\"elements\":["
         "{\"name\":\"unit\",\"value\":\"mm\"},{\"name\":\"scale\",\"value\":\"7\"}]},"
         "{\"name\":\"print\",\"elements\":[{\"name\":\"paper\",\"value\":\"A4\"},"
         "{\"name\":\"a@b\",\"value\":\"odd\"}]}]}\n"},
        {{"show", "a.env", "--fallback", "low.env", "--fallback", "site.env", "--which"},
         0,
         "a.env\n├── [view]\n│   ├── scale = 100 (a.env)\n│   ├── layers\n"
         "│   │   ├── name@1 = walls (a.env)\n│   │   ├── name@2 = roofs (a.env)\n"
         "│   │   ├── none (empty block)\n│   │   └── name@3 = z (low.env)\n│   ├── pens = 0.5, 1 (a.env)\n"
         "│   ├── unit = mm (low.env)\n│   ├── gap@1 (empty block)\n│   └── gap@2 = 6 (low.env)\n"
         "└── [print]\n    ├── paper = A4 (site.env)\n    └── a@b = odd (site.env)\n"},
        {{"show", "empty.env", "--fallback", "site.env", "--which", "--json"},
         0,
         "{\"file\":\"empty.env\",\"sections\":[{\"name\":\"view\",\"elements\":["
         "{\"name\":\"unit\",\"value\":\"mm\",\"file\":\"site.env\"},"
         "{\"name\":\"scale\",\"value\":\"7\",\"file\":\"site.env\"}]},"
         "{\"name\":\"print\",\"elements\":[{\"name\":\"paper\",\"value\":\"A4\",\"file\":\"site.env\"},"
         "{\"name\":\"a@b\",\"value\":\"odd\",\"file\":\"site.env\"}]}]}\n"},
        {{"get", "a.env", "view", "pens", "--as", "doubles", "--json"},
         0,
         "{\"file\":\"a.env\",\"section\":\"view\",\"path\":\"pens\",\"value\":[0.5,1]}\n"},
        {{"get", "a.env", "view", "layers", "--fallback", "site.env", "--json"},
         0,
         "{\"file\":\"a.env\",\"section\":\"view\",\"path\":\"layers\",\"elements\":["
         "{\"name\":\"name\",\"occurrence\":1,\"value\":\"walls\"},"
         "{\"name\":\"name\",\"occurrence\":2,\"value\":\"roofs\"},"
         "{\"name\":\"none\",\"elements\":[]}]}\n"},
        {{"list", "a.env", "view", "layers", "--json"},
         0,
         "{\"file\":\"a.env\",\"section\":\"view\",\"path\":\"layers\","
         "\"names\":[\"name@1\",\"name@2\",\"none\"]}\n"},
        {{"check", "a.env", "site.env"}, 0, "a.env: 1 section, 4 values\nsite.env: 2 sections, 4 values\n"},
        {{"get", "a.env", "view", "none"}, 1, "[view] none is not in a.env"},
        {{"get", "a.env", "other"}, 1, "[other] is not in a.env"},
        {{"get", "a.env", "view", "@"}, 2, "\"@\" has no name in it"},
        {{"get", "a.env", "view", "pens", "--as", "longs"}, 2, "\"0.5, 1\" is not a list of whole numbers"},
        {{"get", "a.env", "view", "layers", "--as", "long"}, 2, "is a block"},
        {{"list", "a.env", "view", "scale"}, 2, "is a value"},
        {{"check", "brace.env", "a.env"}, 2, "brace.env, line 4, column 2: Section waited"},
        {{"check", "cut.env"}, 2, "cut.env: a byte 1A or FF"},
        {{"show", "missing.env"}, 3, "\"missing.env\""},
        {{"show", "."}, 3, "is a folder"},
        {{"show", "CON"}, 3, "is a device"},
        {{"show", "a.env", "--fallback", "missing.env"}, 3, "\"missing.env\""},
        {{"show", "a.env", "--fallback", "site.env", "--text"}, 64, "--fallback excludes --text"},
        {{"get", "a.env"}, 64, "SECTION is required"},
        {{"get", "a.env", "view", "scale", "--as", "number"}, 64, "--as"},
    };
    for (const Case& c : cases) {
        std::string what;
        for (const std::string& argument : c.arguments)
            what += argument + " ";
        SCOPED_TRACE(what);
        const ProgramRun run = env(c.arguments);
        EXPECT_EQ(run.code, c.code) << run.err;
        if (c.code == 0)
            EXPECT_EQ(run.out, c.out);
        else
            EXPECT_NE(run.err.find(c.out), std::string::npos) << run.err;
    }
}

// The place, the cause and what would mend it, for a person and for a program.
TEST_F(EnvCommands, FindsWhereAFileIsBroken) {
    const std::string many(3000, 'x');
    const std::string open = "Cbracesymbol waited: the block [S] ",
                      nameless = "waited: there is no name in front";
    const struct {
        std::string text, place;
        std::string problem; // the begin of what is said
        std::string shown;   // the line and the mark
    } cases[] = {
        {"[S]\n  a = {\n    b = 1\n[T]\n", "line 4, column 1", open + "a@1 of line 2 needs", "[T]\n  ^"},
        {"[S]\r\n a={\r\n}\r\n a={ b={\r\n c={\r\n } d=}\r\n}", "line 7, column 2", open + "a@2 of line 4",
         "}\n   ^"},
        {"[S]\n[S]\n a={\n; {\n t = " + many + "{\n", "line 6, column 1", open + "a@1 of line 3", "\n  ^"},
        {"; a comment\r\n[S]\r\n a = 1\r\n\tname of\r\n; x = 1\r\n more", "line 4, column 2",
         "Equal sign waited: the name 'name of' has no", " name of\n   ^"},
        {"[S]\n a = {\n b", "line 3, column 2", "Equal sign waited: the name 'b' has no", " b\n   ^"},
        {"[S]\n a = " + many + "\n = 1", "line 3, column 2", "Section " + nameless, " = 1\n   ^"},
        {"[S]\n a = {\n = 1", "line 3, column 2", "Cbracesymbol " + nameless, " = 1\n   ^"},
        {"[S]\n a\x01 = {\n[T]\n", "line 3, column 1", "Cbracesymbol waited: a block is open", "[T]\n  ^"},
        {"[S] a = b\\\n }\n}", "line 3, column 1", "Section waited: this '}' closes no block", "}\n  ^"},
    };
    for (const auto& [text, place, problem, shown] : cases) {
        SCOPED_TRACE(text.substr(0, 60));
        write("x.env", text);
        const ProgramRun run = env({"check", "x.env", "--json"});
        EXPECT_EQ(run.code, 2);
        std::string err = run.err, out = run.out;
        std::replace(err.begin(), err.end(), '"', '\'');
        EXPECT_TRUE(err.starts_with("bvutil: x.env, " + place + ": " + problem)) << err;
        EXPECT_TRUE(err.ends_with("\n  " + shown + "\n")) << err;
        std::erase(out, '\\');
        std::replace(out.begin(), out.end(), '"', '\'');
        EXPECT_NE(out.find("'message':'" + problem), std::string::npos) << out;
    }
    EXPECT_TRUE(
        env({"check", "x.env", "--json"})
            .out.starts_with("[{\"file\":\"x.env\",\"ok\":false,\"line\":3,\"column\":1,\"message\":\""));
}

TEST_F(EnvCommands, StoresAndRemoves) {
    write("a.env", tree);
    const std::string whole = "[view]\r\n  scale =-5\r\n  layers ={\r\n    name =walls\r\n    name =\r\n"
                              "    none ={\r\n    }\r\n    name =a ; = }\r\n  }\r\n";
    EXPECT_NE(env({"set", "a.env", "view", "scale", "-5"}).err.find("comments are not kept"),
              std::string::npos);
    EXPECT_EQ(env({"set", "a.env", "view", "layers@name@2", ""}).code, 0);
    EXPECT_EQ(env({"set", "a.env", "view", "layers@name@3", "a ; = }"}).code, 0);
    EXPECT_EQ(env({"remove", "a.env", "view", "pens", "--backup"}).code, 0);
    EXPECT_EQ(read("a.env"), whole);
    EXPECT_EQ(read("a.env.bak"), whole + "  pens =0.5, 1\r\n");
    EXPECT_EQ(env({"remove", "a.env", "view"}).code, 0);
    EXPECT_EQ(read("a.env"), "");
    EXPECT_EQ(env({"set", "new.env", "S", "a@b", "/1/", "--create"}).code, 0);
    EXPECT_EQ(read("new.env"), "[S]\r\n  a ={\r\n    b =/1/\r\n  }\r\n");
    EXPECT_EQ(files(), 3U);
}

// A change that cannot be made whole leaves the file as it was, and nothing beside it.
TEST_F(EnvCommands, RefusesWhatWouldBeLost) {
    const std::string before_fold(53, 'x');
    struct Case {
        Arguments arguments;
        int code;
        const char* error;
    };
    const Case cases[] = {
        {{"a.env", "view", "t", "{x"}, 2, "begin a block"},
        {{"a.env", "view", "t", "x\\"}, 2, "backslash"},
        {{"a.env", "view", "t", " x"}, 2, "blanks"},
        {{"a.env", "view", "t", "x\ny"}, 2, "one line"},
        {{"a.env", "view", "t", "x\xFFy"}, 2, "FF"},
        {{"a.env", "view", "t", before_fold + "\\x"}, 2, "as it was meant at [view] t@1, whose line"},
        {{"a.env", "view", "a=b", "x"}, 2, "would not read back"},
        {{"a.env", "a]b", "t", "x"}, 2, "would not read back"},
        {{"a.env", "view", "[a", "x"}, 2, "would not read back"},
        {{"a.env", "view", "}", "x"}, 2, "would not read back"},
        {{"a.env", "view", "@", "x"}, 2, "no name in it"},
        {{"a.env", "view", "layers@none@x@0", "x"}, 2, "begin with 1"},
        {{"a.env", "view", "t", "12a", "--as", "long"}, 2, "not a whole number"},
        {{"head.env", "S", "t", "x"}, 2, "text in front"},
        {{"cut.env", "S", "t", "x"}, 2, "text behind"},
        {{"missing.env", "S", "t", "x"}, 3, "cannot read \"missing.env\""},
        {{"gone\\new.env", "S", "t", "x", "--create"}, 3, "cannot write \"gone\\new.env\""},
        {{"NUL", "S", "t", "x", "--create"}, 3, "is a device"},
        {{"readonly.env", "view", "t", "x"}, 3, "is read-only"},
        {{"busy.env", "view", "t", "x"}, 3, "cannot write \"busy.env\""},
    };
    write("head.env", "A heading\n[S]\n");
    write("cut.env", "[S]\n\x1A[T]\n");
    for (const char* name : {"a.env", "readonly.env", "busy.env"})
        write(name, tree);
    SetFileAttributesA(m_dir.file("readonly.env").c_str(), FILE_ATTRIBUTE_READONLY);
    // Open in another program that lets others read it, but not replace it.
    const HANDLE busy = CreateFileA(m_dir.file("busy.env").c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    for (const Case& c : cases) {
        Arguments arguments = c.arguments;
        SCOPED_TRACE(arguments[0] + " " + arguments[2] + " " + arguments[3]);
        arguments.insert(arguments.begin(), "set");
        const ProgramRun run = env(arguments);
        EXPECT_EQ(run.code, c.code) << run.err;
        EXPECT_NE(run.err.find(c.error), std::string::npos) << run.err;
    }
    CloseHandle(busy);
    SetFileAttributesA(m_dir.file("readonly.env").c_str(), FILE_ATTRIBUTE_NORMAL);
    for (const char* name : {"a.env", "readonly.env", "busy.env"})
        EXPECT_EQ(read(name), tree);
    EXPECT_EQ(files(), 5U);
}

TEST_F(EnvCommands, Merges) {
    const std::string long_text(1000, 'v');
    const std::string source = "[S]\n a@b = new\n k = new\n n = " + long_text + "\n[S]\n k = second\n";
    struct Case {
        const char* mode;
        std::string copied;
        Arguments values; // of a@b, k, k (2), n
    };
    const Case cases[] = {
        {"keep", "1 value copied\n", {"old", "old", "", long_text}},
        {"append", "4 values copied\n", {"old", "old", "new", long_text}},
        {"overwrite", "4 values copied\n", {"new", "second", "", long_text}},
        {"update", "3 values copied\n", {"new", "second", "", ""}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.mode);
        write("src.env", source);
        write("dst.env", "[S]\n a@b = old\n k = old\n");
        EXPECT_EQ(env({"merge", "dst.env", "src.env", "--mode", c.mode}).out, c.copied);
        const char* const paths[] = {"a@b", "k", "k/2", "n"};
        for (std::size_t i = 0; i < std::size(paths); ++i) {
            const ProgramRun value = env({"get", "dst.env", "S", paths[i], "--delimiter", "/"});
            EXPECT_EQ(value.out, c.values[i].empty() ? "" : c.values[i] + "\n") << paths[i];
        }
        EXPECT_EQ(read("src.env"), source);
    }
}

} // namespace
