// Tests AsyncFileReader: the data that reads deliver, and waiting for reads.
#include <ORLAsyncFileReader.h>

#include "AsyncReadsFixture.h"

#include <Sync/Policy.h>
#include <Threads/WaitableGatePoolAlgorithm.h>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

using namespace ORL;
using namespace ORLTest;

INSTANTIATE_TEST_SUITE_P(Engine, AsyncReads, testing::ValuesIn(AsyncEngineNames()), NameOfEngine);

TEST_P(AsyncReads, OneRead_DeliversEveryValueAsQueued)
{
    AsyncFileReader reader;
    ASSERT_EQ(kSuccess, AsyncFileReader::Open(MakeClip("clip.mov", 3 * kBlock), reader));
    EXPECT_GE(reader.GetDiskSectorSize(), 512u);
    const AlignedBuffer buffer(kBlock);
    Deliveries deliveries;
    int second = 0;
    int third = 0;
    ASSERT_EQ(0,
              reader.QueueReadRequest(kBlock, kBlock, buffer.Get(), &Deliveries::OnRead, &deliveries, &second, &third));
    reader.WaitForPendingReads();
    const std::vector<Delivered> all = deliveries.All();
    ASSERT_EQ(1u, all.size());
    EXPECT_EQ(&reader, all[0].mReader);
    EXPECT_EQ(kBlock, all[0].mPosition);
    EXPECT_EQ(kBlock, all[0].mSize);
    EXPECT_EQ(kBlock, all[0].mBytesRead);
    EXPECT_EQ(buffer.Get(), all[0].mBuffer);
    EXPECT_EQ(&second, all[0].mUserData2);
    EXPECT_EQ(&third, all[0].mUserData3);
    EXPECT_EQ(kSuccess, all[0].mResult);
    EXPECT_EQ(kBlock, FirstWrongByte(buffer.Get(), kBlock, kBlock));
}

TEST_P(AsyncReads, ManyInFlight_EachDeliversItsOwnBytes)
{
    constexpr std::size_t kReads = 64;
    AsyncFileReader reader;
    ASSERT_EQ(kSuccess, AsyncFileReader::Open(MakeClip("clip.mov", kReads * kBlock), reader));
    std::vector<AlignedBuffer> buffers;
    Deliveries deliveries;
    for (std::size_t i = 0; i < kReads; ++i) {
        buffers.emplace_back(kBlock);
    }
    for (std::size_t i = 0; i < kReads; ++i) {
        ASSERT_EQ(0, reader.QueueReadRequest(i * kBlock, kBlock, buffers[i].Get(), &Deliveries::OnRead, &deliveries,
                                             nullptr, nullptr));
    }
    reader.WaitForPendingReads();
    ASSERT_EQ(kReads, deliveries.All().size());
    for (const Delivered& delivered : deliveries.All()) {
        EXPECT_EQ(kSuccess, delivered.mResult);
        EXPECT_EQ(kBlock, delivered.mBytesRead);
        EXPECT_EQ(kBlock, FirstWrongByte(static_cast<unsigned char*>(delivered.mBuffer), kBlock, delivered.mPosition));
    }
}

TEST_P(AsyncReads, FileThatIsNoWholeNumberOfSectors_LastReadComesShort)
{
    AsyncFileReader reader;
    ASSERT_EQ(kSuccess, AsyncFileReader::Open(MakeClip("clip.mov", kBlock + 1000), reader));
    const AlignedBuffer buffer(kBlock);
    const Delivered last = ReadOne(reader, kBlock, kBlock, buffer);
    EXPECT_EQ(kSuccess, last.mResult);
    EXPECT_EQ(1000u, last.mBytesRead);
    EXPECT_EQ(1000u, FirstWrongByte(buffer.Get(), 1000, kBlock));
}

TEST_P(AsyncReads, FileOfOneByte_IsRead)
{
    AsyncFileReader reader;
    ASSERT_EQ(kSuccess, AsyncFileReader::Open(MakeClip("one", 1), reader));
    const AlignedBuffer buffer(kReadAlignment);
    const Delivered only = ReadOne(reader, 0, kReadAlignment, buffer);
    EXPECT_EQ(kSuccess, only.mResult);
    EXPECT_EQ(1u, only.mBytesRead);
    EXPECT_EQ(ByteAt(0), buffer.Get()[0]);
}

