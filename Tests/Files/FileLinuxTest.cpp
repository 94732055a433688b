// Tests the behaviour of File that exists only on Linux: links, permissions, other programs' locks, file systems that
// refuse operations.
#include "../AsyncReads/AsyncReadSupport.h"
#include "ShareModes/ShareModes.h"
#include <FileSupport.h>

#include <FaultySystemCallsLinux.h>
#include <UnprivilegedLinux.h>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace ORL;
using namespace ORLTest;

namespace {

using Faults = FaultySystemCalls;

mode_t ModeOf(const std::filesystem::path& inPath)
{
    struct stat status = {};
    EXPECT_EQ(0, ::lstat(inPath.c_str(), &status));
    return status.st_mode & 07777;
}

bool IsFree(const UTF16String& inPath)
{
    return Opened(inPath, kReadWrite, kShareNone).mResult == kSuccess;
}

} // namespace

TEST(FileOnLinux, TheHandle_PointsToTheDescriptor)
{
    const TempFolder folder;
    folder.MakeFile("f", "hello");
    Opened file(folder.Path(u"f"), kRead);
    struct stat status = {};
    EXPECT_EQ(0, ::fstat(*static_cast<const int*>(file.mFile.GetPlatformFileHandle()), &status));
    EXPECT_EQ(5, status.st_size);
}

TEST(FileOnLinux, CreateWithARelativePath_AsksTheSystemNothing)
{
    const Faults calls;
    EXPECT_EQ(kPathNotFound,
              Opened(Units(u"f"), kWrite, kShareNone, Disposition::kFileCreate_Always, kNormal, true).mResult);
    EXPECT_EQ(0u, calls.Count(Faults::kAny));
}

TEST(FileOnLinux, AProcessThatIsKilled_HoldsNothingMore)
{
    const TempFolder folder;
    folder.MakeFile("f");
    int ready[2];
    ASSERT_EQ(0, ::pipe(ready));
    const pid_t child = ::fork();
    if (child == 0) {
        const Opened file(folder.Path(u"f"), kReadWrite, kShareNone);
        const char answer = file.mResult == kSuccess ? 'y' : 'n';
        (void)!::write(ready[1], &answer, 1);
        for (;;) {
            ::pause();
        }
    }
    char answer = 0;
    ASSERT_EQ(1, ::read(ready[0], &answer, 1));
    EXPECT_EQ('y', answer);
    EXPECT_FALSE(IsFree(folder.Path(u"f")));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    EXPECT_TRUE(IsFree(folder.Path(u"f")));
    ::close(ready[0]);
    ::close(ready[1]);
}

// A host starts a child process while a file is open: the child's copy of the descriptor must not keep the file
// locked after the host has closed it.
TEST(FileOnLinux, AChildOfTheHost_DoesNotHoldWhatWeHaveClosed)
{
    const TempFolder folder;
    folder.MakeFile("f");
    int end[2];
    ASSERT_EQ(0, ::pipe(end));
    Opened file(folder.Path(u"f"), kReadWrite, kShareNone);
    const pid_t child = ::fork();
    if (child == 0) {
        char byte;
        ::close(end[1]);
        (void)!::read(end[0], &byte, 1);
        ::_exit(0);
    }
    file.mFile.Close();
    EXPECT_TRUE(IsFree(folder.Path(u"f")));
    ::close(end[1]);
    ::waitpid(child, nullptr, 0);
    ::close(end[0]);
}

TEST(FileOnLinux, AProgramThatLocksTheWholeFile_IsASharingViolation)
{
    const TempFolder folder;
    folder.MakeFile("f");
    const int other = ::open((folder.Host() / "f").c_str(), O_RDWR | O_CLOEXEC);
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    ASSERT_EQ(0, ::fcntl(other, F_OFD_SETLK, &lock));
    EXPECT_EQ(kSharingViolation, Opened(folder.Path(u"f"), kRead).mResult);
    ::close(other);
    EXPECT_EQ(kSuccess, Opened(folder.Path(u"f"), kRead).mResult);
}

// Locks that another program holds on the file's data do not affect our locks.
TEST(FileOnLinux, AProgramThatLocksItsData_DoesNotMeetUs)
{
    const TempFolder folder;
    folder.MakeFile("f", "0123456789");
    const int other = ::open((folder.Host() / "f").c_str(), O_RDWR | O_CLOEXEC);
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_len = 10;
    ASSERT_EQ(0, ::fcntl(other, F_OFD_SETLK, &lock));
    EXPECT_EQ(kSuccess, Opened(folder.Path(u"f"), kReadWrite, kShareNone).mResult);
    ::close(other);
}

