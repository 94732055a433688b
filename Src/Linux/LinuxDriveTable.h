// Floor: Files
// Which host folder stands behind each drive and each share.
#pragma once

#include <Platform/SystemErrors.h>
#include <tvxcore/String.h>

#include <ORLHostPath.h>
#include <array>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace ORL {
namespace Linux {

/// Safe from any thread; its mutex is a leaf lock. Folders are absolute and end in no slash but that of "/".
class DriveTable
{
public:
    /// C: leads to "/".
    DriveTable() noexcept;

    SystemError MountDrive(char inLetter, const std::string& inFolder);
    SystemError UnmountDrive(char inLetter);

    /// A share is "\\server\share".
    SystemError MountShare(const UTF16String& inShare, const std::string& inFolder);
    SystemError UnmountShare(const UTF16String& inShare);

    /// False when nothing is mounted there.
    bool FindDrive(unsigned short inLetter, std::string& outFolder) const;
    bool FindShare(const UTF16String& inShare, std::string& outFolder) const;

    /// The longest mounted folder that holds inHostPath, which is absolute and clean. outRoot is "C:" or
    /// "\\server\share", outRest what follows the folder. Among equal folders the first drive wins.
    bool FindFolderAbove(const std::string& inHostPath, UTF16String& outRoot, std::string& outRest) const;

    std::vector<PathUtils::MountPoint> List() const;

private:
    using Share = std::pair<UTF16String, std::string>;
    std::vector<Share>::const_iterator Find(const UTF16String& inShare) const;

    mutable std::mutex mMutex;
    std::array<std::string, 26> mDrives; // empty: not mounted
    std::vector<Share> mShares;
};

/// The process's table.
DriveTable& TheDriveTable() noexcept;

/// True for an ASCII letter.
constexpr bool IsDriveLetter(unsigned inUnit) noexcept
{
    return (inUnit >= 'A' && inUnit <= 'Z') || (inUnit >= 'a' && inUnit <= 'z');
}

} // namespace Linux
} // namespace ORL
