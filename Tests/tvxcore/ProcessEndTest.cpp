// The end of a process finds executors and repeated functions at work, held by statics of a module or by nobody, and
// threads in the allocator. Windows stops them wherever they are before the statics of modules are destroyed.
#include <QuietEnd.h>

#include <gtest/gtest.h>

TEST(ProcessEnd, WithExecutorsHeldByStaticsOfAModule_NeitherHangsNorCrashes)
{
    ORLTest::ExpectAQuietEnd("tvxcore_exit_host", "held");
}

TEST(ProcessEnd, WithExecutorsThatNobodyHolds_NeitherHangsNorCrashes)
{
    ORLTest::ExpectAQuietEnd("tvxcore_exit_host", "leaked");
}

TEST(ProcessEnd, WithThreadsInTheAllocator_LastDestructorsAreServed)
{
    ORLTest::ExpectAQuietEnd("tvxcore_exit_host", "allocating");
}
