// Reading texts: through a callback and from a file, which must give the same.
#include "tests/env/store.h"

namespace {

using namespace std::string_literals;

struct Outcome {
    EnvStatus status;
    std::string tree;
    Texts messages;
    bool operator==(const Outcome&) const = default;
};

// <name=text> for data, <name{...}> for a block, <name:...> for a section.
void BVUTIL_CALL show(EnvHandle sub, const char*, const char* path, void* out) {
    const char *name = "", *text = "";
    const EnvStatus kind = env_get_core(sub, nullptr, nullptr, 1, 0, nullptr, &name, &text, nullptr);
    auto& shown = *static_cast<std::string*>(out);
    const bool data = kind == ENV_IS_DATA;
    shown.append("<").append(name).append(data ? "=" : path ? "{" : ":").append(text);
    env_traverse(sub, nullptr, nullptr, 1, show, out);
    shown += data || !path ? ">" : "}>";
}

std::string shown(EnvHandle env) {
    std::string tree;
    env_traverse(env, nullptr, nullptr, 1, show, &tree);
    return tree;
}

template <class Read>
Outcome outcome_of(const Read& read) {
    Messages messages;
    const Env env;
    const EnvStatus status = read(env);
    return {status, shown(env), messages.take()};
}
Outcome from_callback(const std::string& text) {
    return outcome_of([&](EnvHandle env) { return read_text(env, text); });
}
Outcome from_file(const std::string& bytes) {
    const ScratchFile file;
    file.write(bytes);
    return outcome_of([&](EnvHandle env) { return env_read_file(file.path().c_str(), env); });
}

std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
    out << outcome.status << " " << outcome.tree;
    for (const std::string& message : outcome.messages)
        out << " | " << message;
    return out;
}

constexpr const char* section_waited = "Section waited";
constexpr const char* equal_waited = "Equal sign waited";
constexpr const char* brace_waited = "Cbracesymbol waited";

TEST(Reader, BuildsTheTreeOrTellsWhatItWaitedFor) {
    const struct {
        std::string text;
        const char* tree;
        const char* message = nullptr;
    } cases[] = {
        {"", ""},
        {"no section = here\n}", ""},
        {"junk = {\n}[S]\na=1", "<S:<a=1>>"},
        {"; drawing defaults\n[view]\n  scale = 100\n  layers ={\n    name =walls\n    name =roofs\n  "
         "}\n[print]\n"
         "  paper = A4\n",
         "<view:<scale=100><layers{<name=walls><name=roofs>}>><print:<paper=A4>>"},
        {"[ \t two words \t]\n", "<two words:>"},
        {"[\n]", "<\n:>"},
        {"[]", "<:>"},
        {"[S]a=1\nb =2\n[T]", "<S:<a=1><b=2>><T:>"}, // behind "]" the elements begin
        {"[S]\n\n \t\n\t a \t = \t v w \t\n\n", "<S:<a=v w>>"},
        {"[S]\nx\n= 1\n", "<S:<x\n=1>>"}, // a name spans lines
        {"[S]\nk = \t \nl=x", "<S:<k=><l=x>>"},
        {"[S]\na=}\nb=[T]\nc=x{\n", "<S:<a=}><b=[T]><c=x{>>"},
        {"[S]\nb = { x\n=1\n}\n", "<S:<b{<x\n=1>}>>"},
        {"[S]\nb={c={d={e=1\n}}}f=2\n", "<S:<b{<c{<d{<e=1>}>}>}><f=2>>"},
        {"[S]\nb={a=1}\n}\n", "<S:<b{<a=1}>}>>"}, // a data text takes the brace in
        {"[S]\n{=1\n]=2\n", "<S:<{=1><]=2>>"},
        {"[S]\na=1\n[S]\na=2\n", "<S:<a=1>><S:<a=1>>"}, // two; by name the first is shown
        // comments
        {"[S]\n;x = 1\n ;y = 2\nz = ;3\n", "<S:<;y=2><z=;3>>"},
        {";[S]\n[T]\n;", "<T:>"},
        {"[S]\na=1\n;comment \\\nb=2\n", "<S:<a=1><b=2>>"}, // it is gone before lines are joined
        {"[S]\nb={;no comment=1\n;}\n}\n", "<S:<b{<;no comment=1>}>>"},
        // continuation
        {"[S]\nt = ab\\\ncd\n", "<S:<t=abcd>>"},
        {"[S]\nt = ab\\   \n  cd\n", "<S:<t=ab  cd>>"},
        {"[S]\nt = ab\\\t\nu=1\n", "<S:<t=ab\\><u=1>>"}, // not behind a tab, which is dropped at the end
        {"[S]\nt = a\\b \\ c\\\\\nu=1\n", "<S:<t=a\\b \\ c\\\\><u=1>>"}, // the second backslash is ordinary
        {"[S]\nt = a\\  \\\nu=1\n", "<S:<t=a\\  \\><u=1>>"},
        {"[S]\nt = a\\\n;gone\nu=1\n", "<S:<t=a><u=1>>"}, // a comment may follow
        {"[\\\nS]\nn\\\nm=\\\n1", "<S:<nm=1>>"},
        {"[S]\nt=a\\", "<S:<t=a\\>>"},
        {"[S]\nt=\\\n  \\\n {\n}\n", "<S:<t{}>>"},
        // bytes of every kind
        {"[S]\na=\x80\xFE\xA0\n", "<S:<a=\x80\xFE\xA0>>"},
        {"[S]\na=1\n\xFF[T]\n", "<S:<a=1>>"}, // ends the text
        {"[S]\na=x\\ \xFF\n", "<S:<a=x\\>>"},
        {"[S]\na=1\0002\nb\0=3\n\0;c=4\n"s, "<S:<a=12><b=3>>"}, // NUL is dropped
        {"[S]\na=x\\\0 \0\ny\n"s, "<S:<a=xy>>"},
        // errors: what was complete stays
        {"[S]\na=1\n[T]\nb=2\nc", "<S:<a=1>>", equal_waited},
        {"[S]\na", "", equal_waited},
        {"[S]\na = {", "", brace_waited},
        {"[S]\na = {\n=1\n}\n", "", brace_waited},
        {"[R]\n[S]\na=1\n}\n[T]\n", "<R:><S:<a=1>>", section_waited},
        {"[S]\n=1\n", "<S:>", section_waited},
        {"[S]\nb={\n}}\n", "<S:<b{}>>", section_waited},
    };
    for (const auto& [text, tree, message] : cases) {
        const Outcome expected{message ? ENV_SYNTAX : ENV_OK, tree, message ? Texts{message} : Texts{}};
        EXPECT_EQ(from_callback(text), expected) << text;
        EXPECT_EQ(from_file(text), expected) << text;
        std::string crlf;
        for (const char c : text)
            crlf += c == '\n' ? "\r\n"s : std::string(1, c);
        EXPECT_EQ(from_file(crlf), expected) << "CR LF: " << text;
    }
}

