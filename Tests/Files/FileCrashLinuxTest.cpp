// A process that is killed in the middle of a swap, at each system call of it.
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

// Swaps in a child that is killed before its call inCall. inLinks: whether the file system has second names.
End SwapInChild(const TempFolder& inFolder, unsigned inCall, bool inLinks)
{
    const pid_t child = ::fork();
    if (child == 0) {
        FaultySystemCalls calls;
        if (!inLinks) {
            calls.Fail(FaultySystemCalls::kLink, 1, EPERM, FaultySystemCalls::kForEver);
        }
        calls.Before(FaultySystemCalls::kAny, inCall, [] { ::kill(::getpid(), SIGKILL); });
        ::_exit(File::SwapTempFile(inFolder.Path(u"temp"), inFolder.Path(u"real")) == kSuccess ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFSIGNALED(status) ? End::kKilled : WEXITSTATUS(status) == 0 ? End::kDone : End::kFailed;
}

void SwapUnderKills(bool inLinks)
{
    bool sawOld = false;
    bool sawNew = false;
    unsigned call = 1;
    for (;; ++call) {
        const TempFolder folder;
        folder.MakeFile("real", kOld);
        folder.MakeFile("temp", kNew);
        const End end = SwapInChild(folder, call, inLinks);
        ASSERT_NE(End::kFailed, end);
        const std::string real = ContentsOf(folder, "real");
        ASSERT_TRUE(real == kOld || real == kNew) << "killed at call " << call << ": the real file is not whole";
        // Whoever comes next sees by the temporary name whether it was done, and may simply do it again.
        const std::string temp = ContentsOf(folder, "temp");
        ASSERT_EQ(real == kOld ? kNew : "<none>", temp) << call;
        sawOld = sawOld || real == kOld;
        sawNew = sawNew || (real == kNew && end == End::kKilled);
        if (real == kOld) {
            ASSERT_EQ(kSuccess, File::SwapTempFile(folder.Path(u"temp"), folder.Path(u"real"))) << call;
        }
        ASSERT_TRUE(kNew == ContentsOf(folder, "real")) << call;
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
    SwapUnderKills(true);
}

TEST(SwapUnderCrash, TheSameWithoutSecondNames)
{
    SwapUnderKills(false);
}
