// Tests trees with features that only Linux has: links that must not be followed out of the tree, volumes, permissions.
#include "DirectoryTreesOnLinux.h"

#include <ORLFile.h>

#include <FaultySystemCallsLinux.h>
#include <TextHelpers.h>
#include <UnprivilegedLinux.h>

#include <cerrno>
#include <functional>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace ORL;
using namespace ORLTest;

TEST_F(DirectoryTreesOnLinux, Wipe_NeverFollowsALink)
{
    MakeTree();
    EXPECT_EQ(kSuccess, Directory::DeleteNotEmpty(From()));
    EXPECT_FALSE(fs::exists(Host("from")));
    ExpectNothingOutsideChanged();
}

TEST_F(DirectoryTreesOnLinux, Wipe_OfALinkToATree_IsRefused)
{
    MakeTree();
    EXPECT_EQ(kGeneralFailure, Directory::DeleteNotEmpty(mFolder.Path(u"from\\out")));
    EXPECT_EQ(kGeneralFailure, Directory::DeleteNotEmpty(mFolder.Path(u"from\\out\\")));
    EXPECT_EQ(mTree, Read(Host("from")));
    ExpectNothingOutsideChanged();
}

TEST_F(DirectoryTreesOnLinux, Copy_TakesLinksAsLinks)
{
    MakeTree();
    EXPECT_EQ(kSuccess, Directory::Copy(From(), To()));
    EXPECT_EQ(mTree, Read(Host("to")));
    ExpectNothingOutsideChanged();
}

TEST_F(DirectoryTreesOnLinux, Copy_NeverWritesThroughALinkOfTheDestination)
{
    MakeTree();
    mFolder.MakeFolder("to");
    fs::create_directory_symlink(mOutside.Host(), Host("to/sub"));
    fs::create_symlink(mOutside.Host() / "precious", Host("to/a"));
    EXPECT_EQ(kGeneralFailure, Directory::Copy(From(), To())) << "a link stands where a folder should go";
    ExpectNothingOutsideChanged();
    fs::remove(Host("to/sub"));
    EXPECT_EQ(kSuccess, Directory::Copy(From(), To()));
    EXPECT_EQ(mTree, Read(Host("to"))) << "the link that was a has made way for the file";
    ExpectNothingOutsideChanged();
}

TEST_F(DirectoryTreesOnLinux, Move_TakesLinksAsLinks)
{
    MakeTree();
    mFolder.MakeFolder("to/sub");
    EXPECT_EQ(kSuccess, Directory::Move(From(), To()));
    EXPECT_EQ(mTree, Read(Host("to")));
    EXPECT_TRUE(fs::is_empty(Host("from")));
    ExpectNothingOutsideChanged();
}

TEST_F(DirectoryTreesOnLinux, Move_ToAnotherVolume_CopiesAndWipes)
{
    MakeTree();
    if (::access("/dev/shm", W_OK) != 0) {
        GTEST_SKIP() << "there is no second volume here";
    }
    const TempFolder other("/dev/shm");
    EXPECT_EQ(kSuccess, Directory::Move(From(), other.Path()));
    EXPECT_EQ(mTree, Read(other.Host()));
    EXPECT_TRUE(fs::is_empty(Host("from")));
    ExpectNothingOutsideChanged();
}

TEST_F(DirectoryTreesOnLinux, Move_OntoAnotherNameOfTheSameFile_LeavesOneName)
{
    mFolder.MakeFolder("from");
    mFolder.MakeFolder("to");
    mFolder.MakeFile("from/a", "A");
    fs::create_hard_link(Host("from/a"), Host("to/a"));
    EXPECT_EQ(kSuccess, Directory::Move(From(), To()));
    EXPECT_EQ((Tree{{"a", "A"}}), Read(Host("to")));
    EXPECT_TRUE(fs::is_empty(Host("from")));
}

