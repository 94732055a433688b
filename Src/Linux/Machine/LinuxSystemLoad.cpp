#include <Platform/SystemInfo.h>

#include "../Calls/LinuxErrors.h"
#include "LinuxProcFile.h"

#include <Core/Immortal.h>

#include <Platform/Mutex.h>
#include <algorithm>

namespace ORL {
namespace SystemInfo {
namespace Platform {

namespace {

// The times of all processors together, in clock ticks since boot.
struct Sample
{
    std::uint64_t mTotal = 0;
    std::uint64_t mIdle = 0;
};

class Query
{
public:
    SystemError Add();
    SystemError Collect();
    SystemError Check();
    SystemError Percent(long& outPercent);

private:
    Mutex mMutex; // a leaf lock
    bool mHasCounter TVXCORE_GUARDED_BY(mMutex) = false;
    int mSampleCount TVXCORE_GUARDED_BY(mMutex) = 0; // 0, 1, or 2 for two or more
    Sample mEarlier TVXCORE_GUARDED_BY(mMutex);
    Sample mLast TVXCORE_GUARDED_BY(mMutex);
};

// Parses "cpu  user nice system idle iowait irq softirq steal guest guest_nice"; old kernels have fewer fields. user
// and nice already include the guests' time. The kernel generates the whole file for each read, so there is only one
// read.
SystemError ReadSample(Sample& outSample)
{
    char buffer[512];
    std::size_t size = 0;
    const int failure = Linux::ReadProcFile("/proc/stat", buffer, sizeof(buffer), size);
    if (failure != 0) {
        return Linux::SystemErrorFromErrno(failure);
    }
    std::string_view text(buffer, size);
    if (text.substr(0, 4) != "cpu ") {
        return kLoadInvalidData;
    }
    text.remove_prefix(4);
    text = text.substr(0, text.find('\n'));
    enum { kIdle = 3, kInputOutputWait = 4, kCounted = 8 };
    std::uint64_t ticks = 0;
    Sample sample;
    int field = 0;
    for (; field < kCounted && Linux::TakeNumber(text, ticks); ++field) {
        sample.mTotal += ticks;
        sample.mIdle += field == kIdle || field == kInputOutputWait ? ticks : 0;
    }
    if (field <= kIdle) {
        return kLoadInvalidData;
    }
    outSample = sample;
    return SystemErrors::kNoError;
}

SystemError Query::Add()
{
    Sample sample;
    const SystemError failure = ReadSample(sample);
    const MutexLock lock(mMutex);
    mHasCounter = failure == SystemErrors::kNoError;
    return failure;
}

// Samples within one clock tick are equal, so replacing one with the next loses no time.
SystemError Query::Collect()
{
    const MutexLock lock(mMutex);
    if (!mHasCounter) {
        return kLoadNoData;
    }
    Sample sample;
    const SystemError failure = ReadSample(sample);
    if (failure != SystemErrors::kNoError) {
        return failure;
    }
    mEarlier = mSampleCount != 0 ? mLast : sample;
    mLast = sample;
    mSampleCount = std::min(mSampleCount + 1, 2);
    return SystemErrors::kNoError;
}

SystemError Query::Check()
{
    const MutexLock lock(mMutex);
    return mSampleCount != 0 ? SystemErrors::kNoError : kLoadInvalidData;
}

// The kernel may correct idle and I/O wait times downwards, so the idle time may decrease or exceed the total.
SystemError Query::Percent(long& outPercent)
{
    const MutexLock lock(mMutex);
    if (mSampleCount < 2 || mLast.mTotal <= mEarlier.mTotal) {
        return kLoadInvalidData;
    }
    const std::uint64_t total = mLast.mTotal - mEarlier.mTotal;
    const std::uint64_t idle = mLast.mIdle > mEarlier.mIdle ? mLast.mIdle - mEarlier.mIdle : 0;
    const std::uint64_t busy = total - std::min(idle, total);
    outPercent = static_cast<long>(busy * 100 / total);
    return SystemErrors::kNoError;
}

Immortal<Query> sQuery; // never destroyed: a thread may still query while the process exits

Query& QueryOf(void* inHandle)
{
    return *static_cast<Query*>(inHandle);
}

} // namespace

SystemError OpenLoadQuery_Impl(LoadQuery& outQuery)
{
    outQuery = &sQuery.mValue;
    return SystemErrors::kNoError;
}

SystemError AddLoadCounter_Impl(LoadQuery inQuery, LoadCounter& outCounter)
{
    const SystemError failure = QueryOf(inQuery).Add();
    if (failure == SystemErrors::kNoError) {
        outCounter = inQuery;
    }
    return failure;
}

SystemError CollectLoadSample_Impl(LoadQuery inQuery)
{
    return QueryOf(inQuery).Collect();
}

SystemError CheckLoadSample_Impl(LoadCounter inCounter)
{
    return QueryOf(inCounter).Check();
}

SystemError GetLoadPercent_Impl(LoadCounter inCounter, long& outPercent)
{
    return QueryOf(inCounter).Percent(outPercent);
}

} // namespace Platform
} // namespace SystemInfo
} // namespace ORL
