#include <ORLMemoryRecycler.h>

#include <Memory/MemoryBufferSizes.h>
#include <ORLDebug.h>
#include <Platform/PageMemory.h>
#include <tvxcore/SmallBlockAllocator.h>

namespace ORL {

using tvxcore::utility::SmallBlockAllocator;

void MemoryBuffer::Allocate(std::size_t inSize)
{
    ORL_CONTRACT_AT_(mBuffer == nullptr, "mBuffer == NULL", "MemoryRecycler", 147,
                     ::ORL::Debug::ThrowInputContractError);
    ORL_ASSERT_MESSAGE_AT(PageMemory::Platform::QueryNewMode_Impl() == 0, "_query_new_mode() == 0", "",
                          "MemoryRecycler", 155, "ORL::MemoryBuffer::Allocate");
    std::size_t size = inSize;
    if (IsLargeBuffer(inSize)) {
        size = RoundBufferSize(inSize);
        void* const pages = PageMemory::Platform::AllocatePages_Impl(size);
        if (pages != nullptr) {
            mBuffer = pages;
            mSize = size;
            mIsVirtual = true;
            return;
        }
    }
    void* const block = SmallBlockAllocator::Allocate(size);
    if (block != nullptr) {
        mBuffer = block;
        mSize = size;
    }
}

void MemoryBuffer::Release()
{
    ORL_ASSERT_MESSAGE_AT(mBuffer != nullptr, "mBuffer != NULL", "", "MemoryRecycler", 207,
                          "ORL::MemoryBuffer::Release");
    if (mBuffer != nullptr) {
        if (IsLargeBuffer(mSize) && mIsVirtual) {
            PageMemory::Platform::FreePages_Impl(mBuffer, mSize);
        } else {
            SmallBlockAllocator::Dispose(mBuffer, mSize);
        }
    }
    mBuffer = nullptr;
    mSize = 0;
}

} // namespace ORL
