// Tests opening, reading, writing and file times, as hosts use them.
#include "../AsyncReads/AsyncReadSupport.h"
#include <FileSupport.h>

#include <Files/FileImpl.h>
#include <SystemProbes.h>

#include <gtest/gtest.h>

using namespace ORL;
using namespace ORLTest;

TEST(File, WhatIsWritten_IsReadBack)
{
    const TempFolder folder;
    const UTF16String path = folder.Path(u"clip.bin");
    Opened file(path, kReadWrite, kShareNone, Disposition::kFileCreate_New);
    ASSERT_EQ(kSuccess, file.mResult);
    EXPECT_TRUE(file.mFile.IsOpen());
    EXPECT_TRUE(WriteText(file.mFile, "hello world"));
    EXPECT_EQ(11, PositionOf(file.mFile));
    EXPECT_EQ(kSuccess, file.mFile.SetFilePointer(6, Method::kFilePointer_Begin));
    EXPECT_EQ("world", ReadText(file.mFile, 100));
    EXPECT_EQ("", ReadText(file.mFile, 100)) << "behind the end there is nothing, and no failure";
    EXPECT_EQ(11u, file.mFile.SizeOnDisk());
    EXPECT_EQ(kSuccess, file.mFile.SetFilePointer(5, Method::kFilePointer_Begin));
    EXPECT_EQ(kSuccess, file.mFile.SetEndOfFile());
    EXPECT_EQ(5u, file.mFile.SizeOnDisk());
    file.mFile.Close();
    EXPECT_FALSE(file.mFile.IsOpen());
    file.mFile.Close();
    EXPECT_EQ("hello", ContentsOf(folder, "clip.bin"));
}

TEST(File, AHandle_IsMinusOneWhileNotOpen)
{
    const TempFolder folder;
    folder.MakeFile("f");
    File file;
    EXPECT_EQ(-1, reinterpret_cast<std::intptr_t>(file.GetPlatformFileHandle()));
    ASSERT_EQ(kSuccess, File::Open(folder.Path(u"f"), kRead, file));
    EXPECT_NE(-1, reinterpret_cast<std::intptr_t>(file.GetPlatformFileHandle()));
    file.Close();
    EXPECT_EQ(-1, reinterpret_cast<std::intptr_t>(file.GetPlatformFileHandle()));
}

TEST(File, CreateWithARelativePath_IsPathNotFoundWithoutTheSystem)
{
    File file;
    EXPECT_EQ(kPathNotFound, file.Create(Units(u"new file that must not appear"), kWrite, kShareNone,
                                         Disposition::kFileCreate_Always, kNormal, true));
    EXPECT_FALSE(file.IsOpen());
    EXPECT_FALSE(std::filesystem::exists("new file that must not appear"));
}

TEST(File, OpenOfAMissingFile_IsMinusOne)
{
    const TempFolder folder;
    File file;
    EXPECT_EQ(-1, File::Open(folder.Path(u"none"), kRead, file));
    EXPECT_FALSE(file.IsOpen());
}

TEST(File, EachFlag_HasItsSystemWord)
{
    using namespace Files;
    for (int flags = 0; flags < 8; ++flags) {
        const std::uint32_t access =
            (flags & 1 ? 0x80000000u : 0) | (flags & 2 ? 0x40000000u : 0) | (flags & 4 ? 0x20000000u : 0);
        EXPECT_EQ(access, SystemAccess(static_cast<Access::Type>(flags)));
        EXPECT_EQ(static_cast<std::uint32_t>(flags), SystemShareMode(static_cast<Share::Type>(flags)));
    }
    EXPECT_EQ(0xC0000000u, SystemAccess(kReadWrite));
    const std::uint32_t dispositions[] = {1, 2, 4, 3, 5};
    for (int flags = 0; flags < 32; ++flags) {
        std::uint32_t joined = 0;
        for (int bit = 0; bit < 5; ++bit) {
            joined |= flags & 1 << bit ? dispositions[bit] : 0;
        }
        EXPECT_EQ(joined, SystemDisposition(static_cast<Disposition::Type>(flags))) << flags;
    }
    for (int flags = 0; flags < 16; ++flags) {
        const std::uint32_t attributes = (flags & 1 ? 0x80u : 0) | (flags & 2 ? 0x08000000u : 0)
                                         | (flags & 4 ? 0x20000000u : 0) | (flags & 8 ? 0x02000000u : 0);
        EXPECT_EQ(attributes, SystemFlags(static_cast<Attributes::Type>(flags)));
    }
    EXPECT_EQ(0u, SystemMoveMethod(Method::kFilePointer_Begin));
    EXPECT_EQ(1u, SystemMoveMethod(Method::kFilePointer_Current));
    EXPECT_EQ(2u, SystemMoveMethod(Method::kFilePointer_End));
    for (const int method : {-1, 3, 4, 1000}) {
        EXPECT_EQ(1u, SystemMoveMethod(static_cast<Method::Type>(method)));
    }
}

