#include <tvxcore/SmallBlockAllocator.h>

#include <cstdlib>

namespace tvxcore {
namespace utility {

void* SmallBlockAllocator::Allocate(std::size_t inSize) noexcept
{
    return std::malloc(inSize != 0 ? inSize : 1);
}

void SmallBlockAllocator::Dispose(void* inBlock, std::size_t) noexcept
{
    std::free(inBlock);
}

bool SmallBlockAllocator::Metrics::GetSnapshot(Snapshot&)
{
    return false;
}

} // namespace utility
} // namespace tvxcore
