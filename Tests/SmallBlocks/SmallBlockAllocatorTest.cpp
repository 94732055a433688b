#include <AllocationFaults.h>
#include <SmallBlocks/Sanitizer.h>
#include <tvxcore/SmallBlockAllocator.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <future>
#include <limits>
#include <random>
#include <string>
#include <thread>
#include <vector>

using namespace tvxcore::utility;
using SmallBlocks::kClassCount;
using SmallBlocks::kClassSizes;
using SmallBlocks::kGrain;
using SmallBlocks::kLargestSmall;
using SmallBlocks::kPlaces;

namespace {

// A block that stores its size and its fill byte.
struct Filled
{
    unsigned char* mBytes;
    std::size_t mSize;
    unsigned char mPattern;

    Filled(std::size_t inSize, unsigned char inPattern)
        : mBytes(static_cast<unsigned char*>(SmallBlockAllocator::Allocate(inSize))), mSize(inSize), mPattern(inPattern)
    {
        if (mBytes != nullptr) {
            std::memset(mBytes, mPattern, mSize);
        }
    }

    bool IsWhole() const
    {
        return std::all_of(mBytes, mBytes + mSize, [this](unsigned char byte) { return byte == mPattern; });
    }

    void Dispose() { SmallBlockAllocator::Dispose(mBytes, mSize); }
};

// Returns the sizes around each class boundary, and some that the system's allocator serves.
std::vector<std::size_t> InterestingSizes()
{
    std::vector<std::size_t> sizes;
    for (std::size_t size = 0; size <= 300; ++size) {
        sizes.push_back(size);
    }
    for (const std::size_t size : kClassSizes) {
        sizes.insert(sizes.end(), {size - 1, size, size + 1, size + kGrain - 1, size + kGrain});
    }
    sizes.insert(sizes.end(), {65535, 65536, 1000000, 5000000});
    return sizes;
}

AllocationFaults::Plan FailAllFrom(AllocationFaults::AllocationKind inKind, std::uint64_t inFirst)
{
    AllocationFaults::Plan plan;
    plan.mKind = inKind;
    plan.mFirst = inFirst;
    plan.mFailureCount = AllocationFaults::kAllFurther;
    plan.mOfThisThreadOnly = true;
    return plan;
}

} // namespace

TEST(SmallBlockClasses, EachSize_HasTheSmallestClassThatHoldsIt)
{
    for (std::size_t size = 0; size <= kLargestSmall; ++size) {
        const std::size_t place = kPlaces[(size + kGrain - 1) / kGrain];
        ASSERT_EQ(place % 2, 0u);
        const std::size_t index = place / 2;
        ASSERT_LT(index, kClassCount);
        ASSERT_GE(kClassSizes[index], size);
        if (index > 0) {
            ASSERT_LT(kClassSizes[index - 1], std::max<std::size_t>(size, 1));
        }
    }
}

TEST(SmallBlockClasses, AboveTwoHundredFiftySix_AtMostAFifthIsLost)
{
    for (std::size_t i = 16; i < kClassCount; ++i) {
        const int smallest = kClassSizes[i - 1] + 1;
        EXPECT_LE((kClassSizes[i] - smallest) * 5, kClassSizes[i]) << kClassSizes[i];
    }
}

TEST(SmallBlockAllocator, EverySize_GivesAlignedMemoryOfThatSize)
{
    for (const std::size_t size : InterestingSizes()) {
        Filled block(size, static_cast<unsigned char>(size * 31));
        ASSERT_NE(block.mBytes, nullptr) << size;
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block.mBytes) % alignof(std::max_align_t), 0u) << size;
        EXPECT_TRUE(block.IsWhole()) << size;
        block.Dispose();
    }
}

