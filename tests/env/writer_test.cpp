// Writing, byte for byte.
#include "tests/env/model.h"
#include "tests/env/store.h"

namespace {

std::string folded(const std::string& text, std::size_t level) {
    std::string line;
    model::write_line(line, text, level);
    return line;
}

TEST(Writer, FoldsLines) {
    const Env env;
    env_put(env, "S", "n", "0123456789012345678901234567890123456789012345678901234567890123456");
    // 70 characters with the name: before the one with index 57, and 13 are left.
    EXPECT_EQ(written(env), "[S]\n  n =012345678901234567890123456789012345678901234567890123\\\n"
                            "4567890123456\n");
    for (const std::size_t length : {54, 55, 56, 57, 58, 59, 60, 114, 115, 116, 117, 118, 119, 500}) {
        const std::string name(length, 'n'), text(length, 't');
        std::string path, expected = folded("[" + name + "]", 1), behind;
        for (std::size_t level = 3; level < 73; level += 2) { // beyond one fold
            path += "b@";
            expected += folded("b ={", level);
            behind = folded("}", level) + behind;
        }
        expected += folded(name + " =" + text, 73) + behind;
        const Env other, back;
        env_put(other, name.c_str(), (path + name).c_str(), text.c_str());
        EXPECT_EQ(written(other), expected);
        EXPECT_EQ(read_text(back, expected), ENV_OK);
        EXPECT_EQ(written(back), expected);
    }
}

TEST(Writer, HandsCharactersOutSigned) {
    const Env env;
    env_put(env, "\x80", "\xFE", "\xFF");
    std::vector<int> characters;
    env_write([](int c, void* all) { static_cast<std::vector<int>*>(all)->push_back(c); }, &characters, env);
    EXPECT_EQ(characters, (std::vector<int>{'[', -128, ']', '\n', ' ', ' ', -2, ' ', '=', -1, '\n'}));
}

TEST(WriteFile, WritesInTextModeWithoutFF) {
    Messages messages;
    const ScratchFile file;
    const Env env;
    env_put(env, "S\xFF", "a\xFF", "1\xFF\n2\x1A\xFE");
    env_put(env, "S\xFF", "b@c", "1");
    env_write_file(file.path().c_str(), env);
    EXPECT_EQ(file.bytes(), "[S]\r\n  a =1\r\n2\x1A\xFE\r\n  b ={\r\n    c =1\r\n  }\r\n");
    const std::string large(70000, 'x');
    env_put(env, "L", "v", large.c_str());
    env_write_file(file.path().c_str(), env);
    env_delete(env, "S\xFF", nullptr);
    env_write_file(file.path().c_str(), env); // truncates
    const Env back;
    EXPECT_EQ(env_read_file(file.path().c_str(), back), ENV_OK);
    EXPECT_EQ(written(back), written(env));
    EXPECT_EQ(messages.take(), Texts());

    const Env sub(env, "L");
    EXPECT_EQ(written(sub), "");
    env_write_file("no/such/folder/x.txt", env);
    env_write_file(nullptr, env);
    EXPECT_EQ(messages.take(),
              (Texts{"can not write subenv", "cann't open to write:", "cann't open to write:"}));
    env_write_file(file.path().c_str(), sub);
    EXPECT_EQ(messages.take(), Texts{"can not write subenv"});
    EXPECT_EQ(file.bytes(), ""); // it was opened
}

TEST(Writer, LosesWhatTheFormatCannotHold) {
    const std::pair<const char*, const char*> cases[] = {
        {"{", "<-5>"}, {"{}", "<-1>"}, {" x ", "x"}, {"a\\", "a"}, {"x\n y =z", "x"}, {"}", "}"}, {";", ";"}};
    for (const auto& [text, read_back] : cases) {
        const Env env, back;
        env_put(env, "S", "v", text);
        const EnvStatus status = read_text(back, written(env));
        EXPECT_EQ(status == ENV_SYNTAX ? "<-5>" : text_at(back, "S", "v"), read_back) << text;
    }
}

} // namespace
