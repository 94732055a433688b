// Tests the queries for memory and the time stamp counter on Linux, with failing calls and with incomplete data.
#include <ORLSystemInfo.h>

#include <FakeProcLinux.h>

#include <cerrno>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/sysinfo.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace ORL;
using ORLTest::FakeProc;
using ORLTest::FaultySystemCalls;

namespace {

// Runs inWork in a child process and returns its result.
template <class Work>
int InChild(const Work& inWork)
{
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(inWork());
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

constexpr char kMemory[] = "MemTotal:       24684084 kB\nMemFree:        14158596 kB\nMemAvailable:   22742636 kB\n";

} // namespace

TEST(SystemInfo, AvailableMemory_IsAtLeastTheFreeMemoryOfAnotherCall)
{
    struct sysinfo info
    {
    };
    ASSERT_EQ(0, ::sysinfo(&info));
    const unsigned long long total = static_cast<unsigned long long>(info.totalram) * info.mem_unit;
    const unsigned __int64 available = SystemInfo::GetAvailablePhysicalMemory();
    EXPECT_LE(available, total);
    // Allows a quarter for the kernel's reserve, which is free but not available, and for other processes.
    const unsigned long long free = static_cast<unsigned long long>(info.freeram) * info.mem_unit;
    EXPECT_GT(available + total / 4, free);
}

TEST(SystemInfo, AvailableMemory_IsTheLineOfThatName)
{
    const struct
    {
        int mLine;
        std::string mFile;
        unsigned __int64 mBytes;
    } rows[] = {
        {__LINE__, kMemory, 22742636ull * 1024},
        {__LINE__, "MemTotal: 1 kB\nMemFree: 1 kB\n", 0}, // a kernel before 3.14
        {__LINE__, "", 0},
        {__LINE__, "MemTotal: 1 kB\nMemAvailable: some kB\n", 0},
        {__LINE__, "MemTotal: 1 kB\nMemAvailable:", 0},
        {__LINE__, "MemTotal: 1 kB\nXMemAvailable: 5 kB\n", 0},
        {__LINE__, "MemTotal: 1 kB\nMemAvailable: 99999999999999999999999 kB\n", 0},
    };
    for (const auto& row : rows) {
        FakeProc proc;
        proc.Set("/proc/meminfo", row.mFile);
        EXPECT_EQ(row.mBytes, SystemInfo::GetAvailablePhysicalMemory()) << "row at line " << row.mLine;
    }
}

TEST(SystemInfo, AvailableMemory_SurvivesShortReadsAndInterruptions)
{
    FakeProc proc;
    proc.Set("/proc/meminfo", kMemory);
    proc.Calls().Shorten(FaultySystemCalls::kPRead, 1, 1000);
    proc.Calls().Fail(FaultySystemCalls::kPRead, 2, EINTR, 3);
    EXPECT_EQ(22742636ull * 1024, SystemInfo::GetAvailablePhysicalMemory());
}

TEST(SystemInfo, AvailableMemory_Is0WhereACallFails)
{
    for (const auto call : {FaultySystemCalls::kOpen, FaultySystemCalls::kPRead}) {
        FaultySystemCalls calls;
        calls.Fail(call, 1, EIO);
        EXPECT_EQ(0u, SystemInfo::GetAvailablePhysicalMemory());
        EXPECT_EQ(call == FaultySystemCalls::kPRead ? 1u : 0u, calls.Count(FaultySystemCalls::kClose));
    }
}

TEST(SystemInfo, VirtualMemory_FollowsTheUsersLimit)
{
    EXPECT_EQ(0, InChild([] {
                  constexpr unsigned long long kLimit = 3ull << 40;
                  const struct rlimit limit
                  {
                      kLimit, kLimit
                  };
                  return ::setrlimit(RLIMIT_AS, &limit) == 0 && SystemInfo::GetTotalVirtualMemory() == kLimit ? 0 : 1;
              }));
    FaultySystemCalls calls;
    calls.Fail(FaultySystemCalls::kGetResourceLimit, 1, EINVAL);
    EXPECT_EQ(0u, SystemInfo::GetTotalVirtualMemory());
}

TEST(SystemInfo, RDTSC_IsFalseInAProcessThatBarredItselfFromIt)
{
    EXPECT_EQ(0, InChild([] {
                  return ::prctl(PR_SET_TSC, PR_TSC_SIGSEGV) == 0 && !SystemInfo::ProcessorSupportsRDTSCInstruction()
                             ? 0
                             : 1;
              }));
    FaultySystemCalls calls;
    calls.Fail(FaultySystemCalls::kGetTscMode, 1, EPERM);
    EXPECT_TRUE(SystemInfo::ProcessorSupportsRDTSCInstruction()) << "a filter on system calls bars no instruction";
}
