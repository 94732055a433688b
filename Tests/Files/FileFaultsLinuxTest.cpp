// Fails each system call of each operation of File with several errors. The result must report the error, no descriptor
// may stay open, no holder may stay registered, and no contents may be lost.
#include <FileSupport.h>

#include <BlockCacheSupport.h>
#include <FaultySystemCallsLinux.h>
#include <Files/FileImpl.h>
#include <Linux/Calls/LinuxErrors.h>

#include <algorithm>
#include <cerrno>
#include <gtest/gtest.h>
#include <iterator>
#include <set>
#include <vector>

using namespace ORL;
using namespace ORLTest;

namespace {

using Faults = FaultySystemCalls;

constexpr int kErrors[] = {EIO,   EACCES, ENOSPC, EMFILE, EINVAL, EINTR, ENOSYS,
                           EPERM, ENOLCK, EDQUOT, EROFS,  ENOMEM, ENOENT};

// Failures of a call that the operation need not report. mNumber 0 means every call of the kind, empty mErrors means
// every error.
struct IgnoredFailure
{
    Faults::Call mCall;
    unsigned mNumber = 0;
    std::set<int> mErrors = {};

    bool Fits(int inCall, unsigned inNumber, int inError) const
    {
        return inCall == mCall && (mNumber == 0 || mNumber == inNumber)
               && (mErrors.empty() || mErrors.count(inError) != 0);
    }
};

bool FitsAny(const std::vector<IgnoredFailure>& inAll, int inCall, unsigned inNumber, int inError)
{
    return std::any_of(inAll.begin(), inAll.end(),
                       [&](const IgnoredFailure& one) { return one.Fits(inCall, inNumber, inError); });
}

// Ignored in every operation: calls that are retried or replaced, and attributes that some file systems do not store.
const std::vector<IgnoredFailure> kAlwaysIgnored = {
    {Faults::kClose, 0, {EINTR}},
    {Faults::kPRead, 0, {EINTR}},
    {Faults::kPWrite, 0, {EINTR}},
    {Faults::kCopyRange, 0, {EINVAL, EINTR, ENOSYS, EPERM}},
    {Faults::kFUTimens, 0, {ENOSYS, EPERM}},
    {Faults::kFChMod, 0, {ENOSYS, EPERM}},
    {Faults::kRenameTo, 0, {EINVAL, ENOSYS}},
    {Faults::kLink, 0, {ENOSYS, EPERM}},
    {Faults::kFListXAttr},
    {Faults::kSetFlags},
    {Faults::kSeek},
};

std::size_t OpenDescriptors()
{
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}));
}

const std::string& Big(char inFill)
{
    static const std::string sOld(300000, 'o');
    static const std::string sNew(400000, 'n');
    return inFill == 'o' ? sOld : sNew;
}

bool KeepGoing(float, void*)
{
    return true;
}

struct Operation
{
    const char* mName;
    void (*mPrepare)(const TempFolder&);
    Result (*mRun)(const TempFolder&);
    // Checks the files on disk after the operation has returned the result.
    void (*mCheck)(const TempFolder&, Result);
    // The numbers of the lock calls whose refusal is a sharing violation. Refusals of other lock calls do not matter.
    std::set<unsigned> mLocks;
    std::vector<IgnoredFailure> mIgnored;
    // Maps the system's error to the expected result.
    Result (*mMapError)(Faults::Call, SystemError) = [](Faults::Call, SystemError error) {
        return Files::ResultOf(error);
    };
    // Failures whose outcome depends on the file system of the tests.
    std::vector<IgnoredFailure> mUnspecified = {};
    bool mIsOnTwoVolumes = false;

    bool Ignores(int inCall, unsigned inNumber, int inError) const
    {
        if (inCall == Faults::kLockRange) {
            return inError != EACCES || mLocks.count(inNumber) == 0;
        }
        return FitsAny(kAlwaysIgnored, inCall, inNumber, inError) || FitsAny(mIgnored, inCall, inNumber, inError);
    }

