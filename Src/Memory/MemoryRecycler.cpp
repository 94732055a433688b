#include <ORLMemoryRecycler.h>

#include <Core/Immortal.h>
#include <Memory/BadAllocation.h>
#include <Memory/MemoryBufferSizes.h>
#include <Memory/MemoryRecyclerLifecycle.h>
#include <tvxcore/ErrorManager.h>

#include <new>

namespace ORL {

namespace {

constexpr std::size_t kDefaultLimit = 50000000;
constexpr std::size_t kMaxSpareNodes = 16;

// Changed only under the foundation lock. Never destroyed: a host that exits without stopping the library may have
// threads that still use it.
Immortal<ObjectPtr<MemoryRecycler, AtomicValue>> sMemoryRecycler;

// Returns true if the host has freed memory and requests a retry.
bool HostWantsAnotherTry(std::size_t inSize)
{
    tvxcore::config::ErrorManager* const manager = tvxcore::config::ErrorManager::Get(false);
    return manager != nullptr && manager->OnAllocationFailure(inSize);
}

} // namespace

void CreateMemoryRecycler()
{
    sMemoryRecycler.mValue = ObjectPtr<MemoryRecycler, AtomicValue>(new MemoryRecycler);
}

void DropMemoryRecycler()
{
    ObjectPtr<MemoryRecycler, AtomicValue> dropped;
    dropped.Swap(sMemoryRecycler.mValue);
}

MemoryRecycler::MemoryRecycler() : mCurrentSize(0), mMaxSize(kDefaultLimit)
{
}

MemoryRecycler::~MemoryRecycler()
{
    Purge(0);
}

ObjectPtr<MemoryRecycler, AtomicValue> MemoryRecycler::Instance()
{
    return sMemoryRecycler.mValue;
}

// These helpers are inline: on a hit, a call through the procedure linkage table would cost as much as the helpers
// themselves.

inline void MemoryRecycler::ReleaseAll(Pool& ioBuffers)
{
    for (MemoryBuffer& buffer : ioBuffers) {
        buffer.Release();
    }
    ioBuffers.clear();
}

// Moves the oldest buffers to outEvicted until the rest plus inExtra bytes fit the limit.
inline void MemoryRecycler::EvictUntilFits(std::size_t inExtra, Pool& outEvicted)
{
    const std::size_t allowed = inExtra < mMaxSize ? mMaxSize - inExtra : 0;
    while (!mPool.empty() && mCurrentSize > allowed) {
        mCurrentSize -= mPool.back().mSize;
        outEvicted.splice(outEvicted.end(), mPool, --mPool.end());
    }
}

inline void MemoryRecycler::AddAtFront(const MemoryBuffer& inBuffer)
{
    if (mSpareNodes.empty()) {
        mPool.push_front(inBuffer);
        return;
    }
    mSpareNodes.front() = inBuffer;
    mPool.splice(mPool.begin(), mSpareNodes, mSpareNodes.begin());
}

inline void MemoryRecycler::Remove(Pool::iterator inAt)
{
    if (mSpareNodes.size() < kMaxSpareNodes) {
        mSpareNodes.splice(mSpareNodes.begin(), mPool, inAt);
    } else {
        mPool.erase(inAt);
    }
}

// Removes the most recent buffer of exactly this size from the pool and returns it. On a miss, evicts until the pool
// plus this size fits the limit, because the caller then allocates that size outside the pool.
inline bool MemoryRecycler::TakeFromPool(std::size_t inSize, MemoryBuffer& outBuffer, Pool& outEvicted)
{
    const CriticalSectionLock lock(mLock);
    for (Pool::iterator i = mPool.begin(); i != mPool.end(); ++i) {
        if (i->mSize == inSize) {
            outBuffer = *i;
            Remove(i);
            mCurrentSize -= inSize;
            return true;
        }
    }
    EvictUntilFits(inSize, outEvicted);
    return false;
}

// Returns false if there is no memory for the list node. Evicts under the same lock: acquiring it twice would add a
// third to the cost of a recycled buffer.
inline bool MemoryRecycler::AddToPool(const MemoryBuffer& inBuffer, Pool& outEvicted)
{
    const CriticalSectionLock lock(mLock);
    try {
        AddAtFront(inBuffer);
    } catch (const std::bad_alloc&) {
        return false;
    }
    mCurrentSize += inBuffer.mSize;
    EvictUntilFits(0, outEvicted);
    return true;
}

MemoryBuffer MemoryRecycler::AllocateBuffer(std::size_t inSize)
{
    const bool isLarge = IsLargeBuffer(inSize);
    const std::size_t size = isLarge ? RoundBufferSize(inSize) : inSize;
    for (;;) {
        MemoryBuffer buffer;
        Pool evicted;
        if (isLarge && TakeFromPool(size, buffer, evicted)) {
            return buffer;
        }
        ReleaseAll(evicted);
        buffer.Allocate(size);
        if (buffer.mBuffer != nullptr) {
            return buffer;
        }
        if (!HostWantsAnotherTry(size)) {
            throw BadAllocation();
        }
    }
}

void MemoryRecycler::RecycleBuffer(MemoryBuffer& ioBuffer)
{
    if (!IsLargeBuffer(ioBuffer.mSize)) {
        if (ioBuffer.mBuffer != nullptr) {
            ioBuffer.Release();
        }
        return;
    }
    Pool evicted;
    if (AddToPool(ioBuffer, evicted)) {
        ReleaseAll(evicted);
    } else {
        MemoryBuffer unpooled(ioBuffer);
        unpooled.Release();
    }
}

void MemoryRecycler::ReconcileSize()
{
    Pool evicted;
    {
        const CriticalSectionLock lock(mLock);
        EvictUntilFits(0, evicted);
    }
    ReleaseAll(evicted);
}

// Unlike eviction, this frees buffers with the lock held.
std::size_t MemoryRecycler::Purge(std::size_t inBytes)
{
    const CriticalSectionLock lock(mLock);
    const std::size_t wanted = inBytes != 0 ? inBytes : mCurrentSize;
    std::size_t freed = 0;
    while (!mPool.empty()) {
        MemoryBuffer& oldest = mPool.back();
        mCurrentSize -= oldest.mSize;
        freed += oldest.mSize;
        oldest.Release();
        mPool.pop_back();
        if (freed >= wanted) {
            break;
        }
    }
    return freed;
}

std::size_t MemoryRecycler::GetSize() const
{
    const CriticalSectionLock lock(mLock);
    return mCurrentSize;
}

void MemoryRecycler::SetSize(std::size_t inBytes)
{
    {
        const CriticalSectionLock lock(mLock);
        mMaxSize = inBytes;
    }
    ReconcileSize();
}

MemoryBufferWrapper::MemoryBufferWrapper(unsigned int inSize)
    : MemoryBuffer(MemoryRecycler::Instance()->AllocateBuffer(inSize))
{
}

MemoryBufferWrapper::~MemoryBufferWrapper()
{
    MemoryRecycler::Instance()->RecycleBuffer(*this);
}

} // namespace ORL
