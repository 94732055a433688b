// Floor: Platform
// The regions of the process's address space, and its heaps.
#pragma once

#include <cstdint>

namespace ORL {
namespace MemoryRegions {

/// States, as Windows numbers.
inline constexpr std::uint32_t kCommitted = 4096;
inline constexpr std::uint32_t kReserved = 8192;
inline constexpr std::uint32_t kFree = 65536;

/// The range from the queried address to the end of its region.
struct Region
{
    std::uint64_t mSize;
    std::uint32_t mState;
};

namespace Platform {

/// A walk over the regions, in ascending order of addresses. Not thread-safe.
struct Walk;

/// Returns null if the system does not report its regions. CloseWalk_Impl ends the walk.
Walk* OpenWalk_Impl();
void CloseWalk_Impl(Walk* inWalk);

/// Stores the region that holds inAddress. Returns false at the end of the process's address space, and if the system
/// does not report regions.
///
/// On Linux, mappings without any access are reserved, all others committed, and the gaps between them free. Mappings
/// that change during the walk may be missed, but are never reported twice.
bool QueryRegion_Impl(Walk& ioWalk, std::uint64_t inAddress, Region& outRegion);

/// Returns the number of heaps in the process; 0 if the system does not report it. On Linux, heaps are the C library's
/// arenas: one, plus one for each thread that found all others busy, up to the library's limit.
unsigned long HeapCount_Impl();

} // namespace Platform
} // namespace MemoryRegions
} // namespace ORL
