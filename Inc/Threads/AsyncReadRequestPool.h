// The fixed pool for the records of asynchronous reads.
#pragma once

#include <ORLDebug.h>
#include <Sync/Policy.h>

#include <cstddef>
#include <cstdint>

namespace ORL {

/// A fixed number of records, allocated without a lock. The pool never fails and never grows: if all records are in
/// use, the caller sleeps in steps of 10 ms until one is free.
///
/// Request:      the type of a record; default-constructible. A reused record keeps its old contents.
/// kRecordCount: a power of two, so that the rotating index may wrap.
/// Threads:      thread-safe.
/// A static pool whose requests are initially zero is zero-initialised at load, before any code runs:
///   static AsyncReadRequestPool<AsyncReadRequest, 2048> sRequestPool;
template <class Request, std::uint32_t kRecordCount, class Policy = Sync::SystemPolicy>
class AsyncReadRequestPool
{
    static_assert(kRecordCount != 0 && (kRecordCount & (kRecordCount - 1)) == 0, "the index wraps at a power of two");

public:
    constexpr AsyncReadRequestPool() = default;

    /// Constructs a pool whose search for a free record starts at that index.
    explicit AsyncReadRequestPool(std::uint32_t inNextIndex) : mNextIndex(inNextIndex) {}

    AsyncReadRequestPool(const AsyncReadRequestPool&) = delete;
    AsyncReadRequestPool& operator=(const AsyncReadRequestPool&) = delete;

    /// Returns a request that the caller owns until FreeAsyncReadRequest. Never null. The caller must set every field.
    Request* AllocateAsyncReadRequest()
    {
        for (;;) {
            for (std::uint32_t attempt = 0; attempt < kRecordCount; ++attempt) {
                Record& record = mRecords[(Policy::Increment(mNextIndex) - 1) % kRecordCount];
                if (Claim(record)) {
                    return &record.mRequest;
                }
            }
            Policy::SleepMilliseconds(10);
        }
    }

    /// Frees a request of this pool. Fires the input contract "inRequest != NULL"; reports an assertion if the request
    /// is not in use.
    void FreeAsyncReadRequest(Request* inRequest)
    {
        ORL_INPUT_CONTRACT(inRequest != NULL);
        if (inRequest == nullptr) {
            return;
        }
        Record* const allocRecord = RecordOf(inRequest);
        ORL_ASSERT_IN(AtomicRead(allocRecord->mBusy) == 1,
                      "ORL::AsyncReadRequestPool<struct _OVERLAPPED,2048>::FreeAsyncReadRequest");
        Policy::Exchange(allocRecord->mBusy, 0);
    }

    /// Returns the number of records in use.
    std::uint32_t CountBusyRecords()
    {
        std::uint32_t count = 0;
        for (Record& record : mRecords) {
            count += AtomicRead(record.mBusy);
        }
        return count;
    }

private:
    struct Record
    {
        typename Policy::Word mBusy{0}; // 1 while the record is in use
        Request mRequest{};
    };

    static std::uint32_t AtomicRead(typename Policy::Word& ioWord) { return Policy::ReadWord(ioWord); }

    static bool Claim(Record& ioRecord)
    {
        if (Policy::Executes(Sync::Step::kRequestPoolClaims)) {
            return Policy::CompareAndSet(ioRecord.mBusy, 0, 1);
        }
        const bool wasFree = AtomicRead(ioRecord.mBusy) == 0;
        return wasFree && (Policy::Exchange(ioRecord.mBusy, 1), true);
    }

    Record* RecordOf(Request* inRequest)
    {
        const std::ptrdiff_t bytes =
            reinterpret_cast<const char*>(inRequest) - reinterpret_cast<const char*>(&mRecords[0].mRequest);
        return &mRecords[static_cast<std::size_t>(bytes) / sizeof(Record)];
    }

    Record mRecords[kRecordCount];
    typename Policy::Word mNextIndex{0}; // used modulo the number of records
};

} // namespace ORL
