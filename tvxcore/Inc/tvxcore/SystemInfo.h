// What the machine has.
#pragma once

#include <tvxcore/Config.h>
#include <tvxcore/Types.h>

namespace tvxcore {
namespace utility {

/// Physical memory of the machine in bytes, whatever part of it this process may use. 0 if the system does not tell.
TVXCORE_API unsigned __int64 TotalPhysicalMemory();

/// Number of logical processors that this process may run on now, at least 1: what it pays to start threads for.
TVXCORE_API unsigned long CPUCount();

} // namespace utility
} // namespace tvxcore
