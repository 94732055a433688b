// Floor: Foundation
// Start and stop that are counted: the first start and the last stop do the work.
#pragma once

#include <ORLCriticalSection.h>

#include <cstddef>
#include <cstdint>

namespace ORL {

/// One action of a sequence.
struct LifecycleStep
{
    const char* mName;
    void (*mRun)();
};

/// Runs the steps of the start when the count leaves 0, and those of the stop when it comes back to 0. Any thread may
/// call both operations: the lock is held over the whole of each. An exception of a step leaves with the lock released
/// and the count as it was; steps that had finished stay done.
struct CountedLifecycle
{
    template <std::size_t StartCount, std::size_t StopCount>
    constexpr CountedLifecycle(const LifecycleStep (&inStart)[StartCount], const LifecycleStep (&inStop)[StopCount])
        : mStart(inStart), mStartCount(StartCount), mStop(inStop), mStopCount(StopCount)
    {
    }

    void Initialize();

    /// Is not guarded against being called once too often: the count is then -1, and nothing is run.
    void Terminate();

    const LifecycleStep* mStart;
    std::size_t mStartCount;
    const LifecycleStep* mStop;
    std::size_t mStopCount;
    std::int32_t mCount = 0; // starts less stops
    CriticalSection mLock;
};

/// The start and stop of the library. Built with the other statics, so it exists before anybody can start it.
CountedLifecycle& FoundationLifecycle();

} // namespace ORL
