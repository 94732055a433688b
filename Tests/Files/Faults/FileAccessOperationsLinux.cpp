#include "FileOperationsLinux.h"

#include <BlockCacheSupport.h>

#include <gtest/gtest.h>
#include <string>

using namespace ORL;

namespace ORLTest {

namespace {

Result WriteNew(const TempFolder& inFolder)
{
    Opened file(inFolder.Path(u"f"), kReadWrite, kShareNone, Disposition::kFileCreate_New);
    if (!ResultSucceeded(file.mResult)) {
        EXPECT_EQ("<none>", ContentsOf(inFolder, "f")) << "a file that could not be made is not left behind";
        return file.mResult;
    }
    unsigned count = 99;
    const Result result = file.mFile.Write("hello", 5, count);
    EXPECT_EQ(ResultSucceeded(result) ? 5u : 0u, count);
    return result;
}

Result ReadAll(const TempFolder& inFolder, Attributes::Type inAttributes)
{
    Opened file(inFolder.Path(u"f"), kRead, kShareReaders, Disposition::kFileCreate_OpenExisting, inAttributes);
    if (!ResultSucceeded(file.mResult)) {
        return file.mResult;
    }
    alignas(4096) static char bytes[512 * 1024];
    unsigned count = 0;
    const Result result = file.mFile.Read(bytes, sizeof(bytes), count);
    if (ResultSucceeded(result)) {
        EXPECT_TRUE(Big('o') == std::string(bytes, count));
    }
    return result;
}

// Reads a file through a block cache, starting inside the first block.
Result ReadThroughBlocks(const TempFolder& inFolder)
{
    BufferLog log;
    const ScopedBlockCache factory([&log] { return BufferRef(new RecordingBuffer(log)); });
    Opened file(inFolder.Path(u"f"), kRead, kShareReaders);
    if (!ResultSucceeded(file.mResult)) {
        return file.mResult;
    }
    constexpr std::size_t kStart = 100;
    EXPECT_EQ(kSuccess, file.mFile.SetFilePointer(kStart, Method::kFilePointer_Begin));
    std::string bytes(Big('o').size(), '#');
    unsigned count = 0;
    const Result result = file.mFile.Read(&bytes[0], static_cast<unsigned>(bytes.size()), count);
    const std::size_t blocks = log.mAdded.size();
    if (ResultSucceeded(result)) {
        EXPECT_TRUE(Big('o').substr(kStart) == bytes.substr(0, count));
        EXPECT_EQ(log.mGot.size(), blocks);
        return result;
    }
    EXPECT_EQ(log.mGot.size(), blocks + 1) << "the block that could not be read is not offered";
    EXPECT_EQ(blocks == 0 ? 0 : blocks * Files::kSmallestBlock - kStart, count);
    EXPECT_EQ(static_cast<__int64>(blocks * Files::kSmallestBlock), PositionOf(file.mFile))
        << "where the seek to that block has put it";
    return result;
}

Result CutToThree(const TempFolder& inFolder)
{
    Opened file(inFolder.Path(u"f"), kReadWrite, kShareNone);
    if (!ResultSucceeded(file.mResult)) {
        return file.mResult;
    }
    file.mFile.SetFilePointer(3, Method::kFilePointer_Begin);
    return file.mFile.SetEndOfFile();
}

Result AskForTimeAndSize(const TempFolder& inFolder)
{
    unsigned __int64 time = 77;
    const Result result = File::GetLastModificationTimeForFolder(inFolder.Path(u"f"), time);
    EXPECT_EQ(ResultSucceeded(result), time != 77);
    unsigned __int64 size = 77;
    const Result sizeResult = File::SizeOnDisk(inFolder.Path(u"f"), size);
    EXPECT_EQ(ResultSucceeded(sizeResult) ? Big('o').size() : 77u, size);
    return ResultSucceeded(result) ? sizeResult : result;
}

// Maps a failure of the system call Own to -1, and any other error to its result.
template <Faults::Call Own>
Result MapToMinusOneIf(Faults::Call inCall, SystemError inError)
{
    return inCall == Own ? -1 : Files::ResultOf(inError);
}

Result MapStatxError(Faults::Call inCall, SystemError inError)
{
    return inCall == Faults::kStatx ? kFileNotFound : Files::ResultOf(inError);
}

} // namespace

std::vector<FileOperation> AccessOperations()
{
    return {
        {"WriteNew",
         [](const TempFolder&) {},
         &WriteNew,
         [](const TempFolder& folder, Result result) {
             const bool succeeded = ResultSucceeded(result);
             if (succeeded) {
                 EXPECT_EQ("hello", ContentsOf(folder, "f"));
             }
         },
         {},
         {kInterruptedOpen, kEveryClose, kEveryStatx}},
        {"Empty",
         &MakeOld,
         [](const TempFolder& folder) {
             return Opened(folder.Path(u"f"), kWrite, kShareNone, Disposition::kFileCreate_Always).mResult;
         },
         [](const TempFolder& folder, Result result) {
             const bool succeeded = ResultSucceeded(result);
             EXPECT_TRUE((succeeded ? "" : Big('o')) == ContentsOf(folder, "f"));
         },
         {},
         {kInterruptedOpen, {Faults::kOpen, 2, {EACCES, ENOENT}}, kEveryClose, kEveryStatx}},
        {"Read",
         &MakeOld,
         [](const TempFolder& folder) { return ReadAll(folder, kNormal); },
         &ExpectUntouched,
         {1},
         {kInterruptedOpen, kEveryClose, kEveryStatx}},
        {"ReadPastTheCache",
         &MakeOld,
         [](const TempFolder& folder) { return ReadAll(folder, Attributes::kFileAttribute_NoBuffering); },
         &ExpectUntouched,
         {1},
         {kInterruptedOpen, kEveryClose, kEveryStatx},
         &MapDirectly,
         {{Faults::kPRead}}},
        // On some file systems the first one or two reads only probe the alignment.
        {"ReadThroughBlocks",
         &MakeOld,
         &ReadThroughBlocks,
         &ExpectUntouched,
         {1},
         {kInterruptedOpen, kEveryClose, kEveryStatx},
         &MapDirectly,
         {{Faults::kPRead, 1}, {Faults::kPRead, 2}}},
        {"OpenExisting",
         &MakeOld,
         [](const TempFolder& folder) {
             File file;
             return File::Open(folder.Path(u"f"), kRead, file);
         },
         &ExpectUntouched,
         {1},
         {kInterruptedOpen, kEveryClose, {Faults::kStatx, 2}},
         &MapToMinusOneIf<Faults::kStatx>},
        {"SetEndOfFile",
         &MakeOld,
         &CutToThree,
         [](const TempFolder& folder, Result result) {
             const bool succeeded = ResultSucceeded(result);
             EXPECT_TRUE((succeeded ? "ooo" : Big('o')) == ContentsOf(folder, "f"));
         },
         {},
         {kInterruptedOpen, kEveryClose, kEveryStatx},
         &MapToMinusOneIf<Faults::kFTruncate>},
        {"TimeAndSize",
         &MakeOld,
         &AskForTimeAndSize,
         &ExpectUntouched,
         {1},
         {kInterruptedOpen, kEveryClose},
         &MapStatxError,
         {kEveryStatx}},
        {"Delete",
         &MakeOld,
         [](const TempFolder& folder) { return File::Delete(folder.Path(u"f")); },
         [](const TempFolder& folder, Result result) {
             const bool succeeded = ResultSucceeded(result);
             EXPECT_TRUE((succeeded ? "<none>" : Big('o')) == ContentsOf(folder, "f"));
         },
         {1},
         {{Faults::kOpen}, kEveryClose}},
        {"DeleteOnClose",
         [](const TempFolder&) {},
         [](const TempFolder& folder) {
             using namespace Files::Platform;
             Handle file = nullptr;
             const SystemError error = CreateFile_Impl(folder.Path(u"f"), kGenericWrite | kAccessDelete, 7, kCreateNew,
                                                       kFlagDeleteOnClose, file);
             if (error == 0) {
                 CloseFile_Impl(file);
             }
             return Files::ResultOf(error);
         },
         [](const TempFolder&, Result) {},
         {1, 2},
         {kInterruptedOpen, kEveryClose, kEveryStatx, {Faults::kUnlink}}},
    };
}

} // namespace ORLTest
