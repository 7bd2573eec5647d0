// bvutil calc, run as a program, with and without a registered calculator.
#include "tests/support/calculator_registration.h"
#include "tests/support/run_program.h"

#include <gtest/gtest.h>

namespace {

TEST(CalcCommand, EvaluatesAndExplains) {
    const HiddenCalculatorRegistration hidden;
    const TempDir folder;
    const ProgramRun missing = run_program("bvutil.exe", {"calc", "1"}, folder.path());
    EXPECT_EQ(missing.code, 4);
    EXPECT_NE(missing.err.find("regsvr32 BvCalc.dll"), std::string::npos) << missing.err;

    const HMODULE component = LoadLibraryA("BvCalc.dll");
    reinterpret_cast<HRESULT(WINAPI*)()>(
        reinterpret_cast<void*>(GetProcAddress(component, "DllRegisterServer")))();
    const ProgramRun run = run_program(
        "bvutil.exe", {"calc", "--form", "fraction", "--digits", "8", "a = 2,5", "a * sin(30)", "1/0", "7"},
        folder.path());
    EXPECT_EQ(run.code, 2);
    EXPECT_EQ(run.out, "2 1/2\n1 1/4\n");
    EXPECT_EQ(run.err, "bvutil: 1/0: division by zero at position 2\n");
    const ProgramRun json = run_program(
        "bvutil.exe", {"calc", "--json", "--form", "fixed", "--digits", "3", "1/8", "1/0"}, folder.path());
    EXPECT_EQ(json.code, 2);
    EXPECT_EQ(json.out, "[{\"expression\":\"1/8\",\"value\":0.125,\"text\":\"0.125\"}]\n")
        << "closed after a failure";
    FreeLibrary(component);
}

} // namespace
