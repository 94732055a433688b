#include <SmallBlocks/Pages.h>

#include <AllocationFaults.h>
#include <CorePlatform/SmallBlockSystem.h>
#include <SmallBlocks/Counters.h>

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

void* TakePages(std::size_t inSize, std::size_t inAlignment) noexcept
{
    if (AllocationFaults::Refuses(AllocationFaults::kPages)) {
        return nullptr;
    }
    void* const pages = Platform::MapPages_Impl(inSize, inAlignment);
    if (pages != nullptr) {
        CountSystemAllocation(inSize);
    }
    return pages;
}

void GivePages(void* inPages, std::size_t inSize) noexcept
{
    CountSystemRelease(inSize);
    Platform::UnmapPages_Impl(inPages, inSize);
}

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