    bool IsUnspecified(int inCall, unsigned inNumber, int inError) const
    {
        return FitsAny(mUnspecified, inCall, inNumber, inError);
    }

    Result ExpectedResult(int inCall, int inError) const
    {
        const bool isLock = inCall == Faults::kLockRange;
        return mMapError(static_cast<Faults::Call>(inCall),
                         isLock ? SystemErrors::kErrorSharingViolation : Linux::SystemErrorFromErrno(inError));
    }
};

const IgnoredFailure kInterruptedOpen = {Faults::kOpen, 0, {EINTR}};
const IgnoredFailure kEveryClose = {Faults::kClose};
const IgnoredFailure kEveryStatx = {Faults::kStatx};
// The ignored closes of a copy: only the first close, of the new file, must be reported if it fails.
const IgnoredFailure kOtherCloses[] = {{Faults::kClose, 2}, {Faults::kClose, 3}};

int RefuseToRename(const char*, const char*, unsigned)
{
    errno = EXDEV;
    return -1;
}

void Prepare(const Operation& inOperation, Faults& ioCalls)
{
    ioCalls.Underlying().mFSync = [](int) { return 0; }; // skips the slow sync, which no check needs
    if (inOperation.mIsOnTwoVolumes) {
        ioCalls.Underlying().mRenameTo = &RefuseToRename;
    }
}

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

// Reads block by block, from the middle of the first block.
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

void MakeOld(const TempFolder& inFolder)
{
    inFolder.MakeFile("f", Big('o'));
}

void MakeOldAndNew(const TempFolder& inFolder)
{
    inFolder.MakeFile("f", Big('o'));
    inFolder.MakeFile("n", Big('n'));
}

void ExpectUntouched(const TempFolder& inFolder, Result)
{
    EXPECT_TRUE(Big('o') == ContentsOf(inFolder, "f"));
}

// If the lock on the new file is refused, another process has opened the file, so it stays empty and is not deleted.
void ExpectCopyOrNothing(const TempFolder& inFolder, const char* inName, Result inResult,
                         Result inRefusal = kSharingViolation)
{
    const std::string contents = ContentsOf(inFolder, inName);
    const bool mayBeAnothers = inResult == inRefusal && contents.empty();
    EXPECT_TRUE(mayBeAnothers || contents == (ResultSucceeded(inResult) ? Big('o') : "<none>")) << contents.size();
}

constexpr auto kMapDirectly = [](Faults::Call, SystemError error) { return Files::ResultOf(error); };

// Maps errors of operations that return -1 if the call Own fails.
template <Faults::Call Own>
Result MapToMinusOneIf(Faults::Call inCall, SystemError inError)
{
    return inCall == Own ? -1 : Files::ResultOf(inError);
}

Result MapStatxError(Faults::Call inCall, SystemError inError)
{
    return inCall == Faults::kStatx ? kFileNotFound : Files::ResultOf(inError);
}

// A copy with progress reports most failures as a full disk.
Result MapCopyError(Faults::Call, SystemError inError)
{
    using namespace SystemErrors;
    return inError == kErrorFileNotFound || inError == kErrorAccessDenied ? Files::ResultOf(inError) : kDiskFull;
}

