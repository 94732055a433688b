// Runs the shipped pool of gates under a model checker, while threads retrieve and return gates.
#include <ModelRun.h>

namespace {

using ORL::Sync::Step;

template <class Policy>
using Pool = ORL::Sync::WaitableGatePoolAlgorithm<Policy>;

/// Three threads borrow and return gates. Every error ends the run: two owners of one gate race, a gate that is
/// retrieved open or returned closed fails a contract, and a lost gate leaks.
template <class Policy>
struct BorrowAndReturn : rl::test_suite<BorrowAndReturn<Policy>, 3>
{
    Pool<Policy> mPool;

    void thread(unsigned inIndex)
    {
        for (int round = inIndex == 0 ? 0 : 1; round < 2; ++round) {
            auto* const gate = Pool<Policy>::RetrieveGate();
            gate->Open();
            Pool<Policy>::ReturnGate(gate);
        }
    }
    void after() { RL_ASSERT(mPool.CountIdleGates() >= 1 && mPool.CountIdleGates() <= 3); }
};

/// The pool holds at most one gate, and two are returned while a third is retrieved.
template <class Policy>
struct ReturnToAlmostFull : rl::test_suite<ReturnToAlmostFull<Policy>, 3>
{
    using Gate = typename Policy::Gate;
    Pool<Policy> mPool;
    Gate* mLent[2];

    void before()
    {
        Gate* gates[11];
        for (Gate*& gate : gates) {
            gate = Pool<Policy>::RetrieveGate();
            gate->Open();
        }
        mLent[0] = gates[9];
        mLent[1] = gates[10];
        for (int i = 0; i < 9; ++i) {
            Pool<Policy>::ReturnGate(gates[i]);
        }
    }
    void thread(unsigned inIndex)
    {
        if (inIndex < 2) {
            Pool<Policy>::ReturnGate(mLent[inIndex]);
        } else {
            auto* const gate = Pool<Policy>::RetrieveGate();
            gate->Open();
            Pool<Policy>::ReturnGate(gate);
        }
    }
    void after() { RL_ASSERT(mPool.CountIdleGates() == 10); }
};

using Ships = Model::RelacyPolicy<0>;

} // namespace

int main(int argc, char** argv)
{
    Model::Run run(argc, argv);
    run.Exhaust<BorrowAndReturn<Ships>>("3 threads borrow and return", 2);
    run.Exhaust<ReturnToAlmostFull<Ships>>("return to a pool almost full", 1);
    run.Random<BorrowAndReturn<Ships>>("3 threads borrow and return", 200000);
    run.Random<ReturnToAlmostFull<Ships>>("return to a pool almost full", 50000);
    run.FindMutant<BorrowAndReturn<Model::RelacyPolicy<0, Step::kGatePoolClosesFirst>>>("closes after giving back");
    return run.Finish();
}
