// Floor: Memory
// From which size on a buffer is large, and how large sizes are rounded so that near ones meet in the pool.
#pragma once

#include <cstddef>
#include <limits>

namespace ORL {

inline constexpr std::size_t kLargeBuffer = 8192;
inline constexpr std::size_t kCoarselyRoundedBuffer = 1048576;

constexpr bool IsLargeBuffer(std::size_t inSize)
{
    return inSize >= kLargeBuffer;
}

/// inSize is large. A size so near the end of the address space that it cannot be rounded stays as it is: nobody can
/// serve it either way.
constexpr std::size_t RoundBufferSize(std::size_t inSize)
{
    const std::size_t step = inSize < kCoarselyRoundedBuffer ? 4096 : 16384; // powers of two
    if (inSize > (std::numeric_limits<std::size_t>::max)() - (step - 1)) {
        return inSize;
    }
    return (inSize + step - 1) & ~(step - 1);
}

} // namespace ORL
