// Opening, reading, writing and whole-file operations, as hosts use them.
#include "AsyncReadSupport.h"
#include <FileSupport.h>

#include <CheckRecorder.h>
#include <FileImpl.h>
#include <SystemProbes.h>

#include <ORLPathUtils.h>

#include <cmath>
#include <gtest/gtest.h>
#include <vector>

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
        const std::uint32_t access = (flags & 1 ? 0x80000000u : 0) | (flags & 2 ? 0x40000000u : 0)
                                     | (flags & 4 ? 0x20000000u : 0);
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

// Access by disposition on a file that exists and on one that does not: what comes of it, and what the file is then.
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
                    continue; // it empties the file all the same
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

// Existing is 80 at home, which has no code of its own.
TEST(File, CreateNewOfAnExistingFile_IsAGeneralFailure)
{
    const TempFolder folder;
    folder.MakeFile("f");
    EXPECT_EQ(kGeneralFailure,
              Opened(folder.Path(u"f"), kWrite, kShareNone, Disposition::kFileCreate_New).mResult);
}

TEST(File, ADirectory_OpensWithBackupSemanticsAlone)
{
    const TempFolder folder;
    folder.MakeFolder("d");
    const UTF16String path = folder.Path(u"d");
    EXPECT_EQ(kAccessDenied, Opened(path, kRead, kShareEverything, Disposition::kFileCreate_OpenExisting, kNormal, true)
                                 .mResult);
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

// --- past the cache --------------------------------------------------------------------------------------------------

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
    if (!SystemKeepsAlignment()) {
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
    // 2, 3, 123, 3 again and what a path without a root gives: one answer for all.
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

// 100 ns since 1601.
unsigned __int64 SecondsAfter1970(unsigned __int64 inSeconds)
{
    return (inSeconds + 11644473600u) * 10000000u;
}

// 1000000000 s after 1970, as another program sets it.
void SetTime(const std::filesystem::path& inPath)
{
    using namespace std::filesystem;
    // The clock of file times has an epoch of its own: go there from a time that both know.
    const auto systemNow = std::chrono::system_clock::now();
    const auto fileNow = file_time_type::clock::now();
    const auto wanted = std::chrono::system_clock::from_time_t(1000000000);
    last_write_time(inPath, fileNow + std::chrono::duration_cast<file_time_type::duration>(wanted - systemNow));
}

} // namespace

TEST(File, LastModificationTime_IsIn100nsSince1601)
{
    const TempFolder folder;
    folder.MakeFile("f");
    folder.MakeFolder("d");
    SetTime(folder.Host() / "f");
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
    // A directory opens for the second form alone.
    EXPECT_EQ(kAccessDenied, File::GetLastModificationTime(folder.Path(u"d"), time));
    EXPECT_EQ(kSuccess, File::GetLastModificationTimeForFolder(folder.Path(u"d"), time));
    EXPECT_GT(time, SecondsAfter1970(1000000000));
    EXPECT_EQ(kPathNotFound, File::GetLastModificationTime(Units(u"relative"), time));
}

TEST(File, OSFileTypes_DoNotExist)
{
    EXPECT_EQ(0u, File::GetOSFileType(Units(u"C:\\clip.wav")));
}

// --- deleting, copying, moving ---------------------------------------------------------------------------------------

TEST(File, Delete_TakesExtendedAndPlainPaths)
{
    const TempFolder folder;
    folder.MakeFile("f");
    folder.MakeFile("g");
    EXPECT_EQ(kSuccess, File::Delete(folder.Path(u"f")));
    EXPECT_EQ(kSuccess, File::Delete(PathUtils::ToNormalizedPath(folder.Path(u"g"))));
    EXPECT_EQ(kFileNotFound, File::Delete(folder.Path(u"f")));
    EXPECT_EQ(kPathNotFound, File::Delete(folder.Path(u"no\\f")));
    EXPECT_EQ(kAccessDenied, File::Delete(folder.Path()));
}

TEST(File, Copy_BringsContentsAndTime)
{
    const TempFolder folder;
    folder.MakeFile("f", "hello");
    folder.MakeFile("g", "a longer text that is there before");
    SetTime(folder.Host() / "f");
    for (const char16_t* name : {u"g", u"new"}) {
        EXPECT_EQ(kSuccess, File::Copy(folder.Path(u"f"), folder.Path(name)));
        unsigned __int64 source = 0;
        unsigned __int64 copy = 1;
        EXPECT_EQ(kSuccess, File::GetLastModificationTime(folder.Path(u"f"), source));
        EXPECT_EQ(kSuccess, File::GetLastModificationTime(folder.Path(name), copy));
        EXPECT_EQ(source, copy);
    }
    EXPECT_EQ("hello", ContentsOf(folder, "g"));
    EXPECT_EQ("hello", ContentsOf(folder, "new"));
    EXPECT_EQ(kFileNotFound, File::Copy(folder.Path(u"none"), folder.Path(u"n")));
    EXPECT_EQ(kPathNotFound, File::Copy(folder.Path(u"f"), folder.Path(u"no\\n")));
}

TEST(File, Move_RenamesFilesAndDirectories)
{
    const TempFolder folder;
    folder.MakeFile("f", "hello");
    folder.MakeFile("d/inside", "deep");
    EXPECT_EQ(kSuccess, File::Move(folder.Path(u"f"), folder.Path(u"g")));
    EXPECT_EQ("hello", ContentsOf(folder, "g"));
    folder.MakeFolder("d");
    folder.MakeFile("d/inside", "deep");
    EXPECT_EQ(kSuccess, File::Move(folder.Path(u"d"), folder.Path(u"e")));
    EXPECT_EQ("deep", ContentsOf(folder, "e/inside"));
    EXPECT_EQ(kAlreadyExists, File::Move(folder.Path(u"g"), folder.Path(u"e")));
    EXPECT_EQ(kFileNotFound, File::Move(folder.Path(u"none"), folder.Path(u"n")));
    EXPECT_EQ("hello", ContentsOf(folder, "g"));
}

namespace {

struct Told
{
    std::vector<float> mParts;
    std::size_t mStopsAt = ~std::size_t{0};

    static bool OnProgress(float inPart, void* ioTold)
    {
        Told& told = *static_cast<Told*>(ioTold);
        told.mParts.push_back(inPart);
        return told.mParts.size() <= told.mStopsAt;
    }
};

} // namespace

TEST(File, CopyWithProgress_TellsFrom0To1)
{
    const TempFolder folder;
    const std::string contents = MakeContents((std::size_t{9} << 20) + 123);
    folder.MakeFile("f", contents);
    Told told;
    EXPECT_EQ(kSuccess, File::CopyWithProgress(folder.Path(u"f"), folder.Path(u"g"), &Told::OnProgress, &told));
    EXPECT_TRUE(contents == ContentsOf(folder, "g"));
    if (!SystemTellsCopyProgress()) {
        GTEST_SKIP() << "this system does not tell the progress of a copy";
    }
    ASSERT_LE(3u, told.mParts.size());
    EXPECT_EQ(0.0f, told.mParts.front());
    EXPECT_EQ(1.0f, told.mParts.back());
    EXPECT_TRUE(std::is_sorted(told.mParts.begin(), told.mParts.end()));
}

TEST(File, CopyWithProgressOfAnEmptyFile_TellsNoNumber)
{
    const TempFolder folder;
    folder.MakeFile("f", "");
    Told told;
    EXPECT_EQ(kSuccess, File::CopyWithProgress(folder.Path(u"f"), folder.Path(u"g"), &Told::OnProgress, &told));
    EXPECT_EQ("", ContentsOf(folder, "g"));
    if (!SystemTellsCopyProgress()) {
        GTEST_SKIP() << "this system does not tell the progress of a copy";
    }
    ASSERT_LE(1u, told.mParts.size());
    EXPECT_TRUE(std::isnan(told.mParts[0]));
}

TEST(File, CopyWithProgressThatIsStopped_IsAbortedAndLeavesNothing)
{
    if (!SystemTellsCopyProgress()) {
        GTEST_SKIP() << "this system does not tell the progress of a copy";
    }
    const TempFolder folder;
    folder.MakeFile("f", MakeContents(std::size_t{9} << 20));
    folder.MakeFile("empty", "");
    for (const char16_t* source : {u"f", u"empty"}) {
        for (std::size_t stop = 0; stop < 2; ++stop) {
            if (stop == 1 && source[0] == u'e') {
                continue;
            }
            Told told;
            told.mStopsAt = stop;
            EXPECT_EQ(kOperationAborted,
                      File::CopyWithProgress(folder.Path(source), folder.Path(u"g"), &Told::OnProgress, &told));
            EXPECT_EQ(stop + 1, told.mParts.size());
            EXPECT_EQ("<none>", ContentsOf(folder, "g"));
        }
    }
}

// Its own, narrower table: what is not listed is a full disk.
TEST(File, CopyWithProgressThatFails_HasATableOfItsOwn)
{
    const TempFolder folder;
    folder.MakeFile("f", "x");
    folder.MakeFile("g", "y");
    folder.MakeFolder("d");
    Told told;
    const auto copy = [&](const char16_t* inSource, const char16_t* inDestination) {
        return File::CopyWithProgress(folder.Path(inSource), folder.Path(inDestination), &Told::OnProgress, &told);
    };
    EXPECT_EQ(kFileNotFound, copy(u"none", u"n"));
    EXPECT_EQ(kPathNotFound, copy(u"f", u"no\\n"));
    EXPECT_EQ(kAccessDenied, copy(u"f", u"d"));
    const Opened held(folder.Path(u"g"), kRead, kShareNone);
    EXPECT_EQ(kDiskFull, copy(u"f", u"g")) << "a sharing violation is not listed";
    EXPECT_EQ(kDiskFull, copy(u"f", u"a*")) << "nor is an invalid name";
    EXPECT_EQ(0u, told.mParts.size());
}

// --- swapping --------------------------------------------------------------------------------------------------------

TEST(File, SwapTempFile_PutsTheNewContentsInPlace)
{
    const TempFolder folder;
    folder.MakeFile("real.txt", "old");
    folder.MakeFile("temp.txt", "new");
    EXPECT_EQ(kSuccess, File::SwapTempFile(folder.Path(u"temp.txt"), folder.Path(u"real.txt")));
    EXPECT_EQ("new", ContentsOf(folder, "real.txt"));
    EXPECT_EQ("<none>", ContentsOf(folder, "temp.txt"));
    EXPECT_EQ("<none>", ContentsOf(folder, "real~1.txt"));
}

TEST(File, SwapTempFileThatFails_LeavesBothFiles)
{
    const TempFolder folder;
    folder.MakeFile("real.txt", "old");
    folder.MakeFile("temp.txt", "new");
    EXPECT_EQ(kFileNotFound, File::SwapTempFile(folder.Path(u"temp.txt"), folder.Path(u"none.txt")));
    EXPECT_EQ(kFileNotFound, File::SwapTempFile(folder.Path(u"none.txt"), folder.Path(u"real.txt")));
    {
        const Opened held(folder.Path(u"temp.txt"), kRead, kShareEverything);
        EXPECT_EQ(kSharingViolation, File::SwapTempFile(folder.Path(u"temp.txt"), folder.Path(u"real.txt")));
    }
    EXPECT_EQ("old", ContentsOf(folder, "real.txt"));
    EXPECT_EQ("new", ContentsOf(folder, "temp.txt"));
    EXPECT_EQ("<none>", ContentsOf(folder, "real~1.txt"));
}

// A reader that lets the file be deleted goes on reading the old contents.
TEST(File, SwapTempFile_LeavesAReaderItsContents)
{
    const TempFolder folder;
    folder.MakeFile("real.txt", "old");
    folder.MakeFile("temp.txt", "new");
    Opened reader(folder.Path(u"real.txt"), kRead, kShareReaders | Share::kFileShare_Delete);
    EXPECT_EQ(kSuccess, File::SwapTempFile(folder.Path(u"temp.txt"), folder.Path(u"real.txt")));
    EXPECT_EQ("old", ReadText(reader.mFile, 10));
    reader.mFile.Close();
    EXPECT_EQ("new", ContentsOf(folder, "real.txt"));
}

TEST(File, MakeUniqueTempPath_CountsUpToAFreeName)
{
    const TempFolder folder;
    const auto unique = [&](const char16_t* inName) { return Show(File::MakeUniqueTempPath(folder.Path(inName))); };
    const std::string base = Show(folder.Path()) + "\\";
    EXPECT_EQ(base + "photo~1.jpg", unique(u"photo.jpg"));
    folder.MakeFile("photo~1.jpg");
    folder.MakeFolder("photo~2.jpg");
    EXPECT_EQ(base + "photo~3.jpg", unique(u"photo.jpg"));
    EXPECT_EQ(base + "noext~1", unique(u"noext"));
    EXPECT_EQ(base + "a.b~1.c", unique(u"a.b.c"));
    EXPECT_FALSE(std::filesystem::exists(folder.Host() / "photo~3.jpg")) << "nothing is made";
}

TEST(File, MakeUniqueTempPathOfALongName_CutsItTo250)
{
    const TempFolder folder;
    const UTF16String path = folder.Path((std::u16string(300, u'n') + u".jpg").c_str());
    const UTF16String expected = folder.Path((std::u16string(246, u'n') + u"~1.jpg").c_str());
    EXPECT_EQ(Show(expected), Show(File::MakeUniqueTempPath(path)));
    const UTF16String fits = folder.Path((std::u16string(246, u'n') + u".jpg").c_str());
    EXPECT_EQ(Show(expected), Show(File::MakeUniqueTempPath(fits)));
    const UTF16String longExtension = folder.Path((u"name." + std::u16string(300, u'e')).c_str());
    EXPECT_EQ(Show(folder.Path((u"~1." + std::u16string(300, u'e')).c_str())),
              Show(File::MakeUniqueTempPath(longExtension)));
}
