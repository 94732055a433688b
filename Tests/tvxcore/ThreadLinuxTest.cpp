// Tests tvxcore on Linux: thread identifiers, names and levels, and an assertion under a debugger.
#include <CurrentThread.h>
#include <tvxcore/Debug.h>
#include <tvxcore/Executor.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace tvxcore::threads;

namespace {

std::string NameInExecutorCalled(const std::string& inName)
{
    const auto executor =
        CreateAsyncThreadedExecutor(inName, 1, 3, boost::function<void()>(), boost::function<void()>());
    std::string name;
    executor->QueueFunction([&name] { name = ORLTest::SystemNameOfThisThread(); }, 0);
    executor->RequestTermination();
    executor->WaitForTermination();
    return name;
}

// Runs the function in a forked child and returns its exit code.
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

int LevelInExecutor(int inPriority)
{
    const auto executor =
        CreateAsyncThreadedExecutor("", 1, inPriority, boost::function<void()>(), boost::function<void()>());
    int level = -100;
    executor->QueueFunction([&level] { level = ORLTest::LevelOfThisThread(); }, 0);
    executor->RequestTermination();
    executor->WaitForTermination();
    return level;
}

// Permanently drops the privileges and the right to raise any priority.
void BecomeAnOrdinaryUser()
{
    constexpr uid_t kNobody = 65534;
    const rlimit none{0, 0};
    if (::setrlimit(RLIMIT_NICE, &none) != 0
        || (::geteuid() == 0 && (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0))) {
        ::_exit(99);
    }
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

TEST(ExecutorThread, OfAnOrdinaryUser_StaysAtTheProcessWhereItMayNotGoAbove)
{
    for (int priority = 0; priority <= 5; ++priority) {
        EXPECT_EQ(0, InChild([priority] {
                      BecomeAnOrdinaryUser();
                      const int process = ::getpriority(PRIO_PROCESS, 0);
                      const int wanted = priority < 3 ? std::min(19, process + 5 * (3 - priority)) : process;
                      return LevelInExecutor(priority) == wanted ? 0 : 1;
                  }))
            << "priority " << priority;
    }
}

TEST(ExecutorThread, MadeByALowerOneOfAnOrdinaryUser_StaysAtItsMaker)
{
    for (const int priority : {2, 3, 4, 5}) {
        EXPECT_EQ(0, InChild([priority] {
                      BecomeAnOrdinaryUser();
                      const auto low =
                          CreateAsyncThreadedExecutor("", 1, 2, boost::function<void()>(), boost::function<void()>());
                      int own = -100;
                      int made = -100;
                      low->QueueFunction(
                          [&] {
                              own = ORLTest::LevelOfThisThread();
                              made = LevelInExecutor(priority);
                          },
                          0);
                      low->RequestTermination();
                      low->WaitForTermination();
                      return own == made ? 0 : 1;
                  }))
            << "priority " << priority;
    }
}

// The second thread inherits the level of the first, which the process could raise before it dropped its privileges.
TEST(ExecutorThread, MadeByAHigherOneOfAnOrdinaryUser_ReturnsToTheProcess)
{
    constexpr int kMayNotRaise = 98;
    const int outcome = InChild([] {
        const int process = ::getpriority(PRIO_PROCESS, 0);
        const auto high = CreateAsyncThreadedExecutor("", 1, 4, boost::function<void()>(), boost::function<void()>());
        int own = -100;
        int made = -100;
        high->QueueFunction(
            [&] {
                own = ORLTest::LevelOfThisThread();
                BecomeAnOrdinaryUser();
                made = LevelInExecutor(5);
            },
            0);
        high->RequestTermination();
        high->WaitForTermination();
        if (own == process) {
            return kMayNotRaise;
        }
        return own == process - 5 && made == process ? 0 : 1;
    });
    if (outcome == kMayNotRaise) {
        GTEST_SKIP() << "an ordinary user may not raise a priority";
    }
    EXPECT_EQ(0, outcome);
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
