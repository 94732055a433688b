// Tests the library on a machine that lacks the locale named in the user's settings.
#include <ProcessRunner.h>

#include <cstdlib>
#include <gtest/gtest.h>

TEST(UsersLocale, ThatTheMachineLacks_LetsTheLibraryLoadStartAndStop)
{
    ::setenv("LC_ALL", "xx_YY.bogus", 1);
    const ORLTest::ProcessResult result = ORLTest::RunBesideThisProgram("lifecycle_host", {"plain"});
    ::unsetenv("LC_ALL");
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    EXPECT_EQ("started\nmain\nstopped\n", result.mOutput);
}
