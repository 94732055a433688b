// A key of the registry and what stands below it, read for a listing or an export.
#pragma once

#include "RegKeyName.h"

#include <ORLRegistryStore.h>

#include <string>
#include <vector>

namespace orl {

/// Reads the values of a key, sorted by name. Throws Failure, which names the command.
std::vector<ORL::RegistryValue> ReadRegValues(const std::string& inCommand, const RegKeyName& inKey);

/// Reads the names of the keys directly below a key, sorted. Throws Failure.
std::vector<UTF16String> ReadRegSubKeys(const std::string& inCommand, const RegKeyName& inKey);

/// The key of that name directly below.
RegKeyName RegSubKey(const RegKeyName& inKey, const UTF16String& inName);

/// Why a command on a key failed: "no such key", else the words of Describe.
std::string DescribeRegFailure(ORL::Result inResult);

/// Makes the changes, or throws Failure: "reg set: cannot change KEY: why".
void ApplyRegEdits(const std::string& inCommand, const std::string& inKey,
                   const std::vector<ORL::RegistryEdit>& inEdits);

} // namespace orl
