// Tests reads and seeks of File through a host's block cache.
#include "../../AsyncReads/AsyncReadSupport.h"
#include <BlockCacheSupport.h>

#include <CheckRecorder.h>
#include <ExpectReport.h>
#include <Files/FileBufferFactory.h>
#include <Files/FileImpl.h>
#include <LruFileBuffer.h>

#include <cstring>
#include <gtest/gtest.h>
#include <thread>

using namespace ORL;
using namespace ORLTest;

namespace {

constexpr std::int64_t kBlock = Files::kSmallestBlock;

class FileBlockCache : public testing::Test
{
protected:
    FileBlockCache() : mFactory([this] { return BufferRef(new RecordingBuffer(CountBuffer())); }) {}

    BufferLog& CountBuffer()
    {
        ++mLog.mBuffers;
        return mLog;
    }

    UTF16String MakeClip(std::size_t inSize)
    {
        mFolder.MakeFile("clip", MakeContents(inSize));
        return mFolder.Path(u"clip");
    }

    // Reads and checks the data. Returns the number of bytes read.
    static unsigned ReadAndCheck(File& ioFile, unsigned inCount, std::uint64_t inPosition)
    {
        std::vector<unsigned char> bytes(inCount + 1, 0xEE);
        unsigned bytesRead = ~0u;
        EXPECT_EQ(kSuccess, ioFile.Read(bytes.data(), inCount, bytesRead));
        EXPECT_EQ(bytesRead, FirstWrongByte(bytes.data(), bytesRead, inPosition));
        EXPECT_EQ(0xEE, bytes[bytesRead]) << "what lies behind the end is not copied";
        return bytesRead;
    }

    // Returns the position of the OS handle, which may differ from the position of the File.
    static std::int64_t HandlePositionOf(File& inFile)
    {
        std::int64_t position = -1;
        Files::Platform::SetFilePointer_Impl(inFile.GetPlatformFileHandle(), 0, Files::Platform::kFromCurrent,
                                             &position);
        return position;
    }

    TempFolder mFolder;
    BufferLog mLog;
    ScopedBlockCache mFactory;
};

} // namespace

TEST_F(FileBlockCache, AReadAtTheEnd_GivesNothingAndLeavesThePosition)
{
    Opened clip(MakeClip(100), kRead, kShareReaders);
    ASSERT_EQ(kSuccess, clip.mResult);
    EXPECT_EQ(100u, ReadAndCheck(clip.mFile, 100, 0));
    EXPECT_EQ(100, PositionOf(clip.mFile));
    EXPECT_EQ(0u, ReadAndCheck(clip.mFile, 50, 100));
    EXPECT_EQ(100, PositionOf(clip.mFile));
    EXPECT_EQ(1u, mLog.mGot.size());
}

TEST_F(FileBlockCache, AReadOf100BytesTenBeforeTheEnd_GivesTen)
{
    Opened clip(MakeClip(1000), kRead, kShareReaders);
    EXPECT_EQ(kSuccess, clip.mFile.SetFilePointer(990, Method::kFilePointer_Begin));
    EXPECT_EQ(10u, ReadAndCheck(clip.mFile, 100, 990));
    EXPECT_EQ(1000, PositionOf(clip.mFile));
}

TEST_F(FileBlockCache, AReadAcrossTwoBlocks_AsksForBothAndAddsBothWhole)
{
    Opened clip(MakeClip(3 * kBlock), kRead, kShareReaders);
    EXPECT_EQ(kSuccess, clip.mFile.SetFilePointer(kBlock - 10, Method::kFilePointer_Begin));
    EXPECT_EQ(20u, ReadAndCheck(clip.mFile, 20, kBlock - 10));
    EXPECT_EQ((std::vector<std::int64_t>{0, kBlock}), mLog.mGot);
    EXPECT_EQ((std::vector<std::pair<std::int64_t, std::size_t>>{{0, kBlock}, {kBlock, kBlock}}), mLog.mAdded);
    // Now the blocks are cached.
    EXPECT_EQ(kSuccess, clip.mFile.SetFilePointer(kBlock - 10, Method::kFilePointer_Begin));
    EXPECT_EQ(20u, ReadAndCheck(clip.mFile, 20, kBlock - 10));
    EXPECT_EQ(4u, mLog.mGot.size());
    EXPECT_EQ(2u, mLog.mAdded.size());
}

