// Tests the drive table, and the conversion of library paths to host paths.
#include <ORLHostPath.h>

#include <FaultySystemCallsLinux.h>
#include <Linux/Paths/LinuxHostPath.h>
#include <ORLPathUtils.h>
#include <TempFolder.h>
#include <TextHelpers.h>

#include <atomic>
#include <cerrno>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using namespace ORL;
using namespace ORL::PathUtils;
using ORL::Linux::HostPath;
using ORL::Linux::ResolveHostPath;
using ORLTest::FaultySystemCalls;
using ORLTest::Show;
using ORLTest::TempFolder;
using ORLTest::Units;

namespace {

/// A drive or share mounted for the duration of a test.
class Mount
{
public:
    Mount(char inLetter, const std::string& inFolder) : mLetter(inLetter)
    {
        EXPECT_EQ(kSuccess, PathUtils::Linux::MountDrive(inLetter, inFolder));
    }
    Mount(const UTF16String& inShare, const std::string& inFolder) : mShare(inShare)
    {
        EXPECT_EQ(kSuccess, PathUtils::Linux::MountShare(inShare, inFolder));
    }
    ~Mount()
    {
        EXPECT_EQ(kSuccess,
                  mShare.empty() ? PathUtils::Linux::UnmountDrive(mLetter) : PathUtils::Linux::UnmountShare(mShare));
    }
    Mount(const Mount&) = delete;
    Mount& operator=(const Mount&) = delete;

private:
    char mLetter = 0;
    UTF16String mShare;
};

std::string Host(const UTF16String& inPath)
{
    std::string host = "untouched";
    PathUtils::Linux::ToHostPath(inPath, host);
    return host;
}

} // namespace

