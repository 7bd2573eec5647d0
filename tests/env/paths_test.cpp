// The delimiter, paths, and the iteration's limits. What walks lead to is held against the model.
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

std::string paths_of_leafs(EnvHandle env) {
    std::string paths;
    const auto add = [](EnvHandle, const char*, const char* path, void* all) {
        static_cast<std::string*>(all)->append(path).append(";");
    };
    EXPECT_EQ(env_traverse_leafs(env, add, &paths), ENV_OK);
    return paths;
}

TEST(EnvSetDelimiter, GivesTheFormerOne) {
    EXPECT_STREQ(env_set_delimiter(nullptr), "@");
    EXPECT_STREQ(env_set_delimiter(""), "@");
    EXPECT_STREQ(env_set_delimiter(std::string(300, 'x').c_str()), "@");
    const char* former = env_set_delimiter("@");
    EXPECT_EQ(former, std::string(254, 'x')); // that much is taken
    EXPECT_EQ(env_set_delimiter(former), former);
    EXPECT_STREQ(former, "@"); // always the same buffer
    env_set_delimiter("@");
    EXPECT_STREQ(env_set_delimiter(nullptr), "@");
}

TEST(Paths, HoldNamesAndOccurrences) {
    Messages messages;
    const Env env;
    read_text(env, "[S]\na ={\n b =1\n b =2\n 7 ={\n  8 =seven\n }\n}\na =A2\n12 =dozen\n");
    const struct {
        const char *path, *text;
    } cases[] = {
        {"@@a@1@b@2@@", "2"},
        {"a@002", "A2"},
        {"a@99999999999999999999", "<-4>"},
        {"a@4294967297", "<-4>"}, // does not wrap
        {"12", "dozen"},          // the first component is always a name
        {"a@1@7@1@8", "seven"},   // behind an occurrence, digits are a name again
        {"a@1@7@8", "<-4>"},      // and behind a name an occurrence
        {"nothing@00@b", "1"},    // occurrence 0: the first child whatever its name
        {"A", "<-4>"},            // case counts
        {"a@b@+2", "<-4>"},       // not digits alone: a name
        {"a@2@b", "<-4>"},        // below data
        {"", "<-6>"},
        {"@@@", "<-6>"},
    };
    for (const auto& [path, text] : cases)
        EXPECT_EQ(text_at(env, "S", path), text) << path;
    EXPECT_EQ(env_count_path(env, "S", "@", 1), ENV_BAD_PATH);
    EXPECT_EQ(messages.take(), Texts(3, "Bad Path was given"));
    EXPECT_EQ(text_at(env, nullptr, "a"), "<-10>");
    EXPECT_EQ(env_count_path(env, nullptr, "a", 1), ENV_INVALID);
    EXPECT_EQ(env_count_path(env, "S", nullptr, 1), ENV_BAD_PATH);
    EXPECT_EQ(env_count_path(env, "S", "a@2", 1), 0); // the number is compared as a name
    EXPECT_EQ(messages.take(), (Texts{"bypass Nil section", "Unexpected nil path"}));
}

TEST(Delimiter, SeparatesWithEveryCharacterAndJoinsWithTheFirst) {
    const Env env;
    read_text(env, "[S]\na ={\n b =1\n b@b =2\n}\n");
    const DelimiterIs delimiter("/.");
    EXPECT_EQ(text_at(env, "S", "./a.1/.b."), "1");
    EXPECT_EQ(text_at(env, "S", "a/b@b"), "2");
    EXPECT_EQ(env_count_path(env, "S", "a/b", 1), 1);
    EXPECT_EQ(env_count_path(env, "S", "a.b", 1), 0); // only "/" cuts: "a.b" is compared as a name
    EXPECT_EQ(paths_of_leafs(env), "a/1/b/1;a/1/b@b/1;");
    const Env copy;
    for (const int mode : {1, 1})
        EXPECT_EQ(env_sink(copy, env, mode), ENV_OK);
    EXPECT_EQ(written(copy), "[S]\n  a ={\n    b =1\n    b@b =2\n    b =1\n    b@b =2\n  }\n");
}

