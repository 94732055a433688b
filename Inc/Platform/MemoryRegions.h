// Floor: Platform
// The regions of the process's address space, and its heaps.
#pragma once

#include <cstdint>

namespace ORL {
namespace MemoryRegions {

/// States, by the home platform's numbers.
inline constexpr std::uint32_t kCommitted = 4096;
inline constexpr std::uint32_t kReserved = 8192;
inline constexpr std::uint32_t kFree = 65536;

/// From the address that was asked for to the end of the region that holds it.
struct Region
{
    std::uint64_t mSize;
    std::uint32_t mState;
};

namespace Platform {

/// One walk, in rising order of the addresses. Not safe from two threads at once.
struct Walk;

/// Null when the system does not tell its regions. The walk ends with CloseWalk_Impl.
Walk* OpenWalk_Impl();
void CloseWalk_Impl(Walk* inWalk);

/// The region that holds inAddress. False at the end of the address space that the process may use, and when the system
/// does not tell.
///
/// On Linux, mappings without any access are reserved, all others committed, and the gaps between them free. Mappings
/// that come and go during the walk may be missed, never told twice.
bool QueryRegion_Impl(Walk& ioWalk, std::uint64_t inAddress, Region& outRegion);

/// Heaps of the process. On Linux these are the C library's arenas: one, and a further one for each thread that found
/// the others busy, up to the library's limit. 0 when the system does not tell.
unsigned long HeapCount_Impl();

} // namespace Platform
} // namespace MemoryRegions
} // namespace ORL
