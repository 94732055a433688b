// What the host needs of the system: a module in its process, and one function of it.
#pragma once

#include "Effects.h"

#include <string>

/// Loads a plug-in and finds its RegisterEffects. inName is a path, or the bare name of a plug-in that stands where the
/// libraries of the program do; without an ending it gets the platform's. Throws std::runtime_error with the system's reason.
/// A plug-in stays loaded: nothing is ever taken out of the register of classes.
RegisterEffectsFunction* LoadPlugIn(const std::string& inName);
