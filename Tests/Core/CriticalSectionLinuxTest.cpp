// Tests guarantees that CriticalSection makes only on Linux.
#include <ORLCriticalSection.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <fstream>
#include <string>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <type_traits>
#include <unistd.h>
#include <vector>

using namespace ORL;

namespace {

#if defined(__clang__)
#  define ORL_TEST_CONSTANT_INITIALIZED [[clang::require_constant_initialization]]
#else
#  define ORL_TEST_CONSTANT_INITIALIZED __constinit
#endif

// Compiles only if the section is constant-initialised: then the constructor of any static can lock it.
ORL_TEST_CONSTANT_INITIALIZED CriticalSection sSection;

// Returns the state letter that the kernel reports for a thread: 'S' if it sleeps.
char StateOf(pid_t inThread)
{
    std::ifstream file("/proc/self/task/" + std::to_string(inThread) + "/stat");
    std::string text;
    std::getline(file, text);
    const std::size_t end = text.rfind(") ");
    return end != std::string::npos ? text[end + 2] : '?';
}

} // namespace

TEST(CriticalSectionOfOurs, IsConstantInitializedAndNeedsNoDestruction)
{
    EXPECT_TRUE(sSection.TryLock());
    sSection.Unlock();
#if !ORL_THREAD_SANITIZER
    EXPECT_TRUE(std::is_trivially_destructible_v<CriticalSection>);
#endif
}

namespace {

bool IsFreeForAnotherThread(const CriticalSection& inSection)
{
    bool isFree = false;
    std::thread([&] { isFree = CriticalSectionTryLock(inSection).IsLocked(); }).join();
    return isFree;
}

} // namespace

// The number of earlier locks determines whether Lock checks for recursion first, so the test varies it.
TEST(CriticalSectionOfOurs, TakenAgainAfterAnyNumberOfPlainTurns_OwesOneUnlockForEach)
{
    for (int plainTurns = 0; plainTurns < 20; ++plainTurns) {
        const CriticalSection section;
        for (int i = 0; i < 3; ++i) {
            section.Lock();
            section.Lock();
            EXPECT_TRUE(section.TryLock());
            section.Unlock();
            section.Unlock();
            EXPECT_FALSE(IsFreeForAnotherThread(section));
            section.Unlock();
            EXPECT_TRUE(IsFreeForAnotherThread(section));
            for (int turn = 0; turn < plainTurns; ++turn) {
                section.Lock();
                section.Unlock();
            }
            EXPECT_TRUE(section.TryLock());
            EXPECT_TRUE(section.TryLock());
            section.Unlock();
            EXPECT_FALSE(IsFreeForAnotherThread(section));
            section.Unlock();
            EXPECT_TRUE(IsFreeForAnotherThread(section));
        }
    }
}

TEST(CriticalSectionOfOurs, ThreadsThatWait_SleepAndAreAllWokenOneAfterTheOther)
{
    const CriticalSection section;
    std::vector<std::atomic<pid_t>> ids(3);
    std::vector<std::thread> waiters;
    int entered = 0; // guarded by section
    section.Lock();
    for (std::atomic<pid_t>& id : ids) {
        waiters.emplace_back([&section, &entered, &id] {
            id.store(static_cast<pid_t>(::syscall(SYS_gettid)));
            const CriticalSectionLock lock(section);
            ++entered;
        });
    }
    for (std::atomic<pid_t>& id : ids) {
        while (id.load() == 0 || StateOf(id.load()) != 'S') {
            std::this_thread::yield();
        }
    }
    EXPECT_EQ(0, entered);
    section.Unlock();
    for (std::thread& waiter : waiters) {
        waiter.join();
    }
    EXPECT_EQ(3, entered);
}

TEST(CriticalSectionOfOurs, ForkedWhileHeld_IsHeldByTheChildsThread)
{
    const CriticalSection section;
    section.Lock();
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        section.Lock(); // would deadlock if the child's thread did not count as the owner
        section.Unlock();
        section.Unlock();
        const bool isFree = section.TryLock();
        ::_exit(isFree ? 7 : 8);
    }
    int status = 0;
    ASSERT_EQ(child, ::waitpid(child, &status, 0));
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(7, WEXITSTATUS(status));
    section.Unlock();
}
