// Deletes, copies and moves whole files.
#include <Files/FileImpl.h>

#include <ORLPathUtils.h>

namespace ORL {

using namespace Files;
using namespace Files::Platform;
using namespace SystemErrors;

namespace {

struct Progress
{
    bool (*mCallback)(float, void*);
    void* mData;
};

bool ReportProgress(std::uint64_t inTotal, std::uint64_t inTransferred, void* inProgress)
{
    if (inProgress == nullptr) {
        return false;
    }
    const Progress& progress = *static_cast<const Progress*>(inProgress);
    return progress.mCallback(static_cast<float>(inTransferred) / static_cast<float>(inTotal), progress.mData);
}

// Maps all unlisted errors to kDiskFull, because most other copy failures are due to a full disk.
Result ResultOfCopy(SystemError inError)
{
    switch (inError) {
    case kNoError: return kSuccess;
    case kErrorFileNotFound: return kFileNotFound;
    case kErrorPathNotFound: return kPathNotFound;
    case kErrorAccessDenied: return kAccessDenied;
    case kErrorRequestAborted: return kOperationAborted;
    default: return kDiskFull;
    }
}

} // namespace

Result File::Delete(const UTF16String& inPath)
{
    return ResultOf(DeleteFile_Impl(PathUtils::ToNormalizedPath(inPath)));
}

Result File::Copy(const UTF16String& inSource, const UTF16String& inDestination)
{
    return ResultOf(CopyFile_Impl(inSource, inDestination, nullptr, nullptr));
}

Result File::CopyWithProgress(const UTF16String& inSource, const UTF16String& inDestination,
                              bool (*inCallback)(float, void*), void* inData)
{
    Progress progress{inCallback, inData};
    return ResultOfCopy(CopyFile_Impl(inSource, inDestination, &ReportProgress, &progress));
}

Result File::Move(const UTF16String& inSource, const UTF16String& inDestination)
{
    return ResultOf(MoveFile_Impl(inSource, inDestination));
}

} // namespace ORL
