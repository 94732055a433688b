// Floor: System
// What the machine has and how busy it is.
//
// Every function is thread-safe. None of them throws or returns an error: what the system does not tell is 0 or false.
#pragma once

#include <ORLConfig.h>

#include <tvxcore/Types.h>

namespace ORL {
namespace SystemInfo {

/// Number of logical processors that this process may run on now, at least 1.
ORL_API unsigned int GetCPUCount();

/// Physical memory of the machine, in bytes.
ORL_API unsigned __int64 GetTotalPhysicalMemory();

/// Physical memory that is free to be used now, in bytes. On Linux MemAvailable of /proc/meminfo: free memory and the
/// caches that the kernel can drop.
ORL_API unsigned __int64 GetAvailablePhysicalMemory();

/// Size of the address space that this process may use, in bytes. On Linux a lower RLIMIT_AS counts.
ORL_API unsigned __int64 GetTotalVirtualMemory();

/// The load of all processors of the machine together since the previous call in this process, in whole percents from
/// 0 to 100. The first call returns 0, and so does one that comes before the system's clock has moved on.
///
/// On Linux the load is made from the first line of /proc/stat, whose unit is commonly 10 ms: all time but idle and
/// input/output wait, rounded down. A container's share of the processors does not change what is measured.
/// If the system has no such counter, an assertion is reported and the load is 0.
ORL_API float GetSystemLoad();

/// Whether the time stamp counter can be read by this process.
ORL_API bool ProcessorSupportsRDTSCInstruction();

/// Always false.
ORL_API bool ProcessorSupportsAltivec();

// Instruction sets that every supported machine is known to have. The processor is not asked: a machine with more
// returns false for the later ones all the same.
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
