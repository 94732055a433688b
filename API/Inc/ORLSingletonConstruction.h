// Floor: Objects
// The lock for constructing singletons.
#pragma once

#include <ORLConfig.h>
#include <ORLCriticalSection.h>

/// Returns the same lock on every call; the first call creates it. Thread-safe, even before the library is started. It
/// is not the lock that guards start and stop.
ORL_API ORL::CriticalSection& ORLGetGlobalCriticalSectionForSingletonConstruction();
