// A host with settings that no other process uses.
#pragma once

#include <string>
#include <tvxcore/String.h>

namespace ORLTest {

/// Sets a host name unique to this process, so that the process has its own settings, and on Linux its own user store.
/// Returns the name. Further calls only return the name. The host's settings are deleted when the process exits.
const std::string& UsePrivateHost();

/// Deletes every setting of this host.
void DeletePrivateHostSettings();

} // namespace ORLTest
