// Tests the load on Linux with files that the test writes, and compares the real load with a second measurement.
#include <ORLSystemInfo.h>

#include <CheckRecorder.h>
#include <FakeProcLinux.h>
#include <Platform/SystemInfo.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <thread>
#include <unistd.h>

using namespace ORL;
using namespace ORLTest;
using namespace ORL::SystemInfo::Platform;

namespace {

constexpr char kStat[] = "/proc/stat";

// Returns the load between two contents of /proc/stat, or -1 if a call fails.
long PercentBetween(const std::string& inFirst, const std::string& inSecond)
{
    FakeProc proc;
    proc.Set(kStat, inFirst);
    LoadQuery query = nullptr;
    LoadCounter counter = nullptr;
    if (OpenLoadQuery_Impl(query) != 0 || AddLoadCounter_Impl(query, counter) != 0
        || CollectLoadSample_Impl(query) != 0) {
        return -1;
    }
    proc.Set(kStat, inSecond);
    long percent = -1;
    if (CollectLoadSample_Impl(query) != 0 || CheckLoadSample_Impl(counter) != 0
        || GetLoadPercent_Impl(counter, percent) != 0) {
        return -1;
    }
    return percent;
}

// Returns the contents of /proc/stat for a machine with many processors: the first line is the sum of the others.
std::string Machine(unsigned long inProcessors, unsigned long inBusy, unsigned long inIdle)
{
    std::ostringstream text;
    text << "cpu  " << inBusy * inProcessors << " 0 0 " << inIdle * inProcessors << " 0 0 0 0 0 0\n";
    for (unsigned long i = 0; i < inProcessors; ++i) {
        text << "cpu" << i << ' ' << inBusy << " 0 0 " << inIdle << " 0 0 0 0 0 0\n";
    }
    text << "intr 12345 0 0\n";
    return text.str();
}

struct Ticks
{
    long long mTotal = 0;
    long long mBusy = 0;
};

// Reads the counters directly.
Ticks ReadTicks()
{
    std::ifstream file(kStat);
    std::string name;
    file >> name;
    Ticks ticks;
    for (int field = 0; field < 8; ++field) {
        long long value = 0;
        file >> value;
        ticks.mTotal += value;
        ticks.mBusy += field == 3 || field == 4 ? 0 : value;
    }
    return ticks;
}

} // namespace

TEST(SystemLoad, OfMachinesWith1To1024Processors_IsThatOfAllTogether)
{
    for (const unsigned long count : {1ul, 2ul, 7ul, 64ul, 255ul, 1024ul}) {
        EXPECT_EQ(25, PercentBetween(Machine(count, 1000, 1000), Machine(count, 1025, 1075))) << count;
        EXPECT_EQ(0, PercentBetween(Machine(count, 1000, 1000), Machine(count, 1000, 1100))) << count;
        EXPECT_EQ(100, PercentBetween(Machine(count, 1000, 1000), Machine(count, 1100, 1000))) << count;
    }
}

TEST(SystemLoad, KindsOfTime_CountAsBusyOrIdle)
{
    const struct
    {
        int mLine;
        const char* mFirst;
        const char* mSecond;
        long mPercent;
    } rows[] = {
        {__LINE__, "cpu  0 0 0 0 0 0 0 0 0 0\n", "cpu  10 10 10 40 10 5 5 10 0 0\n", 50},
        {__LINE__, "cpu  0 0 0 0 0 0 0 0 0 0\n", "cpu  50 0 0 50 0 0 0 0 50 0\n", 50}, // user includes guest time
        {__LINE__, "cpu  0 0 0 0\n", "cpu  1 0 0 2\n", 33},                            // an early kernel; rounded down
        {__LINE__, "cpu  0 0 0 0 0 0 0 0 0 0\n", "cpu  199 0 0 1 0 0 0 0 0 0\n", 99},
        {__LINE__, "cpu  0 0 0 100 50 0 0 0 0 0\n", "cpu  100 0 0 100 10 0 0 0 0 0\n", 100}, // iowait decreased
        {__LINE__, "cpu  100 0 0 0 0 0 0 0 0 0\n", "cpu  90 0 0 100 0 0 0 0 0 0\n", 0},      // busy time decreased
        {__LINE__, "cpu  5 0 0 5 0 0 0 0 0 0\n", "cpu  5 0 0 5 0 0 0 0 0 0\n", -1},          // no clock tick passed
        {__LINE__, "cpu  5 0 0 5 0 0 0 0 0 0\n", "cpu  4 0 0 5 0 0 0 0 0 0\n", -1},          // backwards
        {__LINE__, "cpu  9223372036854775000 0 0 1000 0 0 0 0 0 0\n", "cpu  9223372036854775001 0 0 1003 0 0 0 0 0 0\n",
         25},
        {__LINE__, "", "", -1},
        {__LINE__, "intr 1 2 3\n", "intr 1 2 3\n", -1},
        {__LINE__, "cpu  1 2 3\n", "cpu  4 5 6\n", -1},
        {__LINE__, "cpu  one two three four\n", "cpu  1 2 3 4\n", -1},
        {__LINE__, "cpu0 0 0 0 0\n", "cpu0 1 1 1 1\n", -1},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.mPercent, PercentBetween(row.mFirst, row.mSecond)) << "row at line " << row.mLine;
    }
}

