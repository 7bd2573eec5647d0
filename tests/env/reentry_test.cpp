// Calls that come in while a message is shown: a message box lets the program run on.
#include "tests/env/store.h"

namespace {

TEST(WhileAMessageIsShown, ASectionForABadPathIsInItsPlaceAndMayGo) {
    Messages messages;
    const Env env;
    std::string shown;
    seams::on_next_message([&] {
        shown = written(env);
        EXPECT_EQ(read_text(env, "[Other]\n"), ENV_OK);
    });
    EXPECT_EQ(env_put(env, "New", "@", "value"), ENV_OK);
    EXPECT_EQ(shown, "[New]\n");
    EXPECT_EQ(written(env), "[Other]\n");
    EXPECT_EQ(messages.take().size(), 1u);
}

TEST(WhileAMessageIsShown, AFileThatIsBeingReadIsLeftAlone) {
    const ScratchFile file;
    file.write("[Whole]\na=1\n[Broken]\nb 2\n[");
    Messages messages;
    const Env env;
    seams::on_next_message([&] {
        EXPECT_EQ(read_text(env, "[Other]\n"), ENV_INVALID);
        EXPECT_NE(env_close(env, 0), ENV_OK);
    });
    EXPECT_EQ(env_read_file(file.path().c_str(), env), ENV_SYNTAX);
    EXPECT_EQ(env_check(env, "Whole", "a", 1), ENV_IS_DATA);
    EXPECT_EQ(messages.take().size(), 1u);
}

} // namespace
