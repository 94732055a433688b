// Floor: Platform
// The system functions for information about the machine.
#pragma once

#include <Platform/SystemErrors.h>
#include <tvxcore/Types.h>

namespace ORL {
namespace SystemInfo {
namespace Platform {

/// Returns the bytes of physical memory available now without swapping; 0 if the system does not report it.
unsigned __int64 GetAvailablePhysicalMemory_Impl();

/// Returns the size of this process's address space in bytes; 0 if the system does not report it.
unsigned __int64 GetTotalVirtualMemory_Impl();

/// Returns whether this process may execute the instruction that reads the time stamp counter.
bool ProcessorSupportsRDTSCInstruction_Impl();

// The load counter: one query that collects samples, created once, with a counter that computes the load from the last
// two samples. The query and the counter are never closed. Failures are Windows error numbers and the status codes of
// the Windows performance data helper.

using LoadQuery = void*;
using LoadCounter = void*;

inline constexpr SystemError kLoadInvalidData = 0xC0000BC6; // too few samples, or unusable samples
inline constexpr SystemError kLoadNoData = 0x800007D5;      // the query has no counter

/// Creates the query. Thread-safe. outQuery is untouched on failure.
SystemError OpenLoadQuery_Impl(LoadQuery& outQuery);

/// Adds the load of all processors together. outCounter is untouched on failure.
SystemError AddLoadCounter_Impl(LoadQuery inQuery, LoadCounter& outCounter);

/// Collects one sample.
SystemError CollectLoadSample_Impl(LoadQuery inQuery);

/// Returns 0 if the last sample is valid.
SystemError CheckLoadSample_Impl(LoadCounter inCounter);

/// Stores the load between the last two samples in whole percent, 0 to 100. Fails after the first sample.
SystemError GetLoadPercent_Impl(LoadCounter inCounter, long& outPercent);

} // namespace Platform
} // namespace SystemInfo
} // namespace ORL
