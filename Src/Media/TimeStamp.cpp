#include <ORLTimeStamp.h>

#include <Core/Wrapping.h>
#include <Platform/ProcessClock.h>

#include <utility>

namespace ORL {

const TimeStamp TimeStamp::sStartTime;

TimeStamp::TimeStamp() : mTime(static_cast<double>(ProcessClock::Platform::GetMilliseconds_Impl()))
{
}

void TimeStamp::Swap(TimeStamp& ioOther)
{
    std::swap(mTime, ioOther.mTime);
}

const TimeStamp& TimeStamp::GetStartTime()
{
    return sStartTime;
}

double TimeStamp::GetElapsedValue() const
{
    return mTime - sStartTime.mTime;
}

double TimeStamp::GetMilliSeconds() const
{
    return GetElapsedValue();
}

double TimeStamp::GetSeconds() const
{
    return GetElapsedValue() / 1000.0;
}

double TimeStamp::GetMicroSeconds() const
{
    return GetElapsedValue() * 1000.0;
}

int TimeStamp::GetSecondsPart() const
{
    return Wrapping::TruncateToInt(GetElapsedValue()) / 1000;
}

int TimeStamp::GetMilliSecondsPart() const
{
    return Wrapping::TruncateToInt(GetElapsedValue()) % 1000;
}

int TimeStamp::GetMicroSecondsPart() const
{
    return 0;
}

} // namespace ORL