TEST(Reader, ReadsFilesInTextMode) {
    // Other carriage returns are text; 0x1A ends a file, and is text in a callback's characters.
    EXPECT_EQ(from_file("[S]\r\na=x\ry\r\r\n").tree, "<S:<a=x\ry\r>>");
    EXPECT_EQ(from_file("[S]\r\na=x\\  \r\ny\r\n").tree, "<S:<a=xy>>");
    EXPECT_EQ(from_file("[S]\na=x\\\ry\n").tree, "<S:<a=x\\\ry>>");
    EXPECT_EQ(from_file("[S]\na=1\x1A\nb=2\n").tree, "<S:<a=1>>");
    EXPECT_EQ(from_callback("[S]\r\na=1\x1A\n").tree, "<S:<\r\na=1\x1A>>");
}

TEST(Reader, HasNoLimitOfLength) {
    for (const std::size_t length : {98, 99, 100, 254, 30000, 200000}) {
        const std::string name(length, 'n'), blanks(length, ' ');
        const std::string text = "[" + name + "]\n" + name + " =x\\" + blanks + "y\n";
        const Outcome expected{ENV_OK, "<" + name + ":<" + name + "=x\\" + blanks + "y>>", {}};
        EXPECT_TRUE(from_callback(text) == expected) << length;
        EXPECT_TRUE(from_file(text) == expected) << length;
        EXPECT_EQ(from_file("[S]\na=x\\" + blanks + "\ny" + blanks + "\n").tree, "<S:<a=xy>>");
    }
}

TEST(Reader, ReplacesAllSections) {
    Messages messages;
    const Env env;
    env_put(env, "Old", "a", "1");
    EXPECT_EQ(read_text(env, "[New]\nb=2\nc"), ENV_SYNTAX);
    EXPECT_EQ(env_count_elements(env, nullptr, nullptr, 1), 0);
    EXPECT_EQ(read_text(env, ""), ENV_OK);
    env_put(env, "Old", "a", "1");
    const Env sub(env, "Old");
    messages.take();
    EXPECT_EQ(read_text(sub, "[New]\n"), ENV_INVALID);
    EXPECT_EQ(env_read(nullptr, nullptr, env), ENV_INVALID);
    EXPECT_EQ(env_read_file("no/such\\file.txt", env), ENV_INVALID);
    EXPECT_EQ(env_read_file(nullptr, env), ENV_INVALID);
    EXPECT_EQ(messages.take(), (Texts{"can not read subenv", "cann't open to read: no/such\\file.txt",
                                      "cann't open to read: "}));
    const ScratchFile file;
    file.write("[New]\n");
    EXPECT_EQ(env_read_file(file.path().c_str(), sub), ENV_INVALID);
    EXPECT_EQ(messages.take(), Texts{"can not read subenv"});
    EXPECT_EQ(text_at(env, "Old", "a"), "1"); // unchanged by all of these
}

TEST(Reader, StandsACallbackThatUsesTheStore) {
    struct Source {
        EnvHandle env;
        CharSource text{"[S]\na=1\n[T]\nb={\nc=2\n}\n"};
        static int BVUTIL_CALL next(void* self) {
            auto& source = *static_cast<Source*>(self);
            EXPECT_EQ(env_close(source.env, 0), ENV_BUSY);
            env_delete(source.env, "S", nullptr);
            EXPECT_EQ(read_text(source.env, "[inner]\n"), ENV_INVALID); // one read at a time
            return CharSource::next(&source.text);
        }
    };
    const Env env;
    Source source{env};
    EXPECT_EQ(env_read(Source::next, &source, env), ENV_OK);
    EXPECT_EQ(shown(env), "<T:<b{<c=2>}>>");
}

} // namespace
