// Where reports go when no host has installed anything better.
#pragma once

#include <cstddef>

namespace tvxcore {
namespace debug {
namespace Platform {

/// Writes some of the bytes to standard error and returns how many; 0 when it takes none, or is not there. The caller
/// keeps to one call at a time.
///
/// A pipe may be full: its reader then has a tenth of a second. When it takes nothing in that time, ioReaderIsStuck is
/// set, and as long as it is, a call gives the reader hardly any time. A write that succeeds clears it. Never throws.
///
/// Linux asks whether a write would be held, of whatever standard error is. Windows has no such question that is answered
/// everywhere (the room in a pipe is 0 under Wine, whoever reads), so the write is begun and called off by a thread of the
/// system's pool. That is done for pipes alone: a console whose user holds it up holds its writers up. Nothing calls the
/// write off where no thread of the pool can run (while the caller loads or unloads a module, or after the system has
/// ended the process's other threads), or where other code of the process is held in a write to the same pipe.
std::size_t WriteStandardError_Impl(const char* inBytes, std::size_t inCount, bool& ioReaderIsStuck) noexcept;

/// Puts the number that the system keeps of the calling thread's last failure back at the end of its life.
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