TEST(FileOnLinux, WithoutLocks_TheRuleHoldsInTheProcess)
{
    const TempFolder folder;
    folder.MakeFile("f");
    Faults calls;
    calls.Fail(Faults::kLockRange, 1, ENOLCK, Faults::kForEver);
    const Opened held(folder.Path(u"f"), kReadWrite, kShareNone);
    EXPECT_EQ(kSuccess, held.mResult);
    EXPECT_FALSE(IsFree(folder.Path(u"f")));
}

TEST(FileOnLinux, AFileThatMayOnlyBeWritten_IsWritten)
{
    const TempFolder folder;
    folder.MakeFile("f", "xxxxx");
    ASSERT_EQ(0, ::chmod((folder.Host() / "f").c_str(), 0222));
    RunUnprivileged(folder.Host(), [&folder] {
        Opened file(folder.Path(u"f"), kWrite, kShareNone);
        EXPECT_EQ(kSuccess, file.mResult);
        EXPECT_TRUE(WriteText(file.mFile, "hello"));
        EXPECT_EQ(kSharingViolation, Opened(folder.Path(u"f"), kWrite, kShareEverything).mResult);
        EXPECT_EQ(kAccessDenied, Opened(folder.Path(u"f"), kRead, kShareEverything).mResult);
        return true;
    });
    ASSERT_EQ(0, ::chmod((folder.Host() / "f").c_str(), 0644)); // in the old mode no ordinary user can read the file
    EXPECT_EQ("hello", ContentsOf(folder, "f"));
}

TEST(FileOnLinux, APlaceWithoutPermission_IsAccessDenied)
{
    const TempFolder folder;
    folder.MakeFolder("d");
    folder.MakeFile("d/f", "x");
    RunUnprivileged(folder.Host(), [&folder] {
        EXPECT_EQ(0, ::chmod((folder.Host() / "d").c_str(), 0));
        EXPECT_EQ(kAccessDenied, Opened(folder.Path(u"d\\f"), kRead).mResult);
        EXPECT_EQ(kAccessDenied,
                  Opened(folder.Path(u"d\\n"), kWrite, kShareNone, Disposition::kFileCreate_New).mResult);
        EXPECT_EQ(kAccessDenied, File::Delete(folder.Path(u"d\\f")));
        unsigned __int64 size = 0;
        EXPECT_EQ(kFileNotFound, File::SizeOnDisk(folder.Path(u"d\\f"), size)) << "whatever the failure was";
        return ::chmod((folder.Host() / "d").c_str(), 0755) == 0;
    });
}

TEST(FileOnLinux, PipesAndSockets_AreNoFiles)
{
    const TempFolder folder;
    ASSERT_EQ(0, ::mkfifo((folder.Host() / "p").c_str(), 0666));
    EXPECT_EQ(kAccessDenied, Opened(folder.Path(u"p"), kRead).mResult);
    EXPECT_EQ(kAccessDenied, Opened(folder.Path(u"p"), kReadWrite).mResult);
}

TEST(FileOnLinux, ALinkToNothing_IsMadeByCreating)
{
    const TempFolder folder;
    std::filesystem::create_symlink("target", folder.Host() / "link");
    EXPECT_EQ(kFileNotFound, Opened(folder.Path(u"link"), kRead).mResult);
    EXPECT_EQ(kSuccess, Opened(folder.Path(u"link"), kWrite, kShareNone, Disposition::kFileCreate_Always).mResult);
    EXPECT_EQ("", ContentsOf(folder, "target"));
}

TEST(FileOnLinux, DeletingALink_LeavesWhatItLeadsTo)
{
    const TempFolder folder;
    folder.MakeFile("target", "x");
    std::filesystem::create_symlink("target", folder.Host() / "link");
    EXPECT_EQ(kSuccess, File::Delete(folder.Path(u"link")));
    EXPECT_EQ("x", ContentsOf(folder, "target"));
    EXPECT_FALSE(std::filesystem::is_symlink(folder.Host() / "link"));
}

TEST(FileOnLinux, AFileSystemWithoutDirectReads_IsReadThroughTheCacheWithTheSameDuty)
{
    const TempFolder folder;
    folder.MakeFile("f", MakeContents(66536));
    Faults calls;
    calls.Fail(Faults::kSetFlags, 1, EINVAL);
    Opened file(folder.Path(u"f"), kRead, kShareEverything, Disposition::kFileCreate_OpenExisting,
                Attributes::kFileAttribute_NoBuffering);
    ASSERT_EQ(kSuccess, file.mResult);
    const AlignedBuffer buffer(65536);
    unsigned count = 0;
    EXPECT_EQ(kSuccess, file.mFile.Read(buffer.Get(), 65536, count));
    EXPECT_EQ(65536u, FirstWrongByte(buffer.Get(), count, 0));
    EXPECT_EQ(1u, calls.Count(Faults::kFAdvise)) << "the cache is emptied behind it";
    EXPECT_EQ(kSuccess, file.mFile.Read(buffer.Get(), 65536, count));
    EXPECT_EQ(1000u, FirstWrongByte(buffer.Get(), count, 65536));
    EXPECT_EQ(kSuccess, file.mFile.SetFilePointer(100, Method::kFilePointer_Begin));
    EXPECT_EQ(kGeneralFailure, file.mFile.Read(buffer.Get(), 4096, count));
}

