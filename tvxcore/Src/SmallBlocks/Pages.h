// System memory for clusters and caches: counted, with fault injection.
#pragma once

#include <cstddef>

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

/// Returns zeroed memory, or null. inAlignment is a power of two.
void* TakePages(std::size_t inSize, std::size_t inAlignment) noexcept;

void GivePages(void* inPages, std::size_t inSize) noexcept;

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
