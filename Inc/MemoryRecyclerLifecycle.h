// Floor: Memory
// The start and the stop of the process's memory recycler. Both run under the foundation lock.
#pragma once

namespace ORL {

/// Makes the pool, in place of any earlier one. Throws std::bad_alloc.
void CreateMemoryRecycler();

/// Drops the library's own share of the pool. Copies that are still out keep it alive.
void DropMemoryRecycler();

} // namespace ORL
