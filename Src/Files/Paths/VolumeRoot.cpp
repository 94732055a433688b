#include <Files/VolumeQueries.h>

#include <ORLPathUtils.h>

namespace ORL {
namespace DiskUtils {

namespace {

bool BeginsWith(const UTF16String& inPath, const unsigned short* inText)
{
    return inPath.compare(0, std::char_traits<unsigned short>::length(inText), inText) == 0;
}

// Returns the server and share part of \\?\UNC\server\share\..., or an empty string if the share is missing.
UTF16String ServerAndShare(const UTF16String& inPath)
{
    constexpr std::size_t kServer = 8;
    const std::size_t afterServer = inPath.find('\\', kServer);
    if (afterServer == UTF16String::npos || afterServer == kServer) {
        return UTF16String();
    }
    const std::size_t afterShare = inPath.find('\\', afterServer + 1);
    if (afterShare != UTF16String::npos) {
        return UTF16String(inPath, 0, afterShare + 1);
    }
    return afterServer + 1 < inPath.size() ? PathUtils::AddTrailingSlash(inPath) : UTF16String();
}

bool IsTwoBackslashes(const UTF16String& inPath)
{
    return inPath == TVX_UTF16("\\\\");
}

// Drops components from the end until only a root is left, or nothing more can be dropped.
void WalkUpToRoot(UTF16String& ioPath)
{
    while (!IsTwoBackslashes(ioPath) && !Platform::IsRoot_Impl(ioPath)) {
        const std::size_t backslash = ioPath.size() < 2 ? UTF16String::npos : ioPath.rfind('\\', ioPath.size() - 2);
        if (backslash == UTF16String::npos) {
            return;
        }
        ioPath.resize(backslash);
    }
}

} // namespace

UTF16String GetVolumeRootPath(const UTF16String& inPath)
{
    if (inPath.empty()) {
        return inPath;
    }
    UTF16String path = PathUtils::ToNormalizedPath(inPath);
    if (BeginsWith(path, TVX_UTF16("\\\\?\\")) && path.size() >= 7 && path[5] == ':' && path[6] == '\\') {
        return UTF16String(path, 0, 7);
    }
    if (BeginsWith(path, TVX_UTF16("\\\\?\\UNC\\"))) {
        UTF16String share = ServerAndShare(path);
        if (!share.empty()) {
            return share;
        }
    }
    WalkUpToRoot(path);
    return PathUtils::AddTrailingSlash(path);
}

} // namespace DiskUtils
} // namespace ORL
