// The unfinished reads of one reader, and waiting for all of them.
#pragma once

#include <ORLDebug.h>
#include <Sync/Policy.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <set>

namespace ORL {

/// The requests in flight on one reader. The list does not own its requests.
///
/// Threads:  thread-safe. A read's callback must not wait for the list, which still contains its own request.
/// Locks:    in order: mLock, then the gate pool's lock or a gate's mutex. mLock is not held while a thread waits.
/// Gate:     the gate is open from the moment the list becomes empty until the last waiter has left. A thread that
///           starts to wait in this short time does not block, even if a new read is in flight.
template <class Request, class Policy = Sync::SystemPolicy>
class AsyncReadRequestBusyList
{
public:
    AsyncReadRequestBusyList() = default;

    AsyncReadRequestBusyList(const AsyncReadRequestBusyList&) = delete;
    AsyncReadRequestBusyList& operator=(const AsyncReadRequestBusyList&) = delete;

    /// Adds a request. Fires an input contract if the request is already in the list. May throw std::bad_alloc; in that
    /// case the list is unchanged.
    void Add(Request* inRequest)
    {
        typename Policy::LockScope lock(mLock);
        ORL_INPUT_CONTRACT(mBusyList.find(inRequest) == mBusyList.end());
        Policy::Write(mBusyList).insert(inRequest);
    }

    /// Removes a request; if it was the last one, releases the waiters. Fires an input contract if the request is not
    /// in the list.
    void Remove(Request* inRequest)
    {
        typename Policy::LockScope lock(mLock);
        ORL_INPUT_CONTRACT(mBusyList.find(inRequest) != mBusyList.end());
        Policy::Write(mBusyList).erase(inRequest);
        typename Policy::Gate* const gate = Policy::Read(mDrainedGate);
        if (mBusyList.empty() && gate != nullptr && Policy::Executes(Sync::Step::kBusyListOpensGate)) {
            gate->Open();
        }
    }

    /// Blocks until no request is in the list. If the list is empty, returns immediately without a gate.
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

    /// Returns the number of requests in the list.
    std::size_t CountRequests() const
    {
        typename Policy::LockScope lock(mLock);
        return Policy::Read(mBusyList).size();
    }

    /// Returns the number of threads in WaitForPendingReads.
    std::uint32_t CountWaiters() const
    {
        typename Policy::LockScope lock(mLock);
        return Policy::Read(mWaiterCount);
    }

    /// Returns the gate that the waiters share, or null if there are none.
    typename Policy::Gate* GetDrainedGate() const
    {
        typename Policy::LockScope lock(mLock);
        return Policy::Read(mDrainedGate);
    }

private:
    using Requests = std::set<Request*, std::less<Request*>, typename Policy::template StlAllocator<Request*>>;

    // Returns null if there is nothing to wait for.
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
        if (left == 0 || !Policy::Executes(Sync::Step::kBusyListCountsWaiters)) {
            Policy::ReturnGate(inGate);
            Policy::Write(mDrainedGate) = nullptr;
        }
    }

    // A host may interrupt a waiting thread. The pool accepts only open gates, so the last waiter opens this gate, at
    // which no other thread waits.
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

    mutable typename Policy::Lock mLock;
    // Borrowed from the pool while there are waiters.
    Guarded<typename Policy::Gate*> mDrainedGate TVXCORE_GUARDED_BY(mLock){nullptr};
    Guarded<std::uint32_t> mWaiterCount TVXCORE_GUARDED_BY(mLock){0};
    Guarded<Requests> mBusyList TVXCORE_GUARDED_BY(mLock); // ordered by address
};

} // namespace ORL
