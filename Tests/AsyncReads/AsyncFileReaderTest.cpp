#include <ORLAsyncFileReader.h>

#include "AsyncReadsFixture.h"

#include <CheckRecorder.h>
#include <ExpectReport.h>
#include <ORLFoundation.h>
#include <ORLHostPath.h>
#include <ORLPathUtils.h>
#include <Sync/Policy.h>
#include <TextHelpers.h>
#include <Threads/WaitableGatePoolAlgorithm.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
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

TEST_P(AsyncReads, EmptyFile_OpensAndCloses)
{
    AsyncFileReader reader;
    ASSERT_EQ(kSuccess, AsyncFileReader::Open(MakeClip("empty", 0), reader));
    reader.WaitForPendingReads();
    reader.Close();
}

TEST_P(AsyncReads, MissingFileAndDirectory_AreRefusedWithTheReaderClosed)
{
    mFolder.MakeFolder("folder");
    AsyncFileReader reader;
    EXPECT_EQ(-1, AsyncFileReader::Open(mFolder.Path(u"missing.mov"), reader));
    EXPECT_EQ(-1, AsyncFileReader::Open(mFolder.Path(u"folder"), reader));
    EXPECT_EQ(-1, AsyncFileReader::Open(mFolder.Path(u"no\\such\\folder.mov"), reader));
    EXPECT_EQ(-1, AsyncFileReader::Open(UTF16String(TVX_UTF16("relative.mov")), reader));
    EXPECT_EQ(kSuccess, AsyncFileReader::Open(MakeClip("clip.mov", 10), reader)) << "the reader holds no file yet";
}

