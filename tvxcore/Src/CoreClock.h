// The clock under repeated functions, which a test can take into its own hand.
#pragma once

#include <cstdint>

namespace tvxcore {
namespace threads {

/// Nanoseconds of the system's monotonic clock, or of the ManualClock that lives.
std::int64_t ClockNow();

/// True while a ManualClock lives: then time passes by itself for nobody.
bool ClockIsManual();

/// Stops time at what it is, and moves it when told. One at a time, made and destroyed while nothing waits for time.
class ManualClock
{
public:
    ManualClock();
    ~ManualClock();
    ManualClock(const ManualClock&) = delete;
    ManualClock& operator=(const ManualClock&) = delete;

    /// Moves time, and returns when everything that became due has been handed to its executor.
    void Advance(std::int64_t inNanoseconds);
};

} // namespace threads
} // namespace tvxcore
