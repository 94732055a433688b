// How far a step of a vector kernel came.
#pragma once

#include <cstddef>

namespace tvxcore {
namespace utf {

struct Progress
{
    std::size_t mRead; // 0: not well formed, so that the plain loop has to take this step
    std::size_t mWritten;
};

} // namespace utf
} // namespace tvxcore