const Operation kOperations[] = {
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
     kMapDirectly,
     {{Faults::kPRead}}},
    // Some file systems are probed for their alignment with one or two reads.
    {"ReadThroughBlocks",
     &MakeOld,
     &ReadThroughBlocks,
     &ExpectUntouched,
     {1},
     {kInterruptedOpen, kEveryClose, kEveryStatx},
     kMapDirectly,
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
    {"CopyToNew",
     &MakeOld,
     [](const TempFolder& folder) { return File::Copy(folder.Path(u"f"), folder.Path(u"c")); },
     [](const TempFolder& folder, Result result) {
         ExpectUntouched(folder, result);
         ExpectCopyOrNothing(folder, "c", result);
     },
     {1, 3},
     {kInterruptedOpen, kOtherCloses[0]}},
    {"CopyOver",
     &MakeOldAndNew,
     [](const TempFolder& folder) { return File::Copy(folder.Path(u"f"), folder.Path(u"n")); },
     [](const TempFolder& folder, Result result) {
         const bool succeeded = ResultSucceeded(result);
         ExpectUntouched(folder, result);
         const std::string copy = ContentsOf(folder, "n");
         EXPECT_TRUE(succeeded ? copy == Big('o') : copy == Big('n') || copy == "<none>");
     },
     {1, 3},
     {kInterruptedOpen, {Faults::kOpen, 3, {EACCES, ENOENT}}, kOtherCloses[0]}},
    {"CopyWithProgress",
     &MakeOld,
     [](const TempFolder& folder) {
         return File::CopyWithProgress(folder.Path(u"f"), folder.Path(u"c"), &KeepGoing, nullptr);
     },
     [](const TempFolder& folder, Result result) {
         ExpectUntouched(folder, result);
         ExpectCopyOrNothing(folder, "c", result, kDiskFull);
     },
     {1, 3},
     {kInterruptedOpen, kOtherCloses[0]},
     &MapCopyError},
    {"Move",
     &MakeOld,
     [](const TempFolder& folder) { return File::Move(folder.Path(u"f"), folder.Path(u"m")); },
     [](const TempFolder& folder, Result result) {
         const bool succeeded = ResultSucceeded(result);
         EXPECT_TRUE((succeeded ? "<none>" : Big('o')) == ContentsOf(folder, "f"));
         ExpectCopyOrNothing(folder, "m", result);
     },
     {1},
     {{Faults::kOpen}, kEveryClose}},
    {"MoveToAnotherVolume",
     &MakeOld,
     [](const TempFolder& folder) { return File::Move(folder.Path(u"f"), folder.Path(u"m")); },
     [](const TempFolder& folder, Result result) {
         const bool succeeded = ResultSucceeded(result);
         const std::string source = ContentsOf(folder, "f");
         EXPECT_TRUE(source == Big('o') || (succeeded && source == "<none>"));
         ExpectCopyOrNothing(folder, "m", result);
     },
     {1, 3, 6},
     {{Faults::kOpen, 1},
      {Faults::kOpen, 2, {EACCES, EPERM}},
      {Faults::kFSync, 2, {EINVAL}},
      kInterruptedOpen,
      kOtherCloses[0],
      kOtherCloses[1],
      {Faults::kClose, 4},
      {Faults::kUnlink}},
     kMapDirectly,
     {},
     true},
    {"MoveALinkToAnotherVolume",
     [](const TempFolder& folder) {
         MakeOld(folder);
         std::filesystem::create_symlink("f", folder.Host() / "link");
     },
     [](const TempFolder& folder) { return File::Move(folder.Path(u"link"), folder.Path(u"m")); },
     [](const TempFolder& folder, Result result) {
         const bool succeeded = ResultSucceeded(result);
         ExpectUntouched(folder, result);
         EXPECT_EQ(succeeded, std::filesystem::is_symlink(folder.Host() / "m"));
         EXPECT_TRUE(succeeded || std::filesystem::is_symlink(folder.Host() / "link"));
     },
     {},
     {{Faults::kOpen, 0, {EACCES, EPERM}},
      {Faults::kFSync, 1, {EINVAL}},
      kInterruptedOpen,
      kEveryClose,
      {Faults::kUnlink}},
     kMapDirectly,
     {},
     true},
    {"DeleteOnClose",
     [](const TempFolder&) {},
     [](const TempFolder& folder) {
         using namespace Files::Platform;
         Handle file = nullptr;
         const SystemError error =
             CreateFile_Impl(folder.Path(u"f"), kGenericWrite | kAccessDelete, 7, kCreateNew, kFlagDeleteOnClose, file);
         if (error == 0) {
             CloseFile_Impl(file);
         }
         return Files::ResultOf(error);
     },
     [](const TempFolder&, Result) {},
     {1, 2},
     {kInterruptedOpen, kEveryClose, kEveryStatx, {Faults::kUnlink}}},
    {"SwapTempFile",
     &MakeOldAndNew,
     [](const TempFolder& folder) { return File::SwapTempFile(folder.Path(u"n"), folder.Path(u"f")); },
     [](const TempFolder& folder, Result result) {
         const bool succeeded = ResultSucceeded(result);
         const std::string real = ContentsOf(folder, "f");
         const std::string temp = ContentsOf(folder, "n");
         EXPECT_TRUE(real == Big('n') || real == Big('o')) << "the real file is whole";
         EXPECT_TRUE((temp == Big('n')) == (real == Big('o'))) << "the temporary name stands until it is done";
         EXPECT_TRUE(!succeeded || real == Big('n'));
         const auto names = std::distance(std::filesystem::directory_iterator(folder.Host()), {});
         EXPECT_TRUE(real == Big('n') || names == 2) << "what failed before the swap leaves no second name";
     },
     // The first statx calls look for a free name; the unlink deletes the backup. If the folder cannot be opened, its
     // volume is synced instead.
     {1, 3},
     {kInterruptedOpen,
      {Faults::kOpen, 3, {EACCES, EPERM}},
      kEveryClose,
      {Faults::kStatx, 1},
      {Faults::kStatx, 2},
      {Faults::kUnlink},
      {Faults::kFSync, 2, {EINVAL}}}},
};

