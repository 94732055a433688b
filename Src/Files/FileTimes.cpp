// Queries the sizes and times of files, by handle or by path.
#include <Files/FileImpl.h>

#include <ORLDebug.h>
#include <ORLPathUtils.h>

namespace ORL {

using namespace Files;
using namespace Files::Platform;

namespace {

Result GetTimeThroughFile(const UTF16String& inPath, FileAttributesFlags::Type inAttributes, unsigned __int64& outTime)
{
    constexpr FileShareModeFlags::Type kShareAll = FileShareModeFlags::kFileShare_Read
                                                   | FileShareModeFlags::kFileShare_Write
                                                   | FileShareModeFlags::kFileShare_Delete;
    File file;
    const Result result = file.Create(inPath, FileAccessFlags::kFileAccess_Read, kShareAll,
                                      FileCreateDispositionFlags::kFileCreate_OpenExisting, inAttributes, true);
    return ResultSucceeded(result) ? file.GetLastModificationTime(outTime) : result;
}

} // namespace

std::uint64_t File::PrivateImpl::GetSize() const
{
    std::uint32_t high = 0;
    const std::uint32_t low = GetFileSize_Impl(mHandle, high);
    return std::uint64_t{high} << 32 | low;
}

unsigned __int64 File::SizeOnDisk() const
{
    ORL_INPUT_CONTRACT_AT(IsOpen(), "WinFile", __LINE__);
    return mImpl->GetSize();
}

Result File::GetLastModificationTime(unsigned __int64& outTime) const
{
    ORL_INPUT_CONTRACT_AT(IsOpen(), "WinFile", __LINE__);
    std::uint64_t time = outTime;
    const Result result = ResultOf(GetLastWriteTime_Impl(mImpl->mHandle, time));
    outTime = time;
    return result;
}

Result File::SizeOnDisk(const UTF16String& inPath, unsigned __int64& outSize)
{
    std::uint64_t size = 0;
    if (GetSizeOfPath_Impl(inPath, size) != SystemErrors::kNoError) {
        return kFileNotFound;
    }
    outSize = size;
    return kSuccess;
}

Result File::GetLastModificationTime(const UTF16String& inPath, unsigned __int64& outTime)
{
    return GetTimeThroughFile(inPath, FileAttributesFlags::kFileAttribute_NoBuffering, outTime);
}

Result File::GetLastModificationTimeForFolder(const UTF16String& inPath, unsigned __int64& outTime)
{
    // A directory can be opened only with backup semantics.
    return GetTimeThroughFile(inPath,
                              PathUtils::IsDirectory(inPath) ? FileAttributesFlags::kFileAttribute_BackupSemantics
                                                             : FileAttributesFlags::kFileAttribute_NoBuffering,
                              outTime);
}

unsigned int File::GetOSFileType(const UTF16String&)
{
    return 0;
}

} // namespace ORL