// Opens an existing and a missing file with every access and every disposition; checks the result and the contents
// afterwards.
TEST(File, EveryDisposition_WithEveryAccess_DoesWhatItSays)
{
    struct Row
    {
        Disposition::Type mDisposition;
        bool mOpensExisting;
        bool mEmptiesExisting;
        bool mMakesMissing;
    };
    const Row rows[] = {
        {Disposition::kFileCreate_New, false, false, true},
        {Disposition::kFileCreate_Always, true, true, true},
        {Disposition::kFileCreate_OpenAlways, true, false, true},
        {Disposition::kFileCreate_OpenExisting, true, false, false},
        {Disposition::kFileCreate_TruncateExisting, true, true, false},
    };
    for (const Row& row : rows) {
        for (int flags = 1; flags < 8; ++flags) {
            const Access::Type access = static_cast<Access::Type>(flags);
            for (const Attributes::Type attributes : {kNormal, Attributes::kFileAttribute_SequentialScan}) {
                const bool isRefused =
                    row.mDisposition == Disposition::kFileCreate_TruncateExisting && (access & kWrite) == 0;
                if (isRefused && RunsOnEmulator()) {
                    continue; // Wine truncates the file although it refuses the open
                }
                const TempFolder folder;
                folder.MakeFile("old", "contents");
                const Opened existing(folder.Path(u"old"), access, kShareEverything, row.mDisposition, attributes);
                EXPECT_EQ(row.mOpensExisting && !isRefused, ResultSucceeded(existing.mResult)) << row.mDisposition;
                EXPECT_EQ(row.mEmptiesExisting && !isRefused ? "" : "contents", ContentsOf(folder, "old"))
                    << row.mDisposition << " " << flags;
                const Opened missing(folder.Path(u"new"), access, kShareEverything, row.mDisposition, attributes);
                EXPECT_EQ(row.mMakesMissing, ResultSucceeded(missing.mResult)) << row.mDisposition << " " << flags;
                EXPECT_EQ(row.mMakesMissing ? "" : "<none>", ContentsOf(folder, "new"));
            }
        }
    }
}

// On Windows the error is 80, which has no Result of its own.
TEST(File, CreateNewOfAnExistingFile_IsAGeneralFailure)
{
    const TempFolder folder;
    folder.MakeFile("f");
    EXPECT_EQ(kGeneralFailure, Opened(folder.Path(u"f"), kWrite, kShareNone, Disposition::kFileCreate_New).mResult);
}

TEST(File, ADirectory_OpensWithBackupSemanticsAlone)
{
    const TempFolder folder;
    folder.MakeFolder("d");
    const UTF16String path = folder.Path(u"d");
    EXPECT_EQ(kAccessDenied,
              Opened(path, kRead, kShareEverything, Disposition::kFileCreate_OpenExisting, kNormal, true).mResult);
    const Opened folderFile(path, kRead, kShareEverything, Disposition::kFileCreate_OpenExisting,
                            Attributes::kFileAttribute_BackupSemantics, true);
    EXPECT_EQ(kSuccess, folderFile.mResult);
}

// --- seeks without a block cache -------------------------------------------------------------------------------------

TEST(File, ASeekThatTheSystemRefuses_IsReportedAsASuccess)
{
    const TempFolder folder;
    folder.MakeFile("f", "0123456789");
    Opened file(folder.Path(u"f"), kRead);
    EXPECT_EQ(kSuccess, file.mFile.SetFilePointer(4, Method::kFilePointer_Begin));
    EXPECT_EQ(kSuccess, file.mFile.SetFilePointer(-1, Method::kFilePointer_Begin));
    EXPECT_EQ(4, PositionOf(file.mFile));
    EXPECT_EQ(kSuccess, file.mFile.SetFilePointer(-2, static_cast<Method::Type>(9))) << "goes as from the position";
    EXPECT_EQ(2, PositionOf(file.mFile));
    EXPECT_EQ(kSuccess, file.mFile.SetFilePointer(-3, Method::kFilePointer_End));
    EXPECT_EQ(7, PositionOf(file.mFile));
    EXPECT_EQ(kSuccess, file.mFile.SetFilePointer(5, Method::kFilePointer_End));
    EXPECT_EQ(15, PositionOf(file.mFile)) << "the system's rule";
}

