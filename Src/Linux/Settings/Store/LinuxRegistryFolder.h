// Floor: System
// Creates, checks and queries the folder of a store and its files.
#pragma once

#include "../LinuxRegistryLocations.h"

#include <Platform/Registry.h>

#include <cstdint>
#include <string>
#include <vector>

namespace ORL {
namespace Registry {
namespace Linux {

/// Creates the folder and its missing parents. The folders of the user's store are private.
SystemError MakeFolder(const StoreLocation& inLocation);

/// Returns whether this process may create the folder and a database in it.
bool MayCreate(const StoreLocation& inLocation);

/// Checks whether a folder and the database in it are trusted: they belong to the user or to root, not everyone may
/// write them, and the database is not a symbolic link. Root also trusts folders and databases of other users. Returns
/// 0 if both are trusted, 2 if there is no database, 5 otherwise. Resolves symbolic links in the folder's path;
/// outDatabase is the resolved path of the database.
SystemError CheckLocation(const StoreLocation& inLocation, std::string& outDatabase);

/// Returns whether processes can share memory through files in the folder. Returns false on a network file system.
bool HasSharedMemory(const std::string& inFolder) noexcept;

/// Stores the device and inode of a file. Returns false if the file does not exist.
bool IdentityOf(const std::string& inFile, std::uint64_t& outDevice, std::uint64_t& outInode) noexcept;

/// Returns a system clock's time in milliseconds; 0 if it cannot be read.
std::uint64_t MonotonicMilliseconds(int inClock) noexcept;

/// Returns the size of a database including its journal, in bytes; 0 if it does not exist.
std::uint64_t SizeOnDisk(const std::string& inDatabase) noexcept;

/// Returns the databases in the same folder that were set aside, sorted by the date in their names.
std::vector<Platform::SetAside> FindSetAside(const std::string& inDatabase);

/// Renames a database and its journal to unused dated names. outFile is the new name of the database, outTime the date.
SystemError MoveAside(const std::string& inDatabase, std::string& outFile, std::string& outTime);

} // namespace Linux
} // namespace Registry
} // namespace ORL
