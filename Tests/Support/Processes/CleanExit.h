// Checks a process that exits while its threads are working.
#pragma once

#include <ProcessRunner.h>

#include <gtest/gtest.h>

namespace ORLTest {

/// Runs a program from the tests' folder ten times with an argument. Each run must terminate on its own, print
/// nothing, and exit with 17, the code that its main returns.
inline void ExpectCleanExit(const char* inProgram, const char* inHow)
{
    for (int round = 0; round < 10; ++round) {
        const ProcessResult result = RunBesideThisProgram(inProgram, {inHow});
        EXPECT_FALSE(result.mTimedOut);
        EXPECT_EQ(17, result.mExitCode);
        EXPECT_EQ("", result.mErrors);
    }
}

} // namespace ORLTest