TEST_F(FileBlockCache, AShortLastBlock_IsAskedForWholeAndGivenShort)
{
    Opened clip(MakeClip(kBlock + 1000), kRead, kShareReaders);
    EXPECT_EQ(kSuccess, clip.mFile.SetFilePointer(kBlock, Method::kFilePointer_Begin));
    EXPECT_EQ(1000u, ReadAndCheck(clip.mFile, 5000, kBlock));
    ASSERT_EQ(1u, mLog.mAdded.size());
    EXPECT_EQ(static_cast<std::size_t>(kBlock), mLog.mAdded[0].second);
}

TEST_F(FileBlockCache, AnOffsetFromTheEnd_CountsBackwardsWhateverItsSign)
{
    const UTF16String path = MakeClip(100);
    Opened clip(path, kRead, kShareReaders);
    for (const __int64 offset : {5, -5}) {
        EXPECT_EQ(kSuccess, clip.mFile.SetFilePointer(offset, Method::kFilePointer_End));
        EXPECT_EQ(95, PositionOf(clip.mFile));
    }
    EXPECT_EQ(kSuccess, clip.mFile.SetFilePointer(0, Method::kFilePointer_End));
    EXPECT_EQ(100, PositionOf(clip.mFile));
    // Without a block cache the system's alignment rule applies.
    Opened plain(path, kRead, kShareReaders, Disposition::kFileCreate_OpenExisting,
                 Attributes::kFileAttribute_NoBuffering);
    ASSERT_EQ(kSuccess, plain.mResult);
    EXPECT_EQ(kSuccess, plain.mFile.SetFilePointer(5, Method::kFilePointer_End));
    EXPECT_EQ(105, PositionOf(plain.mFile));
}

TEST_F(FileBlockCache, ASeekToBeforeTheBeginning_LandsAt0AndIsASuccess)
{
    Opened clip(MakeClip(100), kRead, kShareReaders);
    EXPECT_EQ(10u, ReadAndCheck(clip.mFile, 10, 0));
    EXPECT_EQ(kSuccess, clip.mFile.SetFilePointer(-1, Method::kFilePointer_Begin));
    EXPECT_EQ(0, PositionOf(clip.mFile));
    EXPECT_EQ(10u, ReadAndCheck(clip.mFile, 10, 0));
}

TEST_F(FileBlockCache, ASeekToBehindTheEnd_LandsAtTheEnd)
{
    Opened clip(MakeClip(100), kRead, kShareReaders);
    EXPECT_EQ(kSuccess, clip.mFile.SetFilePointer(1000000, Method::kFilePointer_Begin));
    EXPECT_EQ(100, PositionOf(clip.mFile));
    EXPECT_EQ(kSuccess, clip.mFile.SetFilePointer(-30, Method::kFilePointer_Current));
    EXPECT_EQ(70, PositionOf(clip.mFile));
    EXPECT_EQ(kSuccess, clip.mFile.SetFilePointer(1000, Method::kFilePointer_Current));
    EXPECT_EQ(100, PositionOf(clip.mFile));
}

TEST_F(FileBlockCache, AnUnknownMethod_IsReported)
{
    Opened clip(MakeClip(100), kRead, kShareReaders);
    CheckRecorder recorder;
    EXPECT_EQ(kSuccess, clip.mFile.SetFilePointer(7, static_cast<Method::Type>(3)));
    const auto reports = recorder.Reports(CheckReport::kAssert);
    ASSERT_EQ(1u, reports.size());
    ExpectReport(reports[0]).Expression("false").File("WinFile").Function("ORL::File::SetFilePointer");
}

TEST_F(FileBlockCache, WhoMayWriteOrLetsWriteOrWantsNoBuffer_GetsNone)
{
    const UTF16String path = MakeClip(100);
    EXPECT_EQ(kSuccess, Opened(path, kReadWrite, kShareReaders).mResult);
    EXPECT_EQ(kSuccess, Opened(path, kRead, kShareReaders | Share::kFileShare_Write).mResult);
    EXPECT_EQ(kSuccess, Opened(path, kRead, kShareReaders, Disposition::kFileCreate_OpenExisting,
                               Attributes::kFileAttribute_NoBuffering)
                            .mResult);
    EXPECT_EQ(kSuccess, Opened(path, kRead | Access::kFileAccess_Execute, kShareReaders).mResult);
    EXPECT_EQ(0, mLog.mBuffers);
    EXPECT_EQ(kSuccess, Opened(path, kRead, kShareReaders | Share::kFileShare_Delete).mResult);
    EXPECT_EQ(kSuccess, Opened(path, kRead, kShareNone).mResult);
    EXPECT_EQ(2, mLog.mBuffers);
    EXPECT_EQ(0, mLog.mAlive) << "a closed file lets its buffer go";
}