TEST(ResolveHostPath, EachForm_LeadsToItsBytesOrFailsWithItsNumber)
{
    const TempFolder folder;
    const Mount drive('M', folder.Host().string());
    const Mount share(Units(uR"(\\server\share)"), folder.Host().string());
    const std::string base = folder.Host().string();
    struct Row
    {
        int mLine;
        UTF16String mPath;
        SystemError mError;
        std::string mHost;
    };
    const Row rows[] = {
        // plain: separators, dots and trimming
        {__LINE__, Units(uR"(C:\a\b)"), 0, "/a/b"},
        {__LINE__, Units(u"c:/a/b"), 0, "/a/b"},
        {__LINE__, Units(uR"(C:\a\\\b)"), 0, "/a/b"},
        {__LINE__, Units(uR"(C:\a\.\b\..\c)"), 0, "/a/c"},
        {__LINE__, Units(uR"(C:\..\..\a)"), 0, "/a"},
        {__LINE__, Units(uR"(C:\missing\..\a)"), 0, "/a"},
        {__LINE__, Units(uR"(C:\a. .)"), 0, "/a"},
        {__LINE__, Units(uR"(C:\a.\b)"), 0, "/a/b"},
        {__LINE__, Units(uR"(C:\a..\b)"), 0, "/a../b"},
        {__LINE__, Units(uR"(C:\a \b)"), 0, "/a /b"},
        {__LINE__, Units(uR"(C:\a\...)"), 0, "/a/"},
        {__LINE__, Units(uR"(C:\a\)"), 0, "/a/"},
        {__LINE__, Units(uR"(C:\)"), 0, "/"},
        {__LINE__, Units(u"C:"), 0, "/"},
        {__LINE__, Units(u"C:a"), 0, "/a"},
        {__LINE__, Units(uR"(M:\x)"), 0, base + "/x"},
        {__LINE__, Units(uR"(m:\)"), 0, base},
        {__LINE__, Units(uR"(M:\..\x)"), 0, base + "/x"},
        // extended: unchanged
        {__LINE__, Units(uR"(\\?\C:\a\b)"), 0, "/a/b"},
        {__LINE__, Units(uR"(\\?\C:\a. \b)"), 0, "/a. /b"},
        {__LINE__, Units(uR"(\\?\C:\a.)"), 0, "/a."},
        {__LINE__, Units(uR"(\\?\C:\a )"), 0, "/a "},
        {__LINE__, Units(uR"(\\?\C:\a\)"), 0, "/a/"},
        {__LINE__, Units(uR"(\\?\C:\)"), 0, "/"},
        {__LINE__, Units(uR"(\\?\C:/a)"), 123, ""},
        {__LINE__, Units(uR"(\\?\C:\a/b)"), 123, ""},
        {__LINE__, Units(uR"(\\?\C:\a\..\b)"), 123, ""},
        {__LINE__, Units(uR"(\\?\C:\a\.\b)"), 123, ""},
        {__LINE__, Units(uR"(\\?\C:\a\\b)"), 123, ""},
        {__LINE__, Units(uR"(\\?\C:\a\\)"), 123, ""},
        {__LINE__, Units(uR"(\\?\C:)"), 123, ""},
        {__LINE__, Units(uR"(\\?\C:a)"), 123, ""},
        {__LINE__, Units(uR"(\\?\Volume)"), 3, ""},
        {__LINE__, Units(uR"(\\?\)"), 3, ""},
        // shares
        {__LINE__, Units(uR"(\\server\share\x)"), 0, base + "/x"},
        {__LINE__, Units(uR"(\\SERVER\Share)"), 0, base},
        {__LINE__, Units(uR"(\\server\share\..\..\x)"), 0, base + "/x"},
        {__LINE__, Units(uR"(//server/share/x)"), 0, base + "/x"},
        {__LINE__, Units(uR"(\\?\UNC\server\share\x)"), 0, base + "/x"},
        {__LINE__, Units(uR"(\\?\UNC\server\share)"), 0, base},
        {__LINE__, Units(uR"(\\server\other\x)"), 53, ""},
        {__LINE__, Units(uR"(\\?\UNC\server\other\x)"), 53, ""},
        {__LINE__, Units(uR"(\\server)"), 53, ""},
        {__LINE__, Units(uR"(\\?\UNC\server)"), 53, ""},
        {__LINE__, Units(uR"(\\.\pipe\x)"), 53, ""},
        {__LINE__, Units(uR"(\\)"), 53, ""},
        // invalid or unmapped paths
        {__LINE__, UTF16String(), 3, ""},
        {__LINE__, Units(uR"(Q:\a)"), 3, ""},
        {__LINE__, Units(uR"(\\?\Q:\a)"), 3, ""},
        {__LINE__, Units(uR"(C:\a*)"), 123, ""},
        {__LINE__, Units(uR"(C:\a\<b)"), 123, ""},
        {__LINE__, Units(u"C:\\a\u0001"), 123, ""},
        {__LINE__, Units(uR"(C:\f.txt:stream)"), 2, ""},
        {__LINE__, Units(u"C:\\") + UTF16String(256, 'n'), 123, ""},
        // private units that decode to ".." or "."
        {__LINE__, Units(u"C:\\a\\\uF02E\uF02E\\b"), 123, ""},
        {__LINE__, Units(u"\\\\?\\C:\\\uF02E"), 123, ""},
    };
    for (const Row& row : rows) {
        HostPath host;
        host.mPath = "untouched";
        EXPECT_EQ(row.mError, ResolveHostPath(row.mPath, host)) << "row at line " << row.mLine;
        EXPECT_EQ(row.mError == 0 ? row.mHost : "untouched", host.mPath) << "row at line " << row.mLine;
    }
}

TEST(ResolveHostPath, RootsAndTrailingSeparators_AreTold)
{
    HostPath host;
    ASSERT_EQ(0u, ResolveHostPath(Units(uR"(\\?\C:\)"), host));
    EXPECT_TRUE(host.mIsRoot);
    EXPECT_FALSE(host.mHasTrailingSeparator);
    ASSERT_EQ(0u, ResolveHostPath(Units(uR"(C:\a\..)"), host));
    EXPECT_TRUE(host.mIsRoot);
    ASSERT_EQ(0u, ResolveHostPath(Units(uR"(C:\a\)"), host));
    EXPECT_FALSE(host.mIsRoot);
    EXPECT_TRUE(host.mHasTrailingSeparator);
    ASSERT_EQ(0u, ResolveHostPath(Units(uR"(C:\a)"), host));
    EXPECT_FALSE(host.mHasTrailingSeparator);
}

TEST(ResolveHostPath, ARelativePath_StartsInTheCurrentFolder)
{
    char current[4096];
    ASSERT_NE(nullptr, ::getcwd(current, sizeof(current)));
    EXPECT_EQ(std::string(current) + "/a/b", Host(Units(u"a\\b")));
    EXPECT_EQ("/a/b", Host(Units(u"\\a\\b")));
    EXPECT_EQ("/a/b", Host(Units(u"/a/b")));
    FaultySystemCalls calls;
    calls.Fail(FaultySystemCalls::kGetCwd, 1, ENOENT);
    HostPath host;
    EXPECT_EQ(3u, ResolveHostPath(Units(u"a"), host));
}

