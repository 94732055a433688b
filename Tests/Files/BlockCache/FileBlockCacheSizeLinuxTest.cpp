// Tests a file that another program truncates and extends while File reads it through a block cache. This can happen
// only on Linux, where programs that do not use the library ignore share modes.
#include <BlockCacheSupport.h>

#include <filesystem>
#include <gtest/gtest.h>

using namespace ORL;
using namespace ORLTest;

TEST(BlockCacheSizeOnLinux, EachReadAndSeek_AsksForIt)
{
    const TempFolder folder;
    BufferLog log;
    const ScopedBlockCache factory([&] { return BufferRef(new RecordingBuffer(log)); });
    folder.MakeFile("f", std::string(100, 'x'));
    File file;
    ASSERT_EQ(kSuccess, file.Create(folder.Path(u"f"), kRead, kShareReaders, Disposition::kFileCreate_OpenExisting,
                                    kNormal, false));
    EXPECT_EQ(100u, ReadText(file, 1000).size());
    for (const std::size_t size : {40u, 70u}) {
        std::filesystem::resize_file(folder.Host() / "f", size);
        EXPECT_EQ(kSuccess, file.SetFilePointer(0, Method::kFilePointer_Begin));
        EXPECT_EQ(size, ReadText(file, 1000).size());
        EXPECT_EQ(kSuccess, file.SetFilePointer(1000, Method::kFilePointer_Begin));
        EXPECT_EQ(static_cast<__int64>(size), PositionOf(file));
    }
}
