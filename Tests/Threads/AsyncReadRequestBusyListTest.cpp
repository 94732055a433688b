#include <Threads/AsyncReadRequestBusyList.h>

#include <CheckRecorder.h>
#include <ExpectReport.h>
#include <Stress.h>
#include <Threads/WaitableGateAlgorithm.h>
#include <Threads/WaitableGatePoolAlgorithm.h>

#include <boost/thread/thread.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <thread>
#include <vector>

using namespace ORL;
using ORLTest::CheckRecorder;
using ORLTest::CheckReport;
using ORLTest::ExpectReport;
using ORLTest::Rounds;

namespace {

struct Request
{
    int mFinished = 0;
};

using List = AsyncReadRequestBusyList<Request>;
using GatePool = Sync::WaitableGatePoolAlgorithm<Sync::SystemPolicy>;

template <class SomeList>
void AwaitWaiters(SomeList& ioList, std::uint32_t inCount)
{
    while (ioList.CountWaiters() != inCount) {
        std::this_thread::yield();
    }
}

/// A gate whose Wait runs an action that the test chooses.
struct CallbackGate
{
    std::function<void()> mAtWait = [] {};
    bool mIsOpen = false;
    int mOpenings = 0;

    Result Wait(int inMilliseconds)
    {
        EXPECT_EQ(-1, inMilliseconds);
        const auto action = mAtWait;
        action();
        return kSuccess;
    }
    void Open()
    {
        mIsOpen = true;
        ++mOpenings;
    }
};

struct CallbackPolicy : Sync::SystemPolicy
{
    using Gate = CallbackGate;
    static inline CallbackGate* sGate = nullptr;
    static inline int sRetrieved = 0;
    static inline int sReturned = 0;

    static Gate* RetrieveGate()
    {
        ++sRetrieved;
        return sGate;
    }
    static void ReturnGate(Gate* inGate)
    {
        EXPECT_EQ(sGate, inGate);
        EXPECT_TRUE(inGate->mIsOpen) << "the pool takes open gates only";
        inGate->mIsOpen = false;
        ++sReturned;
    }
};

class TalkingList : public testing::Test
{
protected:
    TalkingList()
    {
        CallbackPolicy::sGate = &mGate;
        CallbackPolicy::sRetrieved = 0;
        CallbackPolicy::sReturned = 0;
    }

    CallbackGate mGate;
    AsyncReadRequestBusyList<Request, CallbackPolicy> mList;
    Request mRequests[3];
};

/// An allocator that always throws std::bad_alloc.
template <class T>
struct NoMemory : std::allocator<T>
{
    template <class U>
    struct rebind
    {
        using other = NoMemory<U>;
    };
    NoMemory() = default;
    template <class U>
    NoMemory(const NoMemory<U>&)
    {
    }
    T* allocate(std::size_t) { throw std::bad_alloc(); }
};

struct NoMemoryPolicy : Sync::SystemPolicy
{
    template <class T>
    using StlAllocator = NoMemory<T>;
};

} // namespace

TEST_F(TalkingList, WaitWithNothingInFlight_ReturnsAtOnceAndTakesNoGate)
{
    mList.WaitForPendingReads();
    EXPECT_EQ(0, CallbackPolicy::sRetrieved);
    EXPECT_EQ(0u, mList.CountWaiters());
    mList.Add(&mRequests[0]);
    mList.Remove(&mRequests[0]);
    mList.WaitForPendingReads();
    EXPECT_EQ(0, CallbackPolicy::sRetrieved);
}

TEST_F(TalkingList, GateOpens_WhenTheLastRequestLeavesAndNotBefore)
{
    mList.Add(&mRequests[0]);
    mList.Add(&mRequests[1]);
    mGate.mAtWait = [this] {
        EXPECT_EQ(&mGate, mList.GetDrainedGate());
        EXPECT_EQ(1u, mList.CountWaiters());
        mList.Remove(&mRequests[1]);
        EXPECT_FALSE(mGate.mIsOpen);
        mList.Remove(&mRequests[0]);
        EXPECT_TRUE(mGate.mIsOpen);
    };
    mList.WaitForPendingReads();
    EXPECT_EQ(1, CallbackPolicy::sRetrieved);
    EXPECT_EQ(1, CallbackPolicy::sReturned);
    EXPECT_EQ(nullptr, mList.GetDrainedGate());
    EXPECT_EQ(0u, mList.CountWaiters());
}

