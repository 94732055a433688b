// Floor: Memory
// Large buffers that are kept for the next one who wants the same size.
//
//   ORL::MemoryBufferWrapper buffer(1 << 20); // from the pool or from the system; back to the pool at the end of the scope
#pragma once

#include <ORLConfig.h>
#include <ORLCriticalSection.h>
#include <ORLObjectPtr.h>
#include <tvxcore/SmallBlockAllocator.h>

#include <cstddef>
#include <list>

namespace ORL {

class MemoryRecycler;

/// A piece of memory, as a plain value: copies speak of the same memory, and nothing is freed by itself.
///
/// From 8192 bytes on a buffer is large: its size is rounded up (to a multiple of 4096, from 1048576 on of 16384), and its
/// memory comes in whole pages straight from the system where that can be had.
class ORL_API MemoryBuffer
{
public:
    MemoryBuffer() : mBuffer(nullptr), mSize(0), mIsVirtual(false) {}

    void* GetBuffer() const { return mBuffer; }

    /// Bytes, after rounding.
    std::size_t GetSize() const { return mSize; }

    /// True when the memory came straight from the system, and not from the small block allocator.
    bool IsVirtual() const { return mIsVirtual; }

protected:
    /// Gets memory for an empty buffer. Without any it stays empty, without a word.
    void Allocate(std::size_t inSize);

    /// Frees the memory, the way it was had, and clears mBuffer and mSize.
    void Release();

    void* mBuffer;
    std::size_t mSize;
    bool mIsVirtual;

    friend class MemoryRecycler;
};

/// The process's pool of large buffers, made at the start of the library and dropped at its stop; a counted copy keeps it
/// alive beyond. Every operation may be called from any thread.
class ORL_API MemoryRecycler
{
public:
    /// An empty pool with a limit of 50000000 bytes.
    MemoryRecycler();

    /// Frees everything.
    ~MemoryRecycler();

    MemoryRecycler(const MemoryRecycler&) = delete;
    MemoryRecycler& operator=(const MemoryRecycler&) = delete;

    /// A counted copy of the pool; empty while the library is not started. Read without a lock: not to be called while
    /// another thread starts or stops the library.
    static ObjectPtr<MemoryRecycler, AtomicValue> Instance();

    /// A buffer of inSize bytes, of at least 8192 after rounding: the one of exactly that size that was returned last, else
    /// a new one. When there is no memory the error manager is asked, and where it does not want another try
    /// std::bad_alloc leaves, with the text "bad allocation". The contents are those of the earlier user.
    MemoryBuffer AllocateBuffer(std::size_t inSize);

    /// Takes a buffer back. A large one enters the pool, and the oldest leave it until the limit holds. The fields of
    /// ioBuffer stay as they are, but the memory is given away. Never throws.
    void RecycleBuffer(MemoryBuffer& ioBuffer);

    /// Frees pooled buffers, oldest first, until inBytes are free or the pool is empty; 0 frees all. Gives the bytes freed,
    /// which may be more.
    std::size_t Purge(std::size_t inBytes);

    /// The bytes now in the pool. Not the limit that SetSize sets.
    std::size_t GetSize() const;

    /// Sets the limit, and frees the oldest buffers until it holds.
    void SetSize(std::size_t inBytes);

private:
    using Pool = std::list<MemoryBuffer, tvxcore::utility::SmallBlockAllocator::STLAllocator<MemoryBuffer>>;

    bool TakeFromPool(std::size_t inSize, MemoryBuffer& outBuffer, Pool& outEvicted);
    bool AddToPool(const MemoryBuffer& inBuffer, Pool& outEvicted);
    void AddAtFront(const MemoryBuffer& inBuffer);
    void Remove(Pool::iterator inAt);
    void EvictUntilFits(std::size_t inExtra, Pool& outEvicted);
    void ReconcileSize();
    static void ReleaseAll(Pool& ioBuffers);

    Pool mPool; // the most recently returned at the front
    std::size_t mCurrentSize;
    std::size_t mMaxSize;
    CriticalSection mLock; // guards all of the above, and what follows
    Pool mSpareNodes;      // empty ones: a buffer that goes and comes back costs no memory operation
};

/// A buffer of the pool, for a scope. Needs a started library.
class ORL_API MemoryBufferWrapper : public MemoryBuffer
{
public:
    /// Failure leaves as of MemoryRecycler::AllocateBuffer.
    explicit MemoryBufferWrapper(unsigned int inSize);
    ~MemoryBufferWrapper();

    MemoryBufferWrapper(const MemoryBufferWrapper&) = delete;
    MemoryBufferWrapper& operator=(const MemoryBufferWrapper&) = delete;
};

} // namespace ORL
