// Start and stop of the process's memory recycler. The caller holds the foundation lock.
#pragma once

namespace ORL {

/// Creates the pool, which replaces any earlier one. Throws std::bad_alloc.
void CreateMemoryRecycler();

/// Releases the library's reference to the pool. Other references keep the pool alive.
void DropMemoryRecycler();

} // namespace ORL
