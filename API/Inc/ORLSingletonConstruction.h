// Floor: Objects
// The lock for those who build singletons of their own.
#pragma once

#include <ORLConfig.h>
#include <ORLCriticalSection.h>

/// One and the same lock on every call, built by the first. May be called from any thread and at any time, before the
/// library is started as well. It is not the lock that guards start and stop.
ORL_API ORL::CriticalSection& ORLGetGlobalCriticalSectionForSingletonConstruction();
