#pragma once

#include "Touch.h"

#include <ORLFoundation.h>

namespace Consumer {

class HostsFileBuffer : public ORL::UnknownImpl<ORL::IFileBuffer>
{
public:
    void AddBlock(ORL::ObjectPtr<ORL::MemoryBufferWrapper>, __int64) override {}
    ORL::Result GetBlock(__int64, ORL::ObjectPtr<ORL::MemoryBufferWrapper>&) override { return ORL::kGeneralFailure; }
};

class HostsFileBufferFactory : public ORL::UnknownImpl<ORL::IFileBufferFactory>
{
public:
    ORL::InterfaceRef<ORL::IFileBuffer, ORL::IFileBuffer> CreateFileBuffer() override
    {
        return ORL::InterfaceRef<ORL::IFileBuffer, ORL::IFileBuffer>(new HostsFileBuffer);
    }
};

inline void TouchFile(const UTF16String& inPath)
{
    using namespace ORL;
    using FactoryRef = InterfaceRef<IFileBufferFactory, IFileBufferFactory>;
    Foundation::SetFileBufferFactory(FactoryRef(new HostsFileBufferFactory));
    Foundation::SetFileBufferFactory(FactoryRef());
    File file;
    Touch(file.IsOpen(), file.GetPlatformFileHandle(), File::Open(inPath, FileAccessFlags::kFileAccess_Read, file));
    Touch(&File::Read, &File::Write, &File::SetFilePointer, &File::GetFilePointer, &File::SetEndOfFile, &File::Close,
          &File::Delete, &File::Copy, &File::CopyWithProgress, &File::Move, &File::SwapTempFile,
          &File::MakeUniqueTempPath, &File::GetLastModificationTimeForFolder, &File::GetOSFileType);
    if (IsWanted()) {
        unsigned __int64 number = 0;
        file.Create(inPath, FileAccessFlags::kFileAccess_Read | FileAccessFlags::kFileAccess_Write,
                    FileShareModeFlags::kFileShare_Read, FileCreateDispositionFlags::kFileCreate_New,
                    FileAttributesFlags::kFileAttribute_Normal, false);
        file.SetFilePointer(0, FilePointerMoveMethod::kFilePointer_Begin);
        file.GetLastModificationTime(number);
        File::SizeOnDisk(inPath, number);
        File::GetLastModificationTime(inPath, number);
        Touch(file.SizeOnDisk());
    }
}

inline void TouchDirectory(const UTF16String& inPath)
{
    using namespace ORL;
    Touch(&Directory::CreateOnDisk, &Directory::Delete, &Directory::DeleteNotEmpty, &Directory::Copy, &Directory::Move,
          &Directory::IsDirectory);
    if (IsWanted()) {
        const Directory directory = Directory::ConstructDirectory(inPath);
        std::vector<UTF16String> paths;
        std::vector<Directory> directories;
        directory.GetContainedPaths(paths, false, Directory::kNoLimit);
        directory.GetContainedFilePaths(paths, false, 1);
        directory.GetContainedFilePaths(inPath, paths, false, 1);
        directory.GetContainedFileAndDirectoryPaths(paths, directories, false, 1);
        Touch(directory.AsString(), directory.IsDirectoryEmpty(), directory.IsDirectoryWriteable());
    }
}

inline void TouchAsyncReads(const UTF16String& inPath)
{
    using namespace ORL;
    AsyncFileReader reader;
    Touch(AsyncFileReader::Open(inPath, reader), reader.GetDiskSectorSize(), &AsyncFileReader::QueueReadRequest,
          &AsyncFileReader::WaitForPendingReads, &AsyncFileReader::Close);
}

inline void TouchDisks(const UTF16String& inPath)
{
    using namespace ORL;
    Touch(DiskUtils::MakeDiskSpaceString(DiskUtils::kSize_gigaByte), DiskUtils::GetFreeSpaceFromPath(inPath),
          PathUtils::GetFreeDriveSpace(inPath), &DiskUtils::GetEfficientDiskBufferSizeFromPath,
          &DiskUtils::GetMaxFileSize, &DiskUtils::GetFileSystemName);
}

inline void TouchPaths(const UTF16String& inPath)
{
    using namespace ORL::PathUtils;
    Touch(kPathSeparator, kExtension, kIllegalFilenameCharactersDisplay, GetPathSeparator(), IsValidPath(inPath),
          IsValidFileName(inPath), &RemoveIllegalFileNameCharacters, &SplitPath, GetDrivePart(inPath),
          GetDirectoryPart(inPath), GetFilePart(inPath), GetExtensionPart(inPath), GetFullFilePart(inPath),
          GetFullDirectoryPart(inPath), HasTrailingSlash(inPath), AddTrailingSlash(inPath), RemoveTrailingSlash(inPath),
          FileHasExtension(inPath, inPath), &MakePath, &MakeFullPath, ToNormalizedPath(inPath),
          IsNormalizedPath(inPath), &Win::StripUNC, &ArePathsRelative, &CombinePaths);
    Touch(ExistsOnDisk(inPath), ORL::PathUtils::IsDirectory(inPath), IsDirectoryEmpty(inPath), IsHidden(inPath),
          IsReadOnly(inPath), &PreparePathForWrite, &MakeUniqueFilename, GetTempDirectory(),
          &GetLeafDisplayStringFromPath, &GetDisplayStringFromPath);
}

inline void TouchHostPaths(const UTF16String& inPath)
{
    using namespace ORL::PathUtils;
    std::string hostPath;
    for (const MountPoint& mountPoint : GetMountPoints()) {
        Touch(mountPoint.mRoot, mountPoint.mHostFolder);
    }
    Touch(FromHostPath("a"), ToHostPath(inPath, hostPath));
#if !defined(_WIN32)
    Touch(&Linux::FromHostPath, &Linux::ToHostPath, &Linux::MountDrive, &Linux::UnmountDrive, &Linux::MountShare,
          &Linux::UnmountShare);
#endif
}

inline void TouchFiles()
{
    const UTF16String path = ORL::MakeString("C:\\a file that is not there.mov");
    TouchFile(path);
    TouchDirectory(path);
    TouchAsyncReads(path);
    TouchDisks(path);
    TouchPaths(path);
    TouchHostPaths(path);
}

} // namespace Consumer
