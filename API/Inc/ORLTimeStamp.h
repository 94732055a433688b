// Floor: Media
// Coarse timing: time stamps of the process clock, relative to the loading of the library.
#pragma once

#include <ORLConfig.h>

namespace ORL {

/// A point in time on the process clock, which counts whole milliseconds since the process began. All getters return
/// the time from loading the library to that point. To compare two stamps, subtract their GetMilliSeconds.
///
/// A value type. Thread-safe for different objects; the load time never changes. Never throws. On Windows the clock is
/// that of the C runtime. On Linux the clock counts the time since the start of the process, suspended time included;
/// setting the system time does not affect it.
class TimeStamp
{
public:
    /// Constructs a stamp of the current time.
    ORL_API TimeStamp();

    TimeStamp(const TimeStamp&) = default;
    TimeStamp& operator=(const TimeStamp&) = default;

    ORL_API void Swap(TimeStamp& ioOther);

    /// Returns the time at which the library was loaded.
    static ORL_API const TimeStamp& GetStartTime();

    /// Return the total time in the unit that the name states. GetElapsedValue also returns milliseconds.
    ORL_API double GetElapsedValue() const;
    ORL_API double GetMilliSeconds() const;
    ORL_API double GetSeconds() const;
    ORL_API double GetMicroSeconds() const;

    /// Return the parts of the time: whole seconds, and the remaining milliseconds, both with the sign of the time.
    /// Limited to 2^31 - 1 milliseconds.
    ORL_API int GetSecondsPart() const;
    ORL_API int GetMilliSecondsPart() const;

    /// Always returns 0: the clock does not count microseconds.
    ORL_API int GetMicroSecondsPart() const;

private:
    static ORL_LOCAL const TimeStamp sStartTime;

    double mTime;
};

} // namespace ORL
