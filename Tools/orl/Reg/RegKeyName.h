// How a registry key is written on the command line and in a registry text file.
#pragma once

#include <ORLRegistryKey.h>
#include <tvxcore/String.h>

#include <string>

namespace orl {

struct RegKeyName
{
    ORL::RegistryRootKeys::Type mRoot = ORL::RegistryRootKeys::kUser;
    UTF16String mPath; // below the root, without backslashes at its ends; empty for the root itself
};

/// Reads "HKCU\Software\X", "HKEY_LOCAL_MACHINE\Software\X", "user:Software\X", "machine:Software\X", or "Software\X"
/// for inRoot. Roots are written in either case. Throws Failure with the exit code of a wrong command line for a path
/// that no key can have.
RegKeyName ReadRegKeyName(const std::string& inText, ORL::RegistryRootKeys::Type inRoot);

/// "HKCU\Software\X"
std::string ShowRegKeyName(const RegKeyName& inKey);

/// "HKEY_CURRENT_USER\Software\X", as a registry text file has it.
UTF16String LongRegKeyName(const RegKeyName& inKey);

/// Takes the root off a name that begins with one ("HKCU", "HKEY_CURRENT_USER" ...), and the backslashes off the end of
/// the rest. False if it begins with none.
bool SplitRegRoot(const UTF16String& inName, RegKeyName& outKey);

/// Says what is wrong with the path of a key below a root, or nothing if it is in order.
std::string ComplainOfRegPath(const UTF16String& inPath);

/// The name of a value as messages show it: quoted, or "the default value".
std::string ShowRegValueName(const UTF16String& inName);

constexpr std::size_t kMostKeyNameUnits = 255;
constexpr std::size_t kMostKeyLevels = 512;
constexpr std::size_t kMostValueNameUnits = 16383;

} // namespace orl
