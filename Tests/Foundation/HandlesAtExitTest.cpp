// Tests a process that exits while other threads still copy and release handles.
#include <CleanExit.h>

#include <gtest/gtest.h>

TEST(HandlesAtExit, ProcessThatHasStoppedTheLibrary_DoesNotCrash)
{
    ORLTest::ExpectCleanExit("handles_at_exit_host", "stopped");
}

TEST(HandlesAtExit, ProcessThatHasNotStoppedTheLibrary_DoesNotCrash)
{
    ORLTest::ExpectCleanExit("handles_at_exit_host", "started");
}
