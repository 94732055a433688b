// Opens and closes files.
#include <Files/FileImpl.h>

#include <Files/FileBufferFactory.h>
#include <Files/PathForms.h>
#include <ORLDebug.h>
#include <ORLDiskUtils.h>
#include <ORLPathUtils.h>

#include <algorithm>

namespace ORL {

using namespace Files;
using namespace Files::Platform;

namespace {

// Returns true if the caller opens the file read-only, shares no write access, and does not bypass the system's cache
// itself.
bool MayUseBuffer(FileAccessFlags::Type inAccess, FileShareModeFlags::Type inShareMode,
                  FileAttributesFlags::Type inAttributes)
{
    return inAccess == FileAccessFlags::kFileAccess_Read
           && (inAttributes & FileAttributesFlags::kFileAttribute_NoBuffering) == 0
           && (inShareMode & FileShareModeFlags::kFileShare_Write) == 0;
}

} // namespace

File::File() : mImpl(new PrivateImpl)
{
}

File::~File()
{
    Close();
    delete static_cast<Impl*>(mImpl);
}

bool File::PrivateImpl::SetUpBuffer(const UTF16String& inFullPath)
{
    const InterfaceRef<IFileBufferFactory, IFileBufferFactory> factory = Foundation::GetFileBufferFactory();
    if (!factory) {
        return false;
    }
    mFileBuffer = factory->CreateFileBuffer();
    mPosition = 0;
    unsigned int sectorSize = 0;
    DiskUtils::GetEfficientDiskBufferSizeFromPath(inFullPath, sectorSize);
    mBlockSize = std::max<std::uint32_t>(sectorSize, kSmallestBlock);
    return static_cast<bool>(mFileBuffer);
}

Result File::Create(const UTF16String& inFullPath, FileAccessFlags::Type inAccess, FileShareModeFlags::Type inShareMode,
                    FileCreateDispositionFlags::Type inDisposition, FileAttributesFlags::Type inAttributes,
                    bool inAllowDirectory)
{
    ORL_INPUT_CONTRACT_AT(!IsOpen(), "WinFile", __LINE__);
    if (IsOpen()) {
        return kGeneralFailure; // otherwise the open file would leak
    }
    if (!inAllowDirectory) {
        ORL_ASSERT_AT(!PathUtils::IsDirectory(inFullPath), "WinFile", __LINE__, "ORL::File::Create");
    }
    if (!PathUtils::IsRootedPath(inFullPath)) {
        return kPathNotFound;
    }
    FileAttributesFlags::Type attributes = inAttributes;
    if (MayUseBuffer(inAccess, inShareMode, inAttributes) && mImpl->SetUpBuffer(inFullPath)) {
        attributes = attributes | FileAttributesFlags::kFileAttribute_NoBuffering;
    }
    // Keeps the buffer if the open fails, because hosts expect that; without an open file nothing uses it.
    return ResultOf(CreateFile_Impl(PathUtils::ToNormalizedPath(inFullPath), SystemAccess(inAccess),
                                    SystemShareMode(inShareMode), SystemDisposition(inDisposition),
                                    SystemFlags(attributes), mImpl->mHandle));
}

bool File::IsOpen() const
{
    return mImpl->IsOpen();
}

void File::Close()
{
    if (!IsOpen()) {
        return;
    }
    CloseFile_Impl(mImpl->mHandle);
    mImpl->mHandle = InvalidHandle();
    mImpl->mFileBuffer = InterfaceRef<IFileBuffer, IFileBuffer>();
}

void* File::GetPlatformFileHandle()
{
    return mImpl->mHandle;
}

Result File::Open(const UTF16String& inPath, FileAccessFlags::Type inAccess, File& ioFile)
{
    if (!PathUtils::ExistsOnDisk(inPath)) {
        return kBareFailure;
    }
    constexpr FileShareModeFlags::Type kShareAll = FileShareModeFlags::kFileShare_Read
                                                   | FileShareModeFlags::kFileShare_Write
                                                   | FileShareModeFlags::kFileShare_Delete;
    return ioFile.Create(inPath, inAccess, kShareAll, FileCreateDispositionFlags::kFileCreate_OpenExisting,
                         FileAttributesFlags::kFileAttribute_Normal, false);
}

} // namespace ORL