TEST(Delimiter, LeavesDoubleByteCharactersWhole) {
    const DoubleByteCodePage code_page;
    const Env env, copy;
    // 81 40 holds '@' as its trail byte; a lead byte at the end stands alone.
    EXPECT_EQ(env_put(env, "S", "\x81@\x81", "lead at the end"), ENV_OK);
    EXPECT_EQ(text_at(env, "S", "\x81@\x81@1"), "<-4>");  // 81 40 twice, then '1'
    EXPECT_EQ(env_delete(env, "S", "\x81@\x81"), ENV_OK); // no leaf walk would reach it
    EXPECT_EQ(env_put(env, "S", "x\x81@y@z", "whole"), ENV_OK);
    EXPECT_EQ(env_count_path(env, "S", "x\x81@y", 1), 1);
    EXPECT_EQ(env_put(env, "S", "n@\x82\x51", "a full-width digit is a name"), ENV_OK);
    EXPECT_EQ(paths_of_leafs(env), "x\x81@y@1@z@1;n@1@\x82\x51@1;");
    EXPECT_EQ(env_sink(copy, env, 1), ENV_OK);
    EXPECT_EQ(written(copy), written(env));
    const DelimiterIs wide("\x81\x5E"); // one character of two bytes
    EXPECT_EQ(text_at(env, "S", "x\x81@y\x81\x5Ez"), "whole");
    EXPECT_EQ(env_count_path(env, "S", "x\x81@y\x81\x5Ez", 1), 1);
    char buf[5];
    EXPECT_EQ(env_create_path(5, buf, "a", "b", nullptr), ENV_OK);
    EXPECT_EQ(env_create_path(4, buf, "a", "b", nullptr), ENV_TOO_SMALL);
    const DelimiterIs cut("@\x81"); // a lead byte alone at the end
    EXPECT_EQ(text_at(env, "S", "x\x81@y@z"), "whole");
}

TEST(EnvCreatePath, JoinsWhatFits) {
    const struct {
        long size;
        const char *first, *second, *third;
        EnvStatus status;
        const char* path;                 // "old": untouched
        const char* array_path = nullptr; // where it differs
    } cases[] = {
        {0, "a", nullptr, nullptr, ENV_TOO_SMALL, "old"},
        {-1, nullptr, nullptr, nullptr, ENV_TOO_SMALL, "old"},
        {8, nullptr, "x", nullptr, ENV_OK, "old", ""},
        {3, "abc", nullptr, nullptr, ENV_TOO_SMALL, "old", ""}, // emptied, unlike by the other
        {3, "ab", nullptr, nullptr, ENV_OK, "ab"},
        {5, "ab", "cd", nullptr, ENV_TOO_SMALL, ""},
        {6, "ab", "cd", nullptr, ENV_OK, "ab@cd"},
        {7, "ab", "cd", "e", ENV_TOO_SMALL, ""},
        {8, "ab", "cd", "e", ENV_OK, "ab@cd@e"},
        {4, "ab", "", nullptr, ENV_OK, "ab@"},
        {3, "", "a", nullptr, ENV_OK, "@a"},
        {1, "", nullptr, nullptr, ENV_OK, ""},
    };
    for (const auto& [size, first, second, third, status, path, array_path] : cases) {
        const char* const components[] = {first, second, third, nullptr};
        char buf[9] = "old", other[9] = "old";
        EXPECT_EQ(env_create_path(size, buf, first, second, third, nullptr), status) << path;
        EXPECT_EQ(env_create_array_path(size, other, components), status) << path;
        EXPECT_STREQ(buf, path);
        EXPECT_STREQ(other, array_path ? array_path : path);
    }
    char buf[8] = "ab";
    const char* const one[] = {"a", nullptr};
    EXPECT_EQ(env_create_path(sizeof buf, buf, buf, "c", nullptr), ENV_OK); // a path grows in place
    EXPECT_STREQ(buf, "ab@c");
    EXPECT_EQ(env_create_path(8, nullptr, "a", nullptr), ENV_INVALID);
    EXPECT_EQ(env_create_array_path(8, nullptr, one), ENV_INVALID);
    EXPECT_EQ(env_create_array_path(8, buf, nullptr), ENV_INVALID);
}

TEST(Positions, AreRightAfterChangesFarFromThem) {
    const Env env;
    for (long i = 1; i <= 100; ++i)
        env_put(env, "S", numbered("n", i).c_str(), "value");
    for (long i = 1; i <= 20; ++i) {
        for (const long gone : {i, 90 - i})
            EXPECT_EQ(env_delete(env, "S", numbered("n", gone).c_str()), ENV_OK);
        const char* name = "";
        env_get_core(env, "S", nullptr, 1, 30, nullptr, &name, nullptr, nullptr);
        EXPECT_EQ(name, numbered("n", 30 + i));
    }
}

TEST(Iteration, KeepsArgumentsOf255Bytes) {
    const Env env;
    char name[9], value[9];
    for (const std::size_t length : {255, 256}) { // a longer one is read and not iterated
        const std::string section(length, 'n');
        for (const char* path : {"a", "b"})
            env_put(env, section.c_str(), path, path);
        EXPECT_EQ(env_get_first(env, section.c_str(), nullptr, 1, nullptr, 9, name, 9, value, nullptr),
                  ENV_IS_DATA);
        EXPECT_EQ(env_get_next(9, name, 9, value, nullptr), length < 256 ? ENV_IS_DATA : ENV_NOT_FOUND);
        EXPECT_STREQ(value, length < 256 ? "b" : "a");
    }
}

} // namespace
