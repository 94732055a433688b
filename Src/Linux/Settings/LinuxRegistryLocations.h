// Floor: System
// Finds the locations of the two stores.
#pragma once

#include <string>

namespace ORL {
namespace Registry {
namespace Linux {

/// The location of one store. The folder contains the database, its journal, the board of changes, and databases that
/// were set aside. The names of the last three are the database's name plus a suffix.
struct StoreLocation
{
    std::string mFolder;           // host path without a trailing slash; empty if the process has no home directory
    std::string mDatabase;         // host path
    bool mIsWorldReadable = false; // all users may read the store
};

/// Returns the location of the user's store: $XDG_DATA_HOME if that is an absolute path, otherwise .local/share below
/// $HOME, or below the home directory in the system's user database if $HOME is not an absolute path.
StoreLocation FindUserLocation();

/// Returns the location of the machine's store, below /var/lib.
StoreLocation FindMachineLocation();

/// Sets a different folder for the machine's store, for tests. An empty path restores the default.
void SetMachineFolder(const std::string& inFolder);

} // namespace Linux
} // namespace Registry
} // namespace ORL
