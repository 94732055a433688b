// Holds a lock of the allocator, for a few dozen instructions.
//
// Lock order, outermost first: shared cache, pool, store of a class, clusters, ledger.
#pragma once

#include <Executors/CoreMutex.h>

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

using Guard = threads::CoreMutexLock;

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
