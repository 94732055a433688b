// Tests trees with failing system calls: nothing is lost or left incomplete, and the failure is reported.
#include "DirectoryTreesOnLinux.h"

#include <FaultySystemCallsLinux.h>
#include <Linux/Calls/LinuxErrors.h>
#include <Platform/SystemErrors.h>

#include <algorithm>
#include <cerrno>
#include <unistd.h>
#include <vector>

using namespace ORL;
using namespace ORLTest;

namespace {

using Faults = FaultySystemCalls;

class DirectoryTreesUnderFaults : public DirectoryTreesOnLinux
{
};

constexpr Faults::Call kCallsOfTrees[] = {
    Faults::kOpenAt,    Faults::kGetDents, Faults::kFStat,    Faults::kPRead,     Faults::kPWrite,
    Faults::kCopyRange, Faults::kFUTimens, Faults::kFChMod,   Faults::kMakeDirAt, Faults::kReadLinkAt,
    Faults::kSymLinkAt, Faults::kRenameAt, Faults::kUnlinkAt, Faults::kRemoveDir, Faults::kStatx,
    Faults::kFSync,     Faults::kClose,
};

struct Failure
{
    Faults::Call mCall;
    int mErrno;
    bool mIsReached; // the operation reached that call

    // A file that cannot be opened or queried can still be deleted and moved. A failing close matters only for a file
    // that was written.
    bool MustBeReported() const
    {
        const bool isIrrelevant = mCall == Faults::kStatx || mCall == Faults::kClose
                                  || ((mCall == Faults::kOpenAt || mCall == Faults::kFStat) && mErrno == EACCES);
        return mIsReached && !isIrrelevant;
    }
};

void KeepRealCalls(Faults&)
{
}

// Makes every rename between two folders a cross-volume move.
int RenameInFolders(int inFrom, const char* inName, int inTo, const char* inNewName, unsigned inFlags)
{
    if (inFrom == inTo) {
        return Linux::kSystem.mRenameAt(inFrom, inName, inTo, inNewName, inFlags);
    }
    errno = EXDEV;
    return -1;
}

void SplitVolumes(Faults& ioCalls)
{
    ioCalls.Underlying().mRenameAt = &RenameInFolders;
    ioCalls.Underlying().mFSync = [](int) { return 0; }; // skips the slow sync, which is irrelevant to this test
}

// Runs inWork with each call failing at each index, followed by inCheck(result, failure).
template <class Prepare, class Work, class Check>
void FailEachCall(const Prepare& inPrepare, const Work& inWork, const Check& inCheck,
                  void (*inSetUp)(Faults&) = &KeepRealCalls)
{
    for (const Faults::Call call : kCallsOfTrees) {
        for (const int error : {EIO, ENOSPC, EACCES, EMFILE}) {
            for (unsigned number = 1;; ++number) {
                SCOPED_TRACE("call " + std::to_string(call) + ", number " + std::to_string(number) + ", error "
                             + std::to_string(error));
                inPrepare();
                bool isMet = false;
                Result result = kSuccess;
                {
                    Faults calls;
                    inSetUp(calls);
                    calls.Fail(call, number, error);
                    result = inWork();
                    isMet = calls.Count(call) >= number;
                }
                const Failure failure{call, error, isMet};
                inCheck(result, failure);
                EXPECT_TRUE(!failure.MustBeReported() || result != kSuccess);
                EXPECT_TRUE(isMet || result == kSuccess);
                if (!isMet || testing::Test::HasFailure()) {
                    break;
                }
            }
        }
    }
}

constexpr auto kAsTheyAre = fs::copy_options::recursive | fs::copy_options::copy_symlinks;

unsigned OpenDescriptors()
{
    return static_cast<unsigned>(std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator()));
}

} // namespace

TEST_F(DirectoryTreesUnderFaults, Copy_EachCallFailsOnce_LeavesNoHalfFileAndTheSourceWhole)
{
    MakeTree();
    const unsigned descriptors = OpenDescriptors();
    FailEachCall([this] { fs::remove_all(Host("to")); }, [this] { return Directory::Copy(From(), To()); },
                 [this](Result inResult, const Failure&) {
                     EXPECT_EQ(mTree, Read(Host("from")));
                     if (!fs::exists(Host("to"))) {
                         EXPECT_EQ(kGeneralFailure, inResult);
                         return;
                     }
                     for (const auto& [name, contents] : Read(Host("to"))) {
                         // A temporary copy that could not be deleted keeps its temporary name.
                         if (name.find(".orl-copy-") == std::string::npos) {
                             EXPECT_EQ(mTree[name], contents) << name;
                         }
                     }
                     if (inResult == kSuccess) {
                         EXPECT_EQ(mTree, Read(Host("to")));
                     } else {
                         EXPECT_EQ(kGeneralFailure, inResult);
                     }
                 });
    EXPECT_EQ(descriptors, OpenDescriptors());
    ExpectNothingOutsideChanged();
}

