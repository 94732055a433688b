// Holds a lock of the allocator for the few dozen instructions that are done under one.
//
// Order of the locks, outermost first: the shared cache's, the thread caches' pool, the store of a class, the clusters,
// the ledger.
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