TEST(ToHostPath, FailuresAreResultsAndLeaveTheOutput)
{
    std::string host = "untouched";
    EXPECT_EQ(kPathNotFound, ToHostPath(Units(uR"(Q:\a)"), host));
    EXPECT_EQ(kGeneralFailure, ToHostPath(Units(uR"(\\no\share\a)"), host));
    EXPECT_EQ(kGeneralFailure, ToHostPath(Units(uR"(C:\a|b)"), host));
    EXPECT_EQ("untouched", host);
    EXPECT_EQ(kSuccess, ToHostPath(Units(uR"(C:\a)"), host));
    EXPECT_EQ("/a", host);
}

TEST(FromHostPath, EachShape_BecomesAPlainPath)
{
    struct Row
    {
        int mLine;
        const char* mHost;
        const char16_t* mPath;
    };
    const Row rows[] = {
        {__LINE__, "/", u"C:\\"},
        {__LINE__, "//", u"C:\\"},
        {__LINE__, "/a/b", u"C:\\a\\b"},
        {__LINE__, "/a/b/", u"C:\\a\\b\\"},
        {__LINE__, "/a//./b", u"C:\\a\\b"},
        {__LINE__, "", u""},
        {__LINE__, "/no/such/../x", u"C:\\no\\x"},
        {__LINE__, "/..", u"C:\\"},
        {__LINE__, "/a\\b", u"C:\\a\uF05Cb"},
        {__LINE__, "/a:", u"C:\\a\uF03A"},
        {__LINE__, "/a /b.", u"C:\\a\uF020\\b\uF02E"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Units(row.mPath), FromHostPath(row.mHost)) << "row at line " << row.mLine;
    }
}

TEST(FromHostPath, OfARelativePath_StartsInTheCurrentFolder)
{
    const UTF16String current = FromHostPath(".");
    EXPECT_TRUE(IsDirectory(current)) << Show(current);
    EXPECT_EQ(current + Units(u"\\a"), FromHostPath("a"));
    EXPECT_EQ(current + Units(u"\\a"), FromHostPath("./b/../a"));
    FaultySystemCalls calls;
    calls.Fail(FaultySystemCalls::kGetCwd, 1, ENOENT);
    EXPECT_EQ(UTF16String(), FromHostPath("a"));
}

// ".." after a link refers to the parent of the link's target.
TEST(FromHostPath, TwoDotsBehindALink_LeadWhereTheSystemLeads)
{
    const TempFolder folder;
    folder.MakeFolder("real/inner");
    folder.MakeFile("real/f.txt");
    std::filesystem::create_directory_symlink(folder.Host() / "real" / "inner", folder.Host() / "link");
    EXPECT_EQ(folder.Path(u"real\\f.txt"), FromHostPath((folder.Host() / "link/../f.txt").string()));
}

TEST(DriveTable, TheLongestFolderWins)
{
    const TempFolder folder;
    folder.MakeFolder("media/clips");
    folder.MakeFolder("mediathek");
    const std::string base = folder.Host().string();
    const Mount outer('M', base + "/media");
    const Mount inner('N', base + "/media/clips/");
    EXPECT_EQ(Units(u"M:\\x"), FromHostPath(base + "/media/x"));
    EXPECT_EQ(Units(u"M:\\"), FromHostPath(base + "/media"));
    EXPECT_EQ(Units(u"N:\\x"), FromHostPath(base + "/media/clips/x"));
    EXPECT_EQ(folder.Path(u"mediathek"), FromHostPath(base + "/mediathek"));
    // of two drives with the same folder, the first letter is used
    const Mount again('L', base + "/media");
    EXPECT_EQ(Units(u"L:\\x"), FromHostPath(base + "/media/x"));
}

TEST(DriveTable, ASharesFolder_IsReachedByItsName)
{
    const TempFolder folder;
    const Mount share(Units(uR"(\\Server\Clips)"), folder.Host().string());
    EXPECT_EQ(Units(uR"(\\Server\Clips\x)"), FromHostPath(folder.Host().string() + "/x"));
    EXPECT_EQ(Units(uR"(\\Server\Clips\)"), FromHostPath(folder.Host().string()));
    folder.MakeFile("x");
    EXPECT_TRUE(ExistsOnDisk(Units(uR"(\\server\clips\x)")));
    EXPECT_TRUE(IsDirectory(Units(uR"(\\server\clips)")));
}

