// Tests share modes between processes, lock by lock: conflicts with a handle that is being opened, and with a handle
// that stays open.
//
// A second descriptor with its own open file description simulates the other process, because the kernel treats its
// locks in the same way. The byte that this descriptor locks means "refuses readers".
#include <FileSupport.h>

#include <FaultySystemCallsLinux.h>

#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <memory>
#include <sys/wait.h>
#include <unistd.h>

using namespace ORL;
using namespace ORLTest;

namespace {

using Faults = FaultySystemCalls;

constexpr Disposition::Type kMaking[] = {Disposition::kFileCreate_New, Disposition::kFileCreate_Always,
                                         Disposition::kFileCreate_OpenAlways};

class Other
{
public:
    explicit Other(const TempFolder& inFolder) : mFile(::open((inFolder.Host() / "f").c_str(), O_RDWR | O_CLOEXEC)) {}
    ~Other() { ::close(mFile); }
    Other(const Other&) = delete;
    Other& operator=(const Other&) = delete;

    void Lock(short inType)
    {
        struct flock lock = {};
        lock.l_type = inType;
        lock.l_whence = SEEK_SET;
        lock.l_start = off_t{1} << 62;
        lock.l_len = 1;
        EXPECT_EQ(0, ::fcntl(mFile, F_OFD_SETLK, &lock));
    }
    void ShutOutReaders() { Lock(F_RDLCK); }
    void Leave() { Lock(F_UNLCK); }

private:
    const int mFile;
};

} // namespace

TEST(FileShareModesOnLinux, OneThatStays_IsASharingViolation)
{
    const TempFolder folder;
    folder.MakeFile("f");
    Other other(folder);
    other.ShutOutReaders();
    EXPECT_EQ(kSharingViolation, Opened(folder.Path(u"f"), kRead).mResult);
    EXPECT_EQ(kSharingViolation, Opened(folder.Path(u"f"), kReadWrite, kShareNone).mResult);
    EXPECT_EQ(kSuccess, Opened(folder.Path(u"f"), kWrite).mResult) << "it shuts out readers alone";
    other.Leave();
    EXPECT_EQ(kSuccess, Opened(folder.Path(u"f"), kRead).mResult);
}

// Two simultaneous opens see each other's locks. If one open is refused, it soon releases its locks, so the other open
// must check again and succeed.
TEST(FileShareModesOnLinux, OneThatIsOnItsWayOut_IsNoConflict)
{
    const struct
    {
        const char* mName;
        Access::Type mAccess;
        Share::Type mShare;
    } ways[] = {{"a reader", kRead, kShareEverything},
                {"a reader alone", kRead, kShareNone},
                {"a writer alone", kReadWrite, kShareNone}};
    for (const auto& way : ways) {
        const TempFolder folder;
        folder.MakeFile("f");
        unsigned all = 0;
        {
            Faults calls;
            EXPECT_EQ(kSuccess, Opened(folder.Path(u"f"), way.mAccess, way.mShare).mResult);
            all = calls.Count(Faults::kLockRange);
        }
        ASSERT_LT(1u, all) << way.mName;
        // The lock is held at the first check and released at one of the calls that follow.
        for (unsigned gone = 2; gone <= all + 2; ++gone) {
            Other other(folder);
            Faults calls;
            unsigned met = 0;
            calls.Before(Faults::kLockRange, 1, [&] { other.ShutOutReaders(); });
            calls.Before(Faults::kLockRange, gone, [&] {
                ++met;
                other.Leave();
            });
            EXPECT_EQ(kSuccess, Opened(folder.Path(u"f"), way.mAccess, way.mShare).mResult)
                << way.mName << ", gone at call " << gone;
            EXPECT_EQ(1u, met) << "the lock was in the way";
        }
    }
}

// The retries are limited: the other process may retry as well.
TEST(FileShareModesOnLinux, OneThatComesAndGoesAllTheTime_IsAConflictInTheEnd)
{
    const TempFolder folder;
    folder.MakeFile("f");
    Other other(folder);
    Faults calls;
    for (unsigned number = 1; number < 400; ++number) {
        // Every check that finds the lock is followed by a check that does not.
        calls.Before(Faults::kLockRange, number,
                     [&other, number] { number % 2 == 1 ? other.ShutOutReaders() : other.Leave(); });
    }
    const Result result = Opened(folder.Path(u"f"), kReadWrite, kShareNone).mResult;
    EXPECT_EQ(kSharingViolation, result);
    EXPECT_GT(400u, calls.Count(Faults::kLockRange));
}

// A refused open leaves no lock behind.
TEST(FileShareModesOnLinux, OneThatWasRefused_HoldsNothing)
{
    const TempFolder folder;
    folder.MakeFile("f");
    Other other(folder);
    other.ShutOutReaders();
    EXPECT_EQ(kSharingViolation, Opened(folder.Path(u"f"), kRead, kShareNone).mResult);
    EXPECT_EQ(kSharingViolation, Opened(folder.Path(u"f"), kReadWrite, kShareNone).mResult);
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = (off_t{1} << 62) + 1;
    const int third = ::open((folder.Host() / "f").c_str(), O_RDWR | O_CLOEXEC);
    EXPECT_EQ(0, ::fcntl(third, F_OFD_GETLK, &lock));
    EXPECT_EQ(F_UNLCK, lock.l_type);
    ::close(third);
}

