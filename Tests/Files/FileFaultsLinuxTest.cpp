// Every system call of every operation of File fails once, at each place, with several errors: the result tells of it,
// no descriptor stays open, nobody is left on the list of holders, and no contents are lost.
#include <FileSupport.h>

#include <FaultySystemCallsLinux.h>
#include <FileImpl.h>
#include <Linux/LinuxErrors.h>

#include <algorithm>
#include <cerrno>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <set>

using namespace ORL;
using namespace ORLTest;

namespace {

using Faults = FaultySystemCalls;

constexpr int kErrors[] = {EIO, EACCES, ENOSPC, EMFILE, EINVAL, EINTR, ENOSYS, EPERM, ENOLCK};

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
    // What must hold afterwards, given the result.
    void (*mCheck)(const TempFolder&, Result);
    // Results besides success and the one that the error has.
    std::set<Result> mOther;
    bool mIsOnTwoVolumes = false;
};

int RefuseToRename(const char*, const char*, unsigned)
{
    errno = EXDEV;
    return -1;
}

void Prepare(const Operation& inOperation, Faults& ioCalls)
{
    if (inOperation.mIsOnTwoVolumes) {
        ioCalls.Underneath().mRenameTo = &RefuseToRename;
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

// A refusal of the new file's locks says that somebody has it by now: it stays as it was made.
void ExpectCopyOrNothing(const TempFolder& inFolder, const char* inName, Result inResult,
                         Result inRefusal = kSharingViolation)
{
    const std::string contents = ContentsOf(inFolder, inName);
    const bool mayBeAnothers = inResult == inRefusal && contents.empty();
    EXPECT_TRUE(mayBeAnothers || contents == (ResultSucceeded(inResult) ? Big('o') : "<none>")) << contents.size();
}

const Operation kOperations[] = {
    {"WriteNew", [](const TempFolder&) {}, &WriteNew,
     [](const TempFolder& folder, Result result) {
         const bool succeeded = ResultSucceeded(result);
         if (succeeded) {
             EXPECT_EQ("hello", ContentsOf(folder, "f"));
         }
     },
     {}},
    {"Empty", &MakeOld,
     [](const TempFolder& folder) {
         return Opened(folder.Path(u"f"), kWrite, kShareNone, Disposition::kFileCreate_Always).mResult;
     },
     [](const TempFolder& folder, Result result) {
         const bool succeeded = ResultSucceeded(result);
         EXPECT_TRUE((succeeded ? "" : Big('o')) == ContentsOf(folder, "f"));
     },
     {}},
    {"Read", &MakeOld, [](const TempFolder& folder) { return ReadAll(folder, kNormal); }, &ExpectUntouched, {}},
    {"ReadPastTheCache", &MakeOld,
     [](const TempFolder& folder) { return ReadAll(folder, Attributes::kFileAttribute_NoBuffering); },
     &ExpectUntouched,
     {}},
    {"OpenExisting", &MakeOld,
     [](const TempFolder& folder) {
         File file;
         return File::Open(folder.Path(u"f"), kRead, file);
     },
     &ExpectUntouched,
     {-1}},
    {"SetEndOfFile", &MakeOld, &CutToThree,
     [](const TempFolder& folder, Result result) {
         const bool succeeded = ResultSucceeded(result);
         EXPECT_TRUE((succeeded ? "ooo" : Big('o')) == ContentsOf(folder, "f"));
     },
     {-1}},
    {"TimeAndSize", &MakeOld, &AskForTimeAndSize, &ExpectUntouched, {kFileNotFound}},
    {"Delete", &MakeOld, [](const TempFolder& folder) { return File::Delete(folder.Path(u"f")); },
     [](const TempFolder& folder, Result result) {
         const bool succeeded = ResultSucceeded(result);
         EXPECT_TRUE((succeeded ? "<none>" : Big('o')) == ContentsOf(folder, "f"));
     },
     {}},
    {"CopyToNew", &MakeOld, [](const TempFolder& folder) { return File::Copy(folder.Path(u"f"), folder.Path(u"c")); },
     [](const TempFolder& folder, Result result) {
         ExpectUntouched(folder, result);
         ExpectCopyOrNothing(folder, "c", result);
     },
     {}},
    {"CopyOver", &MakeOldAndNew,
     [](const TempFolder& folder) { return File::Copy(folder.Path(u"f"), folder.Path(u"n")); },
     [](const TempFolder& folder, Result result) {
         const bool succeeded = ResultSucceeded(result);
         ExpectUntouched(folder, result);
         const std::string copy = ContentsOf(folder, "n");
         EXPECT_TRUE(succeeded ? copy == Big('o') : copy == Big('n') || copy == "<none>");
     },
     {}},
    {"CopyWithProgress", &MakeOld,
     [](const TempFolder& folder) {
         return File::CopyWithProgress(folder.Path(u"f"), folder.Path(u"c"), &KeepGoing, nullptr);
     },
     [](const TempFolder& folder, Result result) {
         ExpectUntouched(folder, result);
         ExpectCopyOrNothing(folder, "c", result, kDiskFull);
     },
     {kDiskFull}},
    {"Move", &MakeOld, [](const TempFolder& folder) { return File::Move(folder.Path(u"f"), folder.Path(u"m")); },
     [](const TempFolder& folder, Result result) {
         const bool succeeded = ResultSucceeded(result);
         EXPECT_TRUE((succeeded ? "<none>" : Big('o')) == ContentsOf(folder, "f"));
         ExpectCopyOrNothing(folder, "m", result);
     },
     {}},
    {"MoveToAnotherVolume", &MakeOld,
     [](const TempFolder& folder) { return File::Move(folder.Path(u"f"), folder.Path(u"m")); },
     [](const TempFolder& folder, Result result) {
         const bool succeeded = ResultSucceeded(result);
         const std::string source = ContentsOf(folder, "f");
         EXPECT_TRUE(source == Big('o') || (succeeded && source == "<none>"));
         ExpectCopyOrNothing(folder, "m", result);
     },
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
     true},
    {"DeleteOnClose", [](const TempFolder&) {},
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
     {}},
    {"SwapTempFile", &MakeOldAndNew,
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
     {}},
};

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
            counts[call] = calls.Count(static_cast<Faults::Call>(call));
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
                const Result told = Win::SystemErrorToORLResult(Linux::SystemErrorFromErrno(error));
                const bool isLocked = call == Faults::kLockRange && result == kSharingViolation;
                EXPECT_TRUE(result == kSuccess || result == told || isLocked || operation.mOther.count(result) != 0)
                    << result;
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
                         [](const testing::TestParamInfo<Operation>& inInfo) { return std::string(inInfo.param.mName); });

// --- transfers that come in pieces -----------------------------------------------------------------------------------

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
    EXPECT_TRUE(Big('o') == ContentsOf(folder, "c"));
    {
        Faults calls;
        calls.Fail(Faults::kCopyRange, 1, ENOSYS);
        calls.Shorten(Faults::kPRead, 1, 1000);
        calls.Shorten(Faults::kPWrite, 1, 1000);
        calls.Fail(Faults::kPWrite, 2, EINTR);
        EXPECT_EQ(kSuccess, File::Copy(folder.Path(u"f"), folder.Path(u"c")));
    }
    EXPECT_TRUE(Big('o') == ContentsOf(folder, "c"));
}

// The kernel began, then refuses: another volume below a mount point, for instance.
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
        EXPECT_TRUE(Big('o') == ContentsOf(folder, "c"));
    }
}
