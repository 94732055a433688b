#include <ORLCriticalSection.h>

#include <gtest/gtest.h>

#include <thread>
#include <type_traits>
#include <vector>

using namespace ORL;

namespace {

// Returns whether another thread can lock the section now. The other thread unlocks the section at once.
bool OtherThreadCanTake(const CriticalSection& inSection)
{
    bool taken = false;
    std::thread([&] {
        taken = inSection.TryLock();
        if (taken) {
            inSection.Unlock();
        }
    }).join();
    return taken;
}

} // namespace

TEST(CriticalSection, LockedOnce_IsHeldUntilTheUnlock)
{
    const CriticalSection section;
    section.Lock();
    EXPECT_FALSE(OtherThreadCanTake(section));
    section.Unlock();
    EXPECT_TRUE(OtherThreadCanTake(section));
}

TEST(CriticalSection, LockedTwiceByOneThread_IsStillHeldAfterOneUnlock)
{
    const CriticalSection section;
    section.Lock();
    section.Lock();
    section.Unlock();
    EXPECT_FALSE(OtherThreadCanTake(section));
    section.Unlock();
    EXPECT_TRUE(OtherThreadCanTake(section));
}

TEST(CriticalSection, LockTryLockMixedBySameThread_OwesOneUnlockForEach)
{
    const CriticalSection section;
    EXPECT_TRUE(section.TryLock());
    section.Lock();
    EXPECT_TRUE(section.TryLock());
    for (int owed = 3; owed > 0; --owed) {
        EXPECT_FALSE(OtherThreadCanTake(section)) << owed << " unlocks are still owed";
        section.Unlock();
    }
    EXPECT_TRUE(OtherThreadCanTake(section));
}

TEST(CriticalSection, LayoutIsTheLockAndOneWord_AndNothingElse)
{
    EXPECT_EQ(sizeof(Internal::PlatformLock) + sizeof(void*), sizeof(CriticalSection));
    EXPECT_FALSE(std::is_copy_constructible_v<CriticalSection>);
    EXPECT_FALSE(std::is_polymorphic_v<CriticalSection>);
    EXPECT_EQ(sizeof(void*), sizeof(CriticalSectionLock));
}

TEST(CriticalSectionLock, BothConstructors_HoldForTheirScope)
{
    const CriticalSection section;
    {
        const CriticalSectionLock lock(section);
        EXPECT_FALSE(OtherThreadCanTake(section));
        const CriticalSectionLock again(section, "any text");
        EXPECT_FALSE(OtherThreadCanTake(section));
    }
    EXPECT_TRUE(OtherThreadCanTake(section));
    {
        const CriticalSectionLock lock(section, nullptr);
        EXPECT_FALSE(OtherThreadCanTake(section));
    }
    EXPECT_TRUE(OtherThreadCanTake(section));
}

TEST(CriticalSectionLock, ScopeLeftByException_ReleasesTheSection)
{
    const CriticalSection section;
    EXPECT_THROW(
        {
            const CriticalSectionLock lock(section);
            throw 1;
        },
        int);
    EXPECT_TRUE(OtherThreadCanTake(section));
}

TEST(CriticalSectionTryLock, OnSectionHeldByAnotherThread_IsNotLockedAndLeavesItHeld)
{
    const CriticalSection section;
    section.Lock();
    bool isLocked = true;
    std::thread([&] {
        const CriticalSectionTryLock attempt(section);
        isLocked = attempt.IsLocked();
    }).join();
    EXPECT_FALSE(isLocked);
    EXPECT_FALSE(OtherThreadCanTake(section)) << "the failed try must not unlock";
    section.Unlock();
    EXPECT_TRUE(OtherThreadCanTake(section));
}

TEST(CriticalSectionTryLock, OnSectionHeldBySameThread_SucceedsAndPaysItsOwnUnlock)
{
    const CriticalSection section;
    section.Lock();
    {
        const CriticalSectionTryLock attempt(section);
        EXPECT_TRUE(attempt.IsLocked());
    }
    EXPECT_FALSE(OtherThreadCanTake(section)) << "the first lock is still held";
    section.Unlock();
    EXPECT_TRUE(OtherThreadCanTake(section));
}

TEST(CriticalSectionTryLock, OnFreeSection_HoldsItForTheScope)
{
    const CriticalSection section;
    {
        const CriticalSectionTryLock attempt(section);
        EXPECT_TRUE(attempt.IsLocked());
        EXPECT_FALSE(OtherThreadCanTake(section));
    }
    EXPECT_TRUE(OtherThreadCanTake(section));
}

TEST(CriticalSection, FourThreadsCountUnderIt_LoseNoStepAtAnyDepth)
{
    const CriticalSection section;
    constexpr int kThreads = 4;
    constexpr int kRounds = 20000;
    long count = 0; // deliberately not atomic: the section guards it
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&, thread] {
            for (int round = 0; round < kRounds; ++round) {
                const CriticalSectionLock lock(section);
                if (round % 3 == thread % 3) {
                    const CriticalSectionLock inner(section);
                    ++count;
                } else {
                    ++count;
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(long{kThreads} * kRounds, count);
}

TEST(CriticalSection, ThreadsThatTryAndThreadsThatWait_ShareOneSection)
{
    const CriticalSection section;
    constexpr int kRounds = 20000;
    long count = 0;
    long tries = 0;
    std::thread waiter([&] {
        for (int round = 0; round < kRounds; ++round) {
            const CriticalSectionLock lock(section);
            ++count;
        }
    });
    for (int round = 0; round < kRounds; ++round) {
        const CriticalSectionTryLock attempt(section);
        if (attempt.IsLocked()) {
            ++count;
            ++tries;
        }
    }
    waiter.join();
    EXPECT_EQ(kRounds + tries, count);
}

// The last user of a guarded object destroys it with its section while the previous owner may still be returning from
// Unlock. The address sanitizer reports any access after the destruction.
TEST(CriticalSection, DestroyedByTheNextHolderRightAfterAnUnlock_IsNotTouchedAgain)
{
    struct Shared
    {
        const CriticalSection mSection;
        int mUsers = 2;
    };
    const auto leave = [](Shared* inShared) {
        bool isLast = false;
        {
            const CriticalSectionLock lock(inShared->mSection);
            isLast = --inShared->mUsers == 0;
        }
        if (isLast) {
            delete inShared;
        }
    };
    constexpr int kRounds = 5000;
    std::vector<Shared*> objects(kRounds);
    for (Shared*& object : objects) {
        object = new Shared;
    }
    std::thread other([&] {
        for (Shared* object : objects) {
            leave(object);
        }
    });
    for (Shared* object : objects) {
        leave(object);
    }
    other.join();
}
