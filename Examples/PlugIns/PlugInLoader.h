// Loads plug-ins; the implementation differs between platforms.
#pragma once

#include "Effects.h"

#include <string>

/// Loads a plug-in and returns its RegisterEffects function. inName is a path, or a bare name in the folder of the
/// program's libraries; the platform's extension is added if missing. Throws std::runtime_error with the system's
/// reason. A plug-in stays loaded, because class registrations are permanent.
RegisterEffectsFunction* LoadPlugIn(const std::string& inName);
