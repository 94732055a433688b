// Names of files that exist only while a command writes them.
#pragma once

#include <string>

namespace orl {

/// Returns ".orl-", 32 random hexadecimal digits and ".part", joined.
std::string RandomTemporaryName();

/// Returns whether a name has the form of RandomTemporaryName.
bool IsTemporaryName(const std::string& inLeaf);

} // namespace orl