TEST_F(DirectoryTreesOnLinux, Copy_IntoItselfOrBelow_IsRefused)
{
    MakeTree();
    EXPECT_EQ(kGeneralFailure, Directory::Copy(From(), From()));
    EXPECT_EQ(kGeneralFailure, Directory::Copy(From(), mFolder.Path(u"from\\sub")));
    EXPECT_EQ(kGeneralFailure, Directory::Copy(From(), mFolder.Path(u"from\\new\\deep")));
    EXPECT_EQ(kGeneralFailure, Directory::Move(From(), mFolder.Path(u"from\\sub\\up\\sub")));
    EXPECT_EQ(mTree, Read(Host("from")));
}

TEST_F(DirectoryTreesOnLinux, NothingToCopyOrMove_IsAGeneralFailure)
{
    mFolder.MakeFolder("from");
    EXPECT_EQ(kGeneralFailure, Directory::Copy(From(), To()));
    EXPECT_EQ(kGeneralFailure, Directory::Move(From(), To()));
    EXPECT_EQ(kGeneralFailure, Directory::Copy(mFolder.Path(u"missing"), To()));
    EXPECT_EQ(kGeneralFailure, Directory::Move(mFolder.Path(u"missing"), To()));
    EXPECT_EQ(kGeneralFailure, Directory::DeleteNotEmpty(mFolder.Path(u"missing")));
    EXPECT_FALSE(fs::exists(Host("to")));
}

TEST_F(DirectoryTreesOnLinux, Copy_KeepsPermissionsAndReplacesReadOnlyFiles)
{
    mFolder.MakeFolder("from/closed");
    mFolder.MakeFolder("to");
    mFolder.MakeFile("from/a", "new");
    mFolder.MakeFile("from/closed/f", "F");
    mFolder.MakeFile("to/a", "old");
    ::chmod(Host("from/a").c_str(), 0440);
    ::chmod(Host("to/a").c_str(), 0440);
    ::chmod(Host("from/closed").c_str(), 0500);
    RunUnprivileged(mFolder.Host(),
                    [this] { return Directory::Copy(From(), To()) == kSuccess && Read(Host("to"))["a"] == "new"; });
    struct stat status;
    ASSERT_EQ(0, ::stat(Host("to/a").c_str(), &status));
    EXPECT_EQ(0440u, status.st_mode & 0777);
    ASSERT_EQ(0, ::stat(Host("to/closed").c_str(), &status));
    EXPECT_EQ(0500u, status.st_mode & 0777);
    EXPECT_EQ("F", Read(Host("to"))["closed/f"]);
}

TEST_F(DirectoryTreesOnLinux, FoldersWithoutPermission_StayAndFail)
{
    mFolder.MakeFolder("from/closed");
    mFolder.MakeFile("from/closed/f", "F");
    RunUnprivileged(mFolder.Host(), [this] {
        ::chmod(Host("from/closed").c_str(), 0);
        const bool refused =
            Directory::DeleteNotEmpty(From()) == kGeneralFailure && Directory::Copy(From(), To()) == kGeneralFailure;
        ::chmod(Host("from/closed").c_str(), 0500);
        const bool refusedToo = Directory::DeleteNotEmpty(From()) == kGeneralFailure;
        ::chmod(Host("from/closed").c_str(), 0700);
        return refused && refusedToo && Read(Host("from"))["closed/f"] == "F";
    });
}

TEST_F(DirectoryTreesOnLinux, AFolderThatMayNotBeRead_IsMoved)
{
    mFolder.MakeFolder("from/closed/in");
    RunUnprivileged(mFolder.Host(), [this] {
        ::chmod(Host("from/closed").c_str(), 0300);
        const bool isMoved = Directory::Move(From(), To()) == kSuccess;
        ::chmod(Host("to/closed").c_str(), 0700);
        return isMoved && fs::exists(Host("to/closed/in"));
    });
}

