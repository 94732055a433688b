// Counted start and stop: only the first start and the last stop run the steps.
#pragma once

#include <ORLCriticalSection.h>

#include <cstddef>
#include <cstdint>

namespace ORL {

/// A step of a start or stop sequence.
struct LifecycleStep
{
    const char* mName;
    void (*mRun)();
};

/// Runs the start steps when the count becomes 1, and the stop steps when it becomes 0. Thread-safe: each operation
/// holds the lock throughout. If a step throws, the exception propagates, the lock is released and the count is
/// unchanged; finished steps are not undone.
struct CountedLifecycle
{
    template <std::size_t StartCount, std::size_t StopCount>
    constexpr CountedLifecycle(const LifecycleStep (&inStart)[StartCount], const LifecycleStep (&inStop)[StopCount])
        : mStart(inStart), mStartCount(StartCount), mStop(inStop), mStopCount(StopCount)
    {
    }

    void Initialize();

    /// Does not detect an extra call: the count becomes -1, and nothing runs.
    void Terminate();

    const LifecycleStep* mStart;
    std::size_t mStartCount;
    const LifecycleStep* mStop;
    std::size_t mStopCount;
    std::int32_t mCount TVXCORE_GUARDED_BY(mLock) = 0; // number of starts minus number of stops
    CriticalSection mLock;
};

/// Returns the library's lifecycle. The lifecycle is a static object, so it exists before any host code can start
/// the library.
CountedLifecycle& FoundationLifecycle();

} // namespace ORL
