// Makes chosen allocations fail, and counts the blocks that are still allocated.
//
// Three allocators are intercepted: the small block allocator, whole OS pages, and the C++ heap. Only requests from
// the thread that created the MemoryFaults object are counted and can fail.
#pragma once

#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <new>
#include <string>

namespace ORLTest {

enum class FaultyAllocator { kSmallBlocks, kPages, kHeap };
inline constexpr FaultyAllocator kFaultyAllocators[] = {FaultyAllocator::kSmallBlocks, FaultyAllocator::kPages,
                                                        FaultyAllocator::kHeap};

/// While an instance exists, request number inNumber (from 1) to one allocator fails; with inAllFurther, so do all
/// later requests.
class MemoryFaults
{
public:
    MemoryFaults(FaultyAllocator inAllocator, unsigned inNumber, bool inAllFurther);
    ~MemoryFaults();
    MemoryFaults(const MemoryFaults&) = delete;
    MemoryFaults& operator=(const MemoryFaults&) = delete;

    unsigned Refused() const;

private:
    const FaultyAllocator mAllocator;
};

/// Returns the process's current balance of allocations from that allocator.
std::int64_t OutstandingMemory(FaultyAllocator inAllocator);

/// Returns whether the standard library's own requests reach the intercepted C++ heap. If they do not (on Windows, a
/// shared library uses its own heap functions), the heap's balance is meaningless.
bool HeapIsFullyIntercepted();

/// Fails each request for memory that inWork makes, once alone and once with all later requests. After each round
/// inCheck verifies the state, and the balance must be unchanged. inWork must leak nothing, and must either throw
/// std::bad_alloc or succeed without the requested memory.
void SweepMemory(const std::function<void()>& inWork, const std::function<void()>& inCheck);

} // namespace ORLTest
