// bvutil where, run as a program.
#include "tests/support/run_program.h"

#include <gtest/gtest.h>

namespace {

TEST(WhereCommand, ShowsWhatThereIsAndDoesNotWait) {
    const TempDir folder, mb;
    SetEnvironmentVariableA("MB", mb.path().c_str());
    const ProgramRun without = run_program("bvutil.exe", {"where"}, folder.path());
    write_file(mb.file("mb4.ini"), "");
    const ProgramRun with = run_program("bvutil.exe", {"where"}, folder.path());
    const ProgramRun json = run_program("bvutil.exe", {"where", "--json"}, folder.path());
    SetEnvironmentVariableA("MB", nullptr);

    // Another program's file in C:\ would count too.
    EXPECT_EQ(without.code, without.out.starts_with("configuration file  none\n") ? 1 : 0) << without.err;
    EXPECT_EQ(with.code, 0) << with.err;
    std::string found = mb.file("mb4.ini");
    EXPECT_TRUE(with.out.starts_with("configuration file  " + std::string(_strlwr(found.data())) + "\n"))
        << with.out;
    EXPECT_NE(with.out.find("\\Brenvik Morvane +2011\\Programm\n"), std::string::npos);
    EXPECT_NE(with.out.find("\nsystem version      6.1\n"), std::string::npos);
    EXPECT_NE(json.out.find("\\mb4.ini\",\"program_data\":\""), std::string::npos) << json.out;
    EXPECT_TRUE(json.out.ends_with("\",\"system_version\":\"6.1\"}\n")) << json.out;
}

} // namespace
