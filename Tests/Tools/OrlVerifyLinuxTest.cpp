// Runs orl verify in conditions that only Linux has: coreutils as the writer of the list, any byte in a name, links
// and pipes, permissions, and signals before any system call.
#include <VerifyTestSupport.h>

#include <TracedRunLinux.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using namespace ORLTest;

namespace {

namespace fs = std::filesystem;

class OrlVerifyOnLinux : public VerifiedTree
{
protected:
    std::string Errors() const { return (mFolder.Host() / "errors").string(); }

    /// Returns the exit code of the traced program, or -1 if tracing is not possible. outCalls is the number of
    /// its system calls in the folder.
    int RunTraced(int inSignalAt, int inSignal, int& outCalls) const
    {
        TracedRun traced(Disk().string(), Errors());
        outCalls = traced.Run({FolderOfThisProgram() + "orl", "verify", Disk().string()}, inSignalAt, inSignal);
        return outCalls < 0 || traced.ExitCode() == 99 ? -1 : traced.ExitCode();
    }
};

} // namespace

// Verifies names with every byte that a name may contain, in a list that coreutils wrote.
TEST_F(OrlVerifyOnLinux, AwkwardNamesInAListOfCoreutils_AreVerified)
{
    for (int byte = 1; byte < 256; ++byte) {
        if (byte != '/') {
            WriteFile(Disk().string() + "/n" + static_cast<char>(byte), std::string(1, static_cast<char>(byte)));
        }
    }
    WriteFile(Disk() / "\\x", "a backslash at the start");
    const std::string list = "cd '" + Disk().string()
                             + "' && rm ingest.sha256 && find . -type f -exec sha256sum '{}' + > ../list && mv ../list "
                               "ingest.sha256";
    ASSERT_EQ(0, std::system(list.c_str()));
    const ProcessResult result = Verify();
    ExpectEnd(result, 0, {});
    EXPECT_TRUE(Shows(result.mOutput, "259 files verified")) << result.mOutput;
    WriteFile(Disk() / "n\n", "changed");
    WriteFile(Disk() / "n\xff", "changed");
    const ProcessResult changed = Verify({"--json"});
    EXPECT_EQ(kVerifyChanged, changed.mExitCode);
    EXPECT_TRUE(Shows(changed.mOutput, "\"file\": \"n\\u000a\", \"state\": \"changed\"")) << changed.mOutput;
    EXPECT_TRUE(Shows(changed.mOutput, "\"fileBytes\": \"6eff\", \"state\": \"changed\"")) << changed.mOutput;
}

TEST_F(OrlVerifyOnLinux, PipesAndBrokenLinks_AreReportedAndNotWaitedFor)
{
    fs::remove(Disk() / "a");
    ASSERT_EQ(0, ::mkfifo((Disk() / "a").c_str(), 0600));
    fs::remove(Disk() / "none");
    fs::create_symlink("nowhere", Disk() / "none");
    fs::create_directory_symlink(".", Disk() / "CLIP/loop");
    ExpectEnd(Verify(), kVerifyChanged,
              {Shown("a") + " has changed: it is not a regular file", Shown("none") + " is missing",
               "cannot read \"a\": it is not a regular file", "cannot read \"none\": file not found"});
}

// Links are followed, as by sha256sum, and a linked folder is also searched for new files.
TEST_F(OrlVerifyOnLinux, Links_AreFollowed)
{
    fs::rename(Disk() / "CLIP", mFolder.Host() / "CLIP");
    fs::create_directory_symlink("../CLIP", Disk() / "CLIP");
    ExpectEnd(Verify(), 0, {});
    mFolder.MakeFile("CLIP/extra");
    ExpectEnd(Verify(), kVerifyNew, {Shown("CLIP/extra") + " is new: it is not in the list"});
}

