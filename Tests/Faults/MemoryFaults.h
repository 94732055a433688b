// Memory that runs out where a sweep wants it to, and a count of what is still owed.
//
// Three doors are watched: the small block allocator, whole pages of the system, and the C++ heap. Only requests of the
// thread that arms are counted and refused.
#pragma once

#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <new>
#include <string>

namespace ORLTest {

enum class MemoryDoor { kSmallBlocks, kPages, kHeap };
inline constexpr MemoryDoor kMemoryDoors[] = {MemoryDoor::kSmallBlocks, MemoryDoor::kPages, MemoryDoor::kHeap};

/// While it lives, the request of that number (counted from 1) at a door is refused, and with inAllFurther all behind it.
class MemoryFaults
{
public:
    MemoryFaults(MemoryDoor inDoor, unsigned inNumber, bool inAllFurther);
    ~MemoryFaults();
    MemoryFaults(const MemoryFaults&) = delete;
    MemoryFaults& operator=(const MemoryFaults&) = delete;

    unsigned Refused() const;

private:
    const MemoryDoor mDoor;
};

/// What the whole process holds at a door.
std::int64_t MemoryOwed(MemoryDoor inDoor);

/// Whether the standard library's own requests come to the heap's door. Where they go past it (a shared library of the home
/// platform keeps to its own heap functions), what is owed there says nothing.
bool WholeHeapIsWatched();

/// Lets each request for memory that inWork makes fail once, alone and with all behind it. After each round inCheck looks
/// whether everything is as before, and no more memory than before may be owed. inWork leaves nothing behind, fails with
/// std::bad_alloc or finds another way.
void SweepMemory(const std::function<void()>& inWork, const std::function<void()>& inCheck);

} // namespace ORLTest