TEST_F(FileBlockCache, AnOpenThatFails_KeepsItsBufferUntilTheNext)
{
    File file;
    EXPECT_EQ(kFileNotFound, file.Create(mFolder.Path(u"none"), kRead, kShareReaders,
                                         Disposition::kFileCreate_OpenExisting, kNormal, false));
    EXPECT_EQ(1, mLog.mAlive);
    file.Close();
    EXPECT_EQ(1, mLog.mAlive) << "closing what is not open does nothing";
    EXPECT_EQ(kSuccess,
              file.Create(MakeClip(100), kRead, kShareReaders, Disposition::kFileCreate_OpenExisting, kNormal, false));
    EXPECT_EQ(1, mLog.mAlive);
    file.Close();
    EXPECT_EQ(0, mLog.mAlive);
}

TEST_F(FileBlockCache, AnUnalignedSeek_LeavesTheHandleWhereItIs)
{
    Opened clip(MakeClip(3 * kBlock), kRead, kShareReaders);
    EXPECT_EQ(kSuccess, clip.mFile.SetFilePointer(2 * kBlock, Method::kFilePointer_Begin));
    EXPECT_EQ(2 * kBlock, HandlePositionOf(clip.mFile));
    EXPECT_EQ(kSuccess, clip.mFile.SetFilePointer(100, Method::kFilePointer_Begin));
    EXPECT_EQ(2 * kBlock, HandlePositionOf(clip.mFile));
}

// The clamped position lies on a block boundary, so File calls the OS, but with the caller's position, which the OS
// refuses.
TEST_F(FileBlockCache, ASeekToBeforeTheBeginning_LeavesTheHandleWhereItIs)
{
    Opened clip(MakeClip(3 * kBlock), kRead, kShareReaders);
    EXPECT_EQ(10u, ReadAndCheck(clip.mFile, 10, 0));
    const std::int64_t before = HandlePositionOf(clip.mFile);
    EXPECT_EQ(kBlock, before) << "a block was read";
    EXPECT_EQ(kSuccess, clip.mFile.SetFilePointer(-1, Method::kFilePointer_Begin));
    EXPECT_EQ(0, PositionOf(clip.mFile));
    EXPECT_EQ(before, HandlePositionOf(clip.mFile));
}

// The file ends on a block boundary, so File calls the OS, which accepts a position beyond the end.
TEST_F(FileBlockCache, ASeekToBehindTheEnd_PutsTheHandleWhereTheCallerSaid)
{
    Opened clip(MakeClip(kBlock), kRead, kShareReaders);
    EXPECT_EQ(kSuccess, clip.mFile.SetFilePointer(1000000, Method::kFilePointer_Begin));
    EXPECT_EQ(kBlock, PositionOf(clip.mFile));
    EXPECT_EQ(1000000, HandlePositionOf(clip.mFile));
    EXPECT_EQ(0u, ReadAndCheck(clip.mFile, 10, kBlock));
}

// If a success without a block counted as a hit, the reader would read from a null block.
TEST(FileBlockCacheHosts, ASuccessWithoutABlock_IsAMiss)
{
    class Empty : public UnknownImpl<IFileBuffer>
    {
    public:
        void AddBlock(Block, __int64) override {}
        Result GetBlock(__int64, Block&) override { return kSuccess; }
    };
    const ScopedBlockCache factory([] { return BufferRef(new Empty); });
    const TempFolder folder;
    folder.MakeFile("f", "hello");
    Opened file(folder.Path(u"f"), kRead, kShareReaders);
    EXPECT_EQ("hello", ReadText(file.mFile, 10));
}

