// Tests the fault injection itself: a sweep that injects no failure would prove nothing.
#include "MemoryFaults.h"

#include <ORLAllocator.h>
#include <Platform/PageMemory.h>

#include <thread>

using namespace ORLTest;

TEST(MemoryFaults, SecondBlock_IsRefusedAndOnlyIt)
{
    const MemoryFaults faults(FaultyAllocator::kSmallBlocks, 2, false);
    void* const first = ORL::Allocator::Allocate(16);
    EXPECT_THROW(ORL::Allocator::Allocate(16), std::bad_alloc);
    void* const third = ORL::Allocator::Allocate(16);
    ORL::Allocator::Dispose(first, 16);
    ORL::Allocator::Dispose(third, 16);
    EXPECT_EQ(1u, faults.Refused());
}

TEST(MemoryFaults, AllFurther_AreRefused)
{
    const MemoryFaults faults(FaultyAllocator::kPages, 1, true);
    EXPECT_EQ(nullptr, ORL::PageMemory::Platform::AllocatePages_Impl(8192));
    EXPECT_EQ(nullptr, ORL::PageMemory::Platform::AllocatePages_Impl(8192));
    EXPECT_EQ(2u, faults.Refused());
}

TEST(MemoryFaults, Heap_IsRefused)
{
    bool isRefused = false;
    {
        const MemoryFaults faults(FaultyAllocator::kHeap, 1, false);
        try {
            ::operator delete(::operator new(16));
        } catch (const std::bad_alloc&) {
            isRefused = faults.Refused() == 1;
        }
    }
    EXPECT_TRUE(isRefused);
}

TEST(MemoryFaults, OtherThreads_AreLeftAlone)
{
    bool isRefused = true;
    std::thread other;
    {
        other = std::thread([&isRefused] {
            isRefused = false;
            ORL::Allocator::Dispose(ORL::Allocator::Allocate(16), 16);
        });
        const MemoryFaults faults(FaultyAllocator::kSmallBlocks, 1, true);
        other.join();
        EXPECT_EQ(0u, faults.Refused());
    }
    EXPECT_FALSE(isRefused);
}

TEST(MemoryFaults, WhatIsNotGivenBack_IsOwed)
{
    const std::int64_t before = OutstandingMemory(FaultyAllocator::kSmallBlocks);
    void* const block = ORL::Allocator::Allocate(16);
    EXPECT_EQ(before + 1, OutstandingMemory(FaultyAllocator::kSmallBlocks));
    ORL::Allocator::Dispose(block, 16);
    EXPECT_EQ(before, OutstandingMemory(FaultyAllocator::kSmallBlocks));
}