TEST(File, SetEndOfFileWithoutTheRight_IsMinusOne)
{
    const TempFolder folder;
    folder.MakeFile("f", "0123456789");
    Opened file(folder.Path(u"f"), kRead);
    EXPECT_EQ(-1, file.mFile.SetEndOfFile());
    EXPECT_EQ(10u, file.mFile.SizeOnDisk());
}

TEST(File, ReadAndWriteWithoutTheRight_AreAccessDenied)
{
    const TempFolder folder;
    folder.MakeFile("f", "0123456789");
    unsigned count = 99;
    char byte = 'x';
    Opened reader(folder.Path(u"f"), kRead);
    EXPECT_EQ(kAccessDenied, reader.mFile.Write(&byte, 1, count));
    EXPECT_EQ(0u, count);
    count = 99;
    Opened writer(folder.Path(u"f"), kWrite);
    EXPECT_EQ(kAccessDenied, writer.mFile.Read(&byte, 1, count));
    EXPECT_EQ(0u, count);
}

// --- unbuffered reads ------------------------------------------------------------------------------------------------

TEST(File, NoBuffering_ReadsAlignedPiecesAndComesShortAtTheEnd)
{
    const TempFolder folder;
    folder.MakeFile("f", MakeContents(66536));
    Opened file(folder.Path(u"f"), kRead, kShareEverything, Disposition::kFileCreate_OpenExisting,
                Attributes::kFileAttribute_NoBuffering);
    ASSERT_EQ(kSuccess, file.mResult);
    const AlignedBuffer buffer(65536);
    unsigned count = 0;
    EXPECT_EQ(kSuccess, file.mFile.Read(buffer.Get(), 65536, count));
    EXPECT_EQ(65536u, FirstWrongByte(buffer.Get(), count, 0));
    EXPECT_EQ(kSuccess, file.mFile.Read(buffer.Get(), 65536, count));
    EXPECT_EQ(1000u, count) << "ub05";
    EXPECT_EQ(1000u, FirstWrongByte(buffer.Get(), count, 65536));
    EXPECT_EQ(kSuccess, file.mFile.SetFilePointer(1 << 20, Method::kFilePointer_Begin));
    EXPECT_EQ(kSuccess, file.mFile.Read(buffer.Get(), 65536, count));
    EXPECT_EQ(0u, count) << "ub06";
}

TEST(File, NoBuffering_RefusesWhatIsNotAligned)
{
    if (!SystemEnforcesAlignment()) {
        GTEST_SKIP() << "this system lets unaligned reads through";
    }
    const TempFolder folder;
    folder.MakeFile("f", MakeContents(65536));
    Opened file(folder.Path(u"f"), kReadWrite, kShareEverything, Disposition::kFileCreate_OpenExisting,
                Attributes::kFileAttribute_NoBuffering);
    const AlignedBuffer buffer(8192);
    unsigned count = 9;
    EXPECT_EQ(kGeneralFailure, file.mFile.Read(buffer.Get(), 100, count)) << "ub02";
    EXPECT_EQ(0u, count);
    EXPECT_EQ(kGeneralFailure, file.mFile.Read(buffer.Get() + 1, 4096, count)) << "ub04";
    EXPECT_EQ(kGeneralFailure, file.mFile.Write(buffer.Get(), 100, count));
    EXPECT_EQ(kSuccess, file.mFile.SetFilePointer(100, Method::kFilePointer_Begin));
    EXPECT_EQ(kGeneralFailure, file.mFile.Read(buffer.Get(), 4096, count)) << "ub03";
    EXPECT_EQ(100, PositionOf(file.mFile));
}