TEST_F(TalkingList, ThreadThatComesBeforeTheLastWaiterLeft_PassesTheOpenGateThoughAReadIsInFlight)
{
    mList.Add(&mRequests[0]);
    bool passed = false;
    mGate.mAtWait = [&] {
        mList.Remove(&mRequests[0]);
        mList.Add(&mRequests[1]);
        mGate.mAtWait = [&] {
            EXPECT_TRUE(mGate.mIsOpen) << "it passes at once";
            EXPECT_EQ(2u, mList.CountWaiters());
            passed = true;
        };
        mList.WaitForPendingReads();
        EXPECT_EQ(0, CallbackPolicy::sReturned) << "the first waiter has not left yet";
    };
    mList.WaitForPendingReads();
    EXPECT_TRUE(passed);
    EXPECT_EQ(1, CallbackPolicy::sRetrieved) << "one gate for both";
    EXPECT_EQ(1, CallbackPolicy::sReturned);
    EXPECT_EQ(1u, mList.CountRequests());
    mList.Remove(&mRequests[1]);
}

TEST_F(TalkingList, InterruptedWaiter_LeavesAndGivesTheGateBack)
{
    mList.Add(&mRequests[0]);
    mGate.mAtWait = [] { throw 42; };
    EXPECT_THROW(mList.WaitForPendingReads(), int);
    EXPECT_EQ(1, CallbackPolicy::sReturned);
    EXPECT_EQ(0u, mList.CountWaiters());
    EXPECT_EQ(nullptr, mList.GetDrainedGate());
    mList.Remove(&mRequests[0]);
}

TEST_F(TalkingList, InterruptedWaiterBesideAnother_DoesNotReleaseIt)
{
    mList.Add(&mRequests[0]);
    mGate.mAtWait = [&] {
        mGate.mAtWait = [] { throw 42; };
        EXPECT_THROW(mList.WaitForPendingReads(), int);
        EXPECT_FALSE(mGate.mIsOpen);
        EXPECT_EQ(1u, mList.CountWaiters());
        mList.Remove(&mRequests[0]);
    };
    mList.WaitForPendingReads();
    EXPECT_EQ(1, CallbackPolicy::sReturned);
}

TEST(AsyncReadRequestBusyList, RequestAddedTwice_BreaksTheInputContract)
{
    CheckRecorder recorder;
    List list;
    Request request;
    list.Add(&request);
    EXPECT_TRUE(recorder.Reports().empty());
    list.Add(&request);
    const auto contracts = recorder.Reports(CheckReport::kContract);
    ASSERT_EQ(1u, contracts.size());
    ExpectReport(contracts[0]).Expression("mBusyList.find(inRequest) == mBusyList.end()");
    ExpectReport(recorder.Reports(CheckReport::kError)[0]).Line(25);
    EXPECT_EQ(1u, list.CountRequests());
    list.Remove(&request);
}

TEST(AsyncReadRequestBusyList, UnknownRequestRemoved_BreaksTheInputContract)
{
    CheckRecorder recorder;
    List list;
    Request known;
    Request unknown;
    list.Add(&known);
    list.Remove(&unknown);
    const auto contracts = recorder.Reports(CheckReport::kContract);
    ASSERT_EQ(1u, contracts.size());
    ExpectReport(contracts[0]).Expression("mBusyList.find(inRequest) != mBusyList.end()");
    ExpectReport(recorder.Reports(CheckReport::kError)[0]).Line(25);
    EXPECT_EQ(1u, list.CountRequests());
    list.Remove(&known);
}

