// The end of a process finds executors and repeated functions at work, held by statics of a module or by nobody, and
// threads in the allocator. Windows stops them wherever they are before the statics of modules are destroyed.
#include <ProcessRunner.h>

#include <gtest/gtest.h>

namespace {

void ExpectAQuietEnd(const char* inHow)
{
    for (int round = 0; round < 10; ++round) {
        const ORLTest::ProcessResult result = ORLTest::RunBesideThisProgram("tvxcore_exit_host", {inHow});
        EXPECT_FALSE(result.mTimedOut);
        EXPECT_EQ(17, result.mExitCode);
        EXPECT_EQ("", result.mErrors);
    }
}

} // namespace

TEST(ProcessEnd, WithExecutorsHeldByStaticsOfAModule_NeitherHangsNorCrashes)
{
    ExpectAQuietEnd("held");
}

TEST(ProcessEnd, WithExecutorsThatNobodyHolds_NeitherHangsNorCrashes)
{
    ExpectAQuietEnd("leaked");
}

TEST(ProcessEnd, WithThreadsInTheAllocator_LastDestructorsAreServed)
{
    ExpectAQuietEnd("allocating");
}
