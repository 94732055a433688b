// Progress of one step of a vector kernel.
#pragma once

#include <cstddef>

namespace tvxcore {
namespace utf {

struct Progress
{
    std::size_t mRead; // 0: ill-formed; the scalar loop must convert it
    std::size_t mWritten;
};

} // namespace utf
} // namespace tvxcore
