#include <Threads/AsyncReadRequestPool.h>

#include <CheckRecorder.h>
#include <ExpectReport.h>
#include <ScriptedPolicy.h>
#include <Stress.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <memory>
#include <set>
#include <thread>
#include <vector>

using namespace ORL;
using ORLTest::CheckRecorder;
using ORLTest::CheckReport;
using ORLTest::ExpectReport;
using ORLTest::Rounds;
using ORLTest::Script;
using ORLTest::ScriptedPolicy;

namespace {

struct Request
{
    std::uint64_t mPosition;
    int mOwner;
};

using Pool = AsyncReadRequestPool<Request, 2048>;
using ScriptedPool = AsyncReadRequestPool<Request, 4, ScriptedPolicy>;

Pool sStaticPool;

// Double frees are reported under this function name.
constexpr char kFree[] = "ORL::AsyncReadRequestPool<struct _OVERLAPPED,2048>::FreeAsyncReadRequest";

template <class SomePool>
std::vector<Request*> AllocateMany(SomePool& ioPool, int inCount)
{
    std::vector<Request*> requests;
    for (int i = 0; i < inCount; ++i) {
        requests.push_back(ioPool.AllocateAsyncReadRequest());
    }
    return requests;
}

} // namespace

TEST(AsyncReadRequestPool, PoolOfStaticLife_BeginsAllFreeAndZero)
{
    EXPECT_EQ(0u, sStaticPool.CountBusyRecords());
    const auto requests = AllocateMany(sStaticPool, 2048);
    EXPECT_EQ(2048u, std::set<Request*>(requests.begin(), requests.end()).size()) << "each is lent once";
    EXPECT_EQ(2048u, sStaticPool.CountBusyRecords());
    for (Request* request : requests) {
        EXPECT_EQ(0u, request->mPosition);
        sStaticPool.FreeAsyncReadRequest(request);
    }
    EXPECT_EQ(0u, sStaticPool.CountBusyRecords());
}

TEST(AsyncReadRequestPool, RotatingIndex_DoesNotLendTheRecordJustFreed)
{
    Script script;
    ScriptedPool pool;
    Request* const first = pool.AllocateAsyncReadRequest();
    pool.FreeAsyncReadRequest(first);
    Request* const second = pool.AllocateAsyncReadRequest();
    EXPECT_GT(second, first) << "the search goes on with the next record";
    pool.FreeAsyncReadRequest(second);
}

TEST(AsyncReadRequestPool, IndexThatWraps_GoesOnWithTheFirstRecord)
{
    Script script;
    ScriptedPool fresh;
    const auto order = AllocateMany(fresh, 4);
    ScriptedPool pool(0xFFFFFFFEu);
    const auto wrapped = AllocateMany(pool, 4);
    const auto placeIn = [](const ScriptedPool& inPool, const Request* inRequest) {
        return reinterpret_cast<const char*>(inRequest) - reinterpret_cast<const char*>(&inPool);
    };
    EXPECT_EQ(placeIn(fresh, order[2]), placeIn(pool, wrapped[0])) << "0xFFFFFFFE modulo 4";
    EXPECT_EQ(placeIn(fresh, order[3]), placeIn(pool, wrapped[1]));
    EXPECT_EQ(placeIn(fresh, order[0]), placeIn(pool, wrapped[2])) << "the index has wrapped to 0";
    EXPECT_EQ(placeIn(fresh, order[1]), placeIn(pool, wrapped[3]));
}

TEST(AsyncReadRequestPool, AllTaken_SleepsInStepsOf10UntilOneIsFree)
{
    Script script;
    ScriptedPool pool;
    const auto requests = AllocateMany(pool, 4);
    std::vector<int> sleeps;
    script.mAtSleep = [&](int inMilliseconds) {
        sleeps.push_back(inMilliseconds);
        if (sleeps.size() == 3) {
            pool.FreeAsyncReadRequest(requests[2]);
        }
    };
    EXPECT_EQ(requests[2], pool.AllocateAsyncReadRequest());
    EXPECT_EQ((std::vector<int>{10, 10, 10}), sleeps);
}

TEST(AsyncReadRequestPool, With2048Taken_OneMoreBlocksUntilOneIsFreed)
{
    auto pool = std::make_unique<Pool>();
    auto requests = AllocateMany(*pool, 2048);
    std::atomic<Request*> got{nullptr};
    std::atomic<bool> asking{false};
    std::thread asker([&] {
        asking = true;
        got = pool->AllocateAsyncReadRequest();
    });
    while (!asking) {
        std::this_thread::yield();
    }
    EXPECT_EQ(nullptr, got.load()) << "there is none to be had";
    pool->FreeAsyncReadRequest(requests[1234]);
    asker.join();
    EXPECT_EQ(requests[1234], got.load());
    EXPECT_EQ(2048u, pool->CountBusyRecords());
}

TEST(AsyncReadRequestPool, RequestIsLentAsItsLastOwnerLeftIt)
{
    Script script;
    ScriptedPool pool;
    auto requests = AllocateMany(pool, 4);
    requests[1]->mPosition = 77;
    pool.FreeAsyncReadRequest(requests[1]);
    EXPECT_EQ(requests[1], pool.AllocateAsyncReadRequest());
    EXPECT_EQ(77u, requests[1]->mPosition);
}

TEST(AsyncReadRequestPool, FreeOfNull_BreaksTheInputContract)
{
    CheckRecorder recorder;
    sStaticPool.FreeAsyncReadRequest(nullptr);
    const auto contracts = recorder.Reports(CheckReport::kContract);
    ASSERT_EQ(1u, contracts.size());
    ExpectReport(contracts[0]).Expression("inRequest != NULL");
    const auto errors = recorder.Reports(CheckReport::kError);
    ASSERT_EQ(1u, errors.size());
    ExpectReport(errors[0]).Line(25);
    EXPECT_TRUE(recorder.Reports(CheckReport::kAssert).empty());
}

TEST(AsyncReadRequestPool, RequestFreedTwice_IsAssertedUnderThePublishedName)
{
    Request* const request = sStaticPool.AllocateAsyncReadRequest();
    sStaticPool.FreeAsyncReadRequest(request);
    CheckRecorder recorder;
    sStaticPool.FreeAsyncReadRequest(request);
    const auto reports = recorder.Reports();
    ASSERT_EQ(1u, reports.size());
    ExpectReport(reports[0])
        .Kind(CheckReport::kAssert)
        .Expression("AtomicRead(allocRecord->mBusy) == 1")
        .Function(kFree);
    EXPECT_EQ(0u, sStaticPool.CountBusyRecords()) << "it stays free";
}

TEST(AsyncReadRequestPool, MoreThreadsThanRecords_NeverShareOne)
{
    constexpr int kThreads = 6;
    const int rounds = Rounds(3000);
    // Does not really sleep: a thread that finds no free record yields and retries.
    struct Policy : Sync::SystemPolicy
    {
        static void SleepMilliseconds(int) { std::this_thread::yield(); }
    };
    AsyncReadRequestPool<Request, 4, Policy> pool(0xFFFFF000u);
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&pool, i, rounds] {
            for (int round = 0; round < rounds; ++round) {
                Request* const request = pool.AllocateAsyncReadRequest();
                request->mOwner = i; // deliberately not atomic: two owners of a record would race
                std::this_thread::yield();
                EXPECT_EQ(i, request->mOwner);
                pool.FreeAsyncReadRequest(request);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(0u, pool.CountBusyRecords());
}
