#include <ORLWaitableGate.h>

#include <CheckRecorder.h>
#include <ExpectReport.h>
#include <Stress.h>
#include <Threads/WaitableGateAlgorithm.h>
#include <Threads/WaitableGatePoolAlgorithm.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <set>
#include <thread>
#include <vector>

using namespace ORL;
using ORLTest::CheckRecorder;
using ORLTest::CheckReport;
using ORLTest::ExpectReport;
using ORLTest::Rounds;

namespace {

using Pool = Sync::WaitableGatePoolAlgorithm<Sync::SystemPolicy>;
using Algorithm = Sync::WaitableGateAlgorithm<Sync::SystemPolicy>;

/// Removes all idle gates from the pool and destroys them.
void EmptyThePool()
{
    delete WaitableGatePool::RetrieveGate(); // this call also creates the pool
    while (Pool::sPool.load()->CountIdleGates() != 0) {
        delete WaitableGatePool::RetrieveGate();
    }
}

std::vector<WaitableGate*> RetrieveOpened(int inCount)
{
    std::vector<WaitableGate*> gates;
    for (int i = 0; i < inCount; ++i) {
        gates.push_back(WaitableGatePool::RetrieveGate());
        gates.back()->Open();
    }
    return gates;
}

/// Counts the living gates and creates them as the test chooses.
struct CountingPolicy : Sync::SystemPolicy
{
    enum class Make { kGates, kOpenGates, kNothing };
    static inline Make sMake = Make::kGates;
    static inline std::atomic<int> sAlive{0};

    template <class T>
    static T* New()
    {
        if (sMake == Make::kNothing) {
            return nullptr;
        }
        ++sAlive;
        T* const gate = new T;
        if (sMake == Make::kOpenGates) {
            gate->Open();
        }
        return gate;
    }
    template <class T>
    static void Delete(T* inObject)
    {
        --sAlive;
        delete inObject;
    }
};

using CountingPool = Sync::WaitableGatePoolAlgorithm<CountingPolicy>;

struct MakeMeanwhile
{
    explicit MakeMeanwhile(CountingPolicy::Make inMake) { CountingPolicy::sMake = inMake; }
    ~MakeMeanwhile() { CountingPolicy::sMake = CountingPolicy::Make::kGates; }
};

std::vector<std::string> Contracts(const CheckRecorder& inRecorder)
{
    std::vector<std::string> expressions;
    for (const CheckReport& report : inRecorder.Reports(CheckReport::kContract)) {
        expressions.push_back(report.mExpression);
    }
    return expressions;
}

using Expressions = std::vector<std::string>;

} // namespace

TEST(WaitableGatePool, RetrieveFromAnEmptyPool_GivesANewClosedGate)
{
    EmptyThePool();
    WaitableGate* const gate = WaitableGatePool::RetrieveGate();
    ASSERT_NE(nullptr, gate);
    EXPECT_EQ(kWaitTimeout, gate->Wait(0));
    EXPECT_EQ(0u, Pool::sPool.load()->CountIdleGates());
    gate->Open();
    WaitableGatePool::ReturnGate(gate);
}

TEST(WaitableGatePool, GateMostRecentlyReturned_IsTheNextOneRetrieved)
{
    EmptyThePool();
    const auto gates = RetrieveOpened(3);
    for (WaitableGate* gate : gates) {
        WaitableGatePool::ReturnGate(gate);
    }
    EXPECT_EQ(gates[2], WaitableGatePool::RetrieveGate());
    EXPECT_EQ(gates[1], WaitableGatePool::RetrieveGate());
    gates[1]->Open();
    WaitableGatePool::ReturnGate(gates[1]);
    EXPECT_EQ(gates[1], WaitableGatePool::RetrieveGate());
    EXPECT_EQ(gates[0], WaitableGatePool::RetrieveGate());
    for (WaitableGate* gate : gates) {
        EXPECT_EQ(kWaitTimeout, gate->Wait(0)) << "it was closed when it went back";
        delete gate;
    }
}

