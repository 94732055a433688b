// Floor: Threads
// The reads of one reader that have not finished, and the wait for the last of them.
#pragma once

#include <ORLDebug.h>
#include <Sync/Policy.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <set>

namespace ORL {

/// The requests in flight on one reader. The list does not own them.
///
/// Threads:  every operation may be called from any thread. The callback of a read must not wait for its own list:
///           its request is still in there.
/// Locks:    mLock, then the lock of the gate pool or the mutex of a gate. mLock is not held while a thread waits.
/// Gate:     it stays open from the moment the list is empty until the last waiter has left. A thread that comes to
///           wait in that short span passes at once, even if a new read is in flight.
template <class Request, class Policy = Sync::SystemPolicy>
class AsyncReadRequestBusyList
{
public:
    AsyncReadRequestBusyList() = default;

    AsyncReadRequestBusyList(const AsyncReadRequestBusyList&) = delete;
    AsyncReadRequestBusyList& operator=(const AsyncReadRequestBusyList&) = delete;

    /// Enters a request. Input contract: it is not in the list. Throws std::bad_alloc, with the list as it was, when
    /// memory is out.
    void Add(Request* inRequest)
    {
        typename Policy::LockScope lock(mLock);
        ORL_INPUT_CONTRACT(mBusyList.find(inRequest) == mBusyList.end());
        Policy::Write(mBusyList).insert(inRequest);
    }

    /// Takes a request out, and releases the waiting threads when it was the last one. Input contract: it is in the
    /// list.
    void Remove(Request* inRequest)
    {
        typename Policy::LockScope lock(mLock);
        ORL_INPUT_CONTRACT(mBusyList.find(inRequest) != mBusyList.end());
        Policy::Write(mBusyList).erase(inRequest);
        typename Policy::Gate* const gate = Policy::Read(mDrainedGate);
        if (mBusyList.empty() && gate != nullptr && Policy::Keeps(Sync::Step::kBusyListOpensGate)) {
            gate->Open();
        }
    }

    /// Returns once no request is in the list. With an empty list it returns at once and takes no gate.
    void WaitForPendingReads()
    {
        typename Policy::Gate* const gate = JoinWaiters();
        if (gate == nullptr) {
            return;
        }
        try {
            gate->Wait(-1);
        } catch (...) {
            LeaveInterrupted(gate);
            throw;
        }
        LeaveWaiters(gate);
    }

    /// How many requests are in the list now.
    std::size_t CountRequests() const
    {
        typename Policy::LockScope lock(mLock);
        return Policy::Read(mBusyList).size();
    }

    /// How many threads are in WaitForPendingReads now.
    std::uint32_t CountWaiters() const
    {
        typename Policy::LockScope lock(mLock);
        return Policy::Read(mWaiterCount);
    }

    /// The gate that the waiting threads share; null when nobody waits.
    typename Policy::Gate* GetDrainedGate() const
    {
        typename Policy::LockScope lock(mLock);
        return Policy::Read(mDrainedGate);
    }

private:
    using Requests = std::set<Request*, std::less<Request*>,
                              typename Policy::template StlAllocator<Request*>>;

    // Null when there is nothing to wait for.
    typename Policy::Gate* JoinWaiters()
    {
        typename Policy::LockScope lock(mLock);
        if (Policy::Read(mBusyList).empty()) {
            return nullptr;
        }
        if (Policy::Read(mDrainedGate) == nullptr) {
            Policy::Write(mDrainedGate) = Policy::RetrieveGate();
        }
        ++Policy::Write(mWaiterCount);
        return Policy::Read(mDrainedGate);
    }

    void LeaveWaiters(typename Policy::Gate* inGate)
    {
        typename Policy::LockScope lock(mLock);
        const std::uint32_t left = --Policy::Write(mWaiterCount);
        if (left == 0 || !Policy::Keeps(Sync::Step::kBusyListCountsWaiters)) {
            Policy::ReturnGate(inGate);
            Policy::Write(mDrainedGate) = nullptr;
        }
    }

    // A host may interrupt the sleep of its thread. The pool takes back open gates only, and nobody else is at this one
    // when the last waiter leaves.
    void LeaveInterrupted(typename Policy::Gate* inGate)
    {
        typename Policy::LockScope lock(mLock);
        if (Policy::Read(mWaiterCount) == 1) {
            inGate->Open();
        }
        LeaveWaiters(inGate);
    }

    template <class T>
    using Guarded = typename Policy::template Guarded<T>;

    mutable typename Policy::Lock mLock;                    // guards all that follows
    Guarded<typename Policy::Gate*> mDrainedGate{nullptr};  // lent by the pool while anyone waits
    Guarded<std::uint32_t> mWaiterCount{0};                 // threads that wait at it
    Guarded<Requests> mBusyList;                            // in order of their addresses
};

} // namespace ORL
