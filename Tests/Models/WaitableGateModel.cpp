// Runs the shipped gate under a model checker.
#include <ModelRun.h>

namespace {

using ORL::kSuccess;
using ORL::kWaitTimeout;
using ORL::Sync::Step;

/// One thread opens, closes and reopens the gate; two others wait. No thread may remain asleep.
template <class Policy>
struct OpenCloseOpen : rl::test_suite<OpenCloseOpen<Policy>, 3>
{
    ORLTest::GateOf<Policy> mGate;

    void thread(unsigned inIndex)
    {
        if (inIndex == 0) {
            mGate.Open();
            mGate.Close();
            mGate.Open();
        } else {
            RL_ASSERT(mGate.Wait(-1) == kSuccess);
        }
    }
    void after()
    {
        RL_ASSERT(mGate.CountWaiters() == 0);
        RL_ASSERT(mGate.Wait(0) == kSuccess);
    }
};

/// Two threads sleep; then the gate is opened, closed at once, and never reopened. Both threads must be released.
template <class Policy>
struct PulseReleasesSleepers : rl::test_suite<PulseReleasesSleepers<Policy>, 3>
{
    ORLTest::GateOf<Policy> mGate;

    void thread(unsigned inIndex)
    {
        if (inIndex == 0) {
            while (mGate.CountWaiters() != 2) {
                rl::yield(1, $);
            }
            mGate.Open();
            mGate.Close();
        } else {
            RL_ASSERT(mGate.Wait(-1) == kSuccess);
        }
    }
    void after()
    {
        RL_ASSERT(mGate.CountWaiters() == 0);
        RL_ASSERT(mGate.Wait(0) == kWaitTimeout);
    }
};

/// A waiter with a timeout and one without, two openers, and a close between them.
template <class Policy>
struct TimedBesideEndless : rl::test_suite<TimedBesideEndless<Policy>, 4>
{
    ORLTest::GateOf<Policy> mGate;

    void thread(unsigned inIndex)
    {
        switch (inIndex) {
        case 0: mGate.Open(); break;
        case 1:
            mGate.Close();
            mGate.Open();
            break;
        case 2: {
            const ORL::Result result = mGate.Wait(20);
            RL_ASSERT(result == kSuccess || result == kWaitTimeout);
            break;
        }
        default: RL_ASSERT(mGate.Wait(-1) == kSuccess);
        }
    }
    void after() { RL_ASSERT(mGate.CountWaiters() == 0); }
};

using Plain = Model::RelacyPolicy<0>;
using Spinning = Model::RelacyPolicy<1>;

} // namespace

int main(int argc, char** argv)
{
    Model::Run run(argc, argv);
    run.Exhaust<OpenCloseOpen<Plain>>("open, close, open; 2 waiters", 3);
    run.Exhaust<OpenCloseOpen<Spinning>>("the same, with a spin", 3);
    run.Exhaust<PulseReleasesSleepers<Plain>>("pulse; 2 sleepers", 2);
    run.Exhaust<PulseReleasesSleepers<Spinning>>("the same, with a spin", 2);
    run.Random<OpenCloseOpen<Plain>>("open, close, open; 2 waiters", 200000);
    run.Random<OpenCloseOpen<Spinning>>("the same, with a spin", 200000);
    run.Random<PulseReleasesSleepers<Plain>>("pulse; 2 sleepers", 100000);
    run.Random<PulseReleasesSleepers<Spinning>>("the same, with a spin", 100000);
    run.Random<TimedBesideEndless<Plain>>("2 openers; timed and endless waiter", 100000);
    run.Random<TimedBesideEndless<Spinning>>("the same, with a spin", 100000);
    run.FindMutant<OpenCloseOpen<Model::RelacyPolicy<0, Step::kGateSecondRead>>>("without the second read of the flag");
    run.FindMutant<PulseReleasesSleepers<Model::RelacyPolicy<0, Step::kGateGenerationEndsSleep>>>(
        "the flag ends the sleep");
    run.FindMutant<PulseReleasesSleepers<Model::RelacyPolicy<1, Step::kGateGenerationEndsSleep>>>(
        "the same, with a spin");
    return run.Finish();
}
