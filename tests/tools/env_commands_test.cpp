// bvutil env on real files.
#include "tests/tools/commands.h"

#include <algorithm>
#include <regex>

namespace {

const std::string tree = "; defaults\r\n[view]\r\n  scale = 100\r\n  layers ={\r\n    name =walls\r\n"
                         "    name =roofs\r\n    none ={\r\n    }\r\n  }\r\n  pens = 0.5, 1\r\n";

class EnvCommands : public Commands {};

TEST_F(EnvCommands, ReadAndReport) {
    write("a.env", tree);
    write("b.env", tree + "[view]\r\n  again = \x01\xFC\r\n[empty]\r\n");
    write("site.env", "[view]\n  unit = mm\n  scale = 7\n[print]\n  paper = A4\n  a@b = odd\n");
    write("low.env", "[view]\n scale ={\n k = 1\n }\n unit = mm\n layers ={\n name =x\n name =y\n name =z\n"
                     " }\n gap ={\n }\n gap = 6\n[view]\n gap = 0\n gap = 7\n late = 1\n");
    write("brace.env", "[S]\r\n a = b\\\r\n }\r\n }");
    write("empty.env", "");
    write("cut.env", "[S]\n a = 1\n\xFF b = 2\n");
    const std::string whole = "├── [view]\n│   ├── scale = 100\n│   ├── layers\n│   │   ├── name@1 = walls\n"
                              "│   │   ├── name@2 = roofs\n│   │   └── none (empty block)\n"
                              "│   └── pens = 0.5, 1\n├── [view]\n│   └── again = \\x01\u00FC\n"
                              "└── [empty] (empty block)\n",
                      layered = "├── [view]\n│   ├── scale = 100 (a.env)\n│   ├── layers\n"
                                "│   │   ├── name@1 = walls (a.env)\n│   │   ├── name@2 = roofs (a.env)\n"
                                "│   │   ├── none (empty block)\n│   │   └── name@3 = z (low.env)\n"
                                "│   ├── pens = 0.5, 1 (a.env)\n│   ├── unit = mm (low.env)\n"
                                "│   ├── gap@1 (empty block)\n│   └── gap@2 = 6 (low.env)\n"
                                "└── [print]\n    ├── paper = A4 (site.env)\n    └── a@b = odd (site.env)\n";
    // The sections of site.env, each value followed by something.
    const auto site_json = [](const std::string& file) {
        return ",\"sections\":[{\"name\":\"view\",\"elements\":[{\"name\":\"unit\",\"value\":\"mm\"" + file +
               "},{\"name\":\"scale\",\"value\":\"7\"" + file +
               "}]},{\"name\":\"print\",\"elements\":[{\"name\":\"paper\",\"value\":\"A4\"" + file +
               "},{\"name\":\"a@b\",\"value\":\"odd\"" + file + "}]}]}\n";
    };
    const std::string layers_json = "\"file\":\"a.env\",\"section\":\"view\",\"path\":\"layers\",";
    expect("env",
           {
               {"show b.env", 0, "b.env\n" + whole},
               {"show --text b.env", 0, "...[view]\n  scale =100\n  layers ={\n"},
               {"get a.env view name@2 --deep", 0, "roofs\n"},
               {"get a.env view layers", 0,
                "[view] layers\n├── name@1 = walls\n├── name@2 = roofs\n└── none (empty block)\n"},
               {"get a.env print --fallback site.env", 0, "[print]\n├── paper = A4\n└── a@b = odd\n"},
               {"get site.env print a@b --delimiter /", 0, "odd\n"},
               {"list site.env", 0, "view\nprint\n"},
               {"list a.env view layers", 0, "name@1\nname@2\nnone\n"},
               {"list a.env view layers@none", 0, ""},
               {"show site.env --json", 0, "{\"file\":\"site.env\"" + site_json("")},
               {"show a.env --fallback low.env --fallback site.env --which", 0, "a.env\n" + layered},
               {"show empty.env --fallback site.env --which --json", 0,
                "{\"file\":\"empty.env\"" + site_json(",\"file\":\"site.env\"")},
               {"get a.env view layers --fallback site.env --json", 0,
                "{" + layers_json +
                    "\"elements\":[{\"name\":\"name\",\"occurrence\":1,\"value\":\"walls\"},"
                    "{\"name\":\"name\",\"occurrence\":2,\"value\":\"roofs\"},{\"name\":\"none\","
                    "\"elements\":[]}]}\n"},
               {"list a.env view layers --json", 0,
                "{" + layers_json + "\"names\":[\"name@1\",\"name@2\",\"none\"]}\n"},
               {"check a.env site.env", 0, "a.env: 1 section, 4 values\nsite.env: 2 sections, 4 values\n"},
               {"get a.env view none", 1, "[view] none is not in a.env"},
               {"get a.env other", 1, "[other] is not in a.env"},
               {"get a.env view @", 2, "\"@\" has no name in it"},
               {"get a.env view pens --as longs", 2, "\"0.5, 1\" is not a list of whole numbers"},
               {"get a.env view layers --as long", 2, "is a block"},
               {"list a.env view scale", 2, "is a value"},
               {"check brace.env a.env", 2, "brace.env, line 4, column 2: Section waited"},
               {"check cut.env", 2, "cut.env: a byte 1A or FF"},
               {"show missing.env", 3, "\"missing.env\""},
               {"show .", 3, "is a folder"},
               {"show CON", 3, "is a device"},
               {"show a.env --fallback missing.env", 3, "\"missing.env\""},
               {"show a.env --fallback site.env --text", 64, "--fallback excludes --text"},
               {"get a.env", 64, "SECTION is required"},
           });
}

// The place, the cause and what would mend it, for a person and for a program.
TEST_F(EnvCommands, FindWhereAFileIsBroken) {
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
        ProgramRun run = bvutil("env check x.env --json");
        EXPECT_EQ(run.code, 2);
        std::erase(run.out, '\\');
        for (std::string* said : {&run.out, &run.err})
            std::replace(said->begin(), said->end(), '"', '\'');
        EXPECT_TRUE(run.err.starts_with("bvutil: x.env, " + place + ": " + problem)) << run.err;
        EXPECT_TRUE(run.err.ends_with("\n  " + shown + "\n")) << run.err;
        EXPECT_TRUE(run.out.starts_with("[{'file':'x.env','ok':false,'line':" + place.substr(5, 1) +
                                        ",'column':" + place.substr(15) + ",'message':'" + problem))
            << run.out;
    }
}

