#include <Platform/MemoryRegions.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>

using namespace ORL::MemoryRegions;

namespace {

// Walks from address zero to the region that contains inAddress, and returns it.
Region RegionAt(const void* inAddress)
{
    const std::uint64_t wanted = reinterpret_cast<std::uintptr_t>(inAddress);
    Platform::Walk* const walk = Platform::OpenWalk_Impl();
    Region found{0, 0};
    std::uint64_t address = 0;
    while (Platform::QueryRegion_Impl(*walk, address, found) && address + found.mSize <= wanted) {
        address += found.mSize;
    }
    Platform::CloseWalk_Impl(walk);
    return found;
}

int sStatic = 0;

} // namespace

TEST(MemoryRegions, MemoryInUse_IsCommitted)
{
    const int local = 0;
    const auto heap = std::make_unique<int[]>(1000000);
    EXPECT_EQ(RegionAt(&local).mState, kCommitted);
    EXPECT_EQ(RegionAt(&sStatic).mState, kCommitted);
    EXPECT_EQ(RegionAt(heap.get()).mState, kCommitted);
    EXPECT_EQ(RegionAt(reinterpret_cast<const void*>(&RegionAt)).mState, kCommitted);
}

TEST(MemoryRegions, FirstRegion_IsFree)
{
    const Region region = RegionAt(nullptr);
    EXPECT_EQ(region.mState, kFree);
    EXPECT_GE(region.mSize, 0x10000u);
}

TEST(MemoryRegions, AskedInsideOfARegion_TellsTheRestOfIt)
{
    Platform::Walk* const walk = Platform::OpenWalk_Impl();
    ASSERT_NE(walk, nullptr);
    Region whole{0, 0};
    Region rest{0, 0};
    ASSERT_TRUE(Platform::QueryRegion_Impl(*walk, 0, whole));
    ASSERT_TRUE(Platform::QueryRegion_Impl(*walk, 0x1000, rest));
    EXPECT_EQ(rest.mSize, whole.mSize - 0x1000);
    EXPECT_EQ(rest.mState, whole.mState);
    Platform::CloseWalk_Impl(walk);
}

TEST(MemoryRegions, BeyondTheAddressSpace_TellsNothing)
{
    Platform::Walk* const walk = Platform::OpenWalk_Impl();
    ASSERT_NE(walk, nullptr);
    Region region{1, 2};
    EXPECT_FALSE(Platform::QueryRegion_Impl(*walk, 0xFFFF800000000000, region));
    EXPECT_EQ(region.mSize, 1u);
    Platform::CloseWalk_Impl(walk);
}

TEST(MemoryRegions, Heaps_AtLeastOne)
{
    EXPECT_GE(Platform::HeapCount_Impl(), 1u);
}
