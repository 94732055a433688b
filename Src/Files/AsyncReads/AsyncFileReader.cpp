#include "AsyncFileMachinery.h"

#include <ORLDebug.h>
#include <ORLDiskUtils.h>
#include <ORLPathUtils.h>

#include <algorithm>
#include <cstddef>

namespace ORL {

using namespace AsyncFiles;
using namespace AsyncFiles::Platform;

namespace {

// The result for failures that have no named code.
constexpr Result kBareFailure = -1;

const Handle INVALID_HANDLE_VALUE = InvalidHandle();

void CloseFile(Handle& ioFile, AsyncReadBusyRequests& ioBusyRequests)
{
    if (ioFile != INVALID_HANDLE_VALUE) {
        ioBusyRequests.WaitForPendingReads();
        CloseFile_Impl(ioFile);
        ioFile = INVALID_HANDLE_VALUE;
    }
}

// Frees the request unless HandOver() is called, because queueing may fail for lack of memory or of an executor.
class RequestOwner
{
public:
    explicit RequestOwner(AsyncReadRequest& ioRequest) : mRequest(&ioRequest) {}

    ~RequestOwner()
    {
        if (mRequest == nullptr) {
            return;
        }
        if (mIsInList) {
            mRequest->mBusyRequests->Remove(mRequest);
        }
        TheAsyncReadRequests().FreeAsyncReadRequest(mRequest);
    }

    RequestOwner(const RequestOwner&) = delete;
    RequestOwner& operator=(const RequestOwner&) = delete;

    void EnterBusyList()
    {
        mRequest->mBusyRequests->Add(mRequest);
        mIsInList = true;
    }

    void HandOver() { mRequest = nullptr; }

private:
    AsyncReadRequest* mRequest;
    bool mIsInList = false;
};

Overlapped OverlappedAt(std::uint64_t inPosition)
{
    Overlapped overlapped{};
    overlapped.mPositionLow = static_cast<std::uint32_t>(inPosition);
    overlapped.mPositionHigh = static_cast<std::uint32_t>(inPosition >> 32);
    return overlapped;
}

} // namespace

AsyncFileReader::PrivateImpl::~PrivateImpl()
{
    CloseFile(mFileHandle, mBusyRequests);
}

AsyncFileReader::AsyncFileReader() : mImpl(new PrivateImpl), mDiskSectorSize(0)
{
}

AsyncFileReader::~AsyncFileReader()
{
    delete static_cast<Impl*>(mImpl);
}

int AsyncFileReader::Open(const UTF16String& inPath, AsyncFileReader& ioOpenedAsyncFileReader)
{
    ORL_INPUT_CONTRACT(sCompletionPort != NULL && sCompletionPort != INVALID_HANDLE_VALUE);
    ORL_INPUT_CONTRACT(ioOpenedAsyncFileReader.mImpl->mFileHandle == INVALID_HANDLE_VALUE);
    Handle& file = ioOpenedAsyncFileReader.mImpl->mFileHandle;
    if (sCompletionPort == nullptr || file != INVALID_HANDLE_VALUE) {
        return kBareFailure; // without a port no read could complete
    }
    if (!PathUtils::ExistsOnDisk(inPath) || PathUtils::IsDirectory(inPath)) {
        return kBareFailure;
    }
    OpenUnbuffered_Impl(PathUtils::ToNormalizedPath(inPath), file);
    if (file == INVALID_HANDLE_VALUE) {
        return kBareFailure;
    }
    AttachFile_Impl(sCompletionPort, file);

    unsigned int& sectorSize = ioOpenedAsyncFileReader.mDiskSectorSize;
    const Result result = DiskUtils::GetEfficientDiskBufferSizeFromPath(inPath, sectorSize);
    // On Linux the file and the root of its drive may be on different disks, so use the larger of the two alignments.
    sectorSize = std::max(sectorSize, GetReadAlignment_Impl(file));
    return result;
}

int AsyncFileReader::QueueReadRequest(unsigned __int64 inPosition, unsigned int inSize, void* inBuffer,
                                      ReadCallback inCallback, void* inUserData1, void* inUserData2, void* inUserData3)
{
    ORL_INPUT_CONTRACT(mImpl->mFileHandle != INVALID_HANDLE_VALUE);
    AsyncReadRequest* const request = TheAsyncReadRequests().AllocateAsyncReadRequest();
    ORL_ASSERT(request);
    if (request == nullptr) {
        return kBareFailure;
    }
    *request = AsyncReadRequest{OverlappedAt(inPosition),
                                inPosition,
                                inSize,
                                inBuffer,
                                0,
                                inCallback,
                                inUserData1,
                                inUserData2,
                                inUserData3,
                                kSuccess,
                                this,
                                &mImpl->mBusyRequests};
    RequestOwner owner(*request);
    owner.EnterBusyList();
    ORL_ASSERT(sReadThreadQueue != NULL);
    if (sReadThreadQueue == nullptr) {
        return kBareFailure;
    }
    const boost::function<void()> start = ReadStart{mImpl->mFileHandle, request};
    if (sReadThreadQueue->QueueFunction(start, 0)) {
        CountQueuedStart();
    }
    owner.HandOver();
    return kSuccess;
}

void AsyncFileReader::WaitForPendingReads()
{
    if (mImpl != nullptr) {
        mImpl->mBusyRequests.WaitForPendingReads();
    }
}

void AsyncFileReader::Close()
{
    if (mImpl != nullptr) {
        CloseFile(mImpl->mFileHandle, mImpl->mBusyRequests);
    }
}

unsigned int AsyncFileReader::GetDiskSectorSize()
{
    return mDiskSectorSize;
}

} // namespace ORL