TEST(AsyncReadRequestBusyList, ContractThatThrows_LeavesTheListUnlocked)
{
    CheckRecorder recorder;
    recorder.mThrow = true;
    List list;
    Request request;
    EXPECT_THROW(list.Remove(&request), CheckRecorder::ContractError);
    std::thread other([&] { list.Add(&request); });
    other.join();
    EXPECT_EQ(1u, list.CountRequests());
    list.Remove(&request);
}

TEST(AsyncReadRequestBusyList, MemoryThatRunsOut_LeavesTheListAsItWas)
{
    AsyncReadRequestBusyList<Request, NoMemoryPolicy> list;
    Request request;
    EXPECT_THROW(list.Add(&request), std::bad_alloc);
    EXPECT_EQ(0u, list.CountRequests());
    list.WaitForPendingReads();
}

TEST(AsyncReadRequestBusyList, TwoWaitersShareOneGate_ThatGoesBackAfterTheSecondHasLeft)
{
    List list;
    Request request;
    list.Add(&request);
    std::vector<std::thread> waiters;
    for (int i = 0; i < 2; ++i) {
        waiters.emplace_back([&] { list.WaitForPendingReads(); });
    }
    AwaitWaiters(list, 2);
    WaitableGate* const shared = list.GetDrainedGate();
    ASSERT_NE(nullptr, shared);
    const std::size_t idle = GatePool::sPool.load()->CountIdleGates();
    list.Remove(&request);
    for (std::thread& waiter : waiters) {
        waiter.join();
    }
    EXPECT_EQ(nullptr, list.GetDrainedGate());
    EXPECT_EQ(0u, list.CountWaiters());
    EXPECT_EQ(idle + 1, GatePool::sPool.load()->CountIdleGates()) << "one gate came back, once";
    WaitableGate* const next = WaitableGatePool::RetrieveGate();
    EXPECT_EQ(shared, next);
    next->Open();
    WaitableGatePool::ReturnGate(next);
}

TEST(AsyncReadRequestBusyList, InterruptedThread_LeavesTheListUsable)
{
    List list;
    Request request;
    list.Add(&request);
    std::atomic<bool> interrupted{false};
    boost::thread waiter([&] {
        try {
            list.WaitForPendingReads();
        } catch (const boost::thread_interrupted&) {
            interrupted = true;
        }
    });
    AwaitWaiters(list, 1);
    waiter.interrupt();
    waiter.join();
    EXPECT_TRUE(interrupted);
    EXPECT_EQ(nullptr, list.GetDrainedGate());
    std::thread second([&] { list.WaitForPendingReads(); });
    AwaitWaiters(list, 1);
    list.Remove(&request);
    second.join();
}

TEST(AsyncReadRequestBusyList, RemoversAndWaitersAtOnce_AllFinishedReadsAreSeen)
{
    const int rounds = Rounds(800);
    constexpr int kRequests = 4;
    CheckRecorder recorder;
    List list;
    std::atomic<int> round{0};
    std::atomic<int> done{0};
    Request requests[kRequests];
    std::vector<std::thread> threads;
    const auto forEachRound = [&](const std::function<void(int)>& inWork) {
        for (int mine = 1; mine <= rounds; ++mine) {
            while (round < mine) {
                std::this_thread::yield();
            }
            inWork(mine);
            ++done;
        }
    };
    for (int i = 0; i < 2; ++i) {
        threads.emplace_back([&, i] { // finishes two of the reads
            forEachRound([&](int inRound) {
                for (int request = 2 * i; request < 2 * i + 2; ++request) {
                    requests[request].mFinished = inRound; // deliberately not atomic: the wait orders its accesses
                    list.Remove(&requests[request]);
                }
            });
        });
        threads.emplace_back([&] {
            forEachRound([&](int inRound) {
                list.WaitForPendingReads();
                for (const Request& request : requests) {
                    EXPECT_EQ(inRound, request.mFinished);
                }
            });
        });
    }
    for (int next = 1; next <= rounds; ++next) {
        for (Request& request : requests) {
            list.Add(&request);
        }
        round = next;
        while (done < 4 * next) {
            std::this_thread::yield();
        }
        EXPECT_EQ(nullptr, list.GetDrainedGate());
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_TRUE(recorder.Reports().empty());
}
