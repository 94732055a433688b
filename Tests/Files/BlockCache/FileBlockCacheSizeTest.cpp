// Tests that a File with a block cache queries its size once per read.
#include <BlockCacheSupport.h>

#include <gtest/gtest.h>

using namespace ORL;
using namespace ORLTest;

namespace {

class BlockCacheSize : public testing::Test
{
protected:
    BlockCacheSize() : mFactory([this] { return BufferRef(new RecordingBuffer(mLog)); }) {}

    TempFolder mFolder;
    BufferLog mLog;
    ScopedBlockCache mFactory;
};

} // namespace

TEST_F(BlockCacheSize, EachOpening_SeesTheFilesOwn)
{
    File file;
    for (const std::size_t size : {100u, 70000u, 10u}) {
        mFolder.MakeFile("f", std::string(size, 'x'));
        ASSERT_EQ(kSuccess, file.Create(mFolder.Path(u"f"), kRead, kShareReaders, Disposition::kFileCreate_OpenExisting,
                                        kNormal, false));
        EXPECT_EQ(std::string(size, 'x'), ReadText(file, 100000));
        EXPECT_EQ(kSuccess, file.SetFilePointer(0, Method::kFilePointer_End));
        EXPECT_EQ(static_cast<__int64>(size), PositionOf(file));
        file.Close();
    }
}

// A failed open keeps its buffer in the File; the next open, even for writing, then uses this buffer.
TEST_F(BlockCacheSize, AWriterWithAnEarlierBuffer_SeesItsFileGrow)
{
    File file;
    EXPECT_EQ(kFileNotFound, file.Create(mFolder.Path(u"f"), kRead, kShareReaders,
                                         Disposition::kFileCreate_OpenExisting, kNormal, false));
    ASSERT_EQ(kSuccess,
              file.Create(mFolder.Path(u"f"), kReadWrite, kShareNone, Disposition::kFileCreate_New, kNormal, false));
    EXPECT_EQ("", ReadText(file, 10));
    EXPECT_TRUE(WriteText(file, "hello"));
    EXPECT_EQ(kSuccess, file.SetFilePointer(0, Method::kFilePointer_End));
    EXPECT_EQ(5, PositionOf(file));
    EXPECT_EQ(kSuccess, file.SetFilePointer(0, Method::kFilePointer_Begin));
    EXPECT_EQ("hello", ReadText(file, 10));
}
