// What tvxcore makes of the threads and the standard error of Linux.
#include <CurrentThread.h>
#include <Signals.h>
#include <tvxcore/Debug.h>
#include <tvxcore/Executor.h>
#include <tvxcore/Trace.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <string>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace tvxcore::threads;

namespace {

std::string NameInExecutorCalled(const std::string& inName)
{
    const auto executor = CreateAsyncThreadedExecutor(inName, 1, 3, boost::function<void()>(), boost::function<void()>());
    std::string name;
    executor->QueueFunction([&name] { name = ORLTest::SystemNameOfThisThread(); }, 0);
    executor->RequestTermination();
    executor->WaitForTermination();
    return name;
}

// The exit code of a forked child that runs the function.
template <class Function>
int InChild(Function inFunction)
{
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(inFunction());
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + status;
}

// A pipe as standard error; what the child of a fork does in it hurts nobody.
void MakeStandardErrorAPipe(int (&outEnds)[2])
{
    ASSERT_EQ(0, ::pipe(outEnds));
    ASSERT_EQ(STDERR_FILENO, ::dup2(outEnds[1], STDERR_FILENO));
}

void Emit(const std::string& inText)
{
    tvxcore::debug::Trace(reinterpret_cast<const unsigned char*>(inText.c_str()));
}

} // namespace

TEST(CurrentThreadID, IsTheSystemsNumberOnEachThread)
{
    EXPECT_EQ(static_cast<unsigned long>(::gettid()), GetCurrentThreadID());
    EXPECT_EQ(static_cast<unsigned long>(::getpid()), GetCurrentThreadID());
    unsigned long other = 0;
    pid_t expected = 0;
    std::thread([&] {
        other = GetCurrentThreadID();
        expected = ::gettid();
    }).join();
    EXPECT_EQ(static_cast<unsigned long>(expected), other);
}

TEST(CurrentThreadID, ChildOfAFork_HasItsOwn)
{
    GetCurrentThreadID();
    EXPECT_EQ(0, InChild([] { return static_cast<unsigned long>(::gettid()) == GetCurrentThreadID() ? 0 : 1; }));
}

TEST(ExecutorThread, Name_IsCutAtACharacter)
{
    struct Row
    {
        int mLine;
        const char* mName;
        const char* mKept;
    };
    const Row rows[] = {
        {__LINE__, "short", "short"},
        {__LINE__, "fifteen letters", "fifteen letters"},
        {__LINE__, "sixteen letters!", "sixteen letters"},
        {__LINE__, "thirteen....\u00e9\u00e9", "thirteen....\u00e9"},
        {__LINE__, "fourteen.....\u00e9\u00e9", "fourteen.....\u00e9"},
        {__LINE__, "twelve......\u4e2d\u4e2d", "twelve......\u4e2d"},
        {__LINE__, "thirteen.....\u4e2d", "thirteen....."},
        {__LINE__, "fourteen......\U0001F600", "fourteen......"},
        {__LINE__, "eleven.....\U0001F600", "eleven.....\U0001F600"},
        {__LINE__, "\u4e2d\u4e2d\u4e2d\u4e2d\u4e2d\u4e2d", "\u4e2d\u4e2d\u4e2d\u4e2d\u4e2d"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.mKept, NameInExecutorCalled(row.mName)) << "row at line " << row.mLine;
    }
}

TEST(DisplayAssert, UnderADebugger_ChoosesDebug)
{
    EXPECT_EQ(0, InChild([] {
        if (tvxcore::debug::DisplayAssert("Title", "without one") != 1) {
            return 1;
        }
        ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        return tvxcore::debug::DisplayAssert("Title", "with one") == 0 ? 0 : 2;
    }));
}

TEST(StandardError, PipeThatNobodyReads_DoesNotHoldTheProcessBack)
{
    EXPECT_EQ(0, InChild([] {
        int ends[2];
        MakeStandardErrorAPipe(ends);
        ::alarm(30); // a child that is held back dies of it
        for (int i = 0; i < 100; ++i) {
            Emit(std::string(10'000, 'x'));
        }
        return 0;
    }));
}

TEST(StandardError, PipeThatIsReadAgain_GetsTextAgain)
{
    EXPECT_EQ(0, InChild([] {
        int ends[2];
        MakeStandardErrorAPipe(ends);
        for (int i = 0; i < 100; ++i) {
            Emit(std::string(10'000, 'x'));
        }
        ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
        char buffer[4096];
        while (::read(ends[0], buffer, sizeof(buffer)) > 0) {
        }
        Emit("again");
        const ssize_t count = ::read(ends[0], buffer, sizeof(buffer));
        return std::string(buffer, static_cast<std::size_t>(count)) == "again\n" ? 0 : 1;
    }));
}

TEST(StandardError, PipeWhoseReaderIsGone_RaisesNoSignal)
{
    EXPECT_EQ(0, InChild([] {
        int ends[2];
        MakeStandardErrorAPipe(ends);
        ::close(ends[0]);
        ::signal(SIGPIPE, SIG_DFL);
        Emit("nobody reads this");
        return 0;
    }));
}

TEST(StandardError, Closed_IsNoError)
{
    EXPECT_EQ(0, InChild([] {
        ::close(STDERR_FILENO);
        errno = 17;
        Emit("nobody reads this");
        return errno == 17 ? 0 : 1;
    }));
}
