// Tests the SystemInfo queries for the machine's hardware and load.
#include <ORLSystemInfo.h>

#include <CheckRecorder.h>
#include <tvxcore/SystemInfo.h>

#include <atomic>
#include <cstdlib>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

using namespace ORL;

TEST(SystemInfo, Features_AreThoseOfEverySupportedMachine)
{
    EXPECT_TRUE(SystemInfo::ProcessorSupportsMMX());
    EXPECT_TRUE(SystemInfo::ProcessorSupportsSSE());
    EXPECT_TRUE(SystemInfo::ProcessorSupportsSSE2());
    EXPECT_TRUE(SystemInfo::ProcessorSupportsSSE3());
    EXPECT_TRUE(SystemInfo::ProcessorSupportsMONITOR());
    EXPECT_TRUE(SystemInfo::ProcessorSupportsMNI());
    EXPECT_FALSE(SystemInfo::ProcessorSupportsSSE4_1());
    EXPECT_FALSE(SystemInfo::ProcessorSupportsSSE4_2());
}

TEST(SystemInfo, Altivec_IsNeverThere)
{
    EXPECT_FALSE(SystemInfo::ProcessorSupportsAltivec());
}

TEST(SystemInfo, ProcessorsAndPhysicalMemory_AreThoseOfTheCoreLibrary)
{
    EXPECT_EQ(tvxcore::utility::CPUCount(), SystemInfo::GetCPUCount());
    EXPECT_EQ(tvxcore::utility::TotalPhysicalMemory(), SystemInfo::GetTotalPhysicalMemory());
}

TEST(SystemInfo, Memory_IsInBytesAndInOrder)
{
    EXPECT_GT(SystemInfo::GetAvailablePhysicalMemory(), 1ull << 20);
    EXPECT_LT(SystemInfo::GetAvailablePhysicalMemory(), SystemInfo::GetTotalPhysicalMemory());
    EXPECT_GT(SystemInfo::GetTotalVirtualMemory(), SystemInfo::GetAvailablePhysicalMemory());
    EXPECT_LE(SystemInfo::GetTotalVirtualMemory(), 1ull << 57);
}

TEST(SystemInfo, RDTSC_IsThereOnThisProcessor)
{
    EXPECT_TRUE(SystemInfo::ProcessorSupportsRDTSCInstruction());
}

// Runs in its own process, because the test needs the first call of the process.
using SystemLoadDeathTest = testing::Test;

TEST_F(SystemLoadDeathTest, FirstCallInAProcess_Returns0)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            const ORLTest::CheckRecorder recorder;
            const bool isZero = SystemInfo::GetSystemLoad() == 0.0f && recorder.Reports().empty();
            std::_Exit(isZero ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(SystemLoadDeathTest, FirstCallsOnEightThreadsAtOnce_AreHarmless)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            std::atomic<int> waiting{8};
            std::atomic<int> wrong{0};
            std::vector<std::thread> threads;
            for (int i = 0; i < 8; ++i) {
                threads.emplace_back([&] {
                    --waiting;
                    while (waiting != 0) {
                    }
                    for (int call = 0; call < 50; ++call) {
                        const float load = SystemInfo::GetSystemLoad();
                        wrong += load >= 0.0f && load <= 100.0f && SystemInfo::ProcessorSupportsSSE2() ? 0 : 1;
                    }
                });
            }
            for (std::thread& thread : threads) {
                thread.join();
            }
            std::_Exit(wrong == 0 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST(SystemLoad, IsAWholePercentage)
{
    for (int i = 0; i < 100; ++i) {
        const float load = SystemInfo::GetSystemLoad();
        ASSERT_GE(load, 0.0f);
        ASSERT_LE(load, 100.0f);
        ASSERT_EQ(load, static_cast<float>(static_cast<int>(load)));
    }
}
