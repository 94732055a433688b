#include <Foundation/CountedLifecycle.h>

namespace ORL {

namespace {

void RunAll(const LifecycleStep* inSteps, std::size_t inCount)
{
    for (std::size_t i = 0; i < inCount; ++i) {
        inSteps[i].mRun();
    }
}

} // namespace

void CountedLifecycle::Initialize()
{
    const CriticalSectionLock lock(mLock);
    if (mCount == 0) {
        RunAll(mStart, mStartCount);
    }
    ++mCount;
}

void CountedLifecycle::Terminate()
{
    const CriticalSectionLock lock(mLock);
    --mCount;
    if (mCount != 0) {
        return;
    }
    try {
        RunAll(mStop, mStopCount);
    } catch (...) {
        ++mCount;
        throw;
    }
}

} // namespace ORL
