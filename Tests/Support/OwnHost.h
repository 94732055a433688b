// A host with settings that no other process uses.
#pragma once

#include <string>
#include <tvxcore/String.h>

namespace ORLTest {

/// Sets a unique host name for this process, which therefore has its own settings; on Linux also its own user store.
/// Returns the name. Further calls only return the name. The host's settings are deleted when the process ends.
const std::string& UseOwnHost();

/// Deletes every setting of this host.
void ForgetSettingsOfOwnHost();

} // namespace ORLTest