TEST_P(AsyncReads, PathOfFourThousandCharacters_IsReachedWhereItExists)
{
    UTF16String folder = mFolder.Path();
    while (folder.size() < 3800) {
        folder += UTF16String(TVX_UTF16("\\")) + UTF16String(99, 'd');
    }
    AsyncFileReader reader;
    const UTF16String missing = folder + UTF16String(TVX_UTF16("\\")) + UTF16String(3999 - folder.size(), 'x');
    EXPECT_EQ(-1, AsyncFileReader::Open(missing, reader));

    // Uses the extended form: only it allows such a long path on every platform.
    const UTF16String extended = PathUtils::ToNormalizedPath(missing);
    std::string host;
    ASSERT_EQ(kSuccess, PathUtils::ToHostPath(extended, host));
    const std::filesystem::path path = std::filesystem::u8path(host);
    std::filesystem::create_directories(path.parent_path());
    ASSERT_TRUE(std::ofstream(path, std::ios::binary) << MakeContents(kBlock));
    ASSERT_EQ(kSuccess, AsyncFileReader::Open(missing, reader));
    const AlignedBuffer buffer(kBlock);
    EXPECT_EQ(kBlock, ReadOne(reader, 0, kBlock, buffer).mBytesRead);
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

TEST_P(AsyncReads, ClosedReader_CanBeOpenedAgain)
{
    AsyncFileReader reader;
    const AlignedBuffer buffer(kBlock);
    for (int round = 0; round < 3; ++round) {
        ASSERT_EQ(kSuccess, AsyncFileReader::Open(MakeClip("clip" + std::to_string(round), kBlock), reader));
        EXPECT_EQ(kBlock, ReadOne(reader, 0, kBlock, buffer).mBytesRead);
        reader.Close();
    }
}

TEST_P(AsyncReads, NullCallback_StillLeavesTheListAndFreesItsRecord)
{
    AsyncFileReader reader;
    ASSERT_EQ(kSuccess, AsyncFileReader::Open(MakeClip("clip.mov", kBlock), reader));
    const AlignedBuffer buffer(kBlock);
    ASSERT_EQ(0, reader.QueueReadRequest(0, kBlock, buffer.Get(), nullptr, nullptr, nullptr, nullptr));
    reader.WaitForPendingReads();
    EXPECT_EQ(kBlock, FirstWrongByte(buffer.Get(), kBlock, 0));
    // TearDown checks that the record is free, after the thread that frees it has ended.
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

TEST_P(AsyncReads, OpenReader_RefusesASecondFileWithTheInputContract)
{
    CheckRecorder recorder;
    AsyncFileReader reader;
    ASSERT_EQ(kSuccess, AsyncFileReader::Open(MakeClip("clip.mov", kBlock), reader));
    EXPECT_EQ(-1, AsyncFileReader::Open(MakeClip("other.mov", kBlock), reader));
    const std::vector<CheckReport> reports = recorder.Reports(CheckReport::kContract);
    ASSERT_EQ(1u, reports.size());
    ExpectReport(reports[0]).Expression("ioOpenedAsyncFileReader.mImpl->mFileHandle == INVALID_HANDLE_VALUE");
    const AlignedBuffer buffer(kBlock);
    EXPECT_EQ(kBlock, ReadOne(reader, 0, kBlock, buffer).mBytesRead) << "the first file is still open";
}

TEST_P(AsyncReads, StartedTwice_FiresTheInputContractAndKeepsRunning)
{
    CheckRecorder recorder;
    StartupAsyncFileOperations();
    const std::vector<CheckReport> reports = recorder.Reports(CheckReport::kContract);
    ASSERT_EQ(1u, reports.size());
    ExpectReport(reports[0]).Expression("sCompletionPort == NULL");
    AsyncFileReader reader;
    EXPECT_EQ(kSuccess, AsyncFileReader::Open(MakeClip("clip.mov", 10), reader));
}

TEST(AsyncFileReader, OpenedBeforeTheStart_FiresTheInputContract)
{
    CheckRecorder recorder;
    const TempFolder folder;
    folder.MakeFile("clip.mov");
    AsyncFileReader reader;
    EXPECT_EQ(-1, AsyncFileReader::Open(folder.Path(u"clip.mov"), reader));
    const std::vector<CheckReport> reports = recorder.Reports(CheckReport::kContract);
    ASSERT_EQ(1u, reports.size());
    ExpectReport(reports[0]).Expression("sCompletionPort != NULL && sCompletionPort != INVALID_HANDLE_VALUE");
}

TEST(AsyncFileReader, NeverOpened_HasNoSectorSizeAndClosesQuietly)
{
    AsyncFileReader reader;
    EXPECT_EQ(0u, reader.GetDiskSectorSize());
    reader.WaitForPendingReads();
    reader.Close();
}

TEST(AsyncFileReader, ReadQueuedWithNoFile_FiresTheInputContract)
{
    CheckRecorder recorder;
    recorder.mThrow = true;
    AsyncFileReader reader;
    EXPECT_THROW(reader.QueueReadRequest(0, 512, nullptr, nullptr, nullptr, nullptr, nullptr),
                 CheckRecorder::ContractError);
    ExpectReport(recorder.Reports()[0]).Expression("mImpl->mFileHandle != INVALID_HANDLE_VALUE");
}

TEST(AsyncFileReader, FoundationStartedAndStopped_ReadsBetween)
{
    const TempFolder folder;
    folder.MakeFile("clip.mov", MakeContents(kBlock));
    for (int round = 0; round < 3; ++round) {
        CheckRecorder restartsReportTheThreadSlot;
        Foundation::Initialize();
        {
            AsyncFileReader reader;
            ASSERT_EQ(kSuccess, AsyncFileReader::Open(folder.Path(u"clip.mov"), reader));
            const AlignedBuffer buffer(kBlock);
            reader.QueueReadRequest(0, kBlock, buffer.Get(), nullptr, nullptr, nullptr, nullptr);
            reader.WaitForPendingReads();
            EXPECT_EQ(kBlock, FirstWrongByte(buffer.Get(), kBlock, 0));
        }
        Foundation::Terminate();
    }
}