TEST(SmallBlockAllocator, ManyBlocksAtOnce_DoNotOverlap)
{
    std::mt19937 random(1);
    std::vector<Filled> blocks;
    const std::vector<std::size_t> sizes = InterestingSizes();
    for (int i = 0; i < 20000; ++i) {
        const std::size_t size = sizes[random() % (sizes.size() - 2)];
        blocks.emplace_back(size, static_cast<unsigned char>(i));
        ASSERT_NE(blocks.back().mBytes, nullptr);
        // A third of the blocks is freed at once, so that blocks move in both directions through stacks, stores and
        // master blocks.
        if (random() % 3 == 0) {
            std::swap(blocks[random() % blocks.size()], blocks.back());
            ASSERT_TRUE(blocks.back().IsWhole());
            blocks.back().Dispose();
            blocks.pop_back();
        }
    }
    std::shuffle(blocks.begin(), blocks.end(), random);
    for (Filled& block : blocks) {
        ASSERT_TRUE(block.IsWhole());
        block.Dispose();
    }
}

TEST(SmallBlockAllocator, SizeZero_GivesBlocksOfTheirOwn)
{
    void* const first = SmallBlockAllocator::Allocate(0);
    void* const second = SmallBlockAllocator::Allocate(0);
    EXPECT_NE(first, nullptr);
    EXPECT_NE(second, nullptr);
    EXPECT_NE(first, second);
    SmallBlockAllocator::Dispose(first, 0);
    SmallBlockAllocator::Dispose(second, 0);
}

TEST(SmallBlockAllocator, DisposeOfNull_IsIgnored)
{
    SmallBlockAllocator::Metrics::Snapshot before;
    SmallBlockAllocator::Metrics::Snapshot after;
    ASSERT_TRUE(SmallBlockAllocator::Metrics::GetSnapshot(before));
    SmallBlockAllocator::Dispose(nullptr, 16);
    SmallBlockAllocator::Dispose(nullptr, 1000000);
    ASSERT_TRUE(SmallBlockAllocator::Metrics::GetSnapshot(after));
    EXPECT_EQ(std::memcmp(&before, &after, sizeof(before)), 0);
}

TEST(SmallBlockAllocator, SizesThatDoNotExist_GiveNullAndDoNotThrow)
{
    constexpr std::size_t kMost = (std::numeric_limits<std::size_t>::max)();
    for (const std::size_t size : {kMost, kMost - 15, kMost / 2, kMost / 2 + 1, std::size_t{1} << 40}) {
        EXPECT_EQ(SmallBlockAllocator::Allocate(size), nullptr) << size;
    }
}

TEST(SmallBlockAllocator, RunsOutOfMemory_GivesNullAndDoesNotThrow)
{
    for (const std::size_t size : {std::size_t{0}, std::size_t{16}, kLargestSmall, std::size_t{100000}}) {
        const AllocationFaults::Scope faults(FailAllFrom(AllocationFaults::kBlocks, 1));
        EXPECT_EQ(SmallBlockAllocator::Allocate(size), nullptr) << size;
        EXPECT_EQ(faults.Refused(), 1u);
    }
    void* const block = SmallBlockAllocator::Allocate(16);
    EXPECT_NE(block, nullptr);
    SmallBlockAllocator::Dispose(block, 16);
}

TEST(SmallBlockAllocator, NthAllocationFails_OnlyThatOne)
{
    AllocationFaults::Plan plan;
    plan.mFirst = 3;
    plan.mFailureCount = 2;
    plan.mOfThisThreadOnly = true;
    const AllocationFaults::Scope faults(plan);
    std::vector<bool> given;
    for (int i = 0; i < 6; ++i) {
        void* const block = SmallBlockAllocator::Allocate(32);
        given.push_back(block != nullptr);
        SmallBlockAllocator::Dispose(block, 32);
    }
    EXPECT_EQ(given, (std::vector<bool>{true, true, false, false, true, true}));
    EXPECT_EQ(faults.Asked(), 6u);
    EXPECT_EQ(faults.Refused(), 2u);
}

