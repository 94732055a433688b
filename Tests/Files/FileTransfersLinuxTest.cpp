// Tests reads, writes and copies that the system completes in pieces, or that fail midway.
#include <FileSupport.h>

#include <FaultySystemCallsLinux.h>

#include <cerrno>
#include <gtest/gtest.h>

using namespace ORL;
using namespace ORLTest;

namespace {

using Faults = FaultySystemCalls;

const std::string kOld(300000, 'o');

void MakeOld(const TempFolder& inFolder)
{
    inFolder.MakeFile("f", kOld);
}

} // namespace

TEST(FileTransfers, ShortAndInterruptedReads_AreGoneOnWith)
{
    const TempFolder folder;
    folder.MakeFile("f", "0123456789");
    Opened file(folder.Path(u"f"), kRead);
    Faults calls;
    calls.Shorten(Faults::kPRead, 1, 7);
    calls.Fail(Faults::kPRead, 2, EINTR);
    EXPECT_EQ("0123456789", ReadText(file.mFile, 10));
    EXPECT_EQ(10, PositionOf(file.mFile));
}

TEST(FileTransfers, AReadThatFailsHalfWay_TellsWhatItGot)
{
    const TempFolder folder;
    folder.MakeFile("f", "0123456789");
    Opened file(folder.Path(u"f"), kRead);
    Faults calls;
    calls.Shorten(Faults::kPRead, 1, 7);
    calls.Fail(Faults::kPRead, 2, EIO);
    char bytes[10];
    unsigned count = 0;
    EXPECT_EQ(kGeneralFailure, file.mFile.Read(bytes, 10, count));
    EXPECT_EQ(3u, count);
    EXPECT_EQ(3, PositionOf(file.mFile));
}

TEST(FileTransfers, AWriteThatFillsTheDisk_TellsWhatItWrote)
{
    const TempFolder folder;
    Opened file(folder.Path(u"f"), kReadWrite, kShareNone, Disposition::kFileCreate_New);
    Faults calls;
    calls.Shorten(Faults::kPWrite, 1, 6);
    calls.Fail(Faults::kPWrite, 2, ENOSPC);
    unsigned count = 0;
    EXPECT_EQ(kDiskFull, file.mFile.Write("0123456789", 10, count));
    EXPECT_EQ(4u, count);
    EXPECT_EQ(4, PositionOf(file.mFile));
    EXPECT_EQ("0123", ContentsOf(folder, "f"));
}

TEST(FileTransfers, ACopyInShortPieces_IsWhole)
{
    const TempFolder folder;
    MakeOld(folder);
    {
        Faults calls;
        calls.Shorten(Faults::kCopyRange, 1, (std::size_t{128} << 20) - 1000);
        calls.Fail(Faults::kCopyRange, 2, EINTR);
        EXPECT_EQ(kSuccess, File::Copy(folder.Path(u"f"), folder.Path(u"c")));
        EXPECT_LE(3u, calls.Count(Faults::kCopyRange));
    }
    EXPECT_TRUE(kOld == ContentsOf(folder, "c"));
    {
        Faults calls;
        calls.Fail(Faults::kCopyRange, 1, ENOSYS);
        calls.Shorten(Faults::kPRead, 1, 1000);
        calls.Shorten(Faults::kPWrite, 1, 1000);
        calls.Fail(Faults::kPWrite, 2, EINTR);
        EXPECT_EQ(kSuccess, File::Copy(folder.Path(u"f"), folder.Path(u"c")));
    }
    EXPECT_TRUE(kOld == ContentsOf(folder, "c"));
}

// copy_file_range fails after it has copied a part of the file; the rest is copied with reads and writes.
TEST(FileTransfers, ACopyThatTheKernelGivesUp_GoesOnByReading)
{
    for (const int error : {EXDEV, EINVAL, EOPNOTSUPP, ENOSYS}) {
        const TempFolder folder;
        MakeOld(folder);
        {
            Faults calls;
            calls.Shorten(Faults::kCopyRange, 1, (std::size_t{128} << 20) - 12345);
            calls.Fail(Faults::kCopyRange, 2, error);
            EXPECT_EQ(kSuccess, File::Copy(folder.Path(u"f"), folder.Path(u"c")));
        }
        EXPECT_TRUE(kOld == ContentsOf(folder, "c"));
    }
}

// The kernel can clone files on some volumes; up to 16 KiB the extra system calls cost more than they save.
TEST(FileTransfers, ACopy_IsLeftToTheKernelFrom16KiBOn)
{
    for (const std::size_t size : {std::size_t{16384}, std::size_t{16385}, std::size_t{100000}}) {
        const TempFolder folder;
        folder.MakeFile("f", std::string(size, 'c'));
        {
            Faults calls;
            EXPECT_EQ(kSuccess, File::Copy(folder.Path(u"f"), folder.Path(u"c")));
            EXPECT_EQ(size > 16384, calls.Count(Faults::kCopyRange) != 0) << size;
        }
        EXPECT_TRUE(std::string(size, 'c') == ContentsOf(folder, "c")) << size;
    }
}
