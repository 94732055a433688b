// Floor: Memory
// A small-block allocator that throws std::bad_alloc when memory is exhausted, and a function that traces its
// statistics.
#pragma once

#include <ORLConfig.h>

#include <cstddef>
#include <new>

namespace ORL {

/// Allocates counters, records and other small blocks.
///
/// Owner:    the caller owns each block until it passes the block to Dispose.
/// Threads:  thread-safe.
/// Failure:  Allocate throws std::bad_alloc. Dispose never throws.
class ORL_API Allocator
{
public:
    /// Returns a block of inSize bytes, aligned for every fundamental type. Never null, even if inSize is 0. Throws
    /// std::bad_alloc, whose what() is "bad allocation".
    static void* Allocate(std::size_t inSize);

    /// Frees a block; any thread may call it. inSize is the size that was passed to Allocate. Ignores null.
    static void Dispose(void* inBlock, std::size_t inSize);
};

/// Traces the state of the allocator and of the process's address space, for diagnosing memory problems: the
/// 18 counters of the small block allocator in six lines, then a line for each region of the address space, then the
/// number of heaps. All lines are in category "ORL.Allocator" at level 1, which a host enables by name:
///
///   tvxcore::debug::SetTraceLevel("ORL.Allocator", 1);
///
/// Only the low 32 bits of region addresses and sizes are shown. A region's state is 4096 (committed), 8192 (reserved)
/// or 65536 (free address space) on every platform. Thread-safe: the lines of two calls are not interleaved. Writes
/// nothing if the allocator keeps no counters.
ORL_API void TraceAllocatorStatistics();

} // namespace ORL
