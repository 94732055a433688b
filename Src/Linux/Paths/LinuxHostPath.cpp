#include "LinuxHostPath.h"

#include "../Calls/LinuxErrors.h"
#include "LinuxDriveTable.h"
#include "LinuxNames.h"

#include <ORLHostPath.h>
#include <algorithm>
#include <boost/container/small_vector.hpp>
#include <cerrno>
#include <climits>
#include <utility>

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

// Few paths are deeper, so most need no allocation.
using Names = boost::container::small_vector<Name, 24>;

// Few paths are longer, so most grow without reallocating.
constexpr std::size_t kUsualSize = 128;

bool BeginsWith(const UTF16String& inPath, const char* inText) noexcept
{
    const std::size_t size = std::char_traits<char>::length(inText);
    return inPath.size() >= size && std::equal(inText, inText + size, inPath.begin());
}

// Splits the path at its separators. Returns at least one component; components may be empty.
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

// Returns the end of the component that begins at inFrom.
std::size_t EndOfName(const UTF16String& inPath, std::size_t inFrom) noexcept
{
    return std::min(inPath.find('\\', inFrom), inPath.size());
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
    // On disk "." and ".." refer to other folders, so they are not valid entry names.
    const std::size_t size = ioPath.size() - start;
    const bool leadsAway = size <= 2 && ioPath[start] == '.' && ioPath[start + size - 1] == '.';
    return leadsAway ? kErrorInvalidName : kNoError;
}

// Stores inFolder, to which the names have been appended, as the path.
void Finish(std::string&& inFolder, bool inHasNames, bool inHasTrailingSeparator, HostPath& outHostPath)
{
    outHostPath.mIsRoot = !inHasNames;
    outHostPath.mHasTrailingSeparator = inHasTrailingSeparator && inHasNames;
    if (outHostPath.mHasTrailingSeparator) {
        inFolder += '/';
    }
    outHostPath.mPath = std::move(inFolder);
}

// Finds the folder of \\server\share and the end of the share's name. The server's name begins at inServer.
SystemError FindShareFolder(const UTF16String& inPath, std::size_t inServer, std::string& outFolder,
                            std::size_t& outEnd)
{
    const std::size_t serverEnd = EndOfName(inPath, inServer);
    outEnd = EndOfName(inPath, serverEnd + 1);
    if (serverEnd <= inServer || outEnd <= serverEnd + 1) {
        return kErrorNetworkPathNotFound;
    }
    UTF16String share(2, '\\');
    share.append(inPath, inServer, outEnd - inServer);
    return TheDriveTable().FindShare(share, outFolder) ? kNoError : kErrorNetworkPathNotFound;
}

// Finds the folder of \\?\X: and the end of its name.
SystemError FindDriveFolder(const UTF16String& inPath, std::string& outFolder, std::size_t& outEnd)
{
    constexpr std::size_t kDrive = 4;
    outEnd = EndOfName(inPath, kDrive);
    if (outEnd < kDrive + 2 || !IsDriveLetter(inPath[kDrive]) || inPath[kDrive + 1] != ':') {
        return kErrorPathNotFound;
    }
    if (outEnd > kDrive + 2 || outEnd == inPath.size()) {
        return kErrorInvalidName;
    }
    return TheDriveTable().FindDrive(inPath[kDrive], outFolder) ? kNoError : kErrorPathNotFound;
}

// Resolves the extended form without normalising it: only its last component may be empty.
SystemError ResolveExtended(const UTF16String& inPath, HostPath& outHostPath)
{
    constexpr std::size_t kServer = 8;
    const bool isShare = BeginsWith(inPath, "\\\\?\\UNC") && EndOfName(inPath, 4) == kServer - 1;
    std::string folder;
    folder.reserve(kUsualSize);
    std::size_t end = 0; // number of units already parsed
    SystemError error = isShare ? FindShareFolder(inPath, kServer, folder, end) : FindDriveFolder(inPath, folder, end);
    bool hasNames = false;
    while (error == kNoError && end + 1 < inPath.size()) {
        const std::size_t start = end + 1;
        end = EndOfName(inPath, start);
        error = AddName(folder, {inPath.data() + start, end - start});
        hasNames = true;
    }
    if (error == kNoError) {
        Finish(std::move(folder), hasNames, end < inPath.size(), outHostPath);
    }
    return error;
}

// In a plain path, removes trailing blanks and dots from the last component, and one trailing dot from each of the
// other components.
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

// Resolves the part after the root. Returns true if the path ends in a separator.
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
    folder.reserve(kUsualSize);
    std::size_t rootEnd = 2;
    if (BeginsWith(inPath, "\\\\")) {
        const SystemError error = FindShareFolder(inPath, 2, folder, rootEnd);
        if (error != kNoError) {
            return error;
        }
    } else if (!TheDriveTable().FindDrive(inPath[0], folder)) {
        return kErrorPathNotFound;
    }
    Names names = Split(inPath, rootEnd);
    const bool trailing = Normalize(names);
    for (const Name& name : names) {
        const SystemError error = AddName(folder, name);
        if (error != kNoError) {
            return error;
        }
    }
    Finish(std::move(folder), !names.empty(), trailing, outHostPath);
    return kNoError;
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

namespace {

constexpr std::size_t kLongestPath = PATH_MAX - 1;

// Opens the folders along a long path until the rest is short enough.
SystemError OpenLongPrefix(std::string& ioRest, Descriptor& outFolder)
{
    constexpr std::size_t kFolderPrefixSize = 64; // "/proc/self/fd/" and a number
    while (ioRest.size() > kLongestPath - kFolderPrefixSize) {
        const std::size_t end = ioRest.rfind('/', kLongestPath);
        if (end == std::string::npos || end == 0) {
            return kErrorInvalidName; // a single component exceeds the limit
        }
        const std::string way(ioRest, 0, end);
        Descriptor next = OpenByName(outFolder ? outFolder.Get() : AT_FDCWD, way.c_str(), O_PATH | O_DIRECTORY);
        if (!next) {
            return errno == ENOENT ? kErrorPathNotFound : SystemErrorFromErrno(errno);
        }
        outFolder = std::move(next);
        ioRest.erase(0, end + 1);
    }
    return kNoError;
}

} // namespace

SystemError ResolveToUsablePath(const UTF16String& inPath, HostPath& outHostPath)
{
    HostPath path;
    SystemError error = ResolveHostPath(inPath, path);
    if (error == kNoError && path.mPath.size() > kLongestPath) {
        const auto folder = std::make_shared<Descriptor>();
        std::string rest = path.mPath;
        error = OpenLongPrefix(rest, *folder);
        path.mWhole = std::move(path.mPath);
        path.mPath = "/proc/self/fd/" + std::to_string(folder->Get()) + "/" + rest;
        path.mFolder = folder;
    }
    if (error == kNoError) {
        outHostPath = std::move(path);
    }
    return error;
}

} // namespace Linux
} // namespace ORL
