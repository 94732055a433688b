#include <ORLAllocator.h>

#include <Memory/BadAllocation.h>
#include <tvxcore/SmallBlockAllocator.h>

namespace ORL {

void* Allocator::Allocate(std::size_t inSize)
{
    void* const block = tvxcore::utility::SmallBlockAllocator::Allocate(inSize);
    if (block == nullptr) {
        throw BadAllocation();
    }
    return block;
}

void Allocator::Dispose(void* inBlock, std::size_t inSize)
{
    tvxcore::utility::SmallBlockAllocator::Dispose(inBlock, inSize);
}

} // namespace ORL
