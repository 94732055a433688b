// Tests reads with io_uring, and with a seccomp filter that refuses io_uring. The hosts make real system calls.
#include "AsyncReadRoads.h"

using namespace ORLTest;

TEST(AsyncReadRoads, ReadsGoThroughTheRing)
{
    ExpectReadThrough("io_uring", "reading_host");
}

TEST(AsyncReadRoads, RingForbiddenByTheKernel_LeavesTheThreads)
{
    ExpectReadThrough("pread threads, since the kernel forbids io_uring (EPERM)", "run_restricted",
                      {"EPERM", "reading_host"});
}

TEST(AsyncReadRoads, RingUnknownToTheKernel_LeavesTheThreads)
{
    ExpectReadThrough("pread threads, since the kernel has no io_uring (ENOSYS)", "run_restricted",
                      {"ENOSYS", "reading_host"});
}

TEST(AsyncReadRoads, RingForbiddenByTheKernel_PassesTheWholeSuiteOfTheReader)
{
    const ProcessResult result = RunBesideThisProgram(
        "run_restricted", {"EPERM", "test_Files", "--gtest_filter=Engine/AsyncReads.*/Ring"}, std::string(), 110);
    EXPECT_EQ(0, result.mExitCode) << result.mOutput;
    EXPECT_NE(std::string::npos, result.mOutput.find("[  PASSED  ] ")) << result.mOutput;
}