TEST(WaitableGatePool, EleventhReturn_LeavesThePoolAtTen)
{
    EmptyThePool();
    const auto gates = RetrieveOpened(11);
    for (std::size_t i = 0; i < 10; ++i) {
        WaitableGatePool::ReturnGate(gates[i]);
        EXPECT_EQ(i + 1, Pool::sPool.load()->CountIdleGates());
    }
    WaitableGatePool::ReturnGate(gates[10]);
    EXPECT_EQ(10u, Pool::sPool.load()->CountIdleGates());
    EXPECT_EQ(gates[9], WaitableGatePool::RetrieveGate()) << "the tenth is on top still";
    gates[9]->Open();
    WaitableGatePool::ReturnGate(gates[9]);
}

TEST(WaitableGatePool, EleventhReturn_DestroysTheGateReturned)
{
    {
        CountingPool pool;
        std::vector<WaitableGate*> gates;
        for (int i = 0; i < 11; ++i) {
            gates.push_back(CountingPool::RetrieveGate());
            gates.back()->Open();
        }
        for (WaitableGate* gate : gates) {
            EXPECT_EQ(11, CountingPolicy::sAlive);
            CountingPool::ReturnGate(gate);
        }
        EXPECT_EQ(10, CountingPolicy::sAlive);
        EXPECT_EQ(10u, pool.CountIdleGates());
    }
    EXPECT_EQ(0, CountingPolicy::sAlive) << "the pool takes its idle gates along";
    EXPECT_EQ(nullptr, CountingPool::sPool.load());
}

TEST(WaitableGatePool, ReturnOfNull_BreaksTheContractAndDoesNothing)
{
    EmptyThePool();
    CheckRecorder recorder;
    WaitableGatePool::ReturnGate(nullptr);
    EXPECT_EQ(Expressions{"inGate"}, Contracts(recorder));
    const auto errors = recorder.Reports(CheckReport::kError);
    ASSERT_EQ(1u, errors.size());
    ExpectReport(errors[0]).Line(25);
    EXPECT_EQ(0u, Pool::sPool.load()->CountIdleGates());
}

TEST(WaitableGatePool, ReturnOfAClosedGate_BreaksTheContractAndKeepsItClosed)
{
    EmptyThePool();
    CheckRecorder recorder;
    WaitableGate* const gate = WaitableGatePool::RetrieveGate();
    WaitableGatePool::ReturnGate(gate);
    EXPECT_EQ(Expressions{"kSuccess == inGate->Wait(0)"}, Contracts(recorder));
    EXPECT_EQ(1u, Pool::sPool.load()->CountIdleGates());
    EXPECT_EQ(gate, WaitableGatePool::RetrieveGate());
    EXPECT_EQ(kWaitTimeout, gate->Wait(0));
    delete gate;
}

TEST(WaitableGatePool, ContractThatThrows_LeavesThePoolAsItWas)
{
    EmptyThePool();
    WaitableGate* const gate = WaitableGatePool::RetrieveGate();
    CheckRecorder recorder;
    recorder.mThrow = true;
    EXPECT_THROW(WaitableGatePool::ReturnGate(gate), CheckRecorder::ContractError);
    EXPECT_THROW(WaitableGatePool::ReturnGate(nullptr), CheckRecorder::ContractError);
    EXPECT_EQ(0u, Pool::sPool.load()->CountIdleGates());
    delete gate;
}

TEST(WaitableGatePool, NoPool_BreaksTheContractsFirstAndStillServes)
{
    ASSERT_EQ(nullptr, CountingPool::sPool.load());
    CheckRecorder recorder;
    WaitableGate* const gate = CountingPool::RetrieveGate();
    EXPECT_EQ(Expressions{"sPool"}, Contracts(recorder));
    ASSERT_NE(nullptr, gate);
    recorder.Clear();
    CountingPool::ReturnGate(gate);
    EXPECT_EQ((Expressions{"sPool", "kSuccess == inGate->Wait(0)"}), Contracts(recorder));
    EXPECT_EQ(0, CountingPolicy::sAlive) << "nobody else would destroy it";
    recorder.Clear();
    CountingPool::ReturnGate(nullptr);
    EXPECT_EQ((Expressions{"sPool", "inGate"}), Contracts(recorder));
}