TEST(DriveTable, List_HoldsTheDrivesInOrderAndTheShares)
{
    const TempFolder folder;
    const std::string base = folder.Host().string();
    const Mount share(Units(uR"(\\s\h)"), base);
    const Mount drive('A', base);
    const auto list = GetMountPoints();
    ASSERT_EQ(3u, list.size());
    EXPECT_EQ(Units(u"A:\\"), list[0].mRoot);
    EXPECT_EQ(base, list[0].mHostFolder);
    EXPECT_EQ(Units(u"C:\\"), list[1].mRoot);
    EXPECT_EQ("/", list[1].mHostFolder);
    EXPECT_EQ(Units(uR"(\\s\h\)"), list[2].mRoot);
}

TEST(DriveTable, WhatMakesNoSense_IsRefused)
{
    using namespace PathUtils::Linux;
    const TempFolder folder;
    folder.MakeFile("f");
    const std::string base = folder.Host().string();
    EXPECT_EQ(kAlreadyExists, MountDrive('c', base));
    EXPECT_EQ(kGeneralFailure, MountDrive('1', base));
    EXPECT_EQ(kGeneralFailure, MountDrive('\xE9', base));
    EXPECT_EQ(kPathNotFound, MountDrive('M', base + "/no"));
    EXPECT_EQ(kPathNotFound, MountDrive('M', base + "/f"));
    EXPECT_EQ(kPathNotFound, MountDrive('M', "relative"));
    EXPECT_EQ(kPathNotFound, MountDrive('M', ""));
    EXPECT_EQ(kPathNotFound, UnmountDrive('M'));
    EXPECT_EQ(kGeneralFailure, UnmountDrive('?'));
    const char16_t* const noShares[] = {u"",     u"\\\\s",     u"\\\\s\\", u"\\\\\\h", u"\\\\s\\h\\x",
                                        u"s\\h", u"\\\\?\\C:", u"\\\\s/h"};
    for (const char16_t* share : noShares) {
        EXPECT_EQ(kGeneralFailure, MountShare(Units(share), base)) << Show(Units(share));
    }
    EXPECT_EQ(kPathNotFound, MountShare(Units(uR"(\\s\h)"), "/no such folder"));
    EXPECT_EQ(kPathNotFound, UnmountShare(Units(uR"(\\s\h)")));
    const Mount share(Units(uR"(\\s\h)"), base);
    EXPECT_EQ(kAlreadyExists, MountShare(Units(uR"(\\S\H)"), base));
}

TEST(DriveTable, WithoutADriveThatLeadsThere_APathIsEmpty)
{
    ASSERT_EQ(kSuccess, PathUtils::Linux::UnmountDrive('C'));
    EXPECT_EQ(UTF16String(), FromHostPath("/a"));
    EXPECT_FALSE(ExistsOnDisk(Units(u"C:\\")));
    EXPECT_EQ(UTF16String(), GetTempDirectory());
    ASSERT_EQ(kSuccess, PathUtils::Linux::MountDrive('C', "/"));
    EXPECT_TRUE(ExistsOnDisk(Units(u"C:\\")));
}

TEST(DriveTable, MountsWhilePathsAreResolved_AreSeenWholeOrNotAtAll)
{
    const TempFolder folder;
    const std::string base = folder.Host().string();
    std::atomic<bool> done{false};
    std::thread mounter([&] {
        for (int i = 0; i < 2000; ++i) {
            PathUtils::Linux::MountDrive('M', base);
            PathUtils::Linux::UnmountDrive('M');
        }
        done = true;
    });
    while (!done) {
        HostPath host;
        const SystemError error = ResolveHostPath(Units(uR"(M:\x)"), host);
        ASSERT_TRUE(error == 0 ? host.mPath == base + "/x" : error == 3) << error;
        const UTF16String path = FromHostPath(base + "/x");
        ASSERT_TRUE(path == Units(u"M:\\x") || path[0] == 'C') << Show(path);
        ASSERT_LE(GetMountPoints().size(), 2u);
    }
    mounter.join();
}
