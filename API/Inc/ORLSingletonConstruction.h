// Floor: Objects
// The lock for constructing singletons.
#pragma once

#include <ORLConfig.h>
#include <ORLCriticalSection.h>

/// Returns the same lock on every call; the first call creates it. Thread-safe, even before the library is started.
/// This lock does not guard the start and stop of the library.
ORL_API ORL::CriticalSection& ORLGetGlobalCriticalSectionForSingletonConstruction();
