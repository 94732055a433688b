// Floor: Threads
// The fixed pool that the records of asynchronous reads come from.
#pragma once

#include <ORLDebug.h>
#include <Sync/Policy.h>

#include <cstddef>
#include <cstdint>

namespace ORL {

/// A number of records of one kind, lent without a lock. It never fails and never grows: when all records are taken,
/// the thread that wants one sleeps in steps of 10 ms until one is free.
///
/// Request:      what a record lends; default-constructible, and kept as its last owner left it.
/// kRecordCount: a power of two, so that the rotating index may wrap.
/// Threads:      every operation may be called from any thread.
/// A pool of static life whose requests are zero at first is zeroed at load, before any code runs:
///   static AsyncReadRequestPool<AsyncReadRequest, 2048> sRequestPool;
template <class Request, std::uint32_t kRecordCount, class Policy = Sync::SystemPolicy>
class AsyncReadRequestPool
{
    static_assert(kRecordCount != 0 && (kRecordCount & (kRecordCount - 1)) == 0, "the index wraps at a power of two");

public:
    constexpr AsyncReadRequestPool() = default;

    /// The search begins at that index.
    explicit AsyncReadRequestPool(std::uint32_t inNextIndex) : mNextIndex(inNextIndex) {}

    AsyncReadRequestPool(const AsyncReadRequestPool&) = delete;
    AsyncReadRequestPool& operator=(const AsyncReadRequestPool&) = delete;

    /// A request that belongs to the caller until FreeAsyncReadRequest. Never null. The caller fills in every field.
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

    /// Gives a request of this pool back. Input contract "inRequest != NULL"; a request that is not taken is reported
    /// by an assertion.
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

    /// How many records are taken at this moment.
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
        typename Policy::Word mBusy{0}; // 1 while the record is taken
        Request mRequest{};
    };

    static std::uint32_t AtomicRead(typename Policy::Word& ioWord) { return Policy::ReadWord(ioWord); }

    static bool Claim(Record& ioRecord)
    {
        if (Policy::Keeps(Sync::Step::kRequestPoolClaims)) {
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
    typename Policy::Word mNextIndex{0}; // only its value modulo the number of records is used
};

} // namespace ORL
