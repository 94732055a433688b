// Tests a process that exits while threads allocate and while executors and repeated functions run, owned by statics or
// leaked. Windows terminates the threads at arbitrary points before the statics of modules are destroyed.
#include <CleanExit.h>

#include <gtest/gtest.h>

TEST(ProcessEnd, WithExecutorsHeldByStaticsOfAModule_NeitherHangsNorCrashes)
{
    ORLTest::ExpectCleanExit("tvxcore_exit_host", "held");
}

TEST(ProcessEnd, WithExecutorsThatNobodyHolds_NeitherHangsNorCrashes)
{
    ORLTest::ExpectCleanExit("tvxcore_exit_host", "leaked");
}

TEST(ProcessEnd, WithThreadsInTheAllocator_LastDestructorsAreServed)
{
    ORLTest::ExpectCleanExit("tvxcore_exit_host", "allocating");
}
