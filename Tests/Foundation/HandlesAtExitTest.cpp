// The end of a process finds handles in the hands of other threads, which go on copying and releasing them.
#include <ProcessRunner.h>

#include <gtest/gtest.h>

namespace {

void ExpectAQuietEnd(const char* inHow)
{
    for (int round = 0; round < 10; ++round) {
        const ORLTest::ProcessResult result = ORLTest::RunBesideThisProgram("handles_at_exit_host", {inHow});
        EXPECT_FALSE(result.mTimedOut);
        EXPECT_EQ(17, result.mExitCode);
        EXPECT_EQ("", result.mErrors);
    }
}

} // namespace

TEST(HandlesAtExit, ProcessThatHasStoppedTheLibrary_DoesNotCrash)
{
    ExpectAQuietEnd("stopped");
}

TEST(HandlesAtExit, ProcessThatHasNotStoppedTheLibrary_DoesNotCrash)
{
    ExpectAQuietEnd("started");
}
