#include <ORLWaitableGate.h>

#include <WaitableGateAlgorithm.h>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

using namespace ORL;

namespace {

using Algorithm = Sync::WaitableGateAlgorithm<Sync::SystemPolicy>;

void AwaitSleepers(WaitableGate& ioGate, int inCount)
{
    while (Algorithm::CountWaiters(ioGate) != inCount) {
        std::this_thread::yield();
    }
}

} // namespace

TEST(WaitableGate, NewGate_IsClosed)
{
    WaitableGate gate;
    EXPECT_EQ(kWaitTimeout, gate.Wait(0));
    EXPECT_EQ(0u, Algorithm::GetGeneration(gate));
    EXPECT_EQ(0, Algorithm::CountWaiters(gate));
}

TEST(WaitableGate, PollOfAnOpenGate_Succeeds)
{
    WaitableGate gate;
    gate.Open();
    EXPECT_EQ(kSuccess, gate.Wait(0));
    EXPECT_EQ(kSuccess, gate.Wait(0)) << "passing does not close it";
    EXPECT_EQ(kSuccess, gate.Wait(-1));
    EXPECT_EQ(kSuccess, gate.Wait(5));
    gate.Close();
    EXPECT_EQ(kWaitTimeout, gate.Wait(0));
}

TEST(WaitableGate, OpenedThenClosed_StillReleasesTheSleepers)
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
