// Tests a child process in which a read fails after its start, which ends the completion thread.
#include "../AsyncEngines.h"
#include "../AsyncReadSupport.h"

#include <ProcessRunner.h>

#include <gtest/gtest.h>
#include <string>

using namespace ORLTest;

namespace {

class FailingCompletion : public testing::TestWithParam<std::string>
{
protected:
    ProcessResult RunHost(const std::string& inEnd, int inSeconds) const
    {
        mFolder.MakeFile("clip.mov", MakeContents(65536));
        return RunBesideThisProgram("failing_completion_host",
                                    {GetParam(), inEnd, (mFolder.Host() / "clip.mov").u8string()}, std::string(),
                                    inSeconds);
    }

    TempFolder mFolder;
};

std::string NameOf(const testing::TestParamInfo<std::string>& inInfo)
{
    return inInfo.param;
}

INSTANTIATE_TEST_SUITE_P(Engine, FailingCompletion, testing::ValuesIn(AsyncEngineNames()), NameOf);

} // namespace

// The host's wait never ends, so a time limit ends the process. For slow machines, the test retries with longer limits.
TEST_P(FailingCompletion, ThreadThatWaits_WaitsForEver)
{
    const std::string expected = "delivered\ncompletion thread ended\nwaiting\n";
    ProcessResult result;
    for (const int seconds : {2, 15, 60}) {
        result = RunHost("wait", seconds);
        if (!result.mTimedOut || result.mOutput == expected) {
            break;
        }
    }
    EXPECT_TRUE(result.mTimedOut) << "exit code " << result.mExitCode << ", " << result.mErrors;
    EXPECT_EQ(expected, result.mOutput);
}

TEST_P(FailingCompletion, NothingFurtherIsDeliveredAndTheLibraryStops)
{
    const ProcessResult result = RunHost("stop", 60);
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    EXPECT_EQ("delivered\ncompletion thread ended\nstopped, nothing further delivered\n", result.mOutput);
}
