// Tests path and disk functions whose system calls fail, and the Windows error number for each errno.
#include <Linux/Calls/LinuxErrors.h>

#include <FaultySystemCallsLinux.h>
#include <ORLPathUtils.h>
#include <TempFolder.h>
#include <TextHelpers.h>

#include <cerrno>
#include <gtest/gtest.h>

using namespace ORL;
using namespace ORL::PathUtils;
using ORL::Linux::PathOperation;
using ORL::Linux::SystemErrorFromErrno;
using ORLTest::FaultySystemCalls;
using ORLTest::TempFolder;
using ORLTest::Units;

TEST(SystemErrorFromErrno, EachErrno_HasItsNumber)
{
    struct Row
    {
        int mLine;
        int mErrno;
        SystemError mError;
    };
    const Row rows[] = {
        {__LINE__, 0, 0},
        {__LINE__, ENOENT, 2},
        {__LINE__, ENOTDIR, 3},
        {__LINE__, EMFILE, 4},
        {__LINE__, ENFILE, 4},
        {__LINE__, EACCES, 5},
        {__LINE__, EPERM, 5},
        {__LINE__, EISDIR, 5},
        {__LINE__, EBADF, 6},
        {__LINE__, ENOMEM, 8},
        {__LINE__, EXDEV, 17},
        {__LINE__, EROFS, 19},
        {__LINE__, ETXTBSY, 32},
        {__LINE__, ENOSYS, 50},
        {__LINE__, EOPNOTSUPP, 50},
        {__LINE__, EEXIST, 80},
        {__LINE__, EINVAL, 87},
        {__LINE__, ENOSPC, 112},
        {__LINE__, EDQUOT, 112},
        {__LINE__, ENAMETOOLONG, 123},
        {__LINE__, ENOTEMPTY, 145},
        {__LINE__, EBUSY, 170},
        {__LINE__, EFBIG, 223},
        {__LINE__, EFAULT, 998},
        {__LINE__, EIO, 1117},
        {__LINE__, ELOOP, 1921},
        // errno values without a Windows error number
        {__LINE__, ENOTTY, 31},
        {__LINE__, 99999, 31},
        {__LINE__, -1, 31},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.mError, SystemErrorFromErrno(row.mErrno)) << "row at line " << row.mLine;
    }
}

TEST(SystemErrorFromErrno, AMissingName_DependsOnItsFolder)
{
    const TempFolder folder;
    folder.MakeFile("f");
    const std::string base = folder.Host().string();
    EXPECT_EQ(2u, SystemErrorFromErrno(ENOENT, base + "/no"));
    EXPECT_EQ(2u, SystemErrorFromErrno(ENOENT, base + "/no/"));
    EXPECT_EQ(3u, SystemErrorFromErrno(ENOENT, base + "/no/no"));
    EXPECT_EQ(3u, SystemErrorFromErrno(ENOENT, base + "/f/no"));
    EXPECT_EQ(2u, SystemErrorFromErrno(ENOENT, "/no such entry"));
    EXPECT_EQ(2u, SystemErrorFromErrno(ENOENT, "no such entry"));
    EXPECT_EQ(2u, SystemErrorFromErrno(ENOENT, "/"));
}

TEST(SystemErrorFromErrno, TheSameErrno_DependsOnWhatWasAsked)
{
    const TempFolder folder;
    folder.MakeFile("f");
    const std::string file = (folder.Host() / "f").string();
    EXPECT_EQ(80u, SystemErrorFromErrno(EEXIST, file));
    EXPECT_EQ(183u, SystemErrorFromErrno(EEXIST, file, PathOperation::kMakeFolder));
    EXPECT_EQ(183u, SystemErrorFromErrno(EEXIST, file, PathOperation::kMove));
    EXPECT_EQ(145u, SystemErrorFromErrno(EEXIST, file, PathOperation::kRemoveFolder));
    EXPECT_EQ(267u, SystemErrorFromErrno(ENOTDIR, file, PathOperation::kRemoveFolder));
    EXPECT_EQ(3u, SystemErrorFromErrno(ENOTDIR, file + "/x", PathOperation::kRemoveFolder));
    EXPECT_EQ(3u, SystemErrorFromErrno(ENOTDIR, file + "/x"));
    EXPECT_EQ(5u, SystemErrorFromErrno(EACCES, file, PathOperation::kMove));
}

