// The machine's resources. Thread-safe. Never throws.
#pragma once

#include <tvxcore/Config.h>
#include <tvxcore/Types.h>

namespace tvxcore {
namespace utility {

/// Returns the physical memory of the machine in bytes, including memory that this process may not use. 0 if the system
/// does not report the size.
TVXCORE_API unsigned __int64 TotalPhysicalMemory();

/// Returns the number of logical processors that this process may run on now, at least 1: the number of threads worth
/// starting.
TVXCORE_API unsigned long CPUCount();

} // namespace utility
} // namespace tvxcore