TEST_F(EnvCommands, StoreAndRemove) {
    write("a.env", tree);
    const std::string whole = "[view]\r\n  scale =-5\r\n  layers ={\r\n    name =walls\r\n    name =\r\n"
                              "    none ={\r\n    }\r\n    name =a ; = }\r\n  }\r\n";
    EXPECT_NE(bvutil("env set a.env view scale -5").err.find("comments are not kept"), std::string::npos);
    expect("env", {{"set a.env view layers@name@2 \"\"", 0, ""},
                   {"set a.env view layers@name@3 \"a ; = }\"", 0, ""},
                   {"remove a.env view pens --backup", 0, ""}});
    EXPECT_EQ(read("a.env"), whole);
    EXPECT_EQ(read("a.env.bak"), whole + "  pens =0.5, 1\r\n");
    expect("env", {{"remove a.env view", 0, ""}, {"set new.env S a@b /1/ --create", 0, ""}});
    EXPECT_EQ(read("a.env"), "");
    EXPECT_EQ(read("new.env"), "[S]\r\n  a ={\r\n    b =/1/\r\n  }\r\n");
    EXPECT_EQ(files(), 3);
}

// A change that cannot be made whole leaves the file as it was, and nothing beside it.
TEST_F(EnvCommands, RefuseWhatWouldBeLost) {
    write("head.env", "A heading\n[S]\n");
    write("cut.env", "[S]\n\x1A[T]\n");
    for (const char* name : {"a.env", "readonly.env", "busy.env"})
        write(name, tree);
    SetFileAttributesA(dir.file("readonly.env").c_str(), FILE_ATTRIBUTE_READONLY);
    // Open in another program that lets others read it, but not replace it.
    const HANDLE busy = CreateFileA(dir.file("busy.env").c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    expect("env set", {
                          {"a.env view t {x", 2, "begin a block"},
                          {"a.env view t x\\", 2, "backslash"},
                          {"a.env view t \" x\"", 2, "blanks"},
                          {"a.env view t \"x\ny\"", 2, "one line"},
                          {"a.env view t x\xFFy", 2, "FF"},
                          {"a.env view t " + std::string(53, 'x') + "\\x", 2,
                           "as it was meant at [view] t@1, whose line"},
                          {"a.env view a=b x", 2, "would not read back"},
                          {"a.env a]b t x", 2, "would not read back"},
                          {"a.env view [a x", 2, "would not read back"},
                          {"a.env view } x", 2, "would not read back"},
                          {"a.env view @ x", 2, "no name in it"},
                          {"a.env view layers@none@x@0 x", 2, "begin with 1"},
                          {"a.env view t 12a --as long", 2, "not a whole number"},
                          {"head.env S t x", 2, "text in front"},
                          {"cut.env S t x", 2, "text behind"},
                          {"missing.env S t x", 3, "cannot read \"missing.env\""},
                          {"gone\\new.env S t x --create", 3, "cannot write \"gone\\new.env\""},
                          {"NUL S t x --create", 3, "is a device"},
                          {"readonly.env view t x", 3, "is read-only"},
                          {"busy.env view t x", 3, "cannot write \"busy.env\""},
                      });
    CloseHandle(busy);
    SetFileAttributesA(dir.file("readonly.env").c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(read("a.env") + read("readonly.env") + read("busy.env"), tree + tree + tree);
    EXPECT_EQ(files(), 5);
}

TEST_F(EnvCommands, Merge) {
    const std::string longer(1000, 'v');
    const std::string source = "[S]\n a@b = new\n k = new\n n = " + longer + "\n[S]\n k = second\n";
    write("src.env", source);
    const struct {
        std::string mode, copied, merged; // the text without what folds and indents lines
    } cases[] = {{"keep", "1 value", "[S]a@b =oldk =oldn =" + longer},
                 {"append", "4 values", "[S]a@b =oldk =olda@b =newk =newn =" + longer + "k =second"},
                 {"overwrite", "4 values", "[S]a@b =newk =secondn =" + longer},
                 {"update", "3 values", "[S]a@b =newk =second"}};
    for (const auto& c : cases) {
        write("dst.env", "[S]\n a@b = old\n k = old\n");
        expect("env", {{"merge dst.env src.env --mode " + c.mode, 0, c.copied + " copied\n"}});
        EXPECT_EQ(std::regex_replace(read("dst.env"), std::regex("\\\\?\r\n( *)"), ""), c.merged);
    }
    EXPECT_EQ(read("src.env"), source);
}

} // namespace