TEST(SystemLoad, ASampleWithinOneTick_LosesNoTime)
{
    FakeProc proc;
    LoadQuery query = nullptr;
    LoadCounter counter = nullptr;
    OpenLoadQuery_Impl(query);
    proc.Set(kStat, "cpu  0 0 0 0\n");
    ASSERT_EQ(0u, AddLoadCounter_Impl(query, counter));
    ASSERT_EQ(0u, CollectLoadSample_Impl(query));
    ASSERT_EQ(0u, CollectLoadSample_Impl(query));
    long percent = 0;
    EXPECT_NE(0u, GetLoadPercent_Impl(counter, percent));
    proc.Set(kStat, "cpu  30 0 0 70\n");
    ASSERT_EQ(0u, CollectLoadSample_Impl(query));
    ASSERT_EQ(0u, GetLoadPercent_Impl(counter, percent));
    EXPECT_EQ(30, percent);
}

TEST(SystemLoad, AFailedReading_IsAFailureOfTheSampleAndKeepsTheEarlierOne)
{
    for (const auto call : {FaultySystemCalls::kOpen, FaultySystemCalls::kPRead}) {
        FakeProc proc;
        LoadQuery query = nullptr;
        LoadCounter counter = nullptr;
        OpenLoadQuery_Impl(query);
        proc.Set(kStat, "cpu  0 0 0 0\n");
        AddLoadCounter_Impl(query, counter);
        ASSERT_EQ(0u, CollectLoadSample_Impl(query));
        proc.Calls().Fail(call, 1, EIO);
        EXPECT_EQ(SystemErrors::kErrorIoDevice, CollectLoadSample_Impl(query));
        proc.Set(kStat, "cpu  40 0 0 60\n");
        ASSERT_EQ(0u, CollectLoadSample_Impl(query));
        long percent = 0;
        ASSERT_EQ(0u, GetLoadPercent_Impl(counter, percent));
        EXPECT_EQ(40, percent);
    }
}

// The sample lies between two measurements of the test, which bound the exact result. One thread is busy until the
// machine's clock has counted about a second, so the load is at least the thread's share.
TEST(SystemLoad, BesideASecondReading_IsTheSameAndShowsABusyThread)
{
    std::atomic<bool> isDone{false};
    std::thread busy([&] {
        while (!isDone) {
        }
    });
    const long processors = std::max(::sysconf(_SC_NPROCESSORS_ONLN), 1l);
    const Ticks before1 = ReadTicks();
    SystemInfo::GetSystemLoad();
    const Ticks before2 = ReadTicks();
    Ticks after1 = before2;
    while (after1.mTotal - before2.mTotal < 100 * processors) {
        std::this_thread::yield();
        after1 = ReadTicks();
    }
    const float load = SystemInfo::GetSystemLoad();
    const Ticks after2 = ReadTicks();
    isDone = true;
    busy.join();
    const auto percent = [](long long inBusy, long long inTotal) {
        return 100.0f * static_cast<float>(inBusy) / static_cast<float>(inTotal);
    };
    EXPECT_GE(load, percent(after1.mBusy - before2.mBusy, after2.mTotal - before1.mTotal) - 2);
    EXPECT_LE(load, percent(after2.mBusy - before1.mBusy, after1.mTotal - before2.mTotal) + 2);
    EXPECT_GE(load, 80.0f / static_cast<float>(processors)) << "a thread that never sleeps";
}

// Runs in its own process, because only the first call in a process reports a missing counter.
using SystemLoadDeathTest = testing::Test;

namespace {

bool ReportsAreThoseOfAMissingCounter()
{
    CheckRecorder recorder;
    FakeProc proc;
    proc.Set(kStat, "nothing\n");
    const bool areZero = SystemInfo::GetSystemLoad() == 0.0f && SystemInfo::GetSystemLoad() == 0.0f;
    const auto reports = recorder.Reports();
    bool areRight = areZero && reports.size() == 3; // one for the missing counter, then one for each call's sample
    for (const CheckReport& report : reports) {
        areRight = areRight && report.mKind == CheckReport::kAssert && report.mExpression == "false"
                   && report.mFunction == "ORL::SystemInfo::Platform::GetSystemLoad_Impl";
    }
    return areRight;
}

} // namespace

TEST_F(SystemLoadDeathTest, WithoutACounter_AssertsAndReturns0)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(std::_Exit(ReportsAreThoseOfAMissingCounter() ? 0 : 1), testing::ExitedWithCode(0), "");
}