// If this user has no permission to open a file, only this process's handles can be checked.
TEST_F(DirectoryTreesOnLinux, AFileThatMayNotBeRead_IsWiped)
{
    mFolder.MakeFolder("from");
    mFolder.MakeFile("from/f", "F");
    RunUnprivileged(mFolder.Host(), [this] {
        ::chmod(Host("from/f").c_str(), 0);
        return Directory::DeleteNotEmpty(From()) == kSuccess;
    });
}

TEST_F(DirectoryTreesOnLinux, AReadOnlyFolder_IsNotDeletedByItself)
{
    mFolder.MakeFolder("from");
    ::chmod(Host("from").c_str(), 0555);
    EXPECT_EQ(kAccessDenied, Directory::Delete(From()));
    ::chmod(Host("from").c_str(), 0755);
    EXPECT_EQ(kSuccess, Directory::Delete(From()));
}

// A different process that uses the library has a file open: a file with the library's locks must stay.
TEST_F(DirectoryTreesOnLinux, AFileThatAnotherProcessHolds_Stays)
{
    mFolder.MakeFolder("from");
    mFolder.MakeFile("from/f", "F");
    int ready[2];
    int done[2];
    ASSERT_EQ(0, ::pipe(ready));
    ASSERT_EQ(0, ::pipe(done));
    const pid_t child = ::fork();
    ASSERT_LE(0, child);
    char byte = 'x';
    if (child == 0) {
        File file;
        const Result result = file.Create(
            mFolder.Path(u"from\\f"), FileAccessFlags::kFileAccess_Read, static_cast<FileShareModeFlags::Type>(0),
            FileCreateDispositionFlags::kFileCreate_OpenExisting, FileAttributesFlags::kFileAttribute_Normal, true);
        ::close(done[1]);
        const bool isTold = ::write(ready[1], &byte, 1) == 1;
        const ssize_t end = ::read(done[0], &byte, 1);
        ::_exit(result == kSuccess && isTold && end == 0 ? 0 : 1);
    }
    ::close(done[0]);
    ASSERT_EQ(1, ::read(ready[0], &byte, 1));
    EXPECT_EQ(kGeneralFailure, Directory::DeleteNotEmpty(From()));
    EXPECT_EQ(kGeneralFailure, Directory::Move(From(), To()));
    EXPECT_EQ(kGeneralFailure, Directory::Copy(From(), To()));
    EXPECT_EQ("F", Read(Host("from"))["f"]);
    ::close(done[1]);
    int status = 0;
    ASSERT_EQ(child, ::waitpid(child, &status, 0));
    EXPECT_EQ(0, status);
    ::close(ready[0]);
    ::close(ready[1]);
    EXPECT_EQ(kSuccess, Directory::DeleteNotEmpty(From()));
}

// Uses a folder in memory if the machine has /dev/shm, since the test does not depend on a disk.
TEST_F(DirectoryTreesOnLinux, ATreeOf100000Entries_IsCopiedMovedAndWiped)
{
    const TempFolder folder(::access("/dev/shm", W_OK) == 0 ? fs::path("/dev/shm") : fs::temp_directory_path());
    for (int i = 0; i < 1000; ++i) {
        const std::string sub = (folder.Host() / "from" / ("d" + std::to_string(i))).string();
        fs::create_directories(sub);
        for (int j = 0; j < 99; ++j) {
            ASSERT_EQ(0, ::mknod((sub + "/f" + std::to_string(j)).c_str(), S_IFREG | 0666, 0));
        }
    }
    const auto count = [&folder](const std::string& inName) {
        return std::distance(fs::recursive_directory_iterator(folder.Host() / inName),
                             fs::recursive_directory_iterator());
    };
    EXPECT_EQ(kSuccess, Directory::Copy(folder.Path(u"from"), folder.Path(u"to")));
    EXPECT_EQ(100000, count("to"));
    EXPECT_EQ(kSuccess, Directory::Move(folder.Path(u"to"), folder.Path(u"moved")));
    EXPECT_EQ(100000, count("moved"));
    EXPECT_EQ(0, count("to"));
    EXPECT_EQ(kSuccess, Directory::DeleteNotEmpty(folder.Path(u"moved")));
    EXPECT_FALSE(fs::exists(folder.Host() / "moved"));
}

