#include <ORLAllocator.h>

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

TEST(Allocator, AllocateThenDispose_GivesUsableMemory)
{
    void* const block = ORL::Allocator::Allocate(100);
    ASSERT_NE(block, nullptr);
    std::memset(block, 0x5A, 100);
    ORL::Allocator::Dispose(block, 100);
}

TEST(Allocator, MemoryIsOut_ThrowsBadAllocWithItsText)
{
    // No machine has this much memory, so the small block allocator returns null.
    constexpr std::size_t kTooMuch = (std::numeric_limits<std::size_t>::max)() / 2;
    try {
        ORL::Allocator::Allocate(kTooMuch);
        FAIL() << "no exception";
    } catch (const std::bad_alloc& error) {
        EXPECT_STREQ(error.what(), "bad allocation");
    }
}

TEST(Allocator, DisposeOfNull_IsIgnored)
{
    EXPECT_NO_THROW(ORL::Allocator::Dispose(nullptr, 16));
}