TEST_P(AsyncReads, NothingInFlight_WaitReturnsAtOnceAndCloseMayComeTwice)
{
    AsyncFileReader reader;
    reader.WaitForPendingReads();
    reader.Close();
    ASSERT_EQ(kSuccess, AsyncFileReader::Open(MakeClip("clip.mov", 10), reader));
    reader.WaitForPendingReads();
    reader.Close();
    reader.Close();
}

TEST_P(AsyncReads, NothingInFlight_WaitTakesNoGate)
{
    using Pool = Sync::WaitableGatePoolAlgorithm<Sync::SystemPolicy>;
    std::vector<WaitableGate*> gates;
    do {
        gates.push_back(WaitableGatePool::RetrieveGate());
    } while (Pool::sPool.load()->CountIdleGates() != 0);
    AsyncFileReader reader;
    ASSERT_EQ(kSuccess, AsyncFileReader::Open(MakeClip("clip.mov", 10), reader));
    reader.WaitForPendingReads();
    EXPECT_EQ(0u, Pool::sPool.load()->CountIdleGates()) << "a gate that was taken would have come back";
    for (WaitableGate* gate : gates) {
        gate->Open();
        WaitableGatePool::ReturnGate(gate);
    }
}

TEST_P(AsyncReads, FileThatShrinks_GivesWhatIsLeft)
{
    AsyncFileReader reader;
    ASSERT_EQ(kSuccess, AsyncFileReader::Open(MakeClip("clip.mov", 4 * kBlock), reader));
    const AlignedBuffer buffer(kBlock);
    EXPECT_EQ(kBlock, ReadOne(reader, kBlock, kBlock, buffer).mBytesRead);
    std::filesystem::resize_file(mFolder.Host() / "clip.mov", kBlock + 5000);
    const Delivered crossing = ReadOne(reader, kBlock, kBlock, buffer);
    EXPECT_EQ(kSuccess, crossing.mResult);
    EXPECT_EQ(5000u, crossing.mBytesRead);
    EXPECT_EQ(5000u, FirstWrongByte(buffer.Get(), 5000, kBlock));
}

TEST_P(AsyncReads, PositionsBeyondFourGigabytes_AreSplitAndPutTogetherAgain)
{
    constexpr std::uint64_t kFar = (std::uint64_t{5} << 30) + kBlock;
    const UTF16String path = MakeClip("sparse.mov", 10);
    {
        std::fstream file(mFolder.Host() / "sparse.mov", std::ios::binary | std::ios::in | std::ios::out);
        file.seekp(static_cast<std::streamoff>(kFar));
        ASSERT_TRUE(file << "far");
    }
    AsyncFileReader reader;
    ASSERT_EQ(kSuccess, AsyncFileReader::Open(path, reader));
    const AlignedBuffer buffer(kBlock);
    const Delivered far = ReadOne(reader, kFar, kBlock, buffer);
    EXPECT_EQ(kFar, far.mPosition);
    EXPECT_EQ(3u, far.mBytesRead);
    EXPECT_EQ("far", std::string(buffer.Get(), buffer.Get() + 3));
}

TEST_P(AsyncReads, ReaderDestroyedWithReadsInFlight_WaitsForThem)
{
    const UTF16String path = MakeClip("clip.mov", 32 * kBlock);
    const AlignedBuffer buffer(32 * kBlock);
    Deliveries deliveries;
    {
        AsyncFileReader reader;
        ASSERT_EQ(kSuccess, AsyncFileReader::Open(path, reader));
        for (unsigned i = 0; i < 32; ++i) {
            reader.QueueReadRequest(i * kBlock, kBlock, buffer.Get() + i * kBlock, &Deliveries::OnRead, &deliveries,
                                    nullptr, nullptr);
        }
    }
    EXPECT_EQ(32u, deliveries.All().size());
    EXPECT_EQ(32 * kBlock, FirstWrongByte(buffer.Get(), 32 * kBlock, 0));
}