TEST(FaultySystemCalls, FailShortenAndHold_ReachTheCallTheyName)
{
    const TempFolder folder;
    folder.MakeFile("f", "0123456789");
    FaultySystemCalls calls;
    const int file = ORL::Linux::System().mOpen((folder.Host() / "f").c_str(), O_RDONLY, 0);
    ASSERT_LE(0, file);
    char buffer[10];
    const auto read = [&] { return ORL::Linux::System().mPRead(file, buffer, sizeof(buffer), 0); };
    EXPECT_EQ(10, read());
    calls.Fail(FaultySystemCalls::kPRead, 2, EIO, 2);
    EXPECT_EQ(10, read());
    EXPECT_EQ(-1, read());
    EXPECT_EQ(EIO, errno);
    EXPECT_EQ(-1, read());
    EXPECT_EQ(10, read());
    calls.Shorten(FaultySystemCalls::kPRead, 1, 4);
    EXPECT_EQ(6, read());
    calls.Shorten(FaultySystemCalls::kPRead, 1, 100);
    EXPECT_EQ(1, read());
    bool held = false;
    calls.Before(FaultySystemCalls::kPRead, 1, [&held] { held = true; });
    EXPECT_EQ(10, read());
    EXPECT_TRUE(held);
    EXPECT_EQ(8u, calls.Count(FaultySystemCalls::kPRead));
    EXPECT_EQ(0, ORL::Linux::System().mClose(file));
    calls.Fail(FaultySystemCalls::kUringQueueInit, 1, ENOSYS);
    EXPECT_EQ(-ENOSYS, ORL::Linux::System().mUringQueueInit(8, nullptr, nullptr));
    calls.Fail(FaultySystemCalls::kFAdvise, 1, EINVAL);
    EXPECT_EQ(EINVAL, ORL::Linux::System().mFAdvise(0, 0, 0, 0));
    calls.Fail(FaultySystemCalls::kGetCwd, 1, ENOENT);
    EXPECT_EQ(nullptr, ORL::Linux::System().mGetCwd(buffer, sizeof(buffer)));
}

TEST(PathFaults, AQueryThatTheSystemRefuses_IsFalse)
{
    const TempFolder folder;
    folder.MakeFolder("d");
    const UTF16String path = folder.Path(u"d");
    const FaultySystemCalls::Call all[] = {FaultySystemCalls::kStatx, FaultySystemCalls::kOpen,
                                           FaultySystemCalls::kGetDents};
    for (const int error : {EACCES, EIO, ENOMEM, ENOENT}) {
        FaultySystemCalls calls;
        for (const FaultySystemCalls::Call call : all) {
            calls.Fail(call, 1, error, FaultySystemCalls::kForEver);
        }
        EXPECT_FALSE(ExistsOnDisk(path));
        EXPECT_FALSE(IsDirectory(path));
        EXPECT_FALSE(IsDirectoryEmpty(path));
        EXPECT_TRUE(IsHidden(path)) << "what cannot be asked counts as hidden";
        EXPECT_FALSE(PreparePathForWrite(path + Units(u"\\")));
    }
}

// A listing that fails midway must not make a folder appear empty.
TEST(PathFaults, AListThatBreaksOff_IsNoEmptyFolder)
{
    const TempFolder folder;
    folder.MakeFolder("d");
    FaultySystemCalls calls;
    calls.Fail(FaultySystemCalls::kGetDents, 1, EIO);
    EXPECT_FALSE(IsDirectoryEmpty(folder.Path(u"d")));
    EXPECT_TRUE(IsDirectoryEmpty(folder.Path(u"d")));
    EXPECT_EQ(2u, calls.Count(FaultySystemCalls::kOpen));
    EXPECT_EQ(2u, calls.Count(FaultySystemCalls::kClose));
}

TEST(PathFaults, AFolderThatCannotBeMade_IsTold)
{
    const TempFolder folder;
    FaultySystemCalls calls;
    calls.Fail(FaultySystemCalls::kMakeDir, 1, ENOSPC, FaultySystemCalls::kForEver);
    EXPECT_FALSE(PreparePathForWrite(folder.Path(u"a\\b\\")));
}

// Another process creates the same folder between the check and the creation: the folder exists, so the call succeeds.
TEST(PathFaults, AFolderThatAnotherMakesFirst_IsFine)
{
    const TempFolder folder;
    FaultySystemCalls calls;
    calls.Before(FaultySystemCalls::kMakeDir, 1, [&folder] { folder.MakeFolder("a/b"); });
    EXPECT_TRUE(PreparePathForWrite(folder.Path(u"a\\b\\")));
}
