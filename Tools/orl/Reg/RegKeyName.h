// The notation of registry keys on the command line and in a registry text file.
#pragma once

#include <ORLRegistryKey.h>
#include <tvxcore/String.h>

#include <string>

namespace orl {

struct RegKeyName
{
    ORL::RegistryRootKeys::Type mRoot = ORL::RegistryRootKeys::kUser;
    UTF16String mPath; // path below the root, without backslashes around it; empty for the root
};

/// Parses "HKCU\Software\X", "HKEY_LOCAL_MACHINE\Software\X", "user:Software\X", "machine:Software\X", or "Software\X"
/// below inRoot. The root is case-insensitive. Throws Failure with kExitUsage for a path that cannot name a
/// key.
RegKeyName ReadRegKeyName(const std::string& inText, ORL::RegistryRootKeys::Type inRoot);

/// Returns "HKCU\Software\X".
std::string ShowRegKeyName(const RegKeyName& inKey);

/// Returns "HKEY_CURRENT_USER\Software\X", the form of a registry text file.
UTF16String LongRegKeyName(const RegKeyName& inKey);

/// Splits a name that begins with a root ("HKCU", "HKEY_CURRENT_USER" ...) into the root and the path without trailing
/// backslashes. Returns false if the name does not begin with a root.
bool SplitRegRoot(const UTF16String& inName, RegKeyName& outKey);

/// Returns what is wrong with the path of a key below a root, or an empty string if the path is valid.
std::string RegPathError(const UTF16String& inPath);

/// Returns the name of a value for messages: quoted, or "the default value".
std::string ShowRegValueName(const UTF16String& inName);

constexpr std::size_t kMaxKeyNameUnits = 255;
constexpr std::size_t kMaxKeyLevels = 512;
constexpr std::size_t kMaxValueNameUnits = 16383;

} // namespace orl
