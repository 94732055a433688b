// Tests a host that loads and unloads the library many times.
#include <ProcessRunner.h>

#include <gtest/gtest.h>

using ORLTest::ProcessResult;
using ORLTest::RunBesideThisProgram;

TEST(LoadUnload, HundredTimesWithStartUseAndStop_GrowsNothing)
{
    const ProcessResult result = RunBesideThisProgram("load_unload_host", {"rounds"});
    EXPECT_EQ(0, result.mExitCode) << result.mOutput << result.mErrors;
}

TEST(LoadUnload, ThreadThatUsedTheLibraryAndEndsAfterTheUnload_EndsCleanly)
{
    const ProcessResult result = RunBesideThisProgram("load_unload_host", {"thread"});
    EXPECT_EQ(0, result.mExitCode) << result.mOutput << result.mErrors;
}
