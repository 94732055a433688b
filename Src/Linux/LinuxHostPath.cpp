#include "LinuxHostPath.h"

#include "LinuxDriveTable.h"
#include "LinuxNames.h"

#include <ORLHostPath.h>
#include <algorithm>
#include <boost/container/small_vector.hpp>

namespace ORL {
namespace Linux {

namespace {

using namespace SystemErrors;
using Unit = unsigned short;

struct Name
{
    const Unit* mUnits;
    std::size_t mCount;

    bool Is(const char* inText) const noexcept
    {
        const std::size_t size = std::char_traits<char>::length(inText);
        return mCount == size && std::equal(inText, inText + size, mUnits);
    }
    Unit Last() const noexcept { return mUnits[mCount - 1]; }
};

// Few paths go deeper, and no memory is asked for up to here.
using Names = boost::container::small_vector<Name, 24>;

bool BeginsWith(const UTF16String& inPath, const char* inText) noexcept
{
    const std::size_t size = std::char_traits<char>::length(inText);
    return inPath.size() >= size && std::equal(inText, inText + size, inPath.begin());
}

// What stands between separators, empty names included. Always at least one.
Names Split(const UTF16String& inPath, std::size_t inFrom)
{
    Names names;
    const Unit* start = inPath.data() + inFrom;
    const Unit* const end = inPath.data() + inPath.size();
    for (const Unit* unit = start;; ++unit) {
        if (unit == end || *unit == '\\') {
            names.push_back({start, static_cast<std::size_t>(unit - start)});
            start = unit + 1;
        }
        if (unit == end) {
            return names;
        }
    }
}

SystemError AddName(std::string& ioPath, const Name& inName)
{
    const SystemError error = CheckName(inName.mUnits, inName.mCount);
    if (error != kNoError) {
        return error;
    }
    if (ioPath.back() != '/') {
        ioPath += '/';
    }
    const std::size_t start = ioPath.size();
    AppendBytesOfName(ioPath, inName.mUnits, inName.mCount);
    // "." and ".." lead elsewhere on disk and name no entry.
    const std::size_t size = ioPath.size() - start;
    const bool leadsAway = size <= 2 && ioPath[start] == '.' && ioPath[start + size - 1] == '.';
    return leadsAway ? kErrorInvalidName : kNoError;
}

SystemError Build(std::string inFolder, const Names& inNames, bool inTrailing, HostPath& outHostPath)
{
    inFolder.reserve(128);
    for (const Name& name : inNames) {
        const SystemError error = AddName(inFolder, name);
        if (error != kNoError) {
            return error;
        }
    }
    outHostPath.mIsRoot = inNames.empty();
    outHostPath.mHasTrailingSeparator = inTrailing && !inNames.empty();
    if (outHostPath.mHasTrailingSeparator) {
        inFolder += '/';
    }
    outHostPath.mPath = std::move(inFolder);
    return kNoError;
}

// The folder of \\server\share, where inNames begins with server and share.
SystemError FindShareFolder(const Names& inNames, std::string& outFolder)
{
    if (inNames.size() < 2 || inNames[0].mCount == 0 || inNames[1].mCount == 0) {
        return kErrorNetworkPathNotFound;
    }
    UTF16String share(2, '\\');
    share.append(inNames[0].mUnits, inNames[0].mCount);
    share += '\\';
    share.append(inNames[1].mUnits, inNames[1].mCount);
    return TheDriveTable().FindShare(share, outFolder) ? kNoError : kErrorNetworkPathNotFound;
}

// The form that is taken as it stands: only its last name may be empty.
SystemError ResolveExtended(const UTF16String& inPath, HostPath& outHostPath)
{
    Names names = Split(inPath, 4);
    std::string folder;
    std::size_t rootNames = 1;
    if (names.front().Is("UNC")) {
        names.erase(names.begin());
        rootNames = 2;
        const SystemError error = FindShareFolder(names, folder);
        if (error != kNoError) {
            return error;
        }
    } else {
        const Name& drive = names.front();
        if (drive.mCount < 2 || !IsDriveLetter(drive.mUnits[0]) || drive.mUnits[1] != ':') {
            return kErrorPathNotFound;
        }
        if (drive.mCount > 2 || names.size() == 1) {
            return kErrorInvalidName;
        }
        if (!TheDriveTable().FindDrive(drive.mUnits[0], folder)) {
            return kErrorPathNotFound;
        }
    }
    names.erase(names.begin(), names.begin() + static_cast<std::ptrdiff_t>(rootNames));
    const bool trailing = !names.empty() && names.back().mCount == 0;
    if (trailing) {
        names.pop_back();
    }
    return Build(std::move(folder), names, trailing, outHostPath);
}

// A plain path loses the blanks and dots behind its last name, and one single dot behind each other name.
void Trim(Name& ioName, bool inIsLast) noexcept
{
    if (inIsLast) {
        while (ioName.mCount != 0 && (ioName.Last() == ' ' || ioName.Last() == '.')) {
            --ioName.mCount;
        }
    } else if (ioName.mCount > 1 && ioName.Last() == '.' && ioName.mUnits[ioName.mCount - 2] != '.') {
        --ioName.mCount;
    }
}

// Resolves what stands behind the root. Answers whether the path ends in a separator.
bool Normalize(Names& ioNames)
{
    Names names;
    bool trailing = false;
    for (std::size_t i = 0; i < ioNames.size(); ++i) {
        Name name = ioNames[i];
        const bool isLast = i + 1 == ioNames.size();
        if (name.Is("..")) {
            if (!names.empty()) {
                names.pop_back();
            }
            continue;
        }
        if (name.Is(".")) {
            continue;
        }
        Trim(name, isLast);
        if (name.mCount != 0) {
            names.push_back(name);
        } else {
            trailing = isLast;
        }
    }
    ioNames = std::move(names);
    return trailing;
}

SystemError ResolveRooted(const UTF16String& inPath, HostPath& outHostPath)
{
    std::string folder;
    Names names = Split(inPath, 2);
    if (BeginsWith(inPath, "\\\\")) {
        const SystemError error = FindShareFolder(names, folder);
        if (error != kNoError) {
            return error;
        }
        names.erase(names.begin(), names.begin() + 2);
    } else if (!TheDriveTable().FindDrive(inPath[0], folder)) {
        return kErrorPathNotFound;
    }
    const bool trailing = Normalize(names);
    return Build(std::move(folder), names, trailing, outHostPath);
}

bool IsRooted(const UTF16String& inPath) noexcept
{
    return BeginsWith(inPath, "\\\\") || (inPath.size() >= 2 && IsDriveLetter(inPath[0]) && inPath[1] == ':');
}

// "\x" starts at the root of the current folder's drive, "x" in the current folder.
UTF16String FromCurrentFolder(const UTF16String& inPath)
{
    UTF16String start = PathUtils::Linux::FromHostPath(".");
    if (start.empty()) {
        return start;
    }
    if (inPath[0] == '\\') {
        const bool isShare = start[0] == '\\';
        const std::size_t rootEnd = isShare ? start.find('\\', start.find('\\', 2) + 1) : 2;
        start.resize(std::min(rootEnd, start.size()));
    }
    start += '\\';
    return start += inPath;
}

} // namespace

SystemError ResolveHostPath(const UTF16String& inPath, HostPath& outHostPath)
{
    if (inPath.empty()) {
        return kErrorPathNotFound;
    }
    if (BeginsWith(inPath, "\\\\?\\")) {
        return ResolveExtended(inPath, outHostPath);
    }
    UTF16String path = inPath;
    std::replace(path.begin(), path.end(), Unit('/'), Unit('\\'));
    if (!IsRooted(path)) {
        path = FromCurrentFolder(path);
    }
    return path.empty() ? kErrorPathNotFound : ResolveRooted(path, outHostPath);
}

} // namespace Linux
} // namespace ORL
