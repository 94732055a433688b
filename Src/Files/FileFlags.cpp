// Converts the library's flags to the system's flags.
#include <Files/FileImpl.h>

namespace ORL {
namespace Files {

namespace {

using namespace Platform;

struct Word
{
    int mFlag;
    std::uint32_t mSystem;
};

constexpr Word kAccess[] = {
    {FileAccessFlags::kFileAccess_Read, kGenericRead},
    {FileAccessFlags::kFileAccess_Write, kGenericWrite},
    {FileAccessFlags::kFileAccess_Execute, kGenericExecute},
};

constexpr Word kShareModes[] = {
    {FileShareModeFlags::kFileShare_Read, kShareRead},
    {FileShareModeFlags::kFileShare_Write, kShareWrite},
    {FileShareModeFlags::kFileShare_Delete, kShareDelete},
};

constexpr Word kDispositions[] = {
    {FileCreateDispositionFlags::kFileCreate_New, kCreateNew},
    {FileCreateDispositionFlags::kFileCreate_Always, kCreateAlways},
    {FileCreateDispositionFlags::kFileCreate_OpenAlways, kOpenAlways},
    {FileCreateDispositionFlags::kFileCreate_OpenExisting, kOpenExisting},
    {FileCreateDispositionFlags::kFileCreate_TruncateExisting, kTruncateExisting},
};

constexpr Word kAttributes[] = {
    {FileAttributesFlags::kFileAttribute_Normal, kAttributeNormal},
    {FileAttributesFlags::kFileAttribute_SequentialScan, kFlagSequentialScan},
    {FileAttributesFlags::kFileAttribute_NoBuffering, kFlagNoBuffering},
    {FileAttributesFlags::kFileAttribute_BackupSemantics, kFlagBackupSemantics},
};

template <std::size_t Count>
std::uint32_t Join(const Word (&inWords)[Count], int inFlags) noexcept
{
    std::uint32_t system = 0;
    for (const Word& word : inWords) {
        system |= (inFlags & word.mFlag) != 0 ? word.mSystem : 0;
    }
    return system;
}

} // namespace

std::uint32_t SystemAccess(FileAccessFlags::Type inAccess) noexcept
{
    return Join(kAccess, inAccess);
}

std::uint32_t SystemShareMode(FileShareModeFlags::Type inShareMode) noexcept
{
    return Join(kShareModes, inShareMode);
}

std::uint32_t SystemDisposition(FileCreateDispositionFlags::Type inDisposition) noexcept
{
    return Join(kDispositions, inDisposition);
}

std::uint32_t SystemFlags(FileAttributesFlags::Type inAttributes) noexcept
{
    return Join(kAttributes, inAttributes);
}

std::uint32_t SystemMoveMethod(FilePointerMoveMethod::Type inMethod) noexcept
{
    switch (inMethod) {
    case FilePointerMoveMethod::kFilePointer_Begin: return kFromBegin;
    case FilePointerMoveMethod::kFilePointer_End: return kFromEnd;
    default: return kFromCurrent;
    }
}

Result ResultOf(SystemError inError)
{
    return inError == SystemErrors::kNoError ? kSuccess : Win::SystemErrorToORLResult(inError);
}

} // namespace Files
} // namespace ORL