TEST_P(AsyncReads, TwoThreadsInWait_BothReturn)
{
    AsyncFileReader reader;
    ASSERT_EQ(kSuccess, AsyncFileReader::Open(MakeClip("clip.mov", 16 * kBlock), reader));
    const AlignedBuffer buffer(16 * kBlock);
    for (int round = 0; round < 20; ++round) {
        Deliveries deliveries;
        for (unsigned i = 0; i < 16; ++i) {
            reader.QueueReadRequest(i * kBlock, kBlock, buffer.Get() + i * kBlock, &Deliveries::OnRead, &deliveries,
                                    nullptr, nullptr);
        }
        const auto wait = [&] {
            reader.WaitForPendingReads();
            EXPECT_EQ(16u, deliveries.All().size());
        };
        std::thread first(wait);
        std::thread second(wait);
        first.join();
        second.join();
    }
}

TEST_P(AsyncReads, AllRecordsInFlightAndOneMore_TheOneMoreWaitsUntilOneHasCompleted)
{
    constexpr unsigned kRecords = 2048;
    AsyncFileReader reader;
    ASSERT_EQ(kSuccess, AsyncFileReader::Open(MakeClip("clip.mov", kReadAlignment), reader));
    const AlignedBuffer buffer((kRecords + 1) * kReadAlignment);
    struct Latch
    {
        std::mutex mMutex;
        std::condition_variable mChanged;
        bool mIsReleased = false;
        std::atomic<unsigned> mCalls{0};

        static void OnRead(const AsyncFileReader*, unsigned __int64, unsigned int, unsigned int, void*, void* inLatch,
                           void*, void*, int)
        {
            Latch& latch = *static_cast<Latch*>(inLatch);
            std::unique_lock<std::mutex> lock(latch.mMutex);
            latch.mChanged.wait(lock, [&latch] { return latch.mIsReleased; });
            ++latch.mCalls;
        }
    };
    Latch latch;
    for (unsigned i = 0; i < kRecords; ++i) {
        ASSERT_EQ(0, reader.QueueReadRequest(0, kReadAlignment, buffer.Get() + i * kReadAlignment, &Latch::OnRead,
                                             &latch, nullptr, nullptr));
    }
    EXPECT_EQ(kRecords, TheAsyncReadRequests().CountBusyRecords());
    std::atomic<bool> hasReturned{false};
    std::thread oneMore([&] {
        reader.QueueReadRequest(0, kReadAlignment, buffer.Get() + kRecords * kReadAlignment, &Latch::OnRead, &latch,
                                nullptr, nullptr);
        EXPECT_GT(latch.mCalls.load(), 0u) << "a record was given back first";
        hasReturned = true;
    });
    EXPECT_EQ(0u, latch.mCalls.load());
    EXPECT_FALSE(hasReturned.load());
    {
        const std::lock_guard<std::mutex> lock(latch.mMutex);
        latch.mIsReleased = true;
    }
    latch.mChanged.notify_all();
    oneMore.join();
    reader.WaitForPendingReads();
    EXPECT_EQ(kRecords + 1, latch.mCalls.load());
}

TEST_P(AsyncReads, ManyReadersOnManyThreads_EachGetsItsOwnBytes)
{
    const UTF16String path = MakeClip("clip.mov", 64 * kReadAlignment);
    std::vector<std::thread> threads;
    std::atomic<int> wrong{0};
    for (unsigned seed = 0; seed < 6; ++seed) {
        threads.emplace_back([&, seed] {
            std::mt19937 random(seed);
            AsyncFileReader reader;
            wrong += AsyncFileReader::Open(path, reader) != kSuccess;
            const AlignedBuffer buffer(16 * kReadAlignment);
            for (int round = 0; round < 25; ++round) {
                Deliveries deliveries;
                std::uint64_t positions[16];
                for (unsigned i = 0; i < 16; ++i) {
                    positions[i] = random() % 64 * kReadAlignment;
                    reader.QueueReadRequest(positions[i], kReadAlignment, buffer.Get() + i * kReadAlignment,
                                            &Deliveries::OnRead, &deliveries, nullptr, nullptr);
                }
                reader.WaitForPendingReads();
                for (unsigned i = 0; i < 16; ++i) {
                    wrong += FirstWrongByte(buffer.Get() + i * kReadAlignment, kReadAlignment, positions[i])
                             != kReadAlignment;
                }
                wrong += deliveries.All().size() != 16;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(0, wrong.load());
}