TEST(WaitableGatePool, GateThatIsOpen_BreaksTheOutputContract)
{
    CountingPool pool;
    const MakeMeanwhile open(CountingPolicy::Make::kOpenGates);
    CheckRecorder recorder;
    WaitableGate* const gate = CountingPool::RetrieveGate();
    EXPECT_EQ(Expressions{"kWaitTimeout == ret->Wait(0)"}, Contracts(recorder));
    const auto errors = recorder.Reports(CheckReport::kError);
    ASSERT_EQ(1u, errors.size());
    ExpectReport(errors[0]).Line(26);
    CountingPool::ReturnGate(gate);
}

TEST(WaitableGatePool, NoGateAtAll_BreaksTheOutputContract)
{
    CountingPool pool;
    const MakeMeanwhile nothing(CountingPolicy::Make::kNothing);
    CheckRecorder recorder;
    EXPECT_EQ(nullptr, CountingPool::RetrieveGate());
    EXPECT_EQ(Expressions{"ret"}, Contracts(recorder));
}

TEST(WaitableGatePool, ManyThreads_NeverShareAGate)
{
    constexpr int kThreads = 4;
    const int rounds = Rounds(3000);
    CheckRecorder recorder;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([i, rounds] {
            for (int round = 0; round < rounds; ++round) {
                WaitableGate* const mine = WaitableGatePool::RetrieveGate();
                WaitableGate* const other = round % 4 == i ? WaitableGatePool::RetrieveGate() : nullptr;
                EXPECT_NE(mine, other);
                // Closed until this thread opens it, because no other thread has it.
                EXPECT_EQ(kWaitTimeout, mine->Wait(0));
                mine->Open();
                EXPECT_EQ(kSuccess, mine->Wait(0));
                WaitableGatePool::ReturnGate(mine);
                if (other != nullptr) {
                    other->Open();
                    WaitableGatePool::ReturnGate(other);
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_TRUE(recorder.Reports().empty());
    EXPECT_LE(Pool::sPool.load()->CountIdleGates(), 10u);
    EXPECT_GE(Pool::sPool.load()->CountIdleGates(), 1u);
}

namespace {

// Runs in a process that has not used the pool. Returns exit code 0 if eight threads that start together get the same
// pool and eight different gates.
int UseThePoolAtOnce()
{
    constexpr std::size_t kThreads = 8;
    if (Pool::sPool != nullptr) {
        return 2;
    }
    std::atomic<std::size_t> ready{0};
    std::vector<Pool*> pools(kThreads);
    std::vector<WaitableGate*> gates(kThreads);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < kThreads; ++i) {
        threads.emplace_back([&, i] {
            for (++ready; ready != kThreads;) {
                std::this_thread::yield();
            }
            gates[i] = WaitableGatePool::RetrieveGate();
            pools[i] = Pool::sPool;
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const std::set<Pool*> differentPools(pools.begin(), pools.end());
    const std::set<WaitableGate*> differentGates(gates.begin(), gates.end());
    for (WaitableGate* const gate : gates) {
        gate->Open();
        WaitableGatePool::ReturnGate(gate);
    }
    const bool isOne = differentPools.size() == 1 && differentPools.count(nullptr) == 0;
    return isOne && differentGates.size() == kThreads && pools[0]->CountIdleGates() == kThreads ? 0 : 1;
}

} // namespace

TEST(WaitableGatePoolDeathTest, FirstUseByManyThreadsAtOnce_BuildsOnePool)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(std::_Exit(UseThePoolAtOnce()), testing::ExitedWithCode(0), "");
}

TEST(WaitableGatePool, AtTheEndOfTheProcess_IdleGatesGoAndThePoolServesOn)
{
    CountingPool pool;
    WaitableGate* const first = CountingPool::RetrieveGate();
    first->Open();
    CountingPool::ReturnGate(first);
    ASSERT_EQ(1, CountingPolicy::sAlive);
    pool.TryDestroyIdleGates();
    EXPECT_EQ(0, CountingPolicy::sAlive);
    EXPECT_EQ(0u, pool.CountIdleGates());
    CheckRecorder recorder;
    WaitableGate* const second = CountingPool::RetrieveGate();
    second->Open();
    CountingPool::ReturnGate(second);
    EXPECT_EQ(1u, pool.CountIdleGates());
    EXPECT_TRUE(recorder.Reports().empty());
}
