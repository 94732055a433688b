// Tests directories with features that only Linux has: unusual bytes in names, links, folders without permission,
// failing calls.
#include <ORLDirectory.h>

#include <FaultySystemCallsLinux.h>
#include <ORLHostPath.h>
#include <ORLPathUtils.h>
#include <TempFolder.h>
#include <TextHelpers.h>
#include <UnprivilegedLinux.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

using namespace ORL;
using ORLTest::FaultySystemCalls;
using ORLTest::RunUnprivileged;
using ORLTest::Show;
using ORLTest::TempFolder;
using ORLTest::Units;

namespace {

constexpr unsigned int kNoLimit = Directory::kNoLimit;

std::vector<UTF16String> List(const UTF16String& inPath, bool inRecursive = true)
{
    std::vector<UTF16String> paths;
    Directory::ConstructDirectory(inPath).GetContainedPaths(paths, inRecursive, kNoLimit);
    return paths;
}

// Returns a folder in memory if the machine has one.
std::filesystem::path FastFolder()
{
    return ::access("/dev/shm", W_OK) == 0 ? std::filesystem::path("/dev/shm") : std::filesystem::temp_directory_path();
}

std::set<std::string> HostNames(const TempFolder& inFolder, const std::vector<UTF16String>& inPaths)
{
    std::set<std::string> names;
    for (const UTF16String& path : inPaths) {
        std::string host;
        EXPECT_EQ(kSuccess, PathUtils::ToHostPath(path, host)) << Show(path);
        names.insert(host.substr(inFolder.Host().string().size() + 1));
    }
    return names;
}

} // namespace

// Lists names with every byte that a name may contain: at its start, inside it and at its end.
TEST(DirectoryOnLinux, NamesWithEveryByte_AreListedAndComeBack)
{
    const TempFolder folder;
    std::set<std::string> names;
    for (int byte = 1; byte < 256; ++byte) {
        if (byte == '/') {
            continue;
        }
        const char character = static_cast<char>(byte);
        for (const std::string& name :
             {std::string(1, character) + "x", std::string("x") + character + "y", std::string("x") + character}) {
            names.insert(name);
        }
    }
    for (const std::string& name : names) {
        ASSERT_EQ(0, ::mkdir((folder.Host().string() + "/" + name).c_str(), 0777)) << name;
        std::ofstream(folder.Host().string() + "/" + name + "/in") << "x";
    }
    const std::vector<UTF16String> paths = List(folder.Path());
    EXPECT_EQ(2 * names.size(), paths.size());
    for (const std::string& name : HostNames(folder, paths)) {
        EXPECT_EQ(1u, names.count(name.substr(0, name.find('/')))) << name;
    }
}

TEST(DirectoryOnLinux, Depth200_IsListedWhole)
{
    const TempFolder folder;
    std::string path;
    for (int depth = 0; depth < 200; ++depth) {
        path += path.empty() ? "deep" : "/deep";
    }
    folder.MakeFolder(path);
    folder.MakeFile(path + "/f");
    const std::vector<UTF16String> paths = List(folder.Path());
    ASSERT_EQ(201u, paths.size());
    EXPECT_EQ('f', paths[0].back());
    EXPECT_EQ(folder.Path(u"deep"), paths[200]);
}

