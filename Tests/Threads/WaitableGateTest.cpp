#include <ORLWaitableGate.h>

#include <Stress.h>
#include <Threads/WaitableGateAlgorithm.h>

#include <boost/thread/thread.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>
#include <type_traits>
#include <vector>

using namespace ORL;
using ORLTest::Rounds;

namespace {

using Algorithm = Sync::WaitableGateAlgorithm<Sync::SystemPolicy>;

void AwaitSleepers(WaitableGate& ioGate, int inCount)
{
    while (Algorithm::CountWaiters(ioGate) != inCount) {
        std::this_thread::yield();
    }
}

} // namespace

static_assert(!std::is_polymorphic_v<WaitableGate> && !std::is_copy_constructible_v<WaitableGate>);

TEST(WaitableGate, NewGate_IsClosedAndNobodyWasThere)
{
    WaitableGate gate;
    EXPECT_EQ(kWaitTimeout, gate.Wait(0));
    EXPECT_EQ(0u, Algorithm::GetGeneration(gate));
    EXPECT_EQ(0, Algorithm::CountWaiters(gate));
}

TEST(WaitableGate, PollOfAClosedGate_TimesOutAndOfAnOpenOneSucceeds)
{
    WaitableGate gate;
    EXPECT_EQ(kWaitTimeout, gate.Wait(0));
    gate.Open();
    EXPECT_EQ(kSuccess, gate.Wait(0));
    EXPECT_EQ(kSuccess, gate.Wait(0)) << "passing does not close it";
    EXPECT_EQ(kSuccess, gate.Wait(-1));
    EXPECT_EQ(kSuccess, gate.Wait(5));
    gate.Close();
    EXPECT_EQ(kWaitTimeout, gate.Wait(0));
}

TEST(WaitableGate, OpenAndClose_MayBeRepeated)
{
    WaitableGate gate;
    gate.Close();
    gate.Open();
    gate.Open();
    EXPECT_EQ(kSuccess, gate.Wait(0));
    gate.Close();
    gate.Close();
    EXPECT_EQ(kWaitTimeout, gate.Wait(0));
}

TEST(WaitableGate, TimedWait_RunsOut)
{
    WaitableGate gate;
    EXPECT_EQ(kWaitTimeout, gate.Wait(1));
    EXPECT_EQ(kWaitTimeout, gate.Wait(20));
    EXPECT_EQ(0, Algorithm::CountWaiters(gate));
}

TEST(WaitableGate, OpenedThenClosed_StillReleasesTheThreeSleepers)
{
    WaitableGate gate;
    Result results[3] = {kGeneralFailure, kGeneralFailure, kGeneralFailure};
    std::vector<std::thread> sleepers;
    for (Result& result : results) {
        sleepers.emplace_back([&gate, &result] { result = gate.Wait(-1); });
    }
    AwaitSleepers(gate, 3);
    gate.Open();
    gate.Close();
    for (std::thread& sleeper : sleepers) {
        sleeper.join();
    }
    for (const Result result : results) {
        EXPECT_EQ(kSuccess, result);
    }
    EXPECT_EQ(kWaitTimeout, gate.Wait(0));
    EXPECT_EQ(1u, Algorithm::GetGeneration(gate));
}

TEST(WaitableGate, ThreadThatComesAfterTheClose_Sleeps)
{
    WaitableGate gate;
    gate.Open();
    gate.Close();
    Result result = kGeneralFailure;
    std::thread late([&] { result = gate.Wait(-1); });
    AwaitSleepers(gate, 1);
    EXPECT_EQ(0u, Algorithm::GetGeneration(gate)) << "the earlier opening found nobody";
    gate.Open();
    late.join();
    EXPECT_EQ(kSuccess, result);
}

TEST(WaitableGate, OpenWithNoWaiters_LeavesTheGeneration)
{
    WaitableGate gate;
    for (int i = 0; i < 3; ++i) {
        gate.Open();
        gate.Close();
    }
    EXPECT_EQ(0u, Algorithm::GetGeneration(gate));
}

