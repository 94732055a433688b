// Floor: Threads
// How the pool of gates lends them and takes them back.
#pragma once

#include <ORLDebug.h>
#include <ORLResult.h>
#include <Sync/Policy.h>

#include <atomic>
#include <cstddef>
#include <vector>

namespace ORL {
namespace Sync {

/// A stack of closed gates. One object per policy, reached through sPool.
template <class Policy>
class WaitableGatePoolAlgorithm
{
public:
    using Gate = typename Policy::Gate;

    /// The pool is in use from here on.
    WaitableGatePoolAlgorithm() : mMaxIdleGates(10)
    {
        // So that giving a gate back never needs memory.
        Policy::Write(mGates).reserve(mMaxIdleGates);
        sPool = this;
    }

    ~WaitableGatePoolAlgorithm()
    {
        sPool = nullptr;
        for (Gate* gate : Policy::Write(mGates)) {
            Policy::Delete(gate);
        }
    }

    WaitableGatePoolAlgorithm(const WaitableGatePoolAlgorithm&) = delete;
    WaitableGatePoolAlgorithm& operator=(const WaitableGatePoolAlgorithm&) = delete;

    static Gate* RetrieveGate()
    {
        ORL_INPUT_CONTRACT(sPool);
        WaitableGatePoolAlgorithm* const pool = sPool;
        Gate* const ret = pool != nullptr ? pool->TakeOrMake() : Policy::template New<Gate>();
        ORL_OUTPUT_CONTRACT(ret);
        if (ret != nullptr) {
            ORL_OUTPUT_CONTRACT(kWaitTimeout == ret->Wait(0));
        }
        return ret;
    }

    static void ReturnGate(Gate* inGate)
    {
        ORL_INPUT_CONTRACT(sPool);
        ORL_INPUT_CONTRACT(inGate);
        if (inGate == nullptr) {
            return;
        }
        ORL_INPUT_CONTRACT(kSuccess == inGate->Wait(0));
        if (Policy::Keeps(Step::kGatePoolClosesFirst)) {
            inGate->Close();
        }
        if (WaitableGatePoolAlgorithm* const pool = sPool) {
            pool->KeepOrDestroy(inGate);
        } else {
            Policy::Delete(inGate);
        }
        if (!Policy::Keeps(Step::kGatePoolClosesFirst)) {
            inGate->Close();
        }
    }

    /// Destroys the idle gates, unless another thread is at work in the pool, and leaves the pool in order.
    void TryDestroyIdleGates()
    {
        const typename Policy::TryLockScope lock(mLock);
        if (!lock.IsLocked()) {
            return;
        }
        Gates& gates = Policy::Write(mGates);
        for (Gate* gate : gates) {
            Policy::Delete(gate);
        }
        gates.clear();
    }

    /// How many gates are idle now.
    std::size_t CountIdleGates() const
    {
        typename Policy::LockScope lock(mLock);
        return Policy::Read(mGates).size();
    }

    /// Null before the pool is built and after it has been destroyed. Atomic, so that whoever reads it sees the pool
    /// that it leads to: how the once-only call orders this is Boost's own, where no sanitizer looks.
    static inline std::atomic<WaitableGatePoolAlgorithm*> sPool{nullptr};

private:
    using Gates = std::vector<Gate*, typename Policy::template StlAllocator<Gate*>>;

    Gate* TakeOrMake()
    {
        typename Policy::LockScope lock(mLock);
        Gates& gates = Policy::Write(mGates);
        if (gates.empty()) {
            return Policy::template New<Gate>();
        }
        Gate* const gate = gates.back();
        gates.pop_back();
        return gate;
    }

    void KeepOrDestroy(Gate* inGate)
    {
        typename Policy::LockScope lock(mLock);
        Gates& gates = Policy::Write(mGates);
        if (gates.size() >= mMaxIdleGates) {
            Policy::Delete(inGate);
        } else {
            gates.push_back(inGate);
        }
    }

    mutable typename Policy::Lock mLock;             // guards mGates; nothing but a gate's mutex is taken under it
    typename Policy::template Guarded<Gates> mGates; // a stack; every gate in it is closed and ours
    const std::size_t mMaxIdleGates;
};

} // namespace Sync
} // namespace ORL