TEST(DirectoryOnLinux, ATreeOf100000Entries_IsListedWhole)
{
    const TempFolder folder(FastFolder());
    const int root = ::open(folder.Host().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_LE(0, root);
    for (int i = 0; i < 1000; ++i) {
        const std::string name = "d" + std::to_string(i);
        ASSERT_EQ(0, ::mkdirat(root, name.c_str(), 0777));
        for (int j = 0; j < 99; ++j) {
            ASSERT_EQ(0, ::mknodat(root, (name + "/f" + std::to_string(j)).c_str(), S_IFREG | 0666, 0));
        }
    }
    ::close(root);
    std::vector<UTF16String> files;
    std::vector<Directory> directories;
    Directory::ConstructDirectory(folder.Path()).GetContainedFileAndDirectoryPaths(files, directories, true, kNoLimit);
    EXPECT_EQ(99000u, files.size());
    EXPECT_EQ(1000u, directories.size());
    std::sort(files.begin(), files.end());
    EXPECT_TRUE(std::adjacent_find(files.begin(), files.end()) == files.end());
}

TEST(DirectoryOnLinux, ALinkToADirectory_IsWalkedAsOne)
{
    const TempFolder folder;
    const TempFolder elsewhere;
    elsewhere.MakeFile("f");
    std::filesystem::create_directory_symlink(elsewhere.Host(), folder.Host() / "link");
    std::filesystem::create_symlink("nowhere", folder.Host() / "broken");
    EXPECT_EQ((std::set<std::string>{"link", "link/f", "broken"}), HostNames(folder, List(folder.Path())));
    std::vector<UTF16String> files;
    std::vector<Directory> directories;
    Directory::ConstructDirectory(folder.Path()).GetContainedFileAndDirectoryPaths(files, directories, true, kNoLimit);
    ASSERT_EQ(1u, directories.size());
    EXPECT_EQ(folder.Path(u"link"), directories[0].AsString());
    EXPECT_EQ((std::set<std::string>{"link/f", "broken"}), HostNames(folder, files));
}

TEST(DirectoryOnLinux, LoopsOfLinks_AreListedOnce)
{
    const TempFolder folder;
    folder.MakeFolder("a/b");
    std::filesystem::create_directory_symlink(".", folder.Host() / "a/self");
    std::filesystem::create_directory_symlink("../..", folder.Host() / "a/b/up");
    std::filesystem::create_directory_symlink(folder.Host() / "a", folder.Host() / "a/b/again");
    std::filesystem::create_symlink("round", folder.Host() / "round");
    EXPECT_EQ((std::set<std::string>{"a", "a/b", "a/self", "a/b/up", "a/b/again", "round"}),
              HostNames(folder, List(folder.Path())));
}

// The link points to the parent of the listed folder: the listing must not follow it into the same folder again.
TEST(DirectoryOnLinux, ALinkToTheFolderAbove_Ends)
{
    const TempFolder folder;
    folder.MakeFolder("tree");
    std::filesystem::create_directory_symlink("..", folder.Host() / "tree/up");
    EXPECT_EQ((std::set<std::string>{"tree/up", "tree/up/tree", "tree/up/tree/up"}),
              HostNames(folder, List(folder.Path(u"tree"))));
}

TEST(DirectoryOnLinux, AFolderThatMayNotBeRead_IsListedWithoutContents)
{
    const TempFolder folder;
    folder.MakeFolder("closed");
    folder.MakeFile("closed/f");
    RunUnprivileged(folder.Host(), [&folder] {
        ::chmod((folder.Host() / "closed").c_str(), 0);
        const bool isListed = HostNames(folder, List(folder.Path())) == std::set<std::string>{"closed"};
        std::vector<UTF16String> none;
        Directory::ConstructDirectory(folder.Path(u"closed")).GetContainedPaths(none, true, kNoLimit);
        ::chmod((folder.Host() / "closed").c_str(), 0700);
        return isListed && none.empty();
    });
}

// The folder can be read, but its entries cannot be queried, so all are listed as files.
TEST(DirectoryOnLinux, AFolderThatMayNotBeSearched_ListsItsEntriesAsFiles)
{
    const TempFolder folder;
    folder.MakeFolder("dim/d");
    folder.MakeFile("dim/f");
    RunUnprivileged(folder.Host(), [&folder] {
        ::chmod((folder.Host() / "dim").c_str(), 0400);
        std::vector<UTF16String> files;
        std::vector<Directory> directories;
        Directory::ConstructDirectory(folder.Path())
            .GetContainedFileAndDirectoryPaths(files, directories, true, kNoLimit);
        ::chmod((folder.Host() / "dim").c_str(), 0700);
        return HostNames(folder, files) == std::set<std::string>{"dim/d", "dim/f"} && directories.size() == 1;
    });
}

TEST(DirectoryOnLinux, ADirectoryThatRefusesNewFiles_IsNotWriteable)
{
    const TempFolder folder;
    RunUnprivileged(folder.Host(), [&folder] {
        const Directory directory = Directory::ConstructDirectory(folder.Path());
        const bool before = directory.IsDirectoryWriteable() && !PathUtils::IsReadOnly(folder.Path());
        ::chmod(folder.Host().c_str(), 0500);
        const bool after = !directory.IsDirectoryWriteable() && PathUtils::IsReadOnly(folder.Path());
        ::chmod(folder.Host().c_str(), 0700);
        return before && after && directory.IsDirectoryEmpty();
    });
}

TEST(DirectoryOnLinux, ADirectoryThatMayNotBeChanged_CannotBeDeleted)
{
    const TempFolder folder;
    folder.MakeFolder("d/e");
    RunUnprivileged(folder.Host(), [&folder] {
        ::chmod((folder.Host() / "d").c_str(), 0500);
        const Result result = Directory::Delete(folder.Path(u"d\\e"));
        ::chmod((folder.Host() / "d").c_str(), 0700);
        return result == kAccessDenied;
    });
}

TEST(DirectoryFaults, ASubdirectoryThatVanishes_EndsTheListing)
{
    const TempFolder folder;
    folder.MakeFolder("d");
    FaultySystemCalls calls;
    calls.Before(FaultySystemCalls::kOpen, 2, [&folder] { std::filesystem::remove(folder.Host() / "d"); });
    EXPECT_THROW(List(folder.Path()), eDirectoryNoLongerValid);
    EXPECT_EQ(calls.Count(FaultySystemCalls::kOpen) - 1, calls.Count(FaultySystemCalls::kClose)) << "a handle is left";
}

// Whichever call fails, with whichever error, the listing must contain only existing entries and leak no handle.
TEST(DirectoryFaults, EachCallOfAListingFailsOnce_ListsWhatIsThereOrThrows)
{
    const TempFolder folder;
    folder.MakeFolder("d/e");
    folder.MakeFile("d/e/f");
    folder.MakeFile("g");
    const std::set<std::string> all{"d", "d/e", "d/e/f", "g"};
    for (const FaultySystemCalls::Call call : {FaultySystemCalls::kOpen, FaultySystemCalls::kGetDents,
                                               FaultySystemCalls::kStatx, FaultySystemCalls::kClose}) {
        for (const int error : {EACCES, EIO, ENOMEM, ENOENT, EMFILE, EINTR}) {
            for (unsigned number = 1;; ++number) {
                FaultySystemCalls calls;
                calls.Fail(call, number, error);
                try {
                    const std::set<std::string> names = HostNames(folder, List(folder.Path()));
                    EXPECT_TRUE(std::includes(all.begin(), all.end(), names.begin(), names.end()));
                    // Only entries that are unreadable or gone may be missing without a report.
                    EXPECT_TRUE(error == EACCES || error == ENOENT || names == all)
                        << "call " << call << ", error " << error;
                } catch (const eDirectoryNotListed&) {
                    EXPECT_NE(EINTR, error);
                } catch (const eDirectoryNoLongerValid&) {
                } catch (const eNotADirectoryPath&) {
                }
                const unsigned failedOpens = call == FaultySystemCalls::kOpen && calls.Count(call) >= number ? 1 : 0;
                EXPECT_EQ(calls.Count(FaultySystemCalls::kOpen), calls.Count(FaultySystemCalls::kClose) + failedOpens);
                if (calls.Count(call) < number) {
                    break;
                }
            }
        }
    }
}

TEST(DirectoryFaults, AProbeThatCannotBeWritten_LeavesNothing)
{
    const TempFolder folder;
    const Directory directory = Directory::ConstructDirectory(folder.Path());
    {
        FaultySystemCalls calls;
        calls.Fail(FaultySystemCalls::kPWrite, 1, ENOSPC);
        EXPECT_FALSE(directory.IsDirectoryWriteable());
        calls.Fail(FaultySystemCalls::kOpen, 1, EROFS);
        EXPECT_FALSE(directory.IsDirectoryWriteable());
        EXPECT_TRUE(directory.IsDirectoryWriteable());
        EXPECT_EQ(calls.Count(FaultySystemCalls::kOpen), calls.Count(FaultySystemCalls::kClose) + 1);
    }
    EXPECT_TRUE(directory.IsDirectoryEmpty());
}

// If the probe cannot be deleted, the folder counts as not writeable, and no further probe is created.
TEST(DirectoryFaults, AProbeThatCannotBeDeleted_IsNoWriteableFolder)
{
    const TempFolder folder;
    const Directory directory = Directory::ConstructDirectory(folder.Path());
    for (const int error : {EPERM, EACCES, EIO}) {
        FaultySystemCalls calls;
        calls.Fail(FaultySystemCalls::kUnlink, 1, error);
        EXPECT_FALSE(directory.IsDirectoryWriteable());
        EXPECT_EQ(1u, calls.Count(FaultySystemCalls::kUnlink));
        EXPECT_EQ(0u, calls.Count(FaultySystemCalls::kPWrite));
        EXPECT_EQ(calls.Count(FaultySystemCalls::kOpen), calls.Count(FaultySystemCalls::kClose));
    }
}

// In an append-only folder nothing can be deleted, so the probe would stay.
TEST(DirectoryFaults, AFolderThatIsOnlyAppendedTo_GetsNoProbe)
{
    const TempFolder folder;
    const Directory directory = Directory::ConstructDirectory(folder.Path());
    FaultySystemCalls calls;
    calls.Underlying().mStatx = [](int inFolder, const char* inPath, int inFlags, unsigned inMask,
                                   struct statx* outStatus) {
        const int answer = Linux::kSystem.mStatx(inFolder, inPath, inFlags, inMask, outStatus);
        outStatus->stx_attributes |= STATX_ATTR_APPEND;
        return answer;
    };
    EXPECT_FALSE(directory.IsDirectoryWriteable());
    EXPECT_EQ(0u, calls.Count(FaultySystemCalls::kOpen));
    EXPECT_TRUE(std::filesystem::is_empty(folder.Host()));
}

TEST(DirectoryFaults, Delete_GivesTheCodeOfEachError)
{
    const TempFolder folder;
    folder.MakeFolder("d");
    struct Row
    {
        int mLine;
        int mErrno;
        Result mResult;
    };
    const Row rows[] = {
        {__LINE__, EACCES, kAccessDenied},      {__LINE__, EPERM, kAccessDenied},   {__LINE__, ENOENT, kFileNotFound},
        {__LINE__, ENOTEMPTY, kGeneralFailure}, {__LINE__, EBUSY, kGeneralFailure}, {__LINE__, ENOSPC, kDiskFull},
        {__LINE__, ENOTDIR, kGeneralFailure},   {__LINE__, EROFS, kGeneralFailure},
    };
    for (const Row& row : rows) {
        FaultySystemCalls calls;
        calls.Fail(FaultySystemCalls::kRemoveDir, 1, row.mErrno);
        EXPECT_EQ(row.mResult, Directory::Delete(folder.Path(u"d"))) << "row at line " << row.mLine;
    }
}

TEST(DirectoryOnLinux, TheFolderOfADrive_CannotBeDeleted)
{
    EXPECT_EQ(kAccessDenied, Directory::Delete(Units(u"C:\\")));
}
