// Tests ProcessClock on Linux: its start, and its results with a system clock that the test sets.
#include <ORLTimeStamp.h>

#include <FaultySystemCallsLinux.h>
#include <Platform/ProcessClock.h>
#include <TempFolder.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

using ORL::TimeStamp;
using ORLTest::FaultySystemCalls;

namespace {

timespec sTime;

int ChosenTime(clockid_t inClock, timespec* outTime)
{
    EXPECT_EQ(CLOCK_BOOTTIME, inClock) << "suspended time counts, changes of the date do not";
    *outTime = sTime;
    return 0;
}

long long MillisecondsSinceBoot()
{
    timespec now{};
    ::clock_gettime(CLOCK_BOOTTIME, &now);
    return static_cast<long long>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

// Reads field 22 of /proc/self/stat, the start time.
long long StartOfThisProcess()
{
    std::ifstream file("/proc/self/stat");
    std::stringstream text;
    text << file.rdbuf();
    std::istringstream fields(text.str().substr(text.str().rfind(')') + 1));
    std::string field;
    for (int number = 3; number <= 22; ++number) {
        fields >> field;
    }
    return std::stoll(field) * 1000 / ::sysconf(_SC_CLK_TCK);
}

} // namespace

TEST(ProcessClock, CountsFromTheStartOfTheProcess)
{
    const long long start = StartOfThisProcess();
    const long long before = MillisecondsSinceBoot() - start;
    const long long clock = ORL::ProcessClock::Platform::GetMilliseconds_Impl();
    const long long after = MillisecondsSinceBoot() - start;
    EXPECT_GE(clock, before - 1);
    EXPECT_LE(clock, after + 1);
}

// In /proc/self/stat the process name precedes the start time and may contain any character.
TEST(ProcessClock, UnderAHostileName_CountsFromTheStartOfTheProcess)
{
    const ORLTest::TempFolder folder;
    for (const char* name : {"x) R 1 (y", "a b c d e f", ")))", "(", "1 2\n3 4"}) {
        const std::string link = (folder.Host() / name).string();
        std::filesystem::create_symlink(std::filesystem::read_symlink("/proc/self/exe"), link);
        const pid_t child = ::fork();
        if (child == 0) {
            ::close(STDOUT_FILENO);
            ::execl(link.c_str(), link.c_str(), "--gtest_filter=ProcessClock.CountsFromTheStartOfTheProcess", nullptr);
            ::_exit(127);
        }
        int status = 0;
        ASSERT_EQ(child, ::waitpid(child, &status, 0));
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << name;
    }
}

TEST(TimeStamp, OfAClockThatTheTestMoves_CountsItsMilliseconds)
{
    ::clock_gettime(CLOCK_BOOTTIME, &sTime);
    sTime.tv_sec += 1; // a whole second that is not before the process start
    sTime.tv_nsec = 0;
    FaultySystemCalls calls;
    calls.Underlying().mClockGetTime = &ChosenTime;
    const TimeStamp first;
    sTime.tv_sec += 2;
    sTime.tv_nsec = 500'000'000;
    const TimeStamp second;
    EXPECT_EQ(2500, second.GetMilliSeconds() - first.GetMilliSeconds());
    sTime.tv_sec += 3600ll * 24 * 365 * 100;
    EXPECT_EQ(2500 + 3600e3 * 24 * 365 * 100, TimeStamp().GetMilliSeconds() - first.GetMilliSeconds());
}

TEST(TimeStamp, OfAClockThatFails_IsNotBeforeTheProcess)
{
    FaultySystemCalls calls;
    calls.Fail(FaultySystemCalls::kClockGetTime, 1, EINVAL);
    EXPECT_EQ(0, ORL::ProcessClock::Platform::GetMilliseconds_Impl());
}
