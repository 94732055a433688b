#include <ORLSharedObjectBase.h>

#include <Objects/SharedObjectPool.h>

#include <gtest/gtest.h>

#include <set>
#include <thread>
#include <vector>

using namespace ORL;

namespace {

bool OtherThreadCanTake(const CriticalSection& inSection)
{
    bool taken = false;
    std::thread([&] {
        const CriticalSectionTryLock attempt(inSection);
        taken = attempt.IsLocked();
    }).join();
    return taken;
}

} // namespace

TEST(SharedObjectPool, FirstCall_GivesEntryOneAndTheSixtyFourthEntryZero)
{
    SharedObjectPool pool;
    for (std::uint32_t call = 1; call <= 63; ++call) {
        EXPECT_EQ(&pool.Entry(call), &pool.Next()) << "call " << call;
    }
    EXPECT_EQ(&pool.Entry(0), &pool.Next()) << "call 64";
    EXPECT_EQ(&pool.Entry(1), &pool.Next()) << "call 65";
}

TEST(SharedObjectBase, SixtyFourCalls_GiveEveryLockOfThePoolInRotation)
{
    SharedObjectPool& pool = TheSharedObjectPool();
    std::vector<CriticalSection*> given;
    for (std::uint32_t call = 0; call < 2 * SharedObjectPool::kSize; ++call) {
        given.push_back(&SharedObjectBase::GetCriticalSection());
    }
    const std::set<CriticalSection*> different(given.begin(), given.end());
    EXPECT_EQ(SharedObjectPool::kSize, different.size());
    for (std::uint32_t call = 0; call < SharedObjectPool::kSize; ++call) {
        EXPECT_EQ(given[call], given[call + SharedObjectPool::kSize]);
        EXPECT_TRUE(given[call] >= &pool.Entry(0) && given[call] <= &pool.Entry(63));
    }
}

TEST(SharedObjectBase, AskedByManyThreads_GivesEachLockEquallyOften)
{
    constexpr int kThreads = 4;
    std::vector<std::vector<CriticalSection*>> given(kThreads);
    std::vector<std::thread> threads;
    for (std::vector<CriticalSection*>& mine : given) {
        threads.emplace_back([&mine] {
            for (int call = 0; call < 640; ++call) {
                mine.push_back(&SharedObjectBase::GetCriticalSection());
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    std::multiset<CriticalSection*> all;
    for (const std::vector<CriticalSection*>& each : given) {
        all.insert(each.begin(), each.end());
    }
    for (std::uint32_t index = 0; index < SharedObjectPool::kSize; ++index) {
        EXPECT_EQ(40u, all.count(&TheSharedObjectPool().Entry(index)));
    }
}

TEST(TagBase, LockAndUnlock_ReachItsSection)
{
    CriticalSection section;
    const SharedObjectBase::TagBase tag(section);
    EXPECT_EQ(&section, &tag.GetCriticalSection());
    EXPECT_EQ(sizeof(void*), sizeof(tag));
    tag.Lock();
    EXPECT_FALSE(OtherThreadCanTake(section));
    tag.Unlock();
    EXPECT_TRUE(OtherThreadCanTake(section));
}
