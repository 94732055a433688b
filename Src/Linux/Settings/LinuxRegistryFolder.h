// Floor: System
// The folder that holds a store, and the files in it.
#pragma once

#include "LinuxRegistryPlaces.h"

#include <Platform/Registry.h>

#include <cstdint>
#include <string>
#include <vector>

namespace ORL {
namespace Registry {
namespace Linux {

/// Creates the folder and all above it where they are missing. The user's are private.
SystemError MakeFolder(const Place& inPlace);

/// Whether this process may create the folder and a database in it.
bool MayCreate(const Place& inPlace);

/// Whether a folder and the database in it may be trusted: nobody but the user and the superuser can write them, and the
/// database is no link. 2 if there is no database, 5 if they may not. Follows links on the way to the folder:
/// outDatabase is the database's path without them.
SystemError CheckPlace(const Place& inPlace, std::string& outDatabase);

/// Whether the processes that use the folder share memory through its files: not on a network.
bool HasSharedMemory(const std::string& inFolder) noexcept;

/// What identifies the file that a path leads to. False if there is none.
bool IdentityOf(const std::string& inFile, std::uint64_t& outDevice, std::uint64_t& outInode) noexcept;

/// A clock of the system in milliseconds; 0 if it cannot be read.
std::uint64_t MonotonicMilliseconds(int inClock) noexcept;

/// Size of a database with its journal, in bytes; 0 if there is none.
std::uint64_t SizeOnDisk(const std::string& inDatabase) noexcept;

/// The databases beside this one that were set aside, by the date in their names.
std::vector<Platform::SetAside> FindSetAside(const std::string& inDatabase);

/// Renames a database and its journal to dated names, which are free. outFile is the database's new name, outTime
/// the date.
SystemError MoveAside(const std::string& inDatabase, std::string& outFile, std::string& outTime);

} // namespace Linux
} // namespace Registry
} // namespace ORL
