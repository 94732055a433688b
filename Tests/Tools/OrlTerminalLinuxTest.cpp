// orl as a user at a terminal meets it: the progress line, and the key that stops it.
#include <ProcessRunner.h>
#include <TempFolder.h>

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <signal.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using namespace ORLTest;

namespace {

// Between fork and exec only what is safe after fork.
[[noreturn]] void BecomeOrl(const std::string& inProgram, std::vector<char*>& inArguments, int inOutput)
{
    const int nothing = ::open("/dev/null", O_RDWR);
    ::dup2(nothing, STDIN_FILENO);
    ::dup2(inOutput, STDOUT_FILENO);
    ::dup2(nothing, STDERR_FILENO);
    ::execv(inProgram.c_str(), inArguments.data());
    ::_exit(127);
}

pid_t StartOrl(std::vector<std::string> inArguments, int inOutput)
{
    inArguments.insert(inArguments.begin(), FolderOfThisProgram() + "orl");
    std::vector<char*> arguments;
    for (std::string& argument : inArguments) {
        arguments.push_back(argument.data());
    }
    arguments.push_back(nullptr);
    const pid_t process = ::fork();
    if (process == 0) {
        BecomeOrl(inArguments.front(), arguments, inOutput);
    }
    return process;
}

int ExitCodeOf(pid_t inProcess)
{
    int status = 0;
    ::waitpid(inProcess, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

bool HasEnded(pid_t inProcess)
{
    siginfo_t info{};
    return ::waitid(P_PID, static_cast<id_t>(inProcess), &info, WEXITED | WNOHANG | WNOWAIT) != 0 || info.si_pid != 0;
}

/// A terminal whose screen is read here.
class Terminal
{
public:
    Terminal() : mMaster(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))
    {
        ::grantpt(mMaster);
        ::unlockpt(mMaster);
        mSlave = ::open(::ptsname(mMaster), O_RDWR | O_NOCTTY | O_CLOEXEC);
    }

    ~Terminal() { ::close(mMaster); }

    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    // All that the program writes until it ends.
    std::string ScreenOf(const std::vector<std::string>& inArguments, int inExitCode)
    {
        const pid_t process = StartOrl(inArguments, mSlave);
        ::close(mSlave);
        std::string text;
        char bytes[4096];
        ssize_t count = 0;
        while ((count = ::read(mMaster, bytes, sizeof(bytes))) > 0) { // fails when nobody writes any more
            text.append(bytes, static_cast<std::size_t>(count));
        }
        EXPECT_EQ(inExitCode, ExitCodeOf(process)) << text;
        return text;
    }

private:
    const int mMaster;
    int mSlave = -1;
};

class OrlTerminal : public testing::Test
{
protected:
    std::string Host(const std::string& inName) const { return (mFolder.Host() / inName).string(); }

    TempFolder mFolder;
    Terminal mTerminal;
};

} // namespace

TEST_F(OrlTerminal, Stream_ShowsAProgressLineAndTakesItBackBeforeTheTable)
{
    mFolder.MakeFile("clip.mov", std::string(10000, 'x'));
    const std::string screen = mTerminal.ScreenOf({"stream", Host("clip.mov")}, 0);
    EXPECT_EQ(0u, screen.find("\r100 %  clip.mov\x1b[K\r\x1b[Kfile ")) << screen;
}

TEST_F(OrlTerminal, StreamOfAnAwkwardName_KeepsTheProgressOnOneLine)
{
    const std::string name = "\x1b[2J\n" + std::string(100, 'n');
    mFolder.MakeFile(name, "x");
    const std::string screen = mTerminal.ScreenOf({"stream", Host(name)}, 0);
    EXPECT_EQ(0u, screen.find("\r100 %  ..." + std::string(57, 'n') + "\x1b[K\r\x1b[Kfile ")) << screen;
    EXPECT_EQ(std::string::npos, screen.find("\x1b[2J"));
}

TEST_F(OrlTerminal, StreamAsJson_ShowsNoProgress)
{
    mFolder.MakeFile("clip.mov", "x");
    EXPECT_EQ('[', mTerminal.ScreenOf({"stream", "--json", Host("clip.mov")}, 0).front());
}

TEST_F(OrlTerminal, ClipThatIsStopped_LeavesNothingBehindAndEndsWith130)
{
    const int nothing = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    const pid_t process = StartOrl({"make-clip", Host("clip.y4m"), "--size", "2G"}, nothing);
    while (!std::filesystem::exists(Host("clip.y4m.part")) && !HasEnded(process)) {
        ::usleep(1000);
    }
    ::kill(process, SIGINT);
    EXPECT_EQ(130, ExitCodeOf(process));
    EXPECT_TRUE(std::filesystem::is_empty(mFolder.Host()));
    ::close(nothing);
}
