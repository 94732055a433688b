#include <ORLMemoryRecycler.h>

#include <BadAllocation.h>
#include <Immortal.h>
#include <MemoryBufferSizes.h>
#include <MemoryRecyclerLifecycle.h>
#include <tvxcore/ErrorManager.h>

#include <new>

namespace ORL {

namespace {

constexpr std::size_t kDefaultLimit = 50000000;
constexpr std::size_t kMostSpareNodes = 16;

// Changed under the foundation lock alone. A host that ends without stopping the library may have threads that use it to the
// end.
Immortal<ObjectPtr<MemoryRecycler, AtomicValue>> sMemoryRecycler;

// True when the host has made room and wants another try.
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

MemoryRecycler::MemoryRecycler() : mCurrentSize(0), mMaxSize(kDefaultLimit) {}

MemoryRecycler::~MemoryRecycler()
{
    Purge(0);
}

ObjectPtr<MemoryRecycler, AtomicValue> MemoryRecycler::Instance()
{
    return sMemoryRecycler.mValue;
}

// The helpers are inline, since a call through the table of exported symbols costs a hit as much as all they do.

inline void MemoryRecycler::ReleaseAll(Pool& ioBuffers)
{
    for (MemoryBuffer& buffer : ioBuffers) {
        buffer.Release();
    }
    ioBuffers.clear();
}

// Moves the oldest buffers out until the rest and inExtra more bytes are within the limit. The lock is held.
inline void MemoryRecycler::EvictUntilFits(std::size_t inExtra, Pool& outEvicted)
{
    const std::size_t allowed = inExtra < mMaxSize ? mMaxSize - inExtra : 0;
    while (!mPool.empty() && mCurrentSize > allowed) {
        mCurrentSize -= mPool.back().mSize;
        outEvicted.splice(outEvicted.end(), mPool, --mPool.end());
    }
}

// The lock is held.
inline void MemoryRecycler::AddAtFront(const MemoryBuffer& inBuffer)
{
    if (mSpareNodes.empty()) {
        mPool.push_front(inBuffer);
        return;
    }
    mSpareNodes.front() = inBuffer;
    mPool.splice(mPool.begin(), mSpareNodes, mSpareNodes.begin());
}

// The lock is held.
inline void MemoryRecycler::Remove(Pool::iterator inAt)
{
    if (mSpareNodes.size() < kMostSpareNodes) {
        mSpareNodes.splice(mSpareNodes.begin(), mPool, inAt);
    } else {
        mPool.erase(inAt);
    }
}

// A buffer of exactly that size, the most recent first. On a miss the pool makes room, so that what is now allocated
// stays inside the limit although it is not in the pool.
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

// False when there is no memory to remember the buffer by. The limit is seen to under the same hold of the lock: to take it
// a second time would be a third of the cost of a buffer that goes and comes back.
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

// Unlike the eviction, this frees with the lock held.
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