TEST(File, NoBuffering_WritesAlignedPieces)
{
    const TempFolder folder;
    Opened file(folder.Path(u"f"), kReadWrite, kShareNone, Disposition::kFileCreate_New,
                Attributes::kFileAttribute_NoBuffering);
    ASSERT_EQ(kSuccess, file.mResult);
    const AlignedBuffer buffer(65536);
    const std::string contents = MakeContents(65536);
    std::copy(contents.begin(), contents.end(), buffer.Get());
    unsigned count = 0;
    EXPECT_EQ(kSuccess, file.mFile.Write(buffer.Get(), 65536, count));
    EXPECT_EQ(65536u, count);
    file.mFile.Close();
    EXPECT_TRUE(contents == ContentsOf(folder, "f"));
}

// --- sizes and times -------------------------------------------------------------------------------------------------

TEST(File, SizeByName_IsFileNotFoundWhateverFails)
{
    const TempFolder folder;
    folder.MakeFile("f", "12345");
    unsigned __int64 size = 77;
    EXPECT_EQ(kSuccess, File::SizeOnDisk(folder.Path(u"f"), size));
    EXPECT_EQ(5u, size);
    size = 77;
    // The system's errors for these paths differ (2, 3, 123 and others), but all become one result.
    for (const UTF16String& path : {folder.Path(u"none"), folder.Path(u"no\\no"), folder.Path(u"a*"), UTF16String(),
                                    folder.Path(u"f\\x"), Units(u"Q:\\none")}) {
        EXPECT_EQ(kFileNotFound, File::SizeOnDisk(path, size));
    }
    EXPECT_EQ(77u, size);
}

TEST(File, SizesBeyond32Bits_AreWhole)
{
    const TempFolder folder;
    Opened file(folder.Path(u"f"), kReadWrite, kShareNone, Disposition::kFileCreate_New);
    constexpr std::int64_t kSize = (std::int64_t{5} << 32) + 7;
    constexpr std::uint64_t kBytes = kSize;
    EXPECT_EQ(kSuccess, file.mFile.SetFilePointer(kSize, Method::kFilePointer_Begin));
    ASSERT_EQ(kSuccess, file.mFile.SetEndOfFile());
    EXPECT_EQ(kBytes, file.mFile.SizeOnDisk());
    unsigned __int64 size = 0;
    EXPECT_EQ(kSuccess, File::SizeOnDisk(folder.Path(u"f"), size));
    EXPECT_EQ(kBytes, size);
}

namespace {

// Returns a time in units of 100 ns since 1601.
unsigned __int64 SecondsAfter1970(unsigned __int64 inSeconds)
{
    return (inSeconds + 11644473600u) * 10000000u;
}

} // namespace

TEST(File, LastModificationTime_IsIn100nsSince1601)
{
    const TempFolder folder;
    folder.MakeFile("f");
    folder.MakeFolder("d");
    SetTimeTo2001(folder.Host() / "f");
    const UTF16String path = folder.Path(u"f");
    const auto isClose = [](unsigned __int64 inTime) {
        return inTime > SecondsAfter1970(1000000000 - 2) && inTime < SecondsAfter1970(1000000000 + 2);
    };
    unsigned __int64 byName = 0;
    EXPECT_EQ(kSuccess, File::GetLastModificationTime(path, byName));
    EXPECT_TRUE(isClose(byName)) << byName;
    unsigned __int64 time = 0;
    EXPECT_EQ(kSuccess, File::GetLastModificationTimeForFolder(path, time));
    EXPECT_EQ(byName, time);
    const Opened file(path, kWrite);
    time = 0;
    EXPECT_EQ(kSuccess, file.mFile.GetLastModificationTime(time));
    EXPECT_EQ(byName, time);
    EXPECT_EQ(kFileNotFound, File::GetLastModificationTime(folder.Path(u"none"), time));
    EXPECT_EQ(byName, time);
    // Only GetLastModificationTimeForFolder opens directories.
    EXPECT_EQ(kAccessDenied, File::GetLastModificationTime(folder.Path(u"d"), time));
    EXPECT_EQ(kSuccess, File::GetLastModificationTimeForFolder(folder.Path(u"d"), time));
    EXPECT_GT(time, SecondsAfter1970(1000000000));
    EXPECT_EQ(kPathNotFound, File::GetLastModificationTime(Units(u"relative"), time));
}

TEST(File, OSFileTypes_DoNotExist)
{
    EXPECT_EQ(0u, File::GetOSFileType(Units(u"C:\\clip.wav")));
}
