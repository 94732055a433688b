#include <tvxcore/SystemInfo.h>

#include <gtest/gtest.h>

#include <thread>

using namespace tvxcore::utility;

TEST(SystemInfo, PhysicalMemory_IsMoreThanThisProgramAndLessThanAPetabyte)
{
    EXPECT_GT(TotalPhysicalMemory(), 64ull << 20);
    EXPECT_LT(TotalPhysicalMemory(), 1ull << 50);
    EXPECT_EQ(0u, TotalPhysicalMemory() % 1024);
}

TEST(SystemInfo, CPUCount_IsAtLeastOneAndAtMostThoseOfTheMachine)
{
    EXPECT_GE(CPUCount(), 1u);
    EXPECT_LE(CPUCount(), std::thread::hardware_concurrency());
}