TEST(WaitableGate, SleeperWithALimit_IsReleasedByAnOpening)
{
    WaitableGate gate;
    Result result = kGeneralFailure;
    std::thread sleeper([&] { result = gate.Wait(100000); });
    AwaitSleepers(gate, 1);
    gate.Open();
    sleeper.join();
    EXPECT_EQ(kSuccess, result);
}

TEST(WaitableGate, InterruptedSleeper_LeavesAndTheGateStaysUsable)
{
    WaitableGate gate;
    std::atomic<bool> interrupted{false};
    boost::thread sleeper([&] {
        try {
            gate.Wait(-1);
        } catch (const boost::thread_interrupted&) {
            interrupted = true;
        }
    });
    AwaitSleepers(gate, 1);
    sleeper.interrupt();
    sleeper.join();
    EXPECT_TRUE(interrupted);
    EXPECT_EQ(0, Algorithm::CountWaiters(gate));
    gate.Open();
    EXPECT_EQ(kSuccess, gate.Wait(-1));
}

TEST(WaitableGate, ManyGates_EachIsOpenedAndClosedAlone)
{
    std::vector<std::unique_ptr<WaitableGate>> gates(100);
    for (auto& gate : gates) {
        gate = std::make_unique<WaitableGate>();
    }
    const auto expectOpen = [&gates](std::size_t inEach) {
        for (std::size_t i = 0; i < gates.size(); ++i) {
            EXPECT_EQ(inEach != 0 && i % inEach == 0 ? kSuccess : kWaitTimeout, gates[i]->Wait(0)) << i;
        }
    };
    expectOpen(0);
    for (std::size_t i = 0; i < gates.size(); i += 3) {
        gates[i]->Open();
    }
    expectOpen(3);
    for (std::size_t i = 0; i < gates.size(); ++i) {
        if (i % 6 != 0) {
            gates[i]->Close();
        }
    }
    expectOpen(6);
    gates.erase(gates.begin(), gates.begin() + 6);
    expectOpen(6);
}

TEST(WaitableGate, PulsesFromManyThreads_StrandNobody)
{
    // Each sleeper is counted before the pulse that must release it; no sleeper may remain.
    const int pulses = Rounds(1000);
    constexpr int kSleepers = 4;
    WaitableGate gate;
    std::atomic<int> released{0};
    std::atomic<int> pulsesOver{0};
    std::vector<std::thread> sleepers;
    for (int i = 0; i < kSleepers; ++i) {
        sleepers.emplace_back([&, i] {
            for (int pulse = 0; pulse < pulses; ++pulse) {
                EXPECT_EQ(kSuccess, gate.Wait(i % 2 == 0 ? -1 : 100000));
                ++released;
                while (pulsesOver <= pulse) { // otherwise this thread could wait twice for the same opening
                    std::this_thread::yield();
                }
            }
        });
    }
    for (int pulse = 0; pulse < pulses; ++pulse) {
        AwaitSleepers(gate, kSleepers);
        gate.Open();
        gate.Close();
        while (released < (pulse + 1) * kSleepers) {
            std::this_thread::yield();
        }
        ++pulsesOver;
    }
    for (std::thread& sleeper : sleepers) {
        sleeper.join();
    }
    EXPECT_EQ(static_cast<std::uint32_t>(pulses), Algorithm::GetGeneration(gate));
}

TEST(WaitableGate, OpenersClosersAndWaitersAtOnce_AllComeToAnEnd)
{
    const int rounds = Rounds(3000);
    WaitableGate gate;
    std::atomic<int> waitersLeft{3};
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([&, i] {
            for (int round = 0; round < rounds; ++round) {
                const Result result = gate.Wait(i == 0 ? -1 : i == 1 ? 0 : 1);
                EXPECT_TRUE(result == kSuccess || (i != 0 && result == kWaitTimeout));
            }
            --waitersLeft;
        });
    }
    for (int i = 0; i < 2; ++i) {
        threads.emplace_back([&] {
            while (waitersLeft != 0) {
                gate.Open();
                gate.Close();
            }
            gate.Open();
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(0, Algorithm::CountWaiters(gate));
    EXPECT_EQ(kSuccess, gate.Wait(0));
}
