#include "LinuxDriveTable.h"

#include <Core/UntilUnload.h>

#include <algorithm>

namespace ORL {
namespace Linux {

namespace {

using namespace SystemErrors;

// Constructed without allocating, and not destroyed at process exit: it exists before the first static object of a host
// is constructed and after the last one is destroyed.
UntilUnload<DriveTable> sDriveTable;

std::size_t IndexOf(unsigned inLetter) noexcept
{
    return (inLetter | 0x20u) - 'a';
}

unsigned short LowerASCII(unsigned short inUnit) noexcept
{
    return inUnit >= 'A' && inUnit <= 'Z' ? static_cast<unsigned short>(inUnit | 0x20) : inUnit;
}

bool EqualIgnoringASCIICase(const UTF16String& inLeft, const UTF16String& inRight) noexcept
{
    return std::equal(inLeft.begin(), inLeft.end(), inRight.begin(), inRight.end(),
                      [](unsigned short a, unsigned short b) { return LowerASCII(a) == LowerASCII(b); });
}

// Returns true if inFolder is inHostPath or one of its ancestors.
bool Holds(const std::string& inFolder, const std::string& inHostPath) noexcept
{
    if (inFolder.empty() || inHostPath.compare(0, inFolder.size(), inFolder) != 0) {
        return false;
    }
    return inFolder == "/" || inHostPath.size() == inFolder.size() || inHostPath[inFolder.size()] == '/';
}

UTF16String DriveOfIndex(std::size_t inIndex)
{
    const unsigned short drive[] = {static_cast<unsigned short>('A' + inIndex), ':'};
    return UTF16String(drive, 2);
}

} // namespace

DriveTable& TheDriveTable() noexcept
{
    return sDriveTable.Get();
}

DriveTable::DriveTable() noexcept
{
    mDrives[IndexOf('C')] = "/";
}

SystemError DriveTable::MountDrive(char inLetter, const std::string& inFolder)
{
    if (!IsDriveLetter(static_cast<unsigned char>(inLetter))) {
        return kErrorInvalidParameter;
    }
    const MutexLock lock(mMutex);
    std::string& folder = mDrives[IndexOf(static_cast<unsigned char>(inLetter))];
    if (!folder.empty()) {
        return kErrorAlreadyExists;
    }
    folder = inFolder;
    return kNoError;
}

SystemError DriveTable::UnmountDrive(char inLetter)
{
    if (!IsDriveLetter(static_cast<unsigned char>(inLetter))) {
        return kErrorInvalidParameter;
    }
    const MutexLock lock(mMutex);
    std::string& folder = mDrives[IndexOf(static_cast<unsigned char>(inLetter))];
    if (folder.empty()) {
        return kErrorPathNotFound;
    }
    folder.clear();
    return kNoError;
}

std::vector<DriveTable::Share>::const_iterator DriveTable::Find(const UTF16String& inShare) const
{
    return std::find_if(mShares.begin(), mShares.end(),
                        [&inShare](const Share& share) { return EqualIgnoringASCIICase(share.first, inShare); });
}

SystemError DriveTable::MountShare(const UTF16String& inShare, const std::string& inFolder)
{
    const MutexLock lock(mMutex);
    if (Find(inShare) != mShares.end()) {
        return kErrorAlreadyExists;
    }
    mShares.emplace_back(inShare, inFolder);
    return kNoError;
}

SystemError DriveTable::UnmountShare(const UTF16String& inShare)
{
    const MutexLock lock(mMutex);
    const auto found = Find(inShare);
    if (found == mShares.end()) {
        return kErrorPathNotFound;
    }
    mShares.erase(found);
    return kNoError;
}

bool DriveTable::FindDrive(unsigned short inLetter, std::string& outFolder) const
{
    const MutexLock lock(mMutex);
    const std::string& folder = mDrives[IndexOf(inLetter)];
    if (folder.empty()) {
        return false;
    }
    outFolder = folder;
    return true;
}

bool DriveTable::FindShare(const UTF16String& inShare, std::string& outFolder) const
{
    const MutexLock lock(mMutex);
    const auto found = Find(inShare);
    if (found == mShares.end()) {
        return false;
    }
    outFolder = found->second;
    return true;
}

bool DriveTable::FindFolderAbove(const std::string& inHostPath, UTF16String& outRoot, std::string& outRest) const
{
    const MutexLock lock(mMutex);
    std::size_t longest = 0;
    const auto consider = [&](const std::string& inFolder) {
        const bool isLonger = inFolder.size() > longest && Holds(inFolder, inHostPath);
        longest = isLonger ? inFolder.size() : longest;
        return isLonger;
    };
    for (std::size_t i = 0; i < mDrives.size(); ++i) {
        if (consider(mDrives[i])) {
            outRoot = DriveOfIndex(i);
        }
    }
    for (const Share& share : mShares) {
        if (consider(share.second)) {
            outRoot = share.first;
        }
    }
    outRest = inHostPath.substr(longest);
    return longest != 0;
}

std::vector<PathUtils::MountPoint> DriveTable::List() const
{
    const MutexLock lock(mMutex);
    std::vector<PathUtils::MountPoint> list;
    for (std::size_t i = 0; i < mDrives.size(); ++i) {
        if (!mDrives[i].empty()) {
            list.push_back({DriveOfIndex(i) += '\\', mDrives[i]});
        }
    }
    for (const Share& share : mShares) {
        list.push_back({UTF16String(share.first) += '\\', share.second});
    }
    return list;
}

} // namespace Linux
} // namespace ORL
