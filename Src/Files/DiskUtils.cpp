#include <ORLDiskUtils.h>

#include <Files/VolumeQueries.h>

namespace ORL {
namespace DiskUtils {

namespace {

Platform::Volume VolumeOf(const UTF16String& inPath)
{
    return Platform::Volume{GetVolumeRootPath(inPath), inPath};
}

Result ResultOf(SystemError inError)
{
    return inError == SystemErrors::kNoError ? kSuccess : Win::SystemErrorToORLResult(inError);
}

} // namespace

unsigned __int64 GetFreeSpaceFromPath(const UTF16String& inPath)
{
    unsigned __int64 bytes = 0;
    return Platform::GetFreeSpace_Impl(VolumeOf(inPath), bytes) == SystemErrors::kNoError ? bytes : 0;
}

Result GetEfficientDiskBufferSizeFromPath(const UTF16String& inPath, unsigned int& outSize)
{
    unsigned int bytesPerSector = 0;
    const SystemError error = Platform::GetSectorSize_Impl(VolumeOf(inPath), bytesPerSector);
    outSize = bytesPerSector;
    return ResultOf(error);
}

Result GetMaxFileSize(const UTF16String& inPath, unsigned __int64& outSize)
{
    return GetMaxFileSize(inPath, outSize, {&Platform::GetFreeSpace_Impl, &Platform::GetFileSystemName_Impl});
}

Result GetMaxFileSize(const UTF16String& inPath, unsigned __int64& outSize, const VolumeQueries& inQueries)
{
    constexpr unsigned __int64 kLargestFATFile = 0xFFFFFFFF;
    const Platform::Volume volume = VolumeOf(inPath);
    unsigned __int64 free = 0;
    SystemError error = inQueries.mGetFreeSpace(volume, free);
    if (error != SystemErrors::kNoError) {
        return ResultOf(error);
    }
    // Every file system supports files of this size, so its name is queried only if more space is free.
    if (free > kLargestFATFile) {
        UTF16String name;
        error = inQueries.mGetFileSystemName(volume, name);
        if (error != SystemErrors::kNoError) {
            return ResultOf(error);
        }
        if (name.compare(0, 3, TVX_UTF16("FAT")) == 0) {
            free = kLargestFATFile;
        }
    }
    outSize = free;
    return kSuccess;
}

Result GetFileSystemName(const UTF16String& inPath, UTF16String& outName)
{
    return ResultOf(Platform::GetFileSystemName_Impl(VolumeOf(inPath), outName));
}

} // namespace DiskUtils

unsigned __int64 PathUtils::GetFreeDriveSpace(const UTF16String& inPath)
{
    return DiskUtils::GetFreeSpaceFromPath(inPath);
}

} // namespace ORL