TEST(FileBlockCacheHosts, AFactoryThatGivesNoBuffer_LeavesTheHandleAsTheCallerAsked)
{
    const ScopedBlockCache factory([] { return BufferRef(); });
    const TempFolder folder;
    folder.MakeFile("f", MakeContents(1000));
    Opened file(folder.Path(u"f"), kRead, kShareReaders);
    ASSERT_EQ(kSuccess, file.mResult);
    EXPECT_EQ(kSuccess, file.mFile.SetFilePointer(2000, Method::kFilePointer_Begin));
    EXPECT_EQ(2000, PositionOf(file.mFile)) << "the system keeps the position";
    EXPECT_EQ(kSuccess, file.mFile.SetFilePointer(3, Method::kFilePointer_Begin));
    unsigned char bytes[10];
    unsigned bytesRead = 0;
    EXPECT_EQ(kSuccess, file.mFile.Read(bytes, 10, bytesRead)) << "a handle past the cache would refuse this";
    EXPECT_EQ(10u, FirstWrongByte(bytes, bytesRead, 3));
}

TEST(FileBlockCacheHosts, AFactory_IsCountedAndReleased)
{
    class Counted : public FactoryOf
    {
    public:
        explicit Counted(int& ioAlive) : FactoryOf([] { return BufferRef(); }), mAlive(ioAlive) { ++mAlive; }
        ~Counted() override { --mAlive; }

    private:
        int& mAlive;
    };
    int alive = 0;
    EXPECT_FALSE(Foundation::GetFileBufferFactory());
    Foundation::SetFileBufferFactory(FactoryRef(new Counted(alive)));
    EXPECT_TRUE(Foundation::GetFileBufferFactory());
    EXPECT_EQ(1, alive);
    Foundation::SetFileBufferFactory(FactoryRef(new Counted(alive)));
    EXPECT_EQ(1, alive);
    Foundation::SetFileBufferFactory(Foundation::GetFileBufferFactory());
    EXPECT_EQ(1, alive);
    const FactoryRef last = Foundation::GetFileBufferFactory();
    Foundation::SetFileBufferFactory(FactoryRef());
    EXPECT_FALSE(Foundation::GetFileBufferFactory());
    EXPECT_EQ(1, alive) << "the copy holds it";
}

// The destructor of a host's factory may call the library: it runs under the foundation lock, which is recursive.
TEST(FileBlockCacheHosts, TheEarlierFactory_GoesUnderTheFoundationLock)
{
    class Going : public FactoryOf
    {
    public:
        explicit Going(bool& outSawLater) : FactoryOf([] { return BufferRef(); }), mSawLater(outSawLater) {}
        ~Going() override { mSawLater = static_cast<bool>(Foundation::GetFileBufferFactory()); }

    private:
        bool& mSawLater;
    };
    bool sawLater = false;
    Foundation::SetFileBufferFactory(FactoryRef(new Going(sawLater)));
    Foundation::SetFileBufferFactory(FactoryRef(new FactoryOf([] { return BufferRef(); })));
    EXPECT_TRUE(sawLater) << "the new factory is in place when the earlier one goes";
    Foundation::SetFileBufferFactory(FactoryRef());
}

// --- comparison with a plain buffer ----------------------------------------------------------------------------------

namespace {

// Performs random reads and seeks, and compares each with the same operation on bytes in memory.
void CompareWithPlainBuffer(File& ioFile, const std::string& inContents, unsigned inSeed, int inOperations)
{
    std::mt19937 numbers(inSeed);
    const auto random = [&numbers] { return static_cast<unsigned>(numbers()); };
    const std::int64_t size = static_cast<std::int64_t>(inContents.size());
    const auto anywhere = [&] {
        return static_cast<std::int64_t>(random() % static_cast<unsigned>(size + 2000)) - 1000;
    };
    std::vector<char> bytes(3 * static_cast<std::size_t>(kBlock));
    std::int64_t position = 0;
    for (int operation = 0; operation < inOperations; ++operation) {
        switch (random() % 8) {
        case 0: {
            const std::int64_t target = anywhere();
            ASSERT_EQ(kSuccess, ioFile.SetFilePointer(target, Method::kFilePointer_Begin));
            position = std::min(std::max<std::int64_t>(target, 0), size);
            break;
        }
        case 1: {
            const std::int64_t offset = anywhere() - size / 2;
            ASSERT_EQ(kSuccess, ioFile.SetFilePointer(offset, Method::kFilePointer_Current));
            position = std::min(std::max<std::int64_t>(position + offset, 0), size);
            break;
        }
        case 2: {
            const std::int64_t offset = anywhere() - size / 2;
            ASSERT_EQ(kSuccess, ioFile.SetFilePointer(offset, Method::kFilePointer_End));
            position = std::max<std::int64_t>(size - std::abs(offset), 0);
            break;
        }
        default: {
            // Most reads are small, some span several blocks.
            const unsigned count = random() % (random() % 64 == 0 ? static_cast<unsigned>(bytes.size()) : 600u);
            const std::int64_t expected = std::min<std::int64_t>(count, size - position);
            unsigned bytesRead = ~0u;
            ASSERT_EQ(kSuccess, ioFile.Read(bytes.data(), count, bytesRead));
            ASSERT_EQ(expected, bytesRead) << "operation " << operation << " at " << position;
            ASSERT_EQ(0, std::memcmp(bytes.data(), inContents.data() + position, bytesRead)) << operation;
            position += expected;
            break;
        }
        }
        ASSERT_EQ(position, PositionOf(ioFile)) << "operation " << operation;
    }
}

struct Host
{
    const char* mName;
    std::function<BufferRef()> mMake;
    int mOperations;
};

std::vector<Host> AllHosts()
{
    const auto moody = [](unsigned inRefuses, unsigned inForgets, unsigned inDenies) {
        return [=] { return BufferRef(new FaultyBuffer({inRefuses, inForgets, inDenies}, 7)); };
    };
    const auto store = std::make_shared<BlockStore>(5 * static_cast<std::size_t>(kBlock));
    return {
        {"KeepsEverything", moody(0, 0, 0), 700000},
        {"EvictsAtRandom", moody(0, 50, 1), 150000},
        {"Refuses", moody(60, 0, 0), 60000},
        {"Denies", moody(0, 0, 30), 40000},
        {"KeepsNothing", moody(100, 0, 0), 20000},
        {"SmallLru", [store] { return BufferRef(new LruFileBuffer(store)); }, 50000},
    };
}

class FileBlockCacheModel : public testing::TestWithParam<Host>
{
};

} // namespace

