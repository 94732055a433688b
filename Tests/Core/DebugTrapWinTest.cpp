// Tests that a failed check breaks into the debugger only if the report's answer requests it and a debugger is
// attached. The test debugs a child process.
#include <DebuggedProcessWin.h>
#include <ProcessRunner.h>

#include <gtest/gtest.h>

#include <cstdint>

using ORLTest::DebuggedException;

namespace {

constexpr std::uintptr_t kLargestProgram = 64 << 20; // above the child's image size, below its distance to any DLL

} // namespace

TEST(CheckUnderDebugger, TrapsOnlyWhenAskedAndAttached_AndGoesOnBehindTheCheck)
{
    struct Row
    {
        int mLine;
        const wchar_t* mAnswer;
        int mTraps;
    };
    const Row rows[] = {
        {__LINE__, L"break", 3},
        {__LINE__, L"go on", 0},
    };
    for (const Row& row : rows) {
        // Counts only breakpoints in the program's image, because the loader also raises a breakpoint.
        int traps = 0;
        const DWORD exitCode =
            ORLTest::RunDebugged(L"debugged_child.exe", row.mAnswer, [&traps](const DebuggedException& inException) {
                const auto where = reinterpret_cast<std::uintptr_t>(inException.mRecord.ExceptionAddress);
                const bool isBreakpoint = inException.mRecord.ExceptionCode == EXCEPTION_BREAKPOINT;
                traps += isBreakpoint && where - inException.mProgram < kLargestProgram ? 1 : 0;
                return isBreakpoint;
            });
        EXPECT_EQ(row.mTraps, traps) << "row at line " << row.mLine;
        EXPECT_EQ(7u, exitCode) << "row at line " << row.mLine;
    }
}

TEST(CheckUnderDebugger, WithNoDebugger_GoesOnBehindTheCheckWhateverTheAnswer)
{
    for (const char* answer : {"break", "go on"}) {
        EXPECT_EQ(7, ORLTest::RunBesideThisProgram("debugged_child", {answer}).mExitCode) << answer;
    }
}
