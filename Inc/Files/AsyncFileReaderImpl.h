// The implementation of AsyncFileReader: the records of a reader and of a read, and the start and stop of
// asynchronous reads.
#pragma once

#include <ORLAsyncFileReader.h>
#include <ORLImpl.h>
#include <ORLResult.h>

#include <Platform/AsyncFiles.h>
#include <Threads/AsyncReadRequestBusyList.h>
#include <Threads/AsyncReadRequestPool.h>

#include <cstdint>

namespace ORL {

/// Creates the completion port, the completion thread and the executor that starts reads. Fires an input contract if
/// the three already exist. Undoes everything if creating the executor throws.
void StartupAsyncFileOperations();

/// Stops and destroys the port, the thread and the executor. Callbacks for completions that are already queued at the
/// port still run. Close all readers first: reads still in flight are not reported.
void TerminateAsyncFileOperations();

struct AsyncReadRequest;
using AsyncReadBusyRequests = AsyncReadRequestBusyList<AsyncReadRequest>;

/// The record of a read, from QueueReadRequest until its callback has returned.
struct AsyncReadRequest
{
    AsyncFiles::Platform::Overlapped mOverlapped; // must be first: the port's Overlapped* is cast to the request
    std::uint64_t mFilePosition;
    std::uint32_t mSize;
    void* mBuffer; // owned by the caller
    std::uint32_t mReserved;
    AsyncFileReader::ReadCallback mCallback; // may be null
    void* mUserData1;
    void* mUserData2;
    void* mUserData3;
    Result mResult; // kSuccess unless the read failed to start
    AsyncFileReader* mReader;
    AsyncReadBusyRequests* mBusyRequests; // the list that holds this request
};

struct ORL_LOCAL AsyncFileReader::PrivateImpl : Impl
{
    ~PrivateImpl() override;

    AsyncFiles::Platform::Handle mFileHandle = AsyncFiles::Platform::InvalidHandle();
    AsyncReadBusyRequests mBusyRequests;
};

/// The process's pool, with 2048 records.
using AsyncReadRequests = AsyncReadRequestPool<AsyncReadRequest, 2048>;
AsyncReadRequests& TheAsyncReadRequests();

} // namespace ORL