TEST(SmallBlockAllocator, FaultsOfAnotherThread_LeaveThisOneAlone)
{
    const AllocationFaults::Scope faults(FailAllFrom(AllocationFaults::kBlocks, 1));
    bool wasGiven = false;
    std::thread([&] {
        void* const block = SmallBlockAllocator::Allocate(32);
        wasGiven = block != nullptr;
        SmallBlockAllocator::Dispose(block, 32);
    }).join();
    EXPECT_TRUE(wasGiven);
    EXPECT_EQ(faults.Refused(), 0u);
}

TEST(SmallBlockAllocator, FaultsOfTheWholeProcess_ReachThreadsThatAlreadyHaveBlocks)
{
    AllocationFaults::Plan plan = FailAllFrom(AllocationFaults::kBlocks, 1);
    plan.mOfThisThreadOnly = false;
    void* refused = &plan;
    std::thread([&] {
        SmallBlockAllocator::Dispose(SmallBlockAllocator::Allocate(32), 32);
        const AllocationFaults::Scope faults(plan);
        std::thread([&] { refused = SmallBlockAllocator::Allocate(32); }).join();
    }).join();
    EXPECT_EQ(refused, nullptr);
}

TEST(SmallBlockAllocator, SystemGivesNoMorePages_AllocateGivesNullAndRecovers)
{
    // More blocks than the caches, the stores and the spare cluster can hold.
    constexpr std::size_t kBlocks = 3000;
    std::vector<void*> blocks;
    blocks.reserve(kBlocks);
    {
        const AllocationFaults::Scope faults(FailAllFrom(AllocationFaults::kPages, 1));
        while (blocks.size() < kBlocks) {
            void* const block = SmallBlockAllocator::Allocate(kLargestSmall);
            if (block == nullptr) {
                break;
            }
            blocks.push_back(block);
        }
        if (!SmallBlocks::kBlocksAreTheSystems) {
            EXPECT_LT(blocks.size(), kBlocks);
            EXPECT_GE(faults.Refused(), 1u);
        }
    }
    void* const block = SmallBlockAllocator::Allocate(kLargestSmall);
    EXPECT_NE(block, nullptr);
    SmallBlockAllocator::Dispose(block, kLargestSmall);
    for (void* const one : blocks) {
        SmallBlockAllocator::Dispose(one, kLargestSmall);
    }
}

TEST(SmallBlockAllocator, NoPagesForAThreadsCache_TheThreadIsServedAllTheSame)
{
    AllocationFaults::Plan plan = FailAllFrom(AllocationFaults::kPages, 1);
    plan.mOfThisThreadOnly = false;
    const AllocationFaults::Scope faults(plan);
    std::promise<void> over;
    const std::shared_future<void> untilOver = over.get_future().share();
    std::vector<std::thread> threads;
    // The first threads take over idle caches of earlier ones. Each of them keeps its cache, so later threads find no
    // idle cache.
    while (threads.size() < 64) {
        std::promise<bool> served;
        std::future<bool> wasServed = served.get_future();
        threads.emplace_back([&served, untilOver] {
            Filled small(48, 7);
            Filled large(100000, 8);
            const bool isServed = small.mBytes != nullptr && small.IsWhole() && large.mBytes != nullptr;
            small.Dispose();
            large.Dispose();
            served.set_value(isServed);
            untilOver.wait();
        });
        EXPECT_TRUE(wasServed.get());
        if (faults.Refused() >= 3) {
            break;
        }
    }
    EXPECT_EQ(faults.Refused() != 0, !SmallBlocks::kBlocksAreTheSystems);
    over.set_value();
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST(SmallBlockAllocator, StlAllocatorRunsOutOfMemory_ThrowsBadAlloc)
{
    using Text = std::basic_string<char, std::char_traits<char>, SmallBlockAllocator::STLAllocator<char>>;
    const AllocationFaults::Scope faults(FailAllFrom(AllocationFaults::kBlocks, 1));
    EXPECT_THROW(Text(100, 'x'), std::bad_alloc);
    SmallBlockAllocator::STLAllocator<std::uint64_t> allocator;
    EXPECT_THROW(allocator.allocate((std::numeric_limits<std::size_t>::max)() / 4), std::bad_alloc);
}
