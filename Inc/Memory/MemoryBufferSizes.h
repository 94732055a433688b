// The smallest size of a large buffer, and the rounding of large sizes, so that similar sizes share pool entries.
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

/// inSize must be at least kLargeBuffer. Returns a size unchanged if rounding it would overflow: an allocation of that
/// size always fails.
constexpr std::size_t RoundBufferSize(std::size_t inSize)
{
    const std::size_t step = inSize < kCoarselyRoundedBuffer ? 4096 : 16384; // both are powers of two
    if (inSize > (std::numeric_limits<std::size_t>::max)() - (step - 1)) {
        return inSize;
    }
    return (inSize + step - 1) & ~(step - 1);
}

} // namespace ORL
