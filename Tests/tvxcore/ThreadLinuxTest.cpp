// What tvxcore makes of the threads of Linux.
#include <CurrentThread.h>
#include <tvxcore/Debug.h>
#include <tvxcore/Executor.h>

#include <gtest/gtest.h>

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