// --- copying and moving ----------------------------------------------------------------------------------------------

TEST(FileOnLinux, ACopy_HasTheSourcesPermissionsUnlessItWasThere)
{
    const TempFolder folder;
    folder.MakeFile("f");
    folder.MakeFile("g");
    ASSERT_EQ(0, ::chmod((folder.Host() / "f").c_str(), 0750));
    ASSERT_EQ(0, ::chmod((folder.Host() / "g").c_str(), 0604));
    const mode_t mask = ::umask(022);
    EXPECT_EQ(kSuccess, File::Copy(folder.Path(u"f"), folder.Path(u"n")));
    EXPECT_EQ(kSuccess, File::Copy(folder.Path(u"f"), folder.Path(u"g")));
    ::umask(mask);
    EXPECT_EQ(0750u, ModeOf(folder.Host() / "n"));
    EXPECT_EQ(0604u, ModeOf(folder.Host() / "g"));
}

TEST(FileOnLinux, ACopyOfAReadOnlyFile_IsReadOnlyAlsoWhereOneWasBefore)
{
    const TempFolder folder;
    folder.MakeFile("f");
    folder.MakeFile("g");
    ASSERT_EQ(0, ::chmod((folder.Host() / "f").c_str(), 0444));
    EXPECT_EQ(kSuccess, File::Copy(folder.Path(u"f"), folder.Path(u"n")));
    EXPECT_EQ(kSuccess, File::Copy(folder.Path(u"f"), folder.Path(u"g")));
    EXPECT_EQ(kAccessDenied, File::Delete(folder.Path(u"n")));
    EXPECT_EQ(kAccessDenied, File::Delete(folder.Path(u"g")));
}

// The kernel reports a size of 0 for a file in /proc, although the file has contents.
TEST(FileOnLinux, AFileThatTellsNoSize_IsCopiedWhole)
{
    const TempFolder folder;
    EXPECT_EQ(kSuccess, File::Copy(Units(u"C:\\proc\\version"), folder.Path(u"v")));
    std::ifstream version("/proc/version", std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(version), {}), ContentsOf(folder, "v"));
}

TEST(FileOnLinux, ACopyThroughALinkOntoItself_IsRefusedAndHarmless)
{
    const TempFolder folder;
    folder.MakeFile("f", "keep");
    std::filesystem::create_symlink("f", folder.Host() / "link");
    std::filesystem::create_hard_link(folder.Host() / "f", folder.Host() / "second");
    EXPECT_EQ(kSharingViolation, File::Copy(folder.Path(u"f"), folder.Path(u"link")));
    EXPECT_EQ(kSharingViolation, File::Copy(folder.Path(u"second"), folder.Path(u"f")));
    EXPECT_EQ("keep", ContentsOf(folder, "f"));
}

TEST(FileOnLinux, AMoveToAnotherVolume_CopiesAndDeletes)
{
    const TempFolder folder;
    folder.MakeFile("f", "contents");
    folder.MakeFile("there", "other");
    folder.MakeFolder("d");
    Faults calls;
    calls.Fail(Faults::kRenameTo, 1, EXDEV, Faults::kForEver);
    EXPECT_EQ(kAlreadyExists, File::Move(folder.Path(u"f"), folder.Path(u"there")));
    EXPECT_EQ("other", ContentsOf(folder, "there"));
    EXPECT_EQ(kSuccess, File::Move(folder.Path(u"f"), folder.Path(u"m")));
    EXPECT_EQ("contents", ContentsOf(folder, "m"));
    EXPECT_EQ("<none>", ContentsOf(folder, "f"));
    EXPECT_EQ(kAccessDenied, File::Move(folder.Path(u"d"), folder.Path(u"e"))) << "5: folders are not copied";
    EXPECT_TRUE(std::filesystem::is_directory(folder.Host() / "d"));
}

TEST(FileOnLinux, AFileSystemThatCannotRenameToAFreeName_IsAskedFirst)
{
    const TempFolder folder;
    folder.MakeFile("f", "contents");
    folder.MakeFile("there", "other");
    Faults calls;
    calls.Fail(Faults::kRenameTo, 1, EINVAL, Faults::kForEver);
    EXPECT_EQ(kAlreadyExists, File::Move(folder.Path(u"f"), folder.Path(u"there")));
    EXPECT_EQ(kSuccess, File::Move(folder.Path(u"f"), folder.Path(u"m")));
    EXPECT_EQ("contents", ContentsOf(folder, "m"));
    EXPECT_EQ(kPathNotFound, File::Move(folder.Path(u"m"), folder.Path(u"no\\m")));
}

