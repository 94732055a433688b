// A host whose settings nobody else has.
#pragma once

#include <string>
#include <tvxcore/String.h>

namespace ORLTest {

/// Makes this process a host with a name of its own, and so with settings of its own; on Linux also with a user's store
/// of its own. Returns the name. Further calls change nothing. What the host has stored is gone when the process ends.
const std::string& UseOwnHost();

/// Deletes every setting of this host.
void ForgetSettingsOfOwnHost();

} // namespace ORLTest