namespace {

// Whether the move succeeds or fails, the two trees together must contain every file.
class MovesUnderFaults : public DirectoryTreesUnderFaults
{
protected:
    void FailEachCallOfAMove(void (*inSetUp)(Faults&))
    {
        MakeTree();
        const fs::path keep = mOutside.Host() / "tree";
        fs::copy(Host("from"), keep, kAsTheyAre);
        const unsigned descriptors = OpenDescriptors();
        FailEachCall(
            [&] {
                fs::remove_all(Host("from"));
                fs::remove_all(Host("to"));
                fs::copy(keep, Host("from"), kAsTheyAre);
                mFolder.MakeFolder("to/sub");
            },
            [this] { return Directory::Move(From(), To()); },
            [this](Result inResult, const Failure&) {
                Tree both = Read(Host("from"));
                both.merge(Read(Host("to")));
                EXPECT_EQ(mTree, both);
                EXPECT_EQ(inResult == kSuccess, fs::is_empty(Host("from")));
                EXPECT_TRUE(inResult == kSuccess || inResult == kGeneralFailure) << inResult;
            },
            inSetUp);
        EXPECT_EQ(descriptors, OpenDescriptors());
    }
};

} // namespace

TEST_F(MovesUnderFaults, EachCallFailsOnce_LosesNothing)
{
    FailEachCallOfAMove(&KeepRealCalls);
}

TEST_F(MovesUnderFaults, ToAnotherVolume_EachCallFailsOnce_LosesNothing)
{
    FailEachCallOfAMove(&SplitVolumes);
}

TEST_F(DirectoryTreesUnderFaults, Wipe_EachCallFailsOnce_FailsAndKeepsTheDirectory)
{
    MakeTree();
    const fs::path keep = mFolder.Host() / "keep";
    fs::copy(Host("from"), keep, kAsTheyAre);
    const unsigned descriptors = OpenDescriptors();
    FailEachCall(
        [&] {
            fs::remove_all(Host("from"));
            fs::copy(keep, Host("from"), kAsTheyAre);
        },
        [this] { return Directory::DeleteNotEmpty(From()); },
        [this](Result inResult, const Failure& inFailure) {
            EXPECT_EQ(inResult == kSuccess, !fs::exists(Host("from")));
            // The folder itself is deleted by a separate call, whose error the operation reports.
            const bool isOwn = inFailure.mCall == Faults::kRemoveDir;
            const Result told =
                isOwn ? Win::SystemErrorToORLResult(Linux::SystemErrorFromErrno(inFailure.mErrno)) : kGeneralFailure;
            EXPECT_TRUE(inResult == kSuccess || inResult == told) << inResult;
        });
    EXPECT_EQ(descriptors, OpenDescriptors());
    ExpectNothingOutsideChanged();
}

// An empty folder is wiped like any other before it is deleted.
TEST_F(DirectoryTreesUnderFaults, Wipe_OfAnEmptyFolderThatCannotBeListed_IsAGeneralFailure)
{
    mFolder.MakeFolder("from");
    {
        Faults calls;
        calls.Fail(Faults::kGetDents, 1, EIO, Faults::kForEver);
        EXPECT_EQ(kGeneralFailure, Directory::DeleteNotEmpty(From()));
    }
    EXPECT_TRUE(fs::exists(Host("from")));
}

// Some file systems report a full disk only at the close.
TEST_F(DirectoryTreesUnderFaults, Copy_OfAFileWhoseCloseFails_LeavesTheEarlierOne)
{
    mFolder.MakeFolder("from");
    mFolder.MakeFile("from/a", "new");
    unsigned failures = 0;
    unsigned closes = 1;
    for (unsigned number = 1; number <= closes; ++number) {
        fs::remove_all(Host("to"));
        mFolder.MakeFolder("to");
        mFolder.MakeFile("to/a", "old");
        Result result = kSuccess;
        {
            Faults calls;
            calls.Fail(Faults::kClose, number, EDQUOT);
            result = Directory::Copy(From(), To());
            closes = calls.Count(Faults::kClose);
        }
        failures += result == kSuccess ? 0 : 1;
        EXPECT_EQ((Tree{{"a", result == kSuccess ? "new" : "old"}}), Read(Host("to"))) << "close " << number;
    }
    EXPECT_EQ(1u, failures) << "the close of the copy alone says something";
}