TEST_F(OrlVerifyOnLinux, AListThatIsNoFile_IsRefused)
{
    fs::rename(Disk() / kManifest, Disk() / "list");
    fs::create_symlink("list", Disk() / kManifest);
    ExpectEnd(Verify(), 1, {Shown(kManifest) + " is a link (--manifest names another)"});
    fs::remove(Disk() / kManifest);
    ASSERT_EQ(0, ::mkfifo((Disk() / kManifest).c_str(), 0600));
    ExpectEnd(Verify(), 1, {Shown(kManifest) + " is no file (--manifest names another)"});
}

TEST_F(OrlVerifyOnLinux, FilesAndFoldersWithoutAccess_AreUnreadable)
{
    fs::permissions(Disk() / "a", fs::perms::none);
    fs::permissions(Disk() / "CLIP/deep", fs::perms::none);
    fs::permissions(mFolder.Host(), fs::perms::others_exec, fs::perm_options::add);
    const std::string as = ::geteuid() == 0 ? "setpriv --reuid=65534 --regid=65534 --clear-groups " : "";
    const std::string command =
        as + "'" + FolderOfThisProgram() + "orl' verify '" + Disk().string() + "' 2>'" + Errors() + "' >/dev/null";
    const int status = std::system(command.c_str());
    const std::string errors = ReadFile(Errors());
    EXPECT_EQ(kVerifyUnreadable, WEXITSTATUS(status)) << errors;
    EXPECT_TRUE(Shows(errors, "cannot read " + Shown("a") + ": access denied")) << errors;
    EXPECT_TRUE(Shows(errors, "cannot read " + Shown("CLIP/deep/sector") + ": access denied")) << errors;
    fs::permissions(Disk() / "CLIP/deep", fs::perms::all);
}

// Only an administrator may list this folder, which every new ext4 volume has.
TEST_F(OrlVerifyOnLinux, ASystemFolderWithoutAccess_IsNotReported)
{
    fs::create_directory(Disk() / "lost+found");
    fs::permissions(Disk() / "lost+found", fs::perms::none);
    fs::permissions(mFolder.Host(), fs::perms::others_exec, fs::perm_options::add);
    const std::string as = ::geteuid() == 0 ? "setpriv --reuid=65534 --regid=65534 --clear-groups " : "";
    const std::string command =
        as + "'" + FolderOfThisProgram() + "orl' verify '" + Disk().string() + "' 2>'" + Errors() + "' >/dev/null";
    const int status = std::system(command.c_str());
    EXPECT_EQ(0, WEXITSTATUS(status)) << ReadFile(Errors());
    fs::permissions(Disk() / "lost+found", fs::perms::all);
}

// Files that a stopped run has not checked must not be reported as missing or changed.
TEST_F(OrlVerifyOnLinux, AStopBeforeAnyCall_ReportsNothingFalse)
{
    int calls = 0;
    const int exitCode = RunTraced(0, SIGINT, calls);
    if (exitCode == -1) {
        GTEST_SKIP() << "processes cannot be traced here";
    }
    ASSERT_EQ(0, exitCode) << ReadFile(Errors());
    constexpr int kPoints = 12;
    ASSERT_LT(kPoints, calls);
    const FileTree before = ReadTree(Disk());
    int stops = 0;
    for (int point = 0; point < kPoints; ++point) {
        const int number = 1 + point * calls / kPoints;
        SCOPED_TRACE("stopped before call " + std::to_string(number) + " of about " + std::to_string(calls));
        const int signals[] = {SIGINT, SIGTERM, SIGHUP};
        int ignored = 0;
        const int code = RunTraced(number, signals[point % 3], ignored);
        stops += code == kVerifyStopped ? 1 : 0;
        EXPECT_EQ(code == kVerifyStopped
                      ? "orl: verify: stopped by the user; the files that are not counted were not checked\n"
                      : "",
                  ReadFile(Errors()));
        EXPECT_TRUE(code == kVerifyStopped || code == 0) << code;
        EXPECT_EQ(before, ReadTree(Disk()));
    }
    EXPECT_LE(kPoints / 3, stops);
}
