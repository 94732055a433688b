// Blocks for process exit, after the system has stopped all other threads at arbitrary points: perhaps in the middle of
// a change to the stores, or while holding the heap's lock. So these functions access no shared data.
// Blocks are cut from new pages and never freed.
#pragma once

#include <cstddef>

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

/// Returns a block of any size, not counted. Only the last remaining thread may call it. Returns null if out of memory.
void* TakeLastBlock(std::size_t inSize) noexcept;

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
