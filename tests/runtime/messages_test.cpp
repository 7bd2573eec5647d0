// BvUtil_Message and the log file, with real boxes and files.
#include "bvutil/messages.h"
#include "tests/support/message_boxes.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <regex>
#include <string>

namespace {

class Messages : public testing::Test {
  protected:
    ~Messages() override { BvUtil_SetWriteToLogfile(0, nullptr, 0); }

    TempDir dir;
    const std::string log = dir.file("log.txt");
    MessageBoxWatcher boxes;
};

TEST_F(Messages, GoToABoxTitledWithTheSource) {
    const HWND window = CreateWindowA("EDIT", "", WS_VISIBLE, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
    SetFocus(window);
    BvUtil_Message("one ", nullptr, "three", "Unit", 12);
    DestroyWindow(window);
    BvUtil_SetWriteToLogfile(1, nullptr, 0); // no file: boxes still
    EXPECT_EQ(BvUtil_GetWriteToLogfile(), 1);
    BvUtil_Message(nullptr, nullptr, nullptr, nullptr, 5);
    const auto shown = boxes.take();
    ASSERT_EQ(shown.size(), 2u);
    EXPECT_EQ(shown[0].caption + "|" + shown[0].text, "MESSAGE in \"Unit\" line 12:|one three");
    EXPECT_EQ(shown[1].caption + "|" + shown[1].text, "MESSAGE|");
    EXPECT_FALSE(shown[0].has_icon);
    EXPECT_EQ(shown[0].owner, window);
}

TEST_F(Messages, GoToTheLogWhenItIsOpen) {
    write_file(log, "old\r\n");
    BvUtil_SetWriteToLogfile(1, log.c_str(), 1);
    EXPECT_EQ(BvUtil_GetWriteToLogfile(), 1);
    BvUtil_Message("a", "b", "c", "Unit", -3);
    BvUtil_Message("50% %s", nullptr, nullptr, nullptr, 0);
    // Every line is on disk at once, and switching on again keeps the stream.
    BvUtil_SetWriteToLogfile(1, dir.file("other.txt").c_str(), 0);
    const std::regex lines("old\r\n[A-Z][a-z]+ \\d\\d, \\d{4}, \\d\\d:\\d\\d :: abc in \"Unit\" line -3\r\n"
                           ".* :: 50% %s in \"\" line 0\r\n");
    EXPECT_TRUE(std::regex_match(read_file(log), lines)) << read_file(log);
    EXPECT_FALSE(std::filesystem::exists(dir.file("other.txt")));
    EXPECT_TRUE(boxes.take().empty());

    BvUtil_SetWriteToLogfile(0, nullptr, 0);
    EXPECT_EQ(BvUtil_GetWriteToLogfile(), 0);
    BvUtil_SetWriteToLogfile(1, log.c_str(), 0);
    EXPECT_EQ(read_file(log), "") << "without append the file is overwritten";
}

TEST_F(Messages, TakeAnAlternativeLogName) {
    std::filesystem::create_directory(log); // a folder cannot be opened as a log
    std::filesystem::create_directory(log + "_1");
    write_file(log + "_2", "old");
    BvUtil_SetWriteToLogfile(1, log.c_str(), 1);
    BvUtil_SetWriteToLogfile(0, nullptr, 0);
    const auto shown = boxes.take();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].text, "Die Datei " + log +
                                 " konnte nicht als aktuelle Logdatei ge\xF6"
                                 "ffnet werden. \n\nMeldungen werden in der Datei " +
                                 log + "_2 protokolliert!");
    EXPECT_EQ(read_file(log + "_2"), "") << "alternatives are overwritten";
}

TEST_F(Messages, SwitchLoggingOffAfterTwentyAlternatives) {
    std::filesystem::create_directory(log);
    for (int n = 1; n <= 20; ++n)
        std::filesystem::create_directory(log + "_" + std::to_string(n));
    BvUtil_SetWriteToLogfile(1, log.c_str(), 0);
    MessageBoxA(nullptr, "", nullptr, 0);
    BvUtil_Message("x", nullptr, nullptr, nullptr, 0);
    const auto shown = boxes.take();
    ASSERT_EQ(shown.size(), 3u);
    EXPECT_EQ(shown[0].text, "Es konnte keine Logdatei im Ausf\xFChrungsverzeichnis angelegt oder ge\xF6"
                             "ffnet werden!");
    EXPECT_EQ(shown[0].caption, shown[1].caption) << "the system's own title";
    EXPECT_EQ(BvUtil_GetWriteToLogfile(), 0);

    std::filesystem::remove(log + "_20");
    BvUtil_SetWriteToLogfile(1, log.c_str(), 0);
    EXPECT_EQ(BvUtil_GetWriteToLogfile(), 1);
    EXPECT_TRUE(std::filesystem::is_regular_file(log + "_20"));
}

} // namespace
