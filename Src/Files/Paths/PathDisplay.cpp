// Converts paths to the names that the shell displays to users.
#include <Files/PathForms.h>
#include <Platform/Paths.h>

#include <ORLPathUtils.h>
#include <algorithm>
#include <utility>

namespace ORL {
namespace PathUtils {

namespace {

// Paths of this length or more are not passed to the shell, whose objects accept only plain paths of limited length.
constexpr std::size_t kTooLongForShell = 261;

UTF16String DetachAll(UTF16String& ioPath)
{
    UTF16String whole;
    whole.swap(ioPath);
    return whole;
}

// Removes the leaf from a path that is too long for the shell, and returns that leaf unconverted. A path that ends in a
// backslash is returned whole and left unchanged.
UTF16String DetachLeaf(UTF16String& ioPath)
{
    const std::size_t backslash = ioPath.rfind('\\');
    if (backslash == UTF16String::npos || backslash + 1 == ioPath.size()) {
        return ioPath;
    }
    UTF16String leaf(ioPath, backslash + 1);
    ioPath.resize(backslash);
    return leaf;
}

// Returns true for \\server\share and for shorter UNC paths.
bool IsShareOrServer(const UTF16String& inPath)
{
    return inPath.compare(0, 2, TVX_UTF16("\\\\")) == 0 && std::count(inPath.begin(), inPath.end(), '\\') < 4;
}

} // namespace

UTF16String GetLeafDisplayName(UTF16String& ioPath)
{
    if (ioPath.size() >= kTooLongForShell) {
        return DetachLeaf(ioPath);
    }
    const std::size_t backslash = ioPath.rfind('\\');
    if (ioPath.size() < 4 || IsShareOrServer(ioPath) || backslash == UTF16String::npos) {
        return DetachAll(ioPath);
    }
    UTF16String name(ioPath, backslash + 1);
    const UTF16String whole = ioPath;
    ioPath.resize(backslash);
    // If the shell fails, name stays the plain leaf.
    Platform::GetShellName_Impl(whole, name);
    return name;
}

UTF16String GetLeafDisplayStringFromPath(const UTF16String& inPath)
{
    if (!IsNormalizedPath(inPath)) {
        return inPath;
    }
    UTF16String path = Win::StripUNC(inPath);
    return GetLeafDisplayName(path);
}

UTF16String GetDisplayStringFromPath(const UTF16String& inPath)
{
    if (!IsNormalizedPath(inPath)) {
        return inPath;
    }
    UTF16String path = RemoveTrailingSlash(Win::StripUNC(inPath));
    UTF16String display;
    while (!path.empty()) {
        const std::size_t size = path.size();
        UTF16String name = GetLeafDisplayName(path);
        if (path.size() == size) {
            // GetLeafDisplayName has returned the whole path, so no parents are left to display.
            path.clear();
        }
        display = display.empty() ? std::move(name) : name + UTF16String(1, '\\') + display;
    }
    return display;
}

} // namespace PathUtils
} // namespace ORL
