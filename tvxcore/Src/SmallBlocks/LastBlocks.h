// Blocks for the end of the process, where the system has stopped all other threads wherever they were: in the middle of
// a change of the stores and with the heap's lock in hand. So nothing that threads share is touched any more. Blocks are
// cut from fresh pages, and none is taken back: the system takes them all in a moment.
#pragma once

#include <cstddef>

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

/// A block of any size, not counted. For the one thread that is left. Null when memory is out.
void* TakeLastBlock(std::size_t inSize) noexcept;

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