// A write-only descriptor cannot acquire shared locks, but it can acquire the exclusive lock.
TEST(FileShareModesOnLinux, AWriterAlone_TakesOneLockAndAsksNothing)
{
    const TempFolder folder;
    folder.MakeFile("f");
    Faults calls;
    Opened file(folder.Path(u"f"), kWrite, kShareNone);
    EXPECT_EQ(kSuccess, file.mResult);
    EXPECT_EQ(1u, calls.Count(Faults::kLockRange));
    file.mFile.Close();
    EXPECT_EQ(2u, calls.Count(Faults::kLockRange));
}

// --- a file that is created, and opened by another before its creator locks it ---------------------------------------

// A second open happens in this process between the creation of the file and the first query about the file.
TEST(FileShareModesOnLinux, AMakerWhoComesTooLate_LeavesTheFileToItsHolder)
{
    for (const Disposition::Type disposition : kMaking) {
        const TempFolder folder;
        Faults calls;
        std::unique_ptr<Opened> holder;
        calls.Before(Faults::kFStat, 1, [&] {
            holder = std::make_unique<Opened>(folder.Path(u"f"), kReadWrite, kShareNone);
            EXPECT_EQ(kSuccess, holder->mResult);
            EXPECT_TRUE(WriteText(holder->mFile, "mine"));
        });
        EXPECT_EQ(kSharingViolation, Opened(folder.Path(u"f"), kReadWrite, kShareNone, disposition).mResult);
        ASSERT_NE(nullptr, holder);
        EXPECT_EQ("mine", ContentsOf(folder, "f")) << "disposition " << disposition;
    }
}

// Another process locks the file before its creator does.
TEST(FileShareModesOnLinux, AMakerWhoMeetsLocks_LeavesTheFileToTheirOwner)
{
    for (const Disposition::Type disposition : kMaking) {
        const TempFolder folder;
        Faults calls;
        std::unique_ptr<Other> other;
        calls.Before(Faults::kLockRange, 1, [&] {
            other = std::make_unique<Other>(folder);
            other->ShutOutReaders();
        });
        EXPECT_EQ(kSharingViolation, Opened(folder.Path(u"f"), kReadWrite, kShareNone, disposition).mResult);
        ASSERT_NE(nullptr, other);
        EXPECT_EQ("", ContentsOf(folder, "f")) << "disposition " << disposition;
    }
}

// Two processes open the same name exclusively, and create the file if it is missing. The second process opens the file
// directly after the first has created it.
TEST(FileShareModesOnLinux, OfTwoProcessesThatMakeAFile_TheLoserDeletesNothing)
{
    const TempFolder folder;
    const auto open = [&folder] {
        return std::make_unique<Opened>(folder.Path(u"f"), kReadWrite, kShareNone, Disposition::kFileCreate_OpenAlways);
    };
    int ready[2];
    int done[2];
    ASSERT_EQ(0, ::pipe(ready));
    ASSERT_EQ(0, ::pipe(done));
    pid_t child = -1;
    char byte = 'x';
    {
        Faults calls;
        calls.Before(Faults::kFStat, 1, [&] {
            child = ::fork();
            if (child != 0) {
                EXPECT_EQ(1, ::read(ready[0], &byte, 1));
                return;
            }
            ::close(done[1]);
            const auto winner = open();
            const bool isTold = ::write(ready[1], &byte, 1) == 1;
            const bool isOver = ::read(done[0], &byte, 1) == 0;
            ::_exit(winner->mResult == kSuccess && isTold && isOver && WriteText(winner->mFile, "mine") ? 0 : 1);
        });
        EXPECT_EQ(kSharingViolation, open()->mResult);
    }
    ::close(done[1]);
    int status = 0;
    ASSERT_EQ(child, ::waitpid(child, &status, 0));
    EXPECT_EQ(0, status);
    EXPECT_EQ("mine", ContentsOf(folder, "f"));
    for (const int end : {ready[0], ready[1], done[0]}) {
        ::close(end);
    }
}

// If an open fails after it has created the file, it deletes its own file, but never the file of another process.
TEST(FileShareModesOnLinux, AMakerWhoFails_DeletesHisOwnFileAlone)
{
    const TempFolder folder;
    {
        Faults calls;
        calls.Fail(Faults::kFStat, 1, EIO);
        EXPECT_EQ(kGeneralFailure,
                  Opened(folder.Path(u"f"), kReadWrite, kShareNone, Disposition::kFileCreate_New).mResult);
    }
    EXPECT_EQ("<none>", ContentsOf(folder, "f"));
    Faults calls;
    calls.Fail(Faults::kFStat, 1, EIO);
    calls.Before(Faults::kFStat, 1, [&folder] {
        std::filesystem::rename(folder.Host() / "f", folder.Host() / "aside");
        folder.MakeFile("f", "another");
    });
    EXPECT_EQ(kGeneralFailure, Opened(folder.Path(u"f"), kReadWrite, kShareNone, Disposition::kFileCreate_New).mResult);
    EXPECT_EQ("another", ContentsOf(folder, "f"));
}
