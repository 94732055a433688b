// The end of a process finds handles in the hands of other threads, which go on copying and releasing them.
#include <QuietEnd.h>

#include <gtest/gtest.h>

TEST(HandlesAtExit, ProcessThatHasStoppedTheLibrary_DoesNotCrash)
{
    ORLTest::ExpectAQuietEnd("handles_at_exit_host", "stopped");
}

TEST(HandlesAtExit, ProcessThatHasNotStoppedTheLibrary_DoesNotCrash)
{
    ORLTest::ExpectAQuietEnd("handles_at_exit_host", "started");
}
