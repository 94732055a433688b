// Floor: Memory
// A pool that keeps large freed buffers for reuse.
//
//   ORL::MemoryBufferWrapper buffer(1 << 20); // from the pool or the system; returned at the end of the scope
#pragma once

#include <ORLConfig.h>
#include <ORLCriticalSection.h>
#include <ORLObjectPtr.h>
#include <tvxcore/SmallBlockAllocator.h>

#include <cstddef>
#include <list>

namespace ORL {

class MemoryRecycler;

/// A plain reference to a block of memory: copies refer to the same memory, and the destructor frees nothing.
///
/// Buffers of 8192 bytes and more are large: their size is rounded up (to a multiple of 4096, or of 16384 for 1048576
/// bytes and more), and their memory is allocated in whole pages from the system if possible.
///
/// Alignment: a buffer for which IsVirtual is true starts at a multiple of 4096 bytes, as unbuffered reads require on
/// volumes with sectors up to that size. Every other buffer, including a large one for which the system had no pages,
/// is aligned only for every fundamental type, to 16 bytes.
class ORL_API MemoryBuffer
{
public:
    MemoryBuffer() : mBuffer(nullptr), mSize(0), mIsVirtual(false) {}

    void* GetBuffer() const { return mBuffer; } ///< returns the memory; null if there is none

    /// Returns the size in bytes, after rounding.
    std::size_t GetSize() const { return mSize; }

    /// Returns whether the memory came directly from the system, not from the small block allocator.
    bool IsVirtual() const { return mIsVirtual; }

protected:
    /// Allocates memory for an empty buffer. If out of memory, leaves the buffer empty and reports no error.
    void Allocate(std::size_t inSize);

    /// Frees the memory and clears mBuffer and mSize.
    void Release();

    void* mBuffer;     ///< the memory, or null
    std::size_t mSize; ///< in bytes
    bool mIsVirtual;   ///< whether the memory came directly from the system

    friend class MemoryRecycler;
};

/// The process's pool of large buffers.
///
/// Owner:    starting the library creates it and stopping releases it; a counted reference keeps it alive.
/// Threads:  thread-safe, except Instance.
/// Failure:  AllocateBuffer throws std::bad_alloc.
class ORL_API MemoryRecycler
{
public:
    /// Creates an empty pool with a limit of 50000000 bytes.
    MemoryRecycler();

    /// Frees all pooled buffers.
    ~MemoryRecycler();

    MemoryRecycler(const MemoryRecycler&) = delete;
    MemoryRecycler& operator=(const MemoryRecycler&) = delete;

    /// Returns a counted reference to the pool, or an empty pointer if the library is not started. Takes no lock: do
    /// not call it while another thread starts or stops the library.
    static ObjectPtr<MemoryRecycler, AtomicValue> Instance();

    /// Returns a buffer of inSize bytes: for a large size the most recently returned pooled buffer of exactly the
    /// rounded size, else a new one. If out of memory, asks the error manager whether to retry; if not, throws
    /// std::bad_alloc, whose what() is "bad allocation". The memory is not cleared.
    MemoryBuffer AllocateBuffer(std::size_t inSize);

    /// Frees a small buffer and clears ioBuffer. Adds a large one to the pool, which then frees its oldest buffers
    /// until it meets the limit; ioBuffer keeps its fields, but the memory no longer belongs to it. Never throws.
    void RecycleBuffer(MemoryBuffer& ioBuffer);

    /// Frees pooled buffers, oldest first, until at least inBytes are freed or the pool is empty; 0 frees all. Returns
    /// the number of bytes freed.
    std::size_t Purge(std::size_t inBytes);

    /// Returns the number of bytes in the pool now, not the limit that SetSize sets.
    std::size_t GetSize() const;

    /// Sets the limit, and frees the oldest buffers until the pool meets it.
    void SetSize(std::size_t inBytes);

private:
    using Pool = std::list<MemoryBuffer, tvxcore::utility::SmallBlockAllocator::STLAllocator<MemoryBuffer>>;

    bool TakeFromPool(std::size_t inSize, MemoryBuffer& outBuffer, Pool& outEvicted);
    bool AddToPool(const MemoryBuffer& inBuffer, Pool& outEvicted);
    void AddAtFront(const MemoryBuffer& inBuffer) TVXCORE_REQUIRES(mLock);
    void Remove(Pool::iterator inAt) TVXCORE_REQUIRES(mLock);
    void EvictUntilFits(std::size_t inExtra, Pool& outEvicted) TVXCORE_REQUIRES(mLock);
    void ReconcileSize();
    static void ReleaseAll(Pool& ioBuffers);

    Pool mPool TVXCORE_GUARDED_BY(mLock); // the most recently returned first
    std::size_t mCurrentSize TVXCORE_GUARDED_BY(mLock);
    std::size_t mMaxSize TVXCORE_GUARDED_BY(mLock);
    CriticalSection mLock;
    Pool mSpareNodes TVXCORE_GUARDED_BY(mLock); // empty list nodes: reusing one saves an allocation
};

/// A scoped buffer from the pool. The library must be started.
///
/// Owner:    the object owns its memory; the destructor returns it to the pool.
/// Threads:  one thread at a time per object.
/// Failure:  the constructor throws std::bad_alloc.
class ORL_API MemoryBufferWrapper : public MemoryBuffer
{
public:
    /// Throws what MemoryRecycler::AllocateBuffer throws.
    explicit MemoryBufferWrapper(unsigned int inSize);
    ~MemoryBufferWrapper();

    MemoryBufferWrapper(const MemoryBufferWrapper&) = delete;
    MemoryBufferWrapper& operator=(const MemoryBufferWrapper&) = delete;
};

} // namespace ORL
