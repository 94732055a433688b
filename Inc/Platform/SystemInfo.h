// Floor: Platform
// What the questions about the machine need of the system.
#pragma once

#include <Platform/SystemErrors.h>
#include <tvxcore/Types.h>

namespace ORL {
namespace SystemInfo {
namespace Platform {

/// Bytes of physical memory that can be handed out now without swapping. 0 if the system does not tell.
unsigned __int64 GetAvailablePhysicalMemory_Impl();

/// Bytes of the address space that this process may use. 0 if the system does not tell.
unsigned __int64 GetTotalVirtualMemory_Impl();

/// Whether this process may execute the time stamp counter's instruction.
bool ProcessorSupportsRDTSCInstruction_Impl();

// The load counter: a query, made once, that collects samples, and a counter of the query that derives the load from the
// last two of them. Neither is ever closed. Numbers of failures are the home platform's: beside its error numbers, the
// status codes of its performance data helper.

using LoadQuery = void*;
using LoadCounter = void*;

inline constexpr SystemError kLoadInvalidData = 0xC0000BC6; // the counter has too few samples, or useless ones
inline constexpr SystemError kLoadNoData = 0x800007D5;      // the query has no counter

/// Safe from any thread. outQuery is untouched on failure.
SystemError OpenLoadQuery_Impl(LoadQuery& outQuery);

/// Adds the load of all processors together. outCounter is untouched on failure.
SystemError AddLoadCounter_Impl(LoadQuery inQuery, LoadCounter& outCounter);

/// Takes one sample.
SystemError CollectLoadSample_Impl(LoadQuery inQuery);

/// Whether the last sample is good.
SystemError CheckLoadSample_Impl(LoadCounter inCounter);

/// The load between the last two samples in whole percents, 0 to 100. Fails after the first sample.
SystemError GetLoadPercent_Impl(LoadCounter inCounter, long& outPercent);

} // namespace Platform
} // namespace SystemInfo
} // namespace ORL
