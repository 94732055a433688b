// Output to standard error, for reports that no handler of the host receives.
#pragma once

#include <cstddef>

namespace tvxcore {
namespace debug {
namespace Platform {

/// Writes some of the bytes to standard error and returns their number; 0 if it accepts none, or there is no standard
/// error. The caller serialises the calls.
///
/// If a pipe is full, waits up to a tenth of a second for its reader. If the reader reads nothing in that time, sets
/// ioReaderIsStuck; later calls then wait a clock tick at most, until a successful write clears it. Never throws.
///
/// On Linux: polls whether a write would block, for every kind of file.
/// On Windows: there is no reliable such query (under Wine the free space of a pipe is always 0), so the write is
///             started, and a thread of the system's pool cancels it after the timeout. The timeout covers pipes only:
///             a console that its user has paused blocks its writers. The write cannot be cancelled if no thread of the
///             pool can run (while the caller loads or unloads a module, or after the system has stopped the process's
///             other threads), or if other code in the process blocks in a write to the same pipe.
std::size_t WriteStandardError_Impl(const char* inBytes, std::size_t inCount, bool& ioReaderIsStuck) noexcept;

/// Saves the calling thread's errno or last error, and restores it on destruction.
class SystemErrorKeeper
{
public:
    SystemErrorKeeper() noexcept;
    ~SystemErrorKeeper();
    SystemErrorKeeper(const SystemErrorKeeper&) = delete;
    SystemErrorKeeper& operator=(const SystemErrorKeeper&) = delete;

private:
    const unsigned long mError;
};

} // namespace Platform
} // namespace debug
} // namespace tvxcore
