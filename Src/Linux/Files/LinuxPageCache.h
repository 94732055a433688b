// Drops pages of an open file from the page cache.
#pragma once

#include <cstdint>

namespace ORL {
namespace Linux {

/// Drops the pages that a transfer of inCount bytes at inPosition has left in the cache, so that the transfer does not
/// evict other pages. Failures have no effect.
void DropPagesOfTransfer(int inFile, std::uint64_t inPosition, std::uint32_t inCount) noexcept;

} // namespace Linux
} // namespace ORL
