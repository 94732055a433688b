// The algorithm of the gate pool.
#pragma once

#include <ORLDebug.h>
#include <ORLResult.h>
#include <Sync/Policy.h>

#include <atomic>
#include <cstddef>
#include <vector>

namespace ORL {
namespace Sync {

/// A stack of closed gates. Each policy has one pool, accessed through sPool.
template <class Policy>
class WaitableGatePoolAlgorithm
{
public:
    using Gate = typename Policy::Gate;

    /// Makes this object the pool.
    WaitableGatePoolAlgorithm() : mMaxIdleGates(10)
    {
        // Reserves the capacity here, so that returning a gate never allocates.
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
        if (Policy::Executes(Step::kGatePoolClosesFirst)) {
            inGate->Close();
        }
        if (WaitableGatePoolAlgorithm* const pool = sPool) {
            pool->KeepOrDestroy(inGate);
        } else {
            Policy::Delete(inGate);
        }
        if (!Policy::Executes(Step::kGatePoolClosesFirst)) {
            inGate->Close();
        }
    }

    /// Destroys the idle gates, unless another thread uses the pool. The pool stays usable. Excluded from clang's
    /// thread-safety analysis, which cannot track a try-lock.
    void TryDestroyIdleGates() TVXCORE_UNCHECKED_LOCKING
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

    /// Returns the number of idle gates.
    std::size_t CountIdleGates() const
    {
        typename Policy::LockScope lock(mLock);
        return Policy::Read(mGates).size();
    }

    /// Null before the pool is constructed and after it has been destroyed. Atomic, so that a thread that reads the
    /// pointer also sees the constructed pool. Boost's call_once guarantees this too, but sanitizers cannot detect it.
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

    mutable typename Policy::Lock mLock; // only a gate's mutex is locked under this lock
    // A stack of closed gates that the pool owns.
    typename Policy::template Guarded<Gates> mGates TVXCORE_GUARDED_BY(mLock);
    const std::size_t mMaxIdleGates;
};

} // namespace Sync
} // namespace ORL
