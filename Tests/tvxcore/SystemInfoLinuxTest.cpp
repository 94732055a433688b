#include <tvxcore/SystemInfo.h>

#include <gtest/gtest.h>

#include <sched.h>

TEST(SystemInfo, CPUCount_FollowsTheProcessorsThisProcessMayUse)
{
    cpu_set_t before;
    ASSERT_EQ(0, ::sched_getaffinity(0, sizeof(before), &before));
    int first = 0;
    while (!CPU_ISSET(first, &before)) {
        ++first;
    }
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(first, &one);
    ASSERT_EQ(0, ::sched_setaffinity(0, sizeof(one), &one));
    EXPECT_EQ(1u, tvxcore::utility::CPUCount());
    ASSERT_EQ(0, ::sched_setaffinity(0, sizeof(before), &before));
    EXPECT_EQ(static_cast<unsigned long>(CPU_COUNT(&before)), tvxcore::utility::CPUCount());
}