// Performs 1020000 operations in all.
TEST_P(FileBlockCacheModel, RandomReadsAndSeeks_AreThoseOfAPlainBuffer)
{
    const ScopedBlockCache factory(GetParam().mMake);
    const TempFolder folder;
    const std::string contents = MakeContents(static_cast<std::size_t>(10 * kBlock + 12345));
    folder.MakeFile("f", contents);
    Opened file(folder.Path(u"f"), kRead, kShareReaders);
    ASSERT_EQ(kSuccess, file.mResult);
    CompareWithPlainBuffer(file.mFile, contents, 1, GetParam().mOperations);
}

INSTANTIATE_TEST_SUITE_P(Hosts, FileBlockCacheModel, testing::ValuesIn(AllHosts()),
                         [](const testing::TestParamInfo<Host>& inInfo) { return std::string(inInfo.param.mName); });

TEST(LruFileBuffer, TheLimit_IsKeptAndAClosedFileForgotten)
{
    const auto store = std::make_shared<BlockStore>(3 * static_cast<std::size_t>(kBlock));
    const ScopedBlockCache factory(FactoryRef(new LruFileBufferFactory(store)));
    const TempFolder folder;
    folder.MakeFile("f", MakeContents(static_cast<std::size_t>(8 * kBlock)));
    {
        Opened file(folder.Path(u"f"), kRead, kShareReaders);
        std::vector<unsigned char> bytes(static_cast<std::size_t>(8 * kBlock));
        unsigned bytesRead = 0;
        EXPECT_EQ(kSuccess, file.mFile.Read(bytes.data(), static_cast<unsigned>(bytes.size()), bytesRead));
        EXPECT_EQ(bytes.size(), FirstWrongByte(bytes.data(), bytesRead, 0));
        EXPECT_EQ(3 * static_cast<std::size_t>(kBlock), store->Size());
    }
    EXPECT_EQ(0u, store->Size());
}

// Two threads, each with its own file, share one store.
TEST(LruFileBuffer, TwoFilesOnTwoThreads_ShareOneStore)
{
    const auto store = std::make_shared<BlockStore>(4 * static_cast<std::size_t>(kBlock));
    const ScopedBlockCache factory(FactoryRef(new LruFileBufferFactory(store)));
    const TempFolder folder;
    const std::string contents = MakeContents(static_cast<std::size_t>(4 * kBlock + 99));
    folder.MakeFile("f", contents);
    const UTF16String path = folder.Path(u"f");
    const auto read = [&](unsigned inSeed) {
        Opened file(path, kRead, kShareReaders);
        CompareWithPlainBuffer(file.mFile, contents, inSeed, 5000);
    };
    std::thread other(read, 3);
    read(4);
    other.join();
    EXPECT_EQ(0u, store->Size());
}
