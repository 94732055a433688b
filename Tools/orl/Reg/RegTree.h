// Reads and changes keys for the commands of orl reg.
#pragma once

#include "RegKeyName.h"

#include <ORLRegistryStore.h>

#include <string>
#include <vector>

namespace orl {

/// Reads the values of a key, sorted by name. Throws Failure; its message begins with inCommand.
std::vector<ORL::RegistryValue> ReadRegValues(const std::string& inCommand, const RegKeyName& inKey);

/// Reads the names of the keys directly below a key, sorted. Throws Failure.
std::vector<UTF16String> ReadRegSubKeys(const std::string& inCommand, const RegKeyName& inKey);

/// Returns the key with that name directly below inKey.
RegKeyName RegSubKey(const RegKeyName& inKey, const UTF16String& inName);

/// Returns the reason for a failure: "no such key", or the result of Describe.
std::string DescribeRegFailure(ORL::Result inResult);

/// Applies the changes. Throws Failure: "reg set: cannot change KEY: reason".
void ApplyRegEdits(const std::string& inCommand, const std::string& inKey,
                   const std::vector<ORL::RegistryEdit>& inEdits);

} // namespace orl
