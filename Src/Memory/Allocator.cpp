#include <ORLAllocator.h>

#include <tvxcore/SmallBlockAllocator.h>

namespace ORL {

namespace {

// Standard libraries differ in the text of their own exception; ours is the same everywhere.
class BadAllocation : public std::bad_alloc
{
public:
    const char* what() const noexcept override { return "bad allocation"; }
};

} // namespace

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
