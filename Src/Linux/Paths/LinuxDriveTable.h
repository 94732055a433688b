// Floor: Files
// Maps each drive and each share to a host folder.
#pragma once

#include <Platform/SystemErrors.h>
#include <tvxcore/String.h>

#include <ORLHostPath.h>
#include <Platform/Mutex.h>
#include <array>
#include <string>
#include <utility>
#include <vector>

namespace ORL {
namespace Linux {

/// Thread-safe; its mutex is a leaf lock. Folders are absolute and have no trailing slash, except "/".
class DriveTable
{
public:
    /// Constructs a table in which C: is mounted on "/".
    DriveTable() noexcept;

    SystemError MountDrive(char inLetter, const std::string& inFolder);
    SystemError UnmountDrive(char inLetter);

    /// A share is "\\server\share".
    SystemError MountShare(const UTF16String& inShare, const std::string& inFolder);
    SystemError UnmountShare(const UTF16String& inShare);

    /// Returns false if nothing is mounted there.
    bool FindDrive(unsigned short inLetter, std::string& outFolder) const;
    bool FindShare(const UTF16String& inShare, std::string& outFolder) const;

    /// Finds the longest mounted folder that contains inHostPath, which must be absolute and normalised. outRoot is
    /// "C:" or "\\server\share", outRest the part after the folder. Among equal folders the first drive wins. Returns
    /// false if no mounted folder contains it.
    bool FindFolderAbove(const std::string& inHostPath, UTF16String& outRoot, std::string& outRest) const;

    std::vector<PathUtils::MountPoint> List() const;

private:
    using Share = std::pair<UTF16String, std::string>;
    std::vector<Share>::const_iterator Find(const UTF16String& inShare) const TVXCORE_REQUIRES(mMutex);

    mutable Mutex mMutex;
    std::array<std::string, 26> mDrives TVXCORE_GUARDED_BY(mMutex); // empty: not mounted
    std::vector<Share> mShares TVXCORE_GUARDED_BY(mMutex);
};

/// Returns the process's table.
DriveTable& TheDriveTable() noexcept;

/// Returns true for an ASCII letter.
constexpr bool IsDriveLetter(unsigned inUnit) noexcept
{
    return (inUnit >= 'A' && inUnit <= 'Z') || (inUnit >= 'a' && inUnit <= 'z');
}

} // namespace Linux
} // namespace ORL
