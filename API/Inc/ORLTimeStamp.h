// Floor: Media
// Coarse timing: moments of the process clock, measured from the load of the library.
#pragma once

#include <ORLConfig.h>

namespace ORL {

/// One moment of the process clock, which counts whole milliseconds since the process began. Every reading is the time
/// between the load of the library and that moment; two stamps are compared by the difference of their
/// GetMilliSeconds.
///
/// A value. Thread-safe as any value; the start does not change after the load. Never throws.
/// On Windows the clock is the C runtime's. On Linux it is the time since the start of the process, suspended time
/// included; it does not go backwards when the machine's time is set.
class TimeStamp
{
public:
    /// Now.
    ORL_API TimeStamp();

    TimeStamp(const TimeStamp&) = default;
    TimeStamp& operator=(const TimeStamp&) = default;

    ORL_API void Swap(TimeStamp& ioOther);

    /// The moment at which the library was loaded.
    static ORL_API const TimeStamp& GetStartTime();

    /// The whole time, in milliseconds; the first two are the same.
    ORL_API double GetElapsedValue() const;
    ORL_API double GetMilliSeconds() const;
    ORL_API double GetSeconds() const;
    ORL_API double GetMicroSeconds() const;

    /// The time taken apart: whole seconds, and the milliseconds left over, both with the sign of the time. Holds up to
    /// 2^31 - 1 milliseconds.
    ORL_API int GetSecondsPart() const;
    ORL_API int GetMilliSecondsPart() const;

    /// Always 0: the clock counts no microseconds.
    ORL_API int GetMicroSecondsPart() const;

private:
    static ORL_LOCAL const TimeStamp sStartTime;

    double mTime;
};

} // namespace ORL
