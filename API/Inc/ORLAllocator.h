// Floor: Memory
// The front of the small block allocator, for code that takes exhausted memory as an exception.
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

} // namespace ORL