// --- swapping --------------------------------------------------------------------------------------------------------

TEST(FileOnLinux, ASwap_SyncsContentsThenFolder)
{
    const TempFolder folder;
    folder.MakeFile("real", "old");
    folder.MakeFile("temp", "new");
    Faults calls;
    bool isContentsFirst = false;
    calls.Before(Faults::kRename, 1, [&] { isContentsFirst = calls.Count(Faults::kFSync) == 1; });
    EXPECT_EQ(kSuccess, File::SwapTempFile(folder.Path(u"temp"), folder.Path(u"real")));
    EXPECT_TRUE(isContentsFirst);
    EXPECT_EQ(2u, calls.Count(Faults::kFSync));
}

TEST(FileOnLinux, ASwapBetweenFolders_SyncsBoth)
{
    const TempFolder folder;
    folder.MakeFolder("d");
    folder.MakeFile("real", "old");
    folder.MakeFile("d/temp", "new");
    Faults calls;
    EXPECT_EQ(kSuccess, File::SwapTempFile(folder.Path(u"d\\temp"), folder.Path(u"real")));
    EXPECT_EQ(3u, calls.Count(Faults::kFSync));
    EXPECT_EQ("new", ContentsOf(folder, "real"));
}

TEST(FileOnLinux, AFolderThatCannotBeSynced_IsNoFailureUnlessTheDiskIsBroken)
{
    const TempFolder folder;
    for (const int error : {EINVAL, EOPNOTSUPP, EIO}) {
        folder.MakeFile("real", "old");
        folder.MakeFile("temp", "new");
        Faults calls;
        calls.Fail(Faults::kFSync, 2, error);
        EXPECT_EQ(error == EIO ? kGeneralFailure : kSuccess,
                  File::SwapTempFile(folder.Path(u"temp"), folder.Path(u"real")));
        EXPECT_EQ("new", ContentsOf(folder, "real"));
    }
    EXPECT_EQ("old", ContentsOf(folder, "real~1")) << "after a failure the old contents stay too";
}

TEST(FileOnLinux, ASwap_KeepsThePermissionsOfTheName)
{
    const TempFolder folder;
    folder.MakeFile("real", "old");
    folder.MakeFile("temp", "new");
    ASSERT_EQ(0, ::chmod((folder.Host() / "real").c_str(), 0751));
    ASSERT_EQ(0, ::chmod((folder.Host() / "temp").c_str(), 0600));
    EXPECT_EQ(kSuccess, File::SwapTempFile(folder.Path(u"temp"), folder.Path(u"real")));
    EXPECT_EQ(0751u, ModeOf(folder.Host() / "real"));
}

TEST(FileOnLinux, ASwapOfALink_PutsTheContentsWhereItLeads)
{
    const TempFolder folder;
    folder.MakeFolder("d");
    folder.MakeFile("d/target", "old");
    folder.MakeFile("temp", "new");
    std::filesystem::create_symlink("d/target", folder.Host() / "real");
    EXPECT_EQ(kSuccess, File::SwapTempFile(folder.Path(u"temp"), folder.Path(u"real")));
    EXPECT_TRUE(std::filesystem::is_symlink(folder.Host() / "real"));
    EXPECT_EQ("new", ContentsOf(folder, "d/target"));
    EXPECT_EQ("<none>", ContentsOf(folder, "real~1"));
}

TEST(FileOnLinux, ASwapWithoutSecondNames_CopiesTheOldContents)
{
    for (const int error : {EPERM, EOPNOTSUPP, EMLINK}) {
        const TempFolder folder;
        folder.MakeFile("real", "old");
        folder.MakeFile("temp", "new");
        Faults calls;
        calls.Fail(Faults::kLink, 1, error, Faults::kForEver);
        EXPECT_EQ(kSuccess, File::SwapTempFile(folder.Path(u"temp"), folder.Path(u"real")));
        EXPECT_EQ("new", ContentsOf(folder, "real"));
        EXPECT_EQ("<none>", ContentsOf(folder, "real~1"));
    }
}

TEST(FileOnLinux, ABackupThatCannotBeDeleted_IsNoFailure)
{
    const TempFolder folder;
    folder.MakeFile("real", "old");
    folder.MakeFile("temp", "new");
    Faults calls;
    calls.Fail(Faults::kUnlink, 1, EACCES, Faults::kForEver);
    EXPECT_EQ(kSuccess, File::SwapTempFile(folder.Path(u"temp"), folder.Path(u"real")));
    EXPECT_EQ("new", ContentsOf(folder, "real"));
    EXPECT_EQ("old", ContentsOf(folder, "real~1"));
}