TEST_F(DirectoryTreesOnLinux, LoopsOfLinks_AreCopiedMovedAndWipedAsLinks)
{
    mFolder.MakeFolder("from/a/b");
    mFolder.MakeFile("from/a/f", "F");
    fs::create_directory_symlink(".", Host("from/a/self"));
    fs::create_directory_symlink("../..", Host("from/a/b/up"));
    fs::create_directory_symlink(Host("from/a"), Host("from/a/b/again"));
    fs::create_symlink("round", Host("from/round"));
    const Tree tree = Read(Host("from"));
    EXPECT_EQ(kSuccess, Directory::Copy(From(), To()));
    EXPECT_EQ(tree, Read(Host("to")));
    EXPECT_EQ(kSuccess, Directory::Move(To(), mFolder.Path(u"moved")));
    EXPECT_EQ(tree, Read(Host("moved")));
    EXPECT_EQ(kSuccess, Directory::DeleteNotEmpty(mFolder.Path(u"moved")));
    EXPECT_EQ(tree, Read(Host("from")));
}

TEST_F(DirectoryTreesOnLinux, APipe_IsNotCopiedButWiped)
{
    mFolder.MakeFolder("from");
    ASSERT_EQ(0, ::mkfifo(Host("from/pipe").c_str(), 0600));
    EXPECT_EQ(kGeneralFailure, Directory::Copy(From(), To()));
    EXPECT_EQ(kSuccess, Directory::DeleteNotEmpty(From()));
}

TEST_F(DirectoryTreesOnLinux, NamesWithEveryByteAndDepth200_AreCopiedMovedAndWiped)
{
    mFolder.MakeFolder("from");
    for (int byte = 1; byte < 256; ++byte) {
        if (byte != '/') {
            std::ofstream(Host("from").string() + "/n" + static_cast<char>(byte)) << "x";
        }
    }
    std::string deep = "from";
    for (int depth = 0; depth < 200; ++depth) {
        deep += "/d";
    }
    mFolder.MakeFolder(deep);
    mFolder.MakeFile(deep + "/f", "F");
    const Tree tree = Read(Host("from"));
    EXPECT_EQ(kSuccess, Directory::Copy(From(), To()));
    EXPECT_EQ(tree, Read(Host("to")));
    EXPECT_EQ(kSuccess, Directory::Move(From(), mFolder.Path(u"moved")));
    EXPECT_EQ(tree, Read(Host("moved")));
    EXPECT_EQ(kSuccess, Directory::DeleteNotEmpty(mFolder.Path(u"moved")));
    EXPECT_EQ(kSuccess, Directory::DeleteNotEmpty(To()));
    EXPECT_EQ(1u, Read(mFolder.Host()).size()) << "the empty source is left";
}

// During a wipe, a folder that has already been listed is replaced by a link.
TEST_F(DirectoryTreesOnLinux, Wipe_ALinkThatTakesAFoldersPlace_IsNotFollowed)
{
    MakeTree();
    static std::function<void()> sExchange;
    sExchange = [this] {
        fs::rename(Host("from/sub"), Host("aside"));
        fs::create_directory_symlink(mOutside.Host(), Host("from/sub"));
        sExchange = nullptr;
    };
    {
        FaultySystemCalls calls;
        static const auto sOpenAt = calls.Underlying().mOpenAt;
        calls.Underlying().mOpenAt = [](int inFolder, const char* inPath, int inFlags, mode_t inMode) {
            if (sExchange && std::string(inPath) == "sub") {
                sExchange();
            }
            return sOpenAt(inFolder, inPath, inFlags, inMode);
        };
        Directory::DeleteNotEmpty(From());
    }
    EXPECT_FALSE(sExchange) << "the folder was never opened";
    sExchange = nullptr;
    ExpectNothingOutsideChanged();
    EXPECT_TRUE(fs::exists(Host("aside/b")));
}
