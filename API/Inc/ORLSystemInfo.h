// Floor: System
// The machine's resources and its load.
//
// Thread-safe. Never throws. Functions return 0 or false for a value that the system does not report.
#pragma once

#include <ORLConfig.h>

#include <tvxcore/Types.h>

namespace ORL {
namespace SystemInfo {

/// Returns the number of logical processors that this process may run on now, at least 1.
ORL_API unsigned int GetCPUCount();

/// Returns the physical memory of the machine, in bytes.
ORL_API unsigned __int64 GetTotalPhysicalMemory();

/// Returns the physical memory available now, in bytes. On Linux the value is MemAvailable of /proc/meminfo: free
/// memory and caches that the kernel can drop.
ORL_API unsigned __int64 GetAvailablePhysicalMemory();

/// Returns the size of this process's address space, in bytes. On Linux returns RLIMIT_AS if that is lower.
ORL_API unsigned __int64 GetTotalVirtualMemory();

/// Returns the combined load of all processors of the machine since the previous call in this process, in whole percent
/// from 0 to 100. Returns 0 on the first call, and until the system's clock has advanced.
///
/// On Linux the load is computed from the first line of /proc/stat, usually in units of 10 ms: all time except idle and
/// input/output wait, rounded down. A container's CPU limit does not affect the load. If the system has no load
/// counter, an assertion is reported and the load is 0.
ORL_API float GetSystemLoad();

/// Returns whether this process can read the time stamp counter.
ORL_API bool ProcessorSupportsRDTSCInstruction();

/// Always returns false.
ORL_API bool ProcessorSupportsAltivec();

// These functions return constants and do not query the processor: true for the instruction sets that every supported
// machine has, false for later ones.
ORL_API bool ProcessorSupportsMMX();     // true
ORL_API bool ProcessorSupportsSSE();     // true
ORL_API bool ProcessorSupportsSSE2();    // true
ORL_API bool ProcessorSupportsSSE3();    // true
ORL_API bool ProcessorSupportsMONITOR(); // true
ORL_API bool ProcessorSupportsMNI();     // true
ORL_API bool ProcessorSupportsSSE4_1();  // false
ORL_API bool ProcessorSupportsSSE4_2();  // false

} // namespace SystemInfo
} // namespace ORL
