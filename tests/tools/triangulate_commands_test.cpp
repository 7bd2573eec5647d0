// bvutil triangulate, run as a program.
#include "tests/support/run_program.h"

#include <gtest/gtest.h>

namespace {

TEST(TriangulateCommand, ReadsPointsAndWritesTrianglesAndAPicture) {
    const TempDir folder;
    write_file(folder.file("points.csv"), "x,y,height\r\n0,0,9\r\n# a comment\r\n\r\n2; 4\n4\t0.5 x\n-0.0,0");
    const ProgramRun printed = run_program("bvutil.exe", {"triangulate", "points.csv"}, folder.path());
    EXPECT_EQ(printed.code, 0) << printed.err;
    EXPECT_EQ(printed.out, "x1,y1,x2,y2,x3,y3\r\n0,0,2,4,4,0.5\r\n");
    const ProgramRun written = run_program(
        "bvutil.exe", {"triangulate", "points.csv", "--csv", "t.csv", "--svg", "t.svg"}, folder.path());
    EXPECT_EQ(written.code, 0) << written.err;
    EXPECT_EQ(written.out, "4 points, 1 triangles\n");
    EXPECT_EQ(read_file(folder.file("t.csv")), printed.out);
    EXPECT_NE(read_file(folder.file("t.svg")).find("<path d=\"M10 1210L610 10L1210 1060Z\"/>"),
              std::string::npos);
}

TEST(TriangulateCommand, PrintsJson) {
    const TempDir folder;
    write_file(folder.file("p.csv"), "0,0\n1,0\n0,0.1\n");
    const std::string counts = "{\"point_count\":3,\"triangle_count\":1";
    EXPECT_EQ(run_program("bvutil.exe", {"triangulate", "p.csv", "--json"}, folder.path()).out,
              counts + ",\"triangles\":[[0,0,0,0.1,1,0]]}\n");
    EXPECT_EQ(
        run_program("bvutil.exe", {"triangulate", "p.csv", "--json", "--csv", "t.csv"}, folder.path()).out,
        counts + "}\n");
}

TEST(TriangulateCommand, RefusesWhatAreNotPoints) {
    const TempDir folder;
    for (const char* line : {"1", "1,a", "1e99,0", "nan,0", "1 2x", ",1,2"}) {
        write_file(folder.file("points.csv"), std::string("0,0\n") + line + "\n");
        const ProgramRun run =
            run_program("bvutil.exe", {"triangulate", "points.csv", "--csv", "t.csv"}, folder.path());
        EXPECT_EQ(run.code, 2) << line;
        EXPECT_NE(run.err.find("points.csv, line 2"), std::string::npos) << run.err;
        EXPECT_FALSE(std::filesystem::exists(folder.file("t.csv")));
    }
    EXPECT_EQ(run_program("bvutil.exe", {"triangulate", "none.csv"}, folder.path()).code, 3);
}

} // namespace
