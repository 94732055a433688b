#include <Files/WindowsPathText.h>

#include <algorithm>
#include <cstddef>
#include <tvxcore/Text.h>
#include <utility>
#include <vector>

namespace ORL {
namespace PathUtils {
namespace WindowsText {

namespace {

using Unit = unsigned short;

UTF16String UpToTerminator(const UTF16String& inText)
{
    return UTF16String(inText.c_str());
}

bool IsUNC(const UTF16String& inPath) noexcept
{
    return inPath.size() >= 2 && inPath[0] == '\\' && inPath[1] == '\\';
}

bool HasDrive(const UTF16String& inPath) noexcept
{
    return inPath.size() >= 2 && inPath[1] == ':';
}

bool EqualIgnoringCase(Unit inLeft, Unit inRight)
{
    if (inLeft == inRight) {
        return true;
    }
    return tvxcore::utility::FoldCase(UTF16String(1, inLeft)) == tvxcore::utility::FoldCase(UTF16String(1, inRight));
}

} // namespace

UTF16String MakePath(const UTF16String& inDrive, const UTF16String& inDirectory, const UTF16String& inFile,
                     const UTF16String& inExtension)
{
    UTF16String path;
    path.reserve(inDirectory.size() + inFile.size() + inExtension.size() + 5);
    if (*inDrive.c_str() != 0) {
        path += inDrive[0];
        path += ':';
    }
    if (*inDirectory.c_str() != 0) {
        path += inDirectory.c_str();
        if (path.back() != '\\' && path.back() != '/') {
            path += '\\';
        }
    }
    path += inFile.c_str();
    if (*inExtension.c_str() != 0) {
        if (inExtension[0] != '.') {
            path += '.';
        }
        path += inExtension.c_str();
    }
    return path;
}

const unsigned short* FindNextComponent(const unsigned short* inPath) noexcept
{
    if (inPath == nullptr || *inPath == 0) {
        return nullptr;
    }
    while (*inPath != 0 && *inPath != '\\') {
        ++inPath;
    }
    if (*inPath == 0) {
        return inPath;
    }
    return inPath + (inPath[1] == '\\' ? 2 : 1);
}

namespace {

// Returns the length of the common prefix, which ends after a whole component.
std::size_t CommonPrefix(const UTF16String& inLeft, const UTF16String& inRight)
{
    if (IsUNC(inLeft) != IsUNC(inRight)) {
        return 0;
    }
    const auto ends = [](const UTF16String& inPath, std::size_t inAt) {
        return inAt >= inPath.size() || inPath[inAt] == '\\';
    };
    std::size_t length = 0;
    for (std::size_t i = IsUNC(inLeft) ? 2 : 0;; ++i) {
        if (ends(inLeft, i) && ends(inRight, i)) {
            length = i;
        }
        if (i >= inLeft.size() || i >= inRight.size() || !EqualIgnoringCase(inLeft[i], inRight[i])) {
            break;
        }
    }
    // A prefix of two units is assumed to be a drive, whose root includes the backslash.
    return length == 2 ? 3 : length;
}

// Returns a relative path with one ".." for each component from inAt on.
UTF16String ParentSteps(const UTF16String& inFrom, std::size_t inAt)
{
    UTF16String steps;
    const Unit* from = inFrom.c_str() + std::min(inAt, inFrom.size());
    if (*from == 0) {
        steps = TVX_UTF16(".");
    }
    if (*from == '\\') {
        ++from;
    }
    while (*from != 0) {
        from = FindNextComponent(from);
        steps += *from != 0 ? TVX_UTF16("..\\") : TVX_UTF16("..");
    }
    return steps;
}

} // namespace

bool RelativePathTo(const UTF16String& inFrom, const UTF16String& inTo, UTF16String& outRelative)
{
    const UTF16String from = UpToTerminator(inFrom);
    const UTF16String to = UpToTerminator(inTo);
    const std::size_t common = CommonPrefix(from, to);
    if (common == 0) {
        return false;
    }
    UTF16String relative = ParentSteps(from, common);
    if (common < to.size()) {
        // Keeps the backslash before the rest of the target.
        relative += to.substr(to[common] == '\\' ? common : common - 1);
    }
    if (relative.size() >= kMaxPath) {
        return false;
    }
    outRelative = std::move(relative);
    return true;
}

bool IsRoot(const UTF16String& inPath) noexcept
{
    const std::size_t size = inPath.size();
    if (IsUNC(inPath)) {
        return std::count(inPath.begin() + 2, inPath.end(), Unit('\\')) <= 1;
    }
    return (size == 1 && inPath[0] == '\\') || (size == 3 && inPath[1] == ':' && inPath[2] == '\\');
}

namespace {

// An empty name, "." and ".." are not share names.
bool IsShareName(const UTF16String& inPath, std::size_t inFrom, std::size_t inEnd) noexcept
{
    return inEnd - inFrom > 2
           || !std::all_of(inPath.begin() + static_cast<std::ptrdiff_t>(inFrom),
                           inPath.begin() + static_cast<std::ptrdiff_t>(inEnd),
                           [](Unit inUnit) { return inUnit == '.'; });
}

// Returns the length of the root, which ".." cannot remove, including its backslash: "X:\", "\\server\share\", "\".
std::size_t RootLength(const UTF16String& inPath)
{
    if (IsUNC(inPath)) {
        const std::size_t afterServer = inPath.find('\\', 2);
        if (afterServer == UTF16String::npos) {
            return inPath.size();
        }
        const std::size_t shareEnd = std::min(inPath.find('\\', afterServer + 1), inPath.size());
        return IsShareName(inPath, afterServer + 1, shareEnd) ? std::min(shareEnd + 1, inPath.size()) : afterServer + 1;
    }
    const std::size_t drive = HasDrive(inPath) ? 2 : 0;
    return drive + (inPath.size() > drive && inPath[drive] == '\\' ? 1 : 0);
}

// Removes the last component and the backslash after it, but never a part of the root.
void GoUp(UTF16String& ioPath, std::size_t inRoot)
{
    if (ioPath.size() > inRoot) {
        ioPath.resize(std::max(inRoot, ioPath.rfind('\\', ioPath.size() - 2) + 1));
    }
}

// Resolves "." and ".." after the root. A ".." or "." at the end leaves no trailing backslash.
UTF16String Canonical(const UTF16String& inPath)
{
    const std::size_t root = RootLength(inPath);
    UTF16String path;
    path.reserve(inPath.size());
    path.assign(inPath, 0, root);
    for (std::size_t at = root; at < inPath.size();) {
        const std::size_t end = std::min(inPath.find('\\', at), inPath.size());
        const bool isUp = end - at == 2 && inPath[at] == '.' && inPath[at + 1] == '.';
        const bool isDots = isUp || (end - at == 1 && inPath[at] == '.');
        if (isUp) {
            GoUp(path, root);
        }
        if (!isDots) {
            path.append(inPath, at, end - at);
        }
        if (!isDots && end < inPath.size()) {
            path += '\\';
        }
        if (isDots && end == inPath.size() && path.size() > root) {
            path.pop_back();
        }
        at = end + 1;
    }
    if (path.size() == 2 && HasDrive(path)) {
        path += '\\';
    }
    return path;
}

UTF16String Join(const UTF16String& inBase, const UTF16String& inMore)
{
    UTF16String path = inBase;
    if (!path.empty() && path.back() != '\\') {
        path += '\\';
    }
    return path += inMore;
}

} // namespace

bool Combine(const UTF16String& inBase, const UTF16String& inMore, UTF16String& outPath)
{
    const UTF16String base = UpToTerminator(inBase);
    const UTF16String more = UpToTerminator(inMore);
    UTF16String joined;
    if (more.empty()) {
        joined = base;
    } else if (HasDrive(more) || IsUNC(more)) {
        joined = more;
    } else if (more[0] == '\\') {
        joined = Join(UTF16String(base, 0, RootLength(base)), more.substr(1));
    } else {
        joined = Join(base, more);
    }
    if (joined.size() >= kMaxPath) {
        return false;
    }
    outPath = Canonical(joined);
    return true;
}

} // namespace WindowsText
} // namespace PathUtils
} // namespace ORL
