#include <ORLMemoryRecycler.h>

#include <FaultySystemCallsLinux.h>

#include <cerrno>
#include <gtest/gtest.h>

using namespace ORL;
using ORLTest::FaultySystemCalls;

TEST(MemoryRecycler, SystemRefusesPages_TheSmallBlockAllocatorServesAndIsGivenTheMemoryBack)
{
    FaultySystemCalls calls;
    MemoryRecycler recycler;
    calls.Fail(FaultySystemCalls::kMapPages, 1, ENOMEM);
    MemoryBuffer buffer = recycler.AllocateBuffer(8193);
    ASSERT_NE(nullptr, buffer.GetBuffer());
    EXPECT_FALSE(buffer.IsVirtual());
    EXPECT_EQ(12288u, buffer.GetSize());
    void* const address = buffer.GetBuffer();
    recycler.RecycleBuffer(buffer);
    // The buffer is pooled like any other and keeps the flag that determines how it is freed.
    MemoryBuffer again = recycler.AllocateBuffer(12288);
    EXPECT_EQ(address, again.GetBuffer());
    EXPECT_FALSE(again.IsVirtual());
    recycler.RecycleBuffer(again);
    recycler.Purge(0);
    EXPECT_EQ(0u, calls.Count(FaultySystemCalls::kUnmapPages)) << "pages that never were are not unmapped";
}

TEST(MemoryRecycler, PagesFreed_GoBackToTheSystem)
{
    FaultySystemCalls calls;
    MemoryRecycler recycler;
    for (int i = 0; i < 3; ++i) {
        MemoryBuffer buffer = recycler.AllocateBuffer(8192 * (1 + static_cast<std::size_t>(i)));
        recycler.RecycleBuffer(buffer);
    }
    EXPECT_EQ(3u, calls.Count(FaultySystemCalls::kMapPages));
    recycler.SetSize(0);
    EXPECT_EQ(3u, calls.Count(FaultySystemCalls::kUnmapPages));
}
