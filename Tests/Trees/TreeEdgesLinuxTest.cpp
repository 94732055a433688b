// Tests trees with unusual properties: mounts inside, folders without permissions, listings without types, a strict
// umask.
#include "DirectoryTreesOnLinux.h"

#include <FaultySystemCallsLinux.h>
#include <ORLFile.h>
#include <SystemProbes.h>
#include <TextHelpers.h>
#include <UnprivilegedLinux.h>

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <sched.h>
#include <set>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using namespace ORL;
using namespace ORLTest;

namespace {

class TreeEdges : public DirectoryTreesOnLinux
{
};

mode_t ModeOf(const fs::path& inPath)
{
    struct stat status = {};
    EXPECT_EQ(0, ::lstat(inPath.c_str(), &status)) << inPath;
    return status.st_mode & 07777;
}

class Umask
{
public:
    explicit Umask(mode_t inMask) : mEarlier(::umask(inMask)) {}
    ~Umask() { ::umask(mEarlier); }

private:
    const mode_t mEarlier;
};

void SplitVolumes(FaultySystemCalls& ioCalls)
{
    ioCalls.Underlying().mFSync = [](int) { return 0; };
    ioCalls.Underlying().mRenameAt = [](int inFrom, const char* inName, int inTo, const char* inNewName,
                                        unsigned inFlags) {
        if (inFrom == inTo) {
            return Linux::kSystem.mRenameAt(inFrom, inName, inTo, inNewName, inFlags);
        }
        errno = EXDEV;
        return -1;
    };
    ioCalls.Underlying().mRenameTo = [](const char*, const char*, unsigned) {
        errno = EXDEV;
        return -1;
    };
}

// Makes listings report no entry types, like some file systems.
ssize_t ListWithoutTypes(int inFolder, void* outBuffer, std::size_t inSize)
{
    const ssize_t size = Linux::kSystem.mGetDents(inFolder, outBuffer, inSize);
    for (ssize_t at = 0; at < size;) {
        auto* const entry = reinterpret_cast<dirent64*>(static_cast<char*>(outBuffer) + at);
        entry->d_type = DT_UNKNOWN;
        at += entry->d_reclen;
    }
    return size;
}

/// Runs inWork in a child process with its own mount namespace. Skips the test if the kernel forbids creating the
/// namespace.
template <class Work>
void RunWithMounts(const Work& inWork)
{
    constexpr int kForbidden = 77;
    const ::pid_t child = ::fork();
    ASSERT_LE(0, child);
    if (child == 0) {
        const bool mayMount = ::unshare(CLONE_NEWNS) == 0 || ::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0;
        if (!mayMount || ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
            ::_exit(kForbidden);
        }
        inWork();
        ::_exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = 0;
    ASSERT_EQ(child, ::waitpid(child, &status, 0));
    ASSERT_TRUE(WIFEXITED(status));
    if (WEXITSTATUS(status) == kForbidden) {
        GTEST_SKIP() << "this system allows no mounts of one's own";
    }
    EXPECT_EQ(0, WEXITSTATUS(status));
}

} // namespace

TEST_F(TreeEdges, AFolderThatSomethingIsMountedOn_IsNotWiped)
{
    MakeTree();
    mFolder.MakeFolder("from/mounted");
    RunWithMounts([this] {
        ASSERT_EQ(0, ::mount(mOutside.Host().c_str(), Host("from/mounted").c_str(), nullptr, MS_BIND, nullptr));
        EXPECT_EQ(kGeneralFailure, Directory::DeleteNotEmpty(From()));
        ExpectNothingOutsideChanged();
    });
    ExpectNothingOutsideChanged();
}

TEST_F(TreeEdges, AFolderThatSomethingIsMountedOn_IsCopiedWithIt)
{
    MakeTree();
    mFolder.MakeFolder("from/mounted");
    RunWithMounts([this] {
        ASSERT_EQ(0, ::mount(mOutside.Host().c_str(), Host("from/mounted").c_str(), nullptr, MS_BIND, nullptr));
        EXPECT_EQ(kSuccess, Directory::Copy(From(), To()));
        EXPECT_EQ("P", Read(Host("to"))["mounted/precious"]);
    });
}

// The destination is part of the source, through a bind mount. A naive copy would never end, and a naive move would
// delete the files that it has just copied.
TEST_F(TreeEdges, ACopyIntoItselfByAMount_EndsAndLosesNothing)
{
    MakeTree();
    mFolder.MakeFolder("to");
    for (const bool moves : {false, true}) {
        RunWithMounts([this, moves] {
            ASSERT_EQ(0, ::mount(Host("from/sub").c_str(), Host("to").c_str(), nullptr, MS_BIND, nullptr));
            EXPECT_EQ(kGeneralFailure, moves ? Directory::Move(From(), To()) : Directory::Copy(From(), To()));
            EXPECT_EQ("B", Read(Host("from"))["sub/b"]);
        });
    }
}

TEST_F(TreeEdges, ListingsWithoutTypes_CopyMoveWipeAndListTheSame)
{
    MakeTree();
    FaultySystemCalls calls;
    calls.Underlying().mGetDents = &ListWithoutTypes;
    EXPECT_EQ(kSuccess, Directory::Copy(From(), To()));
    EXPECT_EQ(mTree, Read(Host("to")));
    EXPECT_EQ(kSuccess, Directory::Move(To(), mFolder.Path(u"there")));
    EXPECT_EQ(mTree, Read(Host("there")));
    std::vector<UTF16String> files;
    std::vector<Directory> directories;
    const Directory from = Directory::ConstructDirectory(From());
    from.GetContainedFileAndDirectoryPaths(files, directories, false, Directory::kNoLimit);
    EXPECT_EQ(2u, files.size()) << "a file and a link to one";
    EXPECT_EQ(2u, directories.size()) << "a folder and a link to one";
    EXPECT_EQ(kSuccess, Directory::DeleteNotEmpty(From()));
    EXPECT_FALSE(fs::exists(Host("from")));
    ExpectNothingOutsideChanged();
}

// If a listing has no types, the type must be queried without an open: opening a pipe or device has side effects.
TEST_F(TreeEdges, APipeInAListingWithoutTypes_IsNotOpened)
{
    mFolder.MakeFolder("from");
    ASSERT_EQ(0, ::mkfifo(Host("from/pipe").c_str(), 0600));
    static bool sIsOpened;
    sIsOpened = false;
    FaultySystemCalls calls;
    calls.Underlying().mGetDents = &ListWithoutTypes;
    calls.Underlying().mOpenAt = [](int inFolder, const char* inPath, int inFlags, mode_t inMode) {
        sIsOpened = sIsOpened || std::string(inPath) == "pipe";
        return Linux::kSystem.mOpenAt(inFolder, inPath, inFlags, inMode);
    };
    EXPECT_EQ(kGeneralFailure, Directory::Copy(From(), To()));
    EXPECT_FALSE(sIsOpened);
}

// A moved file keeps its permissions, as after a rename. A copy is a new file, so the umask applies.
TEST_F(TreeEdges, AStrictMask_ChangesNoPermissionsOfAMove)
{
    mFolder.MakeFolder("from/open");
    mFolder.MakeFile("from/open/f", "F");
    ASSERT_EQ(0, ::chmod(Host("from/open").c_str(), 0775));
    ASSERT_EQ(0, ::chmod(Host("from/open/f").c_str(), 0664));
    mFolder.MakeFile("single", "S");
    ASSERT_EQ(0, ::chmod(Host("single").c_str(), 0664));
    const Umask strict(077);
    EXPECT_EQ(kSuccess, Directory::Copy(From(), mFolder.Path(u"copy")));
    EXPECT_EQ(0600u, ModeOf(Host("copy/open/f")));
    EXPECT_EQ(0700u, ModeOf(Host("copy/open")));
    FaultySystemCalls calls;
    SplitVolumes(calls);
    EXPECT_EQ(kSuccess, Directory::Move(From(), To()));
    EXPECT_EQ(0664u, ModeOf(Host("to/open/f")));
    EXPECT_EQ(0775u, ModeOf(Host("to/open")));
    EXPECT_EQ(kSuccess, File::Move(mFolder.Path(u"single"), mFolder.Path(u"moved")));
    EXPECT_EQ(0664u, ModeOf(Host("moved")));
}

// Nothing in the folder can be opened, so this process cannot have anything in it open.
TEST_F(TreeEdges, AFolderThatMayBeReadAndNotSearched_IsMoved)
{
    mFolder.MakeFolder("from/listed");
    mFolder.MakeFile("from/listed/f", "F");
    mFolder.MakeFolder("to");
    RunUnprivileged(mFolder.Host(), [this] {
        ::chmod(Host("from/listed").c_str(), 0600);
        const bool isMoved = Directory::Move(From(), To()) == kSuccess;
        ::chmod(Host(isMoved ? "to/listed" : "from/listed").c_str(), 0700);
        return isMoved && fs::exists(Host("to/listed/f"));
    });
}

TEST_F(TreeEdges, ASwapInAFolderThatMayNotBeRead_IsDone)
{
    mFolder.MakeFolder("dark");
    mFolder.MakeFile("dark/real", "old");
    mFolder.MakeFile("dark/temp", "new");
    RunUnprivileged(mFolder.Host(), [this] {
        ::chmod(Host("dark").c_str(), 0300);
        const Result result = File::SwapTempFile(mFolder.Path(u"dark\\temp"), mFolder.Path(u"dark\\real"));
        ::chmod(Host("dark").c_str(), 0700);
        return result == kSuccess && Read(Host("dark")) == Tree{{"real", "new"}};
    });
}

// If the callback throws, the partial copy is deleted, as after a failure.
TEST_F(TreeEdges, ACopyWhoseCallbackThrows_LeavesNothing)
{
    struct Enough
    {
    };
    mFolder.MakeFile("big", std::string(9 << 20, 'b'));
    const auto throwLater = [](float inFraction, void*) -> bool {
        if (inFraction > 0) {
            throw Enough();
        }
        return true;
    };
    const unsigned handles = OpenHandles();
    EXPECT_THROW(File::CopyWithProgress(mFolder.Path(u"big"), mFolder.Path(u"copy"), throwLater, nullptr), Enough);
    EXPECT_FALSE(fs::exists(Host("copy")));
    EXPECT_EQ(handles, OpenHandles());
}
