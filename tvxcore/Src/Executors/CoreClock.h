// The clock for repeated functions, which a test can replace.
#pragma once

#include <cstdint>

namespace tvxcore {
namespace threads {

/// Returns the time of the system's monotonic clock in nanoseconds, or of the ManualClock if one exists.
std::int64_t ClockNow();

/// Returns whether a ManualClock exists; time then advances only by ManualClock::Advance.
bool ClockIsManual();

/// Freezes time until Advance. Only one may exist; construct and destroy it while no thread is waiting on this clock.
class ManualClock
{
public:
    ManualClock();
    ~ManualClock();
    ManualClock(const ManualClock&) = delete;
    ManualClock& operator=(const ManualClock&) = delete;

    /// Advances time, and returns when all entries that became due have been passed to their executors.
    void Advance(std::int64_t inNanoseconds);
};

} // namespace threads
} // namespace tvxcore
