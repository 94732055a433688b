// Converts between the plain and the extended form of a path.
#include <Files/PathForms.h>

#include <ORLDebug.h>
#include <ORLPathUtils.h>
#include <algorithm>
#include <string>
#include <tvxcore/Text.h>

namespace ORL {
namespace PathUtils {

namespace {

bool BeginsWith(const UTF16String& inPath, const char* inText) noexcept
{
    const std::size_t size = std::char_traits<char>::length(inText);
    return inPath.size() >= size && std::equal(inText, inText + size, inPath.begin());
}

// Returns true if an ASCII letter followed by ":" is at inAt.
bool HasDriveAt(const UTF16String& inPath, std::size_t inAt) noexcept
{
    if (inPath.size() < inAt + 2 || inPath[inAt + 1] != ':') {
        return false;
    }
    const unsigned short letter = inPath[inAt];
    return (letter >= 'A' && letter <= 'Z') || (letter >= 'a' && letter <= 'z');
}

UTF16String Extended(const UTF16String& inPath)
{
    UTF16String extended;
    extended.reserve(4 + inPath.size());
    return extended.append(TVX_UTF16("\\\\?\\"), 4).append(inPath);
}

std::string StripUNCMessage(const UTF16String& inPath)
{
    const UTF8String path = tvxcore::utility::UTF16to8(inPath);
    return std::string("Path '") + std::string(path.begin(), path.end()) + "' is not a normative UNC path\r\n";
}

} // namespace

bool IsRootedPath(const UTF16String& inPath) noexcept
{
    return BeginsWith(inPath, "\\\\") || HasDriveAt(inPath, 0);
}

bool IsDriveRootPath(const UTF16String& inPath) noexcept
{
    return (inPath.size() == 2 && HasDriveAt(inPath, 0))
           || (inPath.size() == 6 && BeginsWith(inPath, "\\\\?\\") && HasDriveAt(inPath, 4));
}

bool IsNormalizedPath(const UTF16String& inFullPath)
{
    ORL_INPUT_CONTRACT_AT(IsValidPath(inFullPath), "WinPathUtils", __LINE__);
    return !IsDriveRootPath(inFullPath) && BeginsWith(inFullPath, "\\\\?\\");
}

UTF16String ToNormalizedPath(const UTF16String& inFullPath)
{
    if (IsNormalizedPath(inFullPath)) {
        return inFullPath;
    }
    if (IsDriveRootPath(inFullPath)) {
        return (inFullPath.size() == 2 ? Extended(inFullPath) : inFullPath) + UTF16String(1, '\\');
    }
    if (BeginsWith(inFullPath, "\\\\")) {
        return UTF16String(TVX_UTF16("\\\\?\\UNC")).append(inFullPath, 1, UTF16String::npos);
    }
    return HasDriveAt(inFullPath, 0) ? Extended(inFullPath) : inFullPath;
}

UTF16String Win::StripUNC(const UTF16String& inPath)
{
    if (BeginsWith(inPath, "\\\\?\\UNC\\")) {
        return UTF16String(inPath).erase(1, 6);
    }
    if (BeginsWith(inPath, "\\\\?\\") && HasDriveAt(inPath, 4) && inPath.size() > 6 && inPath[6] == '\\') {
        return UTF16String(inPath, 4);
    }
    ORL_ASSERT_MESSAGE_AT(false, "!\"Non-normative UNC path detected\"", StripUNCMessage(inPath).c_str(),
                          "WinPathUtils", __LINE__, "ORL::PathUtils::Win::StripUNC");
    return UTF16String();
}

} // namespace PathUtils
} // namespace ORL