namespace {

// Records the calls that sync a copy and delete its source, in order.
std::vector<std::string> sSteps;

int NoteSync(int inFile)
{
    struct stat status;
    ::fstat(inFile, &status);
    sSteps.push_back(S_ISDIR(status.st_mode) ? "sync folder" : "sync file");
    return 0;
}

int NoteRename(int inFrom, const char* inName, int inTo, const char* inNewName, unsigned inFlags)
{
    const int answer = RenameInFolders(inFrom, inName, inTo, inNewName, inFlags);
    if (answer == 0) {
        sSteps.push_back(std::string("name ") + inNewName);
    }
    return answer;
}

int NoteUnlink(int inFolder, const char* inName, int inFlags)
{
    sSteps.push_back(std::string("delete ") + inName);
    return Linux::kSystem.mUnlinkAt(inFolder, inName, inFlags);
}

} // namespace

// A source file is deleted only after its copy and the copy's name are synced.
TEST_F(DirectoryTreesUnderFaults, Move_ToAnotherVolume_PutsTheCopyOnDiskFirst)
{
    mFolder.MakeFolder("from/sub");
    mFolder.MakeFile("from/sub/a", "A");
    sSteps.clear();
    {
        Faults calls;
        calls.Underlying().mFSync = &NoteSync;
        calls.Underlying().mRenameAt = &NoteRename;
        calls.Underlying().mUnlinkAt = &NoteUnlink;
        EXPECT_EQ(kSuccess, Directory::Move(From(), To()));
    }
    EXPECT_EQ((std::vector<std::string>{"sync folder", "sync file", "name a", "sync folder", "sync folder", "delete a",
                                        "delete sub"}),
              sSteps)
        << "the first is that in which the destination was made";
    EXPECT_EQ((Tree{{"sub", "/"}, {"sub/a", "A"}}), Read(Host("to")));
}

// Some file systems cannot sync a folder and need no sync to keep its names.
TEST_F(DirectoryTreesUnderFaults, Move_ToAVolumeThatSyncsNoFolders_IsDone)
{
    MakeTree();
    Faults calls;
    SplitVolumes(calls);
    calls.Underlying().mFSync = [](int inFile) {
        struct stat status;
        ::fstat(inFile, &status);
        errno = EINVAL;
        return S_ISDIR(status.st_mode) ? -1 : 0;
    };
    EXPECT_EQ(kSuccess, Directory::Move(From(), To()));
    EXPECT_EQ(mTree, Read(Host("to")));
}

// A killed process, whose process ID is reused, has left a file with the name that we would choose.
TEST_F(DirectoryTreesUnderFaults, Copy_BesideTheLeftoversOfAKilledOne_IsDone)
{
    MakeTree();
    static std::vector<std::string> sTaken;
    sTaken.clear();
    {
        Faults calls;
        calls.Underlying().mSymLinkAt = [](const char* inTarget, int inFolder, const char* inName) {
            sTaken.push_back(inName);
            return Linux::kSystem.mSymLinkAt(inTarget, inFolder, inName);
        };
        EXPECT_EQ(kSuccess, Directory::Copy(From(), To()));
    }
    ASSERT_FALSE(sTaken.empty());
    const std::string last = sTaken.back();
    const std::size_t digits = last.find_last_not_of("0123456789") + 1;
    ASSERT_EQ(".orl-copy-" + std::to_string(::getpid()) + "-", last.substr(0, digits));
    const unsigned long number = std::stoul(last.substr(digits));
    fs::remove_all(Host("to"));
    Tree expected = mTree;
    for (unsigned long next = number + 1; next < number + 20; ++next) {
        const std::string name = last.substr(0, digits) + std::to_string(next);
        next % 3 == 0 ? mFolder.MakeFolder("to/" + name) : mFolder.MakeFolder("to");
        mFolder.MakeFolder("to/sub");
        next % 3 == 0 ? void() : mFolder.MakeFile("to/" + name, "left");
        expected[name] = next % 3 == 0 ? "/" : "left";
    }
    EXPECT_EQ(kSuccess, Directory::Copy(From(), To()));
    EXPECT_EQ(expected, Read(Host("to")));
}

// Makes copy_file_range fail and shortens reads and writes.
TEST_F(DirectoryTreesUnderFaults, Copy_ByHand_GivesTheSameTree)
{
    MakeTree();
    mFolder.MakeFile("from/long", std::string(3000000, 'l'));
    const Tree tree = Read(Host("from"));
    {
        Faults calls;
        calls.Fail(Faults::kCopyRange, 1, EXDEV, Faults::kForEver);
        calls.Shorten(Faults::kPWrite, 2, 1000);
        calls.Shorten(Faults::kPRead, 3, 70000);
        EXPECT_EQ(kSuccess, Directory::Copy(From(), To()));
    }
    EXPECT_EQ(tree, Read(Host("to")));
}
