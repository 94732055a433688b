// A gate with a replaceable synchronisation policy: the fields of WaitableGate in the policy's types, and the library's
// algorithm.
#pragma once

#include <Threads/WaitableGateAlgorithm.h>

#include <cstdint>

namespace ORLTest {

template <class Policy>
class GateOf
{
public:
    GateOf() : mIsOpen(false), mGeneration(0), mWaiterCount(0) {}
    ~GateOf() { Open(); }

    GateOf(const GateOf&) = delete;
    GateOf& operator=(const GateOf&) = delete;

    ORL::Result Wait(int inMilliseconds) { return Algorithm::Wait(*this, inMilliseconds); }
    void Open() { Algorithm::Open(*this); }
    void Close() { Algorithm::Close(*this); }
    std::int32_t CountWaiters() { return Algorithm::CountWaiters(*this); }
    std::uint32_t GetGeneration() { return Algorithm::GetGeneration(*this); }

private:
    using Algorithm = ORL::Sync::WaitableGateAlgorithm<Policy>;
    friend Algorithm;
    template <class T>
    using Guarded = typename Policy::template Guarded<T>;

    typename Policy::Flag mIsOpen;
    typename Policy::Mutex mMutex;
    typename Policy::Condition mCondition;
    Guarded<std::uint32_t> mGeneration;
    Guarded<std::int32_t> mWaiterCount;
};

} // namespace ORLTest
