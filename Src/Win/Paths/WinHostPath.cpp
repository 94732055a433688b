// Floor: Files
#include <ORLHostPath.h>

#include "../Calls/WinText.h"

#include <Files/PathForms.h>
#include <ORLPathUtils.h>
#include <tvxcore/Text.h>
#include <utility>
#include <windows.h>

namespace ORL {
namespace PathUtils {

namespace {

using ORL::Win::AsWide;

std::string AsUTF8(const UTF16String& inText)
{
    const UTF8String text = tvxcore::utility::UTF16to8(inText);
    return std::string(text.begin(), text.end());
}

UTF16String AsUTF16(const std::string& inText)
{
    return tvxcore::utility::UTF8to16(reinterpret_cast<const unsigned char*>(inText.data()), inText.size());
}

// Returns true for an extended path on a drive or share, which has a plain form; a path on a named volume has none.
bool HasPlainForm(const UTF16String& inPath)
{
    const bool isShare = inPath.compare(0, 8, TVX_UTF16("\\\\?\\UNC\\")) == 0;
    const bool isDrive = inPath.size() > 6 && inPath[5] == ':' && inPath[6] == '\\' && IsRootedPath(inPath.substr(4));
    return isShare || (IsNormalizedPath(inPath) && isDrive);
}

} // namespace

UTF16String FromHostPath(const std::string& inHostPath)
{
    const UTF16String path = AsUTF16(inHostPath);
    if (AsUTF8(path) != inHostPath) {
        return UTF16String(); // not UTF-8; a repaired path would name a different file
    }
    const DWORD needed = ::GetFullPathNameW(AsWide(path.c_str()), 0, nullptr, nullptr);
    if (needed == 0) {
        return UTF16String();
    }
    UTF16String full(needed, 0);
    full.resize(::GetFullPathNameW(AsWide(path.c_str()), needed, AsWide(full.data()), nullptr));
    return full;
}

Result ToHostPath(const UTF16String& inPath, std::string& outHostPath)
{
    if (inPath.empty()) {
        return kPathNotFound;
    }
    const UTF16String path = HasPlainForm(inPath) ? Win::StripUNC(inPath) : inPath;
    std::string host = AsUTF8(path);
    if (AsUTF16(host) != path) {
        return kGeneralFailure; // an unpaired surrogate, which UTF-8 cannot encode
    }
    outHostPath = std::move(host);
    return kSuccess;
}

std::vector<MountPoint> GetMountPoints()
{
    std::vector<MountPoint> list;
    const DWORD drives = ::GetLogicalDrives();
    for (unsigned i = 0; i < 26; ++i) {
        if ((drives >> i & 1) != 0) {
            const unsigned short root[] = {static_cast<unsigned short>('A' + i), ':', '\\', 0};
            list.push_back({root, AsUTF8(root)});
        }
    }
    return list;
}

} // namespace PathUtils
} // namespace ORL
