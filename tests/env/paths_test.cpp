// The delimiter, paths, the two walks, positions and the iteration.
#include "tests/env/store.h"
#include "tests/support/double_byte.h"

#include <cstring>

namespace {

// Chooses a delimiter while it lives.
class DelimiterIs {
  public:
    explicit DelimiterIs(const char* text) : m_former(env_set_delimiter(text)) {}
    ~DelimiterIs() { env_set_delimiter(m_former.c_str()); }

  private:
    std::string m_former;
};

TEST(EnvSetDelimiter, GivesTheFormerOne) {
    EXPECT_STREQ(env_set_delimiter(nullptr), "@");
    EXPECT_STREQ(env_set_delimiter(""), "@");
    EXPECT_STREQ(env_set_delimiter("/"), "@");
    EXPECT_STREQ(env_set_delimiter(std::string(300, 'x').c_str()), "/");
    const char* former = env_set_delimiter("@");
    EXPECT_EQ(former, std::string(254, 'x')); // that much is taken
    EXPECT_EQ(env_set_delimiter(former), former);
    EXPECT_STREQ(former, "@"); // always the same buffer
    env_set_delimiter("@");
    EXPECT_STREQ(env_set_delimiter(nullptr), "@");
}

TEST(ExactWalk, FollowsNamesAndOccurrences) {
    Messages messages;
    const Env env;
    read_text(env,
              "[S]\nf =first\na ={\n b =1\n b =2\n 7 ={\n  8 =seven\n }\n}\na =A2\n12 =dozen\n12 =2.\nd =\n"
              "[e]\n[S]\nf =later\n");
    env_put_external(env, "S", "x", 1);
    const struct {
        const char *path, *text;
    } cases[] = {
        {"f", "first"},
        {"a@b", "1"},
        {"a@@b@", "1"},
        {"@@a@1@b@2@@", "2"},
        {"a@b@3", "<-4>"},
        {"a@2", "A2"},
        {"a@002", "A2"},
        {"a@3", "<-4>"},
        {"a@99999999999999999999", "<-4>"},
        {"a@4294967297", "<-4>"}, // does not wrap
        {"12", "dozen"},          // the first component is always a name
        {"12@2", "2."},
        {"a@1@7@1@8", "seven"}, // behind an occurrence, digits are a name again
        {"a@1@7@8", "<-4>"},    // and behind a name an occurrence
        {"a@0", "first"},       // the first child whatever its name
        {"nothing@00", "first"},
        {"a@1@zzz@0", "1"},
        {"a@1@7@0@8", "<-4>"}, // the first child is data
        {"d@0@x", "<-4>"},
        {"f@f", "<-4>"}, // below data
        {"x@f", "<-4>"},
        {"d", ""},
        {"A", "<-4>"},
        {" f", "<-4>"},
        {"a@b@+2", "<-4>"}, // not digits alone: a name
    };
    for (const auto& [path, text] : cases)
        EXPECT_EQ(text_at(env, "S", path), text) << path;
    EXPECT_EQ(text_at(env, "e", "x@0"), "<-4>"); // no first child
    EXPECT_EQ(messages.take(), Texts());
    for (const char* path : {"", "@", "@@@"})
        EXPECT_EQ(text_at(env, "S", path), "<-6>");
    EXPECT_EQ(messages.take(), Texts(3, "Bad Path was given"));
    EXPECT_EQ(text_at(env, nullptr, "a"), "<-10>");
}

TEST(DeepWalk, SearchesBreadthFirstAndCountsWithinOneList) {
    const Env env;
    read_text(env, "[S]\n"
                   "p ={\n q ={\n  t =deep\n  n =q1\n  n =q2\n  n =q3\n }\n}\n"
                   "r ={\n t =shallow\n n =r1\n}\n"
                   "n ={\n n =inside a match\n u =unreached\n}\n"
                   "m ={\n n =m1\n n =m2\n}\n");
    const struct {
        const char *path, *text;
    } cases[] = {
        {"t", "shallow"}, {"q@t", "deep"},     {"n", "<-1>"}, // a block
        {"n@2", "m2"},    {"n@3", "q3"},       {"n@4", "<-4>"},
        {"p@n@2", "q2"},  {"u", "unreached"},  {"n@n", "inside a match"},
        {"t@0", "<-4>"},  {"p@q@zzz", "<-4>"}, {"q@1@n@3", "q3"},
    };
    for (const auto& [path, text] : cases)
        EXPECT_EQ(text_at(env, "S", path, 0), text) << path;
    const Env sub(env, "S", "p");
    EXPECT_EQ(text_at(sub, "ignored", "n@3", 0), "q3");
    EXPECT_EQ(text_at(sub, nullptr, "n", 1), "<-4>");
    // A match that is not the one wanted is not searched.
    read_text(env, "[S]\nn ={\n v =hidden\n n =h1\n n =h2\n}\n");
    EXPECT_EQ(text_at(env, "S", "n@2", 0), "<-4>");
    EXPECT_EQ(text_at(env, "S", "v", 0), "hidden");
}

TEST(Delimiter, SeparatesWithEveryCharacterAndJoinsWithTheFirst) {
    const Env env;
    read_text(env, "[S]\na ={\n b =1\n b@b =2\n}\n");
    const DelimiterIs delimiter("/.");
    EXPECT_EQ(text_at(env, "S", "a/b"), "1");
    EXPECT_EQ(text_at(env, "S", "./a.1/.b."), "1");
    EXPECT_EQ(text_at(env, "S", "a/b@b"), "2");
    char buf[16];
    EXPECT_EQ(env_create_path(sizeof buf, buf, "a", "b", "c", nullptr), ENV_OK);
    EXPECT_STREQ(buf, "a/b/c");
    EXPECT_EQ(env_count_path(env, "S", "a/b", 1), 1);
    EXPECT_EQ(env_count_path(env, "S", "a.b", 1), 0); // only "/" cuts: "a.b" is compared as a name
    std::string paths;
    env_traverse(
        env, "S", "a", 1,
        [](EnvHandle, const char*, const char* path, void* all) { *static_cast<std::string*>(all) += path; },
        &paths);
    EXPECT_EQ(paths, "a/b/1a/b@b/1");
}

TEST(Delimiter, LeavesDoubleByteCharactersWhole) {
    const DoubleByteCodePage code_page;
    const Env env;
    // 81 40 holds '@' as its trail byte; a lead byte at the end stands alone.
    EXPECT_EQ(env_put(env, "S", "x\x81@y@z", "whole"), ENV_OK);
    EXPECT_EQ(text_at(env, "S", "x\x81@y"), "<-1>");
    EXPECT_EQ(env_count_path(env, "S", "x\x81@y", 1), 1);
    EXPECT_EQ(env_put(env, "S", "\x81@\x81", "lead at the end"), ENV_OK);
    EXPECT_EQ(env_count_elements(env, "S", nullptr, 1), 2);
    EXPECT_EQ(text_at(env, "S", "\x81@\x81@1"), "<-4>");  // 81 40 twice, then '1'
    EXPECT_EQ(env_delete(env, "S", "\x81@\x81"), ENV_OK); // no leaf walk would reach it
    EXPECT_EQ(env_put(env, "S", "n@\x82\x51", "a full-width digit is a name"), ENV_OK);
    EXPECT_EQ(env_check(env, "S", "n", 1), ENV_IS_BLOCK);
    std::string paths;
    env_traverse_leafs(
        env,
        [](EnvHandle, const char*, const char* path, void* all) {
            *static_cast<std::string*>(all) += std::string(path) + ";";
        },
        &paths);
    EXPECT_EQ(paths, "x\x81@y@1@z@1;n@1@\x82\x51@1;");
    {
        const DelimiterIs wide("\x81\x5E"); // one character of two bytes
        EXPECT_EQ(text_at(env, "S", "x\x81@y\x81\x5Ez"), "whole");
        EXPECT_EQ(env_count_path(env, "S", "x\x81@y\x81\x5Ez", 1), 1);
        char buf[8];
        EXPECT_EQ(env_create_path(5, buf, "a", "b", nullptr), ENV_OK);
        EXPECT_STREQ(buf, "a\x81\x5E"
                          "b");
        EXPECT_EQ(env_create_path(4, buf, "a", "b", nullptr), ENV_TOO_SMALL);
        EXPECT_EQ(env_check(env, "S", "x\x5E", 1), ENV_NOT_FOUND); // its trail byte alone separates nothing
    }
    {
        const DelimiterIs cut("@\x81"); // a lead byte alone at the end
        EXPECT_EQ(text_at(env, "S", "x\x81@y@z"), "whole");
    }
}

TEST(EnvCreatePath, JoinsWhatFits) {
    char buf[16] = "old";
    EXPECT_EQ(env_create_path(0, buf, "a", nullptr), ENV_TOO_SMALL);
    EXPECT_EQ(env_create_path(-1, buf, nullptr), ENV_TOO_SMALL);
    EXPECT_EQ(env_create_path(16, buf, nullptr, "x", nullptr), ENV_OK);
    EXPECT_EQ(env_create_path(3, buf, "abc", nullptr), ENV_TOO_SMALL);
    EXPECT_STREQ(buf, "old"); // untouched by all of these
    EXPECT_EQ(env_create_path(16, nullptr, "a", nullptr), ENV_INVALID);
    const struct {
        long size;
        const char *first, *second, *third;
        EnvStatus status;
        const char* path;
    } cases[] = {
        {5, "ab", "cd", nullptr, ENV_TOO_SMALL, ""}, {6, "ab", "cd", nullptr, ENV_OK, "ab@cd"},
        {3, "ab", nullptr, nullptr, ENV_OK, "ab"},   {8, "ab", "cd", "e", ENV_OK, "ab@cd@e"},
        {7, "ab", "cd", "e", ENV_TOO_SMALL, ""},     {4, "ab", "", nullptr, ENV_OK, "ab@"},
        {1, "", nullptr, nullptr, ENV_OK, ""},       {3, "", "a", nullptr, ENV_OK, "@a"},
        {2, "", "a", nullptr, ENV_TOO_SMALL, ""},
    };
    for (const auto& [size, first, second, third, status, path] : cases) {
        std::vector<char> exact(static_cast<std::size_t>(size), '?');
        EXPECT_EQ(env_create_path(size, exact.data(), first, second, third, nullptr), status) << path;
        EXPECT_STREQ(exact.data(), path);
        const char* const components[] = {first, second, third, nullptr};
        exact.assign(exact.size(), '?');
        EXPECT_EQ(env_create_array_path(size, exact.data(), components), status) << path;
        EXPECT_STREQ(exact.data(), path);
    }
    std::strcpy(buf, "ab");
    EXPECT_EQ(env_create_path(sizeof buf, buf, buf, "c", nullptr), ENV_OK); // a path grows in place
    EXPECT_STREQ(buf, "ab@c");
    std::strcpy(buf, "old");
    const char* const none[] = {nullptr};
    const char* const one[] = {"abc", nullptr};
    EXPECT_EQ(env_create_array_path(0, buf, one), ENV_TOO_SMALL);
    EXPECT_STREQ(buf, "old");
    EXPECT_EQ(env_create_array_path(3, buf, one), ENV_TOO_SMALL);
    EXPECT_STREQ(buf, ""); // emptied, unlike by the other
    buf[0] = 'x';
    EXPECT_EQ(env_create_array_path(16, buf, none), ENV_OK);
    EXPECT_STREQ(buf, "");
    EXPECT_EQ(env_create_array_path(16, buf, nullptr), ENV_INVALID);
    EXPECT_EQ(env_create_array_path(16, nullptr, one), ENV_INVALID);
}

TEST(EnvCountPath, TellsWhyNothingIsCounted) {
    Messages messages;
    const Env env;
    read_text(env, "[S]\na =1\n");
    EXPECT_EQ(env_count_path(env, "S", "@", 1), ENV_BAD_PATH);
    EXPECT_EQ(env_count_path(env, nullptr, "a", 1), ENV_INVALID);
    EXPECT_EQ(env_count_path(env, "S", nullptr, 1), ENV_BAD_PATH);
    EXPECT_EQ(messages.take(), (Texts{"Bad Path was given", "bypass Nil section", "Unexpected nil path"}));
    EXPECT_EQ(env_count_path(env, "S", "a@", 1), 0); // an empty name
}

TEST(EnvGetPos, AddressesChildrenAndSections) {
    Messages messages;
    const Env base(9), env(4, base);
    read_text(base, "[S]\nlow =1\nlow =2\nlow =3\nlow =4\nlow =5\n");
    read_text(env, "[S]\nname =value\nblk ={\n i =j\n}\nnone ={\n}\n[T]\n");
    env_put_external(env, "S", "ext", 77);
    const Env block(env, "S", "blk"), data(env, "S", "name");
    const struct {
        EnvHandle env;
        const char *section, *path;
        int exact;
        long pos, name_size, value_size;
        EnvStatus status;
        const char *name, *value;
    } cases[] = {
        {env, "S", nullptr, 1, 1, 5, 6, ENV_IS_DATA, "name", "value"},
        {env, "S", nullptr, 1, 1, 4, 6, ENV_TOO_SMALL, "?", "value"}, // each that fits is copied
        {env, "S", nullptr, 1, 1, 5, 5, ENV_TOO_SMALL, "name", "?"},
        {env, "S", nullptr, 1, 1, 0, 0, ENV_TOO_SMALL, "?", "?"},
        {env, "S", nullptr, 1, 1, -1, -1, ENV_TOO_SMALL, "?", "?"},
        {env, "S", nullptr, 1, 2, 4, 0, ENV_IS_BLOCK, "blk", "?"},
        {env, "S", nullptr, 1, 2, 3, 9, ENV_TOO_SMALL, "?", "?"},
        {env, "S", nullptr, 1, 4, 4, 0, ENV_IS_EXTERNAL, "ext", "?"},
        {env, "S", nullptr, 1, 5, 9, 9, ENV_NOT_FOUND, "?", "?"}, // does not fall back
        {env, "S", nullptr, 1, 0, 9, 9, ENV_NOT_FOUND, "?", "?"},
        {env, "S", nullptr, 1, -7, 9, 9, ENV_NOT_FOUND, "?", "?"},
        {env, "S", "blk", 1, 1, 9, 9, ENV_IS_DATA, "i", "j"},
        {env, "S", "blk", 1, 2, 9, 9, ENV_NOT_FOUND, "?", "?"},
        {env, "S", "none", 1, 1, 9, 9, ENV_NOT_FOUND, "?", "?"},
        {env, "S", "name", 1, 1, 9, 9, ENV_NOT_FOUND, "?", "?"},
        {env, "S", "@", 1, 1, 9, 9, ENV_BAD_PATH, "?", "?"},
        {env, "U", nullptr, 1, 1, 9, 9, ENV_NOT_FOUND, "?", "?"},
        {env, nullptr, nullptr, 1, 2, 9, 9, ENV_IS_BLOCK, "T", "?"},
        {env, nullptr, nullptr, 1, 3, 9, 9, ENV_NOT_FOUND, "?", "?"},
        {block, nullptr, nullptr, 1, 1, 9, 9, ENV_IS_DATA, "i", "j"},
        {data, nullptr, nullptr, 1, 1, 9, 9, ENV_NOT_FOUND, "?", "?"},
    };
    for (const auto& [handle, section, path, exact, pos, name_size, value_size, status, name, value] :
         cases) {
        SCOPED_TRACE((section ? section : "null") + std::string(" ") + std::to_string(pos));
        char name_buf[12] = "?", value_buf[12] = "?";
        long layer = -1, external = -1;
        EXPECT_EQ(env_get_pos(handle, section, path, exact, pos, &layer, name_size, name_buf, value_size,
                              value_buf, &external),
                  status);
        EXPECT_STREQ(name_buf, name);
        EXPECT_STREQ(value_buf, value);
        EXPECT_EQ(external, status == ENV_IS_EXTERNAL ? 77 : -1);
        const bool found = status != ENV_NOT_FOUND && status != ENV_BAD_PATH;
        EXPECT_EQ(layer, found ? 4 : -1);
    }
    EXPECT_EQ(messages.take(), Texts{"Bad Path was given"});
    EXPECT_EQ(env_get_pos(env, "S", nullptr, 1, 1, nullptr, 0, nullptr, 0, nullptr, nullptr), ENV_IS_DATA);
}

std::string next(long name_size = 9, long value_size = 9) {
    char name[12] = "", value[12] = "";
    long external = 0;
    const EnvStatus status = env_get_next(name_size, name, value_size, value, &external);
    return std::to_string(status) + " " + name + " " + value + (external ? std::to_string(external) : "");
}

EnvStatus first(EnvHandle env, const char* section, const char* path, long name_size = 9) {
    char name[12], value[12];
    return env_get_first(env, section, path, 1, nullptr, name_size, name, 9, value, nullptr);
}

TEST(Iteration, GoesThroughABlock) {
    EXPECT_EQ(next(), "-4  "); // none was begun
    const Env base(9);
    const EnvHandle env = env_open(4, base);
    read_text(base, "[S]\na =1\na =2\n[L]\nlow =1\nlow =2\n");
    read_text(env, "[S]\na =1\nb ={\n x =y\n}\nc =3\n[T]\n t =1\n");
    env_put_external(env, "S", "d", 5);
    ASSERT_EQ(first(env, "S", nullptr), ENV_IS_DATA);
    EXPECT_EQ(next(), "-2 b ");
    EXPECT_EQ(first(env, "S", "b@no"), ENV_NOT_FOUND); // no kind: the iteration under way is left alone
    EXPECT_EQ(next(), "-1 c 3");
    EXPECT_EQ(next(), "-3 d 5");
    EXPECT_EQ(next(), "-4  ");
    EXPECT_EQ(next(), "-4  ");
    // Sections, a path, a sub-environment.
    EXPECT_EQ(first(env, nullptr, nullptr), ENV_IS_BLOCK);
    EXPECT_EQ(next(), "-2 T ");
    EXPECT_EQ(first(env, "S", "b"), ENV_IS_DATA);
    EXPECT_EQ(next(), "-4  ");
    // What does not fit ends it.
    EXPECT_EQ(first(env, "S", nullptr), ENV_IS_DATA);
    EXPECT_EQ(next(1), "-7  ");
    EXPECT_EQ(next(), "-4  ");
    EXPECT_EQ(first(env, "S", nullptr, 1), ENV_TOO_SMALL);
    EXPECT_EQ(next(), "-4  ");
    // A block that is only in the fallback has no positions here.
    EXPECT_EQ(first(env, "L", nullptr), ENV_NOT_FOUND);
    // Arguments are kept by copy, up to 255 bytes; a longer path is read and not iterated.
    std::string section = "S";
    EXPECT_EQ(first(env, section.c_str(), nullptr), ENV_IS_DATA);
    section = "T";
    EXPECT_EQ(next(), "-2 b ");
    for (const std::size_t length : {255, 256}) {
        const std::string name(length, 'n');
        env_put(env, name.c_str(), "a", "1");
        env_put(env, name.c_str(), "b", "2");
        EXPECT_EQ(first(env, name.c_str(), nullptr), ENV_IS_DATA);
        EXPECT_EQ(next(), length < 256 ? "-1 b 2" : "-4  ");
    }
    // Closing its environment ends it; so does a fresh start elsewhere.
    EXPECT_EQ(first(env, "S", nullptr), ENV_IS_DATA);
    EXPECT_EQ(env_close(env, 0), ENV_OK);
    EXPECT_EQ(next(), "-4  ");
    EXPECT_EQ(first(base, "S", nullptr), ENV_IS_DATA);
    EXPECT_EQ(env_delete(base, "S", "a@1"), ENV_OK);
    EXPECT_EQ(next(), "-4  "); // the second position is gone
}

} // namespace
