// The argument check of ORLGetGlobalCriticalSectionForSingletonConstruction.
#pragma once

#include <ORLCriticalSection.h>

namespace ORL {

/// Returns the critical section at an address, which must not be null.
CriticalSection& CheckedSingletonSection(CriticalSection* sCriticalSectionPtr);

} // namespace ORL
