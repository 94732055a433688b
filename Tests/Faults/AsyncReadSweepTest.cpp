// Fails each allocation that the asynchronous reader makes on the caller's thread.
#include "FilesSweep.h"

#include <Files/AsyncFileReaderImpl.h>
#include <ORLAsyncFileReader.h>
#include <ORLResult.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <new>
#include <thread>

using namespace ORL;
using namespace ORLTest;

namespace {

constexpr unsigned kSize = 65536;

struct Watch
{
    std::atomic<unsigned> mCalls{0};
    std::atomic<unsigned> mBytes{0};
    std::atomic<int> mResult{1};

    static void OnRead(const AsyncFileReader*, unsigned __int64, unsigned int, unsigned int inBytesRead, void*,
                       void* inWatch, void*, void*, int inResult)
    {
        Watch& watch = *static_cast<Watch*>(inWatch);
        ++watch.mCalls;
        watch.mBytes = inBytesRead;
        watch.mResult = inResult;
    }
};

// The executor's thread frees the request to start a read only after it has started the read. By then the read may be
// complete and its callback may have returned, so the small blocks of a round are counted only after this wait.
class WaitForFreedStart
{
public:
    WaitForFreedStart() = default;

    ~WaitForFreedStart()
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (OutstandingMemory(FaultyAllocator::kSmallBlocks) > mBefore && std::chrono::steady_clock::now() < end) {
            std::this_thread::yield();
        }
    }

    WaitForFreedStart(const WaitForFreedStart&) = delete;
    WaitForFreedStart& operator=(const WaitForFreedStart&) = delete;

private:
    const std::int64_t mBefore = OutstandingMemory(FaultyAllocator::kSmallBlocks);
};

class AsyncReadSweep : public FilesSweep
{
protected:
    AsyncReadSweep()
    {
        mFolder.MakeFile("clip", std::string(kSize, 'c'));
        StartupAsyncFileOperations();
    }

    ~AsyncReadSweep() override
    {
        TerminateAsyncFileOperations();
        EXPECT_EQ(0u, TheAsyncReadRequests().CountBusyRecords());
    }

    const UTF16String mClip = mFolder.Path(u"clip");
    alignas(4096) char mBuffer[kSize];
};

} // namespace

TEST_F(AsyncReadSweep, OpenReadWaitAndClose)
{
    SweepReadOnly([this] {
        const WaitForFreedStart wait; // first, so that its destructor runs last, even after an exception
        AsyncFileReader reader;
        if (AsyncFileReader::Open(mClip, reader) != kSuccess) {
            return;
        }
        EXPECT_NE(0u, reader.GetDiskSectorSize());
        Watch watch;
        EXPECT_EQ(0, reader.QueueReadRequest(0, kSize, mBuffer, &Watch::OnRead, &watch, nullptr, nullptr));
        reader.WaitForPendingReads();
        EXPECT_EQ(1u, watch.mCalls);
        EXPECT_EQ(kSize, watch.mBytes);
        EXPECT_EQ(kSuccess, watch.mResult);
        reader.Close();
    });
}
