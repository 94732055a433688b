// Runs orl at a terminal: tests the progress line, and the key that stops a run.
#include <ProcessRunner.h>
#include <TempFolder.h>

#include <algorithm>
#include <cstdlib>
#include <cwchar>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <locale.h>
#include <signal.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using namespace ORLTest;

namespace {

// Runs between fork and exec: only async-signal-safe calls are allowed.
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

/// A pseudo-terminal whose screen the test reads.
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

    void SetColumns(unsigned short inColumns) const
    {
        struct winsize size
        {
        };
        size.ws_col = inColumns;
        size.ws_row = 24;
        ASSERT_EQ(0, ::ioctl(mMaster, TIOCSWINSZ, &size));
    }

    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    // Returns everything that the program writes until it ends.
    std::string ScreenOf(const std::vector<std::string>& inArguments, int inExitCode)
    {
        const pid_t process = StartOrl(inArguments, mSlave);
        ::close(mSlave);
        std::string text;
        char bytes[4096];
        ssize_t count = 0;
        while ((count = ::read(mMaster, bytes, sizeof(bytes))) > 0) { // the read fails when the program has ended
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

/// Returns the C library's width of a string, independent of the program's own table.
int WidthByTheCLibrary(const std::string& inText)
{
    const locale_t utf8 = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    const locale_t earlier = ::uselocale(utf8);
    std::wstring wide(inText.size() + 1, L'\0');
    const std::size_t count = std::mbstowcs(wide.data(), inText.c_str(), wide.size());
    const int width = count == static_cast<std::size_t>(-1) ? -1 : ::wcswidth(wide.c_str(), count);
    ::uselocale(earlier);
    ::freelocale(utf8);
    return width;
}

class OrlTerminalOfWidth : public OrlTerminal, public testing::WithParamInterface<unsigned short>
{
protected:
    OrlTerminalOfWidth() { mTerminal.SetColumns(GetParam()); }

    /// Expects that blanks clear the line at the end. Each string that a carriage return precedes must end before the
    /// last column and contain no line break.
    static void ExpectOneLine(const std::string& inScreen, const std::string& inPart)
    {
        const std::vector<std::string> texts = AfterReturns(inScreen);
        const auto isBlank = [](const std::string& inText) {
            return !inText.empty() && inText.find_first_not_of(' ') == std::string::npos;
        };
        const auto cleared = std::find_if(texts.rbegin(), texts.rend(), isBlank).base();
        ASSERT_NE(texts.begin(), cleared) << inScreen;
        std::size_t shown = 0;
        for (auto text = texts.begin(); text != cleared; ++text) {
            EXPECT_EQ(std::string::npos, text->find('\n')) << *text;
            const int width = WidthByTheCLibrary(*text);
            EXPECT_LE(0, width) << *text;
            EXPECT_GT(GetParam(), width) << *text;
            shown += text->find(inPart) != std::string::npos ? 1 : 0;
        }
        EXPECT_LT(0u, shown) << inScreen;
        EXPECT_EQ(std::string::npos, inScreen.find('\x1b')) << inScreen;
    }

private:
    static std::vector<std::string> AfterReturns(const std::string& inScreen)
    {
        std::vector<std::string> texts;
        std::size_t end = inScreen.find('\r');
        while (end != std::string::npos) {
            const std::size_t start = end + 1;
            end = inScreen.find('\r', start);
            texts.push_back(inScreen.substr(start, end - start));
        }
        return texts;
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Columns, OrlTerminalOfWidth, testing::Values<unsigned short>(40, 80, 200),
                         testing::PrintToStringParamName());

TEST_F(OrlTerminal, Stream_ShowsAProgressLineAndTakesItBackBeforeTheTable)
{
    mFolder.MakeFile("clip.mov", std::string(10000, 'x'));
    const std::string screen = mTerminal.ScreenOf({"stream", Host("clip.mov")}, 0);
    EXPECT_EQ(0u, screen.find("\r100 %  clip.mov\r" + std::string(15, ' ') + "\rfile ")) << screen;
}

// orl colour shows a patch of the colour above its forms if the terminal supports colours.
TEST_F(OrlTerminal, Colour_ShowsAPatchWhereTheTerminalShowsColours)
{
    const char* const term = std::getenv("TERM");
    const std::string earlier = term != nullptr ? term : "";
    ::unsetenv("NO_COLOR");
    const std::string row = "\x1b[48;2;255;128;0m" + std::string(24, ' ') + "\x1b[0m\r\n";
    const struct
    {
        int mLine;
        const char* mTerm;
        const char* mNoColor;
        bool mShows;
    } rows[] = {
        {__LINE__, "xterm-256color", nullptr, true},
        {__LINE__, "dumb", nullptr, false},
        {__LINE__, "", nullptr, false},
        {__LINE__, "xterm", "1", false},
        {__LINE__, "xterm", "", true},
    };
    for (const auto& each : rows) {
        ::setenv("TERM", each.mTerm, 1);
        if (each.mNoColor != nullptr) {
            ::setenv("NO_COLOR", each.mNoColor, 1);
        }
        Terminal terminal;
        const std::string screen = terminal.ScreenOf({"colour", "#ff8000", "--to", "rgb"}, 0);
        EXPECT_EQ(each.mShows ? row + row + "rgb    255     128     0     #ff8000\r\n"
                              : "rgb    255     128     0     #ff8000\r\n",
                  screen)
            << "row at line " << each.mLine;
        ::unsetenv("NO_COLOR");
    }
    ::setenv("TERM", earlier.c_str(), 1);
}

TEST_F(OrlTerminal, StreamOfAnAwkwardName_KeepsTheProgressOnOneLine)
{
    const std::string name = "\x1b[2J\n" + std::string(100, 'n');
    mFolder.MakeFile(name, "x");
    const std::string screen = mTerminal.ScreenOf({"stream", Host(name)}, 0);
    EXPECT_EQ(0u, screen.find("\r100 %  ..." + std::string(69, 'n') + '\r' + std::string(79, ' ') + "\rfile "))
        << screen;
    EXPECT_EQ(std::string::npos, screen.find('\x1b'));
}

TEST_P(OrlTerminalOfWidth, StreamOfWideAndJoinedCharacters_NeverWraps)
{
    std::string name;
    for (int i = 0; i < 20; ++i) {
        name += "\u6F22\u5B57e\u0301"; // 5 columns in 9 bytes
    }
    mFolder.MakeFile(name, "x");
    ExpectOneLine(mTerminal.ScreenOf({"stream", Host(name)}, 0), "%  ");
}

TEST_P(OrlTerminalOfWidth, Ingest_NeverWraps)
{
    mFolder.MakeFolder("card");
    for (int i = 0; i < 30; ++i) {
        mFolder.MakeFile("card/clip" + std::to_string(i), std::string(1000000, 'c'));
    }
    ExpectOneLine(mTerminal.ScreenOf({"ingest", Host("card"), Host("disk")}, 0), " %");
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
    while (std::filesystem::is_empty(mFolder.Host()) && !HasEnded(process)) {
        ::usleep(1000);
    }
    ::kill(process, SIGINT);
    EXPECT_EQ(130, ExitCodeOf(process));
    EXPECT_TRUE(std::filesystem::is_empty(mFolder.Host()));
    ::close(nothing);
}
