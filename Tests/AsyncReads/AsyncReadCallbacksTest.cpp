// Tests the callbacks of asynchronous reads: the thread that calls them, and the reads that they queue.
#include <ORLAsyncFileReader.h>

#include "AsyncReadsFixture.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <gtest/gtest.h>
#include <mutex>
#include <thread>
#include <vector>

using namespace ORL;
using namespace ORLTest;

TEST_P(AsyncReads, AllCallbacks_ComeOneAfterTheOtherOnOneThread)
{
    struct Watch
    {
        std::atomic<int> mInside{0};
        std::atomic<int> mOverlaps{0};
        std::mutex mMutex;
        std::vector<std::thread::id> mThreads;

        static void OnRead(const AsyncFileReader*, unsigned __int64, unsigned int, unsigned int, void*, void* inWatch,
                           void*, void*, int)
        {
            Watch& watch = *static_cast<Watch*>(inWatch);
            watch.mOverlaps += ++watch.mInside != 1;
            std::this_thread::yield();
            const std::lock_guard<std::mutex> lock(watch.mMutex);
            watch.mThreads.push_back(std::this_thread::get_id());
            --watch.mInside;
        }
    };
    Watch watch;
    AsyncFileReader first;
    AsyncFileReader second;
    ASSERT_EQ(kSuccess, AsyncFileReader::Open(MakeClip("first.mov", kBlock), first));
    ASSERT_EQ(kSuccess, AsyncFileReader::Open(MakeClip("second.mov", kBlock), second));
    const AlignedBuffer buffer(64 * kReadAlignment);
    for (unsigned i = 0; i < 64; ++i) {
        (i % 2 == 0 ? first : second)
            .QueueReadRequest(0, kReadAlignment, buffer.Get() + i * kReadAlignment, &Watch::OnRead, &watch, nullptr,
                              nullptr);
    }
    first.WaitForPendingReads();
    second.WaitForPendingReads();
    EXPECT_EQ(0, watch.mOverlaps.load());
    ASSERT_EQ(64u, watch.mThreads.size());
    EXPECT_EQ(64, std::count(watch.mThreads.begin(), watch.mThreads.end(), watch.mThreads[0]));
    EXPECT_NE(std::this_thread::get_id(), watch.mThreads[0]);
}

TEST_P(AsyncReads, Callback_MayQueueAtAnotherReader)
{
    struct Chain
    {
        AsyncFileReader mSecond;
        AlignedBuffer mBuffer{kBlock};
        Deliveries mDeliveries;

        static void OnRead(const AsyncFileReader*, unsigned __int64, unsigned int, unsigned int, void*, void* inChain,
                           void*, void*, int)
        {
            Chain& chain = *static_cast<Chain*>(inChain);
            chain.mSecond.QueueReadRequest(kBlock, kBlock, chain.mBuffer.Get(), &Deliveries::OnRead, &chain.mDeliveries,
                                           nullptr, nullptr);
        }
    };
    Chain chain;
    AsyncFileReader first;
    ASSERT_EQ(kSuccess, AsyncFileReader::Open(MakeClip("first.mov", kBlock), first));
    ASSERT_EQ(kSuccess, AsyncFileReader::Open(MakeClip("second.mov", 2 * kBlock), chain.mSecond));
    const AlignedBuffer buffer(kBlock);
    first.QueueReadRequest(0, kBlock, buffer.Get(), &Chain::OnRead, &chain, nullptr, nullptr);
    first.WaitForPendingReads();
    chain.mSecond.WaitForPendingReads();
    ASSERT_EQ(1u, chain.mDeliveries.All().size());
    EXPECT_EQ(kBlock, FirstWrongByte(chain.mBuffer.Get(), kBlock, kBlock));
}

TEST_P(AsyncReads, NullCallback_StillLeavesTheListAndFreesItsRecord)
{
    AsyncFileReader reader;
    ASSERT_EQ(kSuccess, AsyncFileReader::Open(MakeClip("clip.mov", kBlock), reader));
    const AlignedBuffer buffer(kBlock);
    ASSERT_EQ(0, reader.QueueReadRequest(0, kBlock, buffer.Get(), nullptr, nullptr, nullptr, nullptr));
    reader.WaitForPendingReads();
    EXPECT_EQ(kBlock, FirstWrongByte(buffer.Get(), kBlock, 0));
    // TearDown waits for the thread that frees the read's record, then checks that the record is free.
}

TEST_P(AsyncReads, CallbackThatQueuesTheNextRead_StreamsTheWholeFile)
{
    struct Stream
    {
        AsyncFileReader mReader;
        AlignedBuffer mBuffer{kBlock};
        std::uint64_t mSize = 0;
        std::uint64_t mNext = 0;
        std::uint64_t mWrong = 0;

        static void OnRead(const AsyncFileReader*, unsigned __int64 inPosition, unsigned int, unsigned int inBytesRead,
                           void* inBuffer, void* inStream, void*, void*, int)
        {
            Stream& stream = *static_cast<Stream*>(inStream);
            const unsigned char* const bytes = static_cast<unsigned char*>(inBuffer);
            stream.mWrong += FirstWrongByte(bytes, inBytesRead, inPosition) != inBytesRead;
            stream.mNext = inPosition + inBytesRead;
            if (stream.mNext < stream.mSize) {
                stream.Queue();
            }
        }

        void Queue() { mReader.QueueReadRequest(mNext, kBlock, mBuffer.Get(), &OnRead, this, nullptr, nullptr); }
    };
    Stream stream;
    stream.mSize = 20 * kBlock;
    ASSERT_EQ(kSuccess, AsyncFileReader::Open(MakeClip("clip.mov", 20 * kBlock), stream.mReader));
    stream.Queue();
    stream.mReader.WaitForPendingReads();
    EXPECT_EQ(stream.mSize, stream.mNext);
    EXPECT_EQ(0u, stream.mWrong);
}
