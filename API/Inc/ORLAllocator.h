// Floor: Memory
// The front of the small block allocator, for code that takes exhausted memory as an exception, and its statistics.
#pragma once

#include <ORLConfig.h>

#include <cstddef>
#include <new>

namespace ORL {

/// Memory for counters, records and other small blocks. Safe from any thread; takes no lock of its own.
class ORL_API Allocator
{
public:
    /// A block of inSize bytes (0 gives a block too), aligned for every fundamental type. Never null.
    /// Throws std::bad_alloc, whose what() is "bad allocation", when memory is out.
    static void* Allocate(std::size_t inSize);

    /// Gives a block back, on any thread. inSize is the size that was asked for; null is ignored.
    static void Dispose(void* inBlock, std::size_t inSize);
};

/// Writes the state of the allocator and of the process's address space to the trace, for trouble with memory: the 18
/// counters of the small block allocator in six lines, then a line for each region of the address space, then the
/// number of heaps. All under category "ORL.Allocator" at level 1, which a host switches on by name:
///
///   tvxcore::debug::SetTraceLevel("ORL.Allocator", 1);
///
/// Addresses and sizes of regions show their low 32 bits only. A region's state is 4096 for memory in use, 8192 for
/// reserved and 65536 for free address space, on every platform. Safe from any thread; the lines of two calls do not
/// mingle. When the allocator keeps no counters, nothing at all is written.
ORL_API void TraceAllocatorStatistics();

} // namespace ORL
