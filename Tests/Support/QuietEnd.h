// A process that ends while its threads are at work.
#pragma once

#include <ProcessRunner.h>

#include <gtest/gtest.h>

namespace ORLTest {

/// Runs a program beside the tests ten times with one argument. Each run must end by itself, with the code 17 that its main
/// returns, and silently.
inline void ExpectAQuietEnd(const char* inProgram, const char* inHow)
{
    for (int round = 0; round < 10; ++round) {
        const ProcessResult result = RunBesideThisProgram(inProgram, {inHow});
        EXPECT_FALSE(result.mTimedOut);
        EXPECT_EQ(17, result.mExitCode);
        EXPECT_EQ("", result.mErrors);
    }
}

} // namespace ORLTest
