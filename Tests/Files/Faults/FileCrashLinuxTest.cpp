// Kills a process before each system call of File::SwapTempFile.
#include <FileSupport.h>

#include <FaultySystemCallsLinux.h>

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace ORL;
using namespace ORLTest;

namespace {

const std::string kOld(200000, 'o');
const std::string kNew(300000, 'n');

enum class End { kKilled, kDone, kFailed };

Result Swap(const TempFolder& inFolder, const std::string& inName)
{
    const UTF16String real = PathUtils::FromHostPath((inFolder.Host() / inName).string());
    return File::SwapTempFile(inFolder.Path(u"temp"), real);
}

// Runs Swap in a child that is killed before system call inCall. inLinks: whether the file system has hard links.
End SwapInChild(const TempFolder& inFolder, const std::string& inName, unsigned inCall, bool inLinks)
{
    const pid_t child = ::fork();
    if (child == 0) {
        FaultySystemCalls calls;
        if (!inLinks) {
            calls.Fail(FaultySystemCalls::kLink, 1, EPERM, FaultySystemCalls::kForEver);
        }
        calls.Before(FaultySystemCalls::kAny, inCall, [] { ::kill(::getpid(), SIGKILL); });
        ::_exit(Swap(inFolder, inName) == kSuccess ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFSIGNALED(status) ? End::kKilled : WEXITSTATUS(status) == 0 ? End::kDone : End::kFailed;
}

void SwapUnderKills(const std::string& inName, bool inLinks)
{
    bool sawOld = false;
    bool sawNew = false;
    unsigned call = 1;
    for (;; ++call) {
        const TempFolder folder;
        folder.MakeFile(inName, kOld);
        folder.MakeFile("temp", kNew);
        const End end = SwapInChild(folder, inName, call, inLinks);
        ASSERT_NE(End::kFailed, end);
        const std::string real = ContentsOf(folder, inName);
        ASSERT_TRUE(real == kOld || real == kNew) << "killed at call " << call << ": the real file is not whole";
        // The temporary file is gone if and only if the swap is complete; if it exists, the next process can repeat the
        // swap.
        const std::string temp = ContentsOf(folder, "temp");
        ASSERT_EQ(real == kOld ? kNew : "<none>", temp) << call;
        sawOld = sawOld || real == kOld;
        sawNew = sawNew || (real == kNew && end == End::kKilled);
        if (real == kOld) {
            ASSERT_EQ(kSuccess, Swap(folder, inName)) << call;
        }
        ASSERT_TRUE(kNew == ContentsOf(folder, inName)) << call;
        ASSERT_EQ("<none>", ContentsOf(folder, "temp"));
        if (end == End::kDone) {
            break;
        }
    }
    EXPECT_TRUE(sawOld && sawNew) << "kills before and after the moment of the swap";
    std::printf("%u kills\n", call - 1);
}

} // namespace

TEST(SwapUnderCrash, AKillAtEachSystemCall_LeavesTheRealFileWhole)
{
    SwapUnderKills("real", true);
}

TEST(SwapUnderCrash, TheSameWithoutSecondNames)
{
    SwapUnderKills("real", false);
}

// With 255 bytes there is no room for a longer backup name, so the backup gets an unrelated name.
TEST(SwapUnderCrash, TheSameWithANameThatLeavesNoRoomForABackup)
{
    SwapUnderKills(std::string(255, 'r'), true);
    std::string name;
    while (name.size() < 254) {
        name += "\xD1\x8F";
    }
    SwapUnderKills(name, true);
    SwapUnderKills(name, false);
}
