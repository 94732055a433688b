// Holds a lock of the allocator, for a few dozen instructions.
//
// Lock order, outermost first: shared cache, pool, store of a class, clusters, ledger.
#pragma once

#include <CoreMutex.h>

#include <mutex>

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

using Guard = std::lock_guard<threads::CoreMutex>;

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
