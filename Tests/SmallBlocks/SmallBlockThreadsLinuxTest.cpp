#include <tvxcore/SmallBlockAllocator.h>

#include <gtest/gtest.h>

#include <atomic>
#include <pthread.h>
#include <thread>

using tvxcore::utility::SmallBlockAllocator;

namespace {

std::atomic<int> sServed{0};
pthread_key_t sKey;

// Registers itself again once, so that at least one call happens after the allocator's own thread-exit handler.
void UseLate(void* inTimes)
{
    void* const block = SmallBlockAllocator::Allocate(77);
    sServed += block != nullptr;
    SmallBlockAllocator::Dispose(block, 77);
    int* const times = static_cast<int*>(inTimes);
    if (--*times > 0) {
        ::pthread_setspecific(sKey, times);
    }
}

} // namespace

TEST(SmallBlockThreads, DestructorsOfThreadSpecificData_AreServed)
{
    ASSERT_EQ(::pthread_key_create(&sKey, &UseLate), 0);
    SmallBlockAllocator::Metrics::Snapshot before;
    SmallBlockAllocator::Metrics::Snapshot after;
    SmallBlockAllocator::Metrics::GetSnapshot(before);
    for (int i = 0; i < 5; ++i) {
        int times = 3;
        std::thread([&] {
            SmallBlockAllocator::Dispose(SmallBlockAllocator::Allocate(77), 77);
            ::pthread_setspecific(sKey, &times);
        }).join();
    }
    EXPECT_EQ(sServed.load(), 15);
    SmallBlockAllocator::Metrics::GetSnapshot(after);
    EXPECT_EQ(after.mSmallBlockCountCurrent, before.mSmallBlockCountCurrent);
    EXPECT_EQ(after.mSmallBlockCountTotal, before.mSmallBlockCountTotal + 20);
    ::pthread_key_delete(sKey);
}
