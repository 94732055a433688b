// Floor: Objects
// The check behind ORLGetGlobalCriticalSectionForSingletonConstruction.
#pragma once

#include <ORLCriticalSection.h>

namespace ORL {

/// The section of an address that must not be null.
CriticalSection& CheckedSingletonSection(CriticalSection* sCriticalSectionPtr);

} // namespace ORL
