// Replaces a file with a finished temporary file, and generates unused temporary paths.
#include <Files/FileImpl.h>

#include <ORLDebug.h>
#include <ORLPathUtils.h>

#include <tvxcore/Text.h>

#include <cstdio>

namespace ORL {

using namespace Files;
using namespace Files::Platform;

namespace {

UTF16String Decimal(unsigned int inNumber)
{
    char text[16];
    std::snprintf(text, sizeof(text), "%u", inNumber);
    return tvxcore::utility::AsciiToUTF16(text);
}

} // namespace

Result File::SwapTempFile(const UTF16String& inTempPath, const UTF16String& inRealPath)
{
    ORL_INPUT_CONTRACT_AT(!inTempPath.empty(), "WinFile", __LINE__);
    ORL_INPUT_CONTRACT_AT(!inRealPath.empty(), "WinFile", __LINE__);
    if (inTempPath.empty() || inRealPath.empty()) {
        return kPathNotFound;
    }
    const UTF16String backup = PathUtils::ToNormalizedPath(MakeUniqueTempPath(inRealPath));
    // A backup that cannot be deleted stays on disk; the swap still succeeds.
    return ResultOf(ReplaceFile_Impl(PathUtils::ToNormalizedPath(inRealPath), PathUtils::ToNormalizedPath(inTempPath),
                                     backup, BackupDisposition::kDelete));
}

UTF16String File::MakeUniqueTempPath(const UTF16String& inPath)
{
    constexpr std::size_t kLongestName = 250;
    const UTF16String extension = PathUtils::GetExtensionPart(inPath);
    UTF16String name = PathUtils::GetFilePart(inPath);
    if (name.size() + extension.size() > kLongestName) {
        const std::size_t kept = extension.size() < kLongestName ? kLongestName - extension.size() : 0;
        name.resize(kept < name.size() ? kept : name.size());
    }
    const UTF16String stem = PathUtils::GetFullDirectoryPart(inPath) + name + TVX_UTF16("~");
    for (unsigned int counter = 1;; ++counter) {
        const UTF16String candidate = stem + Decimal(counter) + extension;
        if (!PathUtils::ExistsOnDisk(candidate)) {
            return candidate;
        }
    }
}

} // namespace ORL