// The allocator may request pages at any time; other tests fail its calls.
bool IsOfMemory(int inCall)
{
    return inCall == Faults::kMapPages || inCall == Faults::kAdvisePages || inCall == Faults::kUnmapPages;
}

class FileFaults : public testing::TestWithParam<Operation>
{
};

void ExpectFree(const TempFolder& inFolder)
{
    for (const auto& entry : std::filesystem::directory_iterator(inFolder.Host())) {
        const std::string name = entry.path().filename().string();
        const UTF16String path = inFolder.Path(std::u16string(name.begin(), name.end()));
        EXPECT_EQ(kSuccess, Opened(path, kReadWrite, kShareNone).mResult) << name << " is still held";
    }
}

} // namespace

TEST_P(FileFaults, EachCallThatFails_IsToldAndLeavesNothing)
{
    const Operation& operation = GetParam();
    unsigned counts[Faults::kCallCount] = {};
    {
        const TempFolder folder;
        operation.mPrepare(folder);
        Faults calls;
        Prepare(operation, calls);
        EXPECT_EQ(kSuccess, operation.mRun(folder));
        for (int call = 0; call < Faults::kCallCount; ++call) {
            counts[call] = IsOfMemory(call) ? 0 : calls.Count(static_cast<Faults::Call>(call));
        }
    }
    int injections = 0;
    for (int call = 0; call < Faults::kCallCount; ++call) {
        for (unsigned number = 1; number <= counts[call]; ++number) {
            for (const int error : kErrors) {
                SCOPED_TRACE("call " + std::to_string(call) + " number " + std::to_string(number) + " error "
                             + std::to_string(error));
                const TempFolder folder;
                operation.mPrepare(folder);
                const std::size_t descriptors = OpenDescriptors();
                Result result = kSuccess;
                {
                    Faults calls;
                    Prepare(operation, calls);
                    calls.Fail(static_cast<Faults::Call>(call), number, error);
                    result = operation.mRun(folder);
                }
                ++injections;
                const bool isIgnored = operation.Ignores(call, number, error);
                if (!operation.IsUnspecified(call, number, error) || result != kSuccess) {
                    EXPECT_EQ(isIgnored ? kSuccess : operation.ExpectedResult(call, error), result);
                }
                EXPECT_EQ(descriptors, OpenDescriptors());
                operation.mCheck(folder, result);
                ExpectFree(folder);
            }
        }
    }
    std::printf("%d injections\n", injections);
    EXPECT_LT(0, injections);
}

INSTANTIATE_TEST_SUITE_P(Operations, FileFaults, testing::ValuesIn(kOperations),
                         [](const testing::TestParamInfo<Operation>& inInfo) {
                             return std::string(inInfo.param.mName);
                         });
