#include <Platform/File.h>

#include "../Calls/WinText.h"

#include <windows.h>

namespace ORL {
namespace Files {
namespace Platform {

namespace {

using ORL::Win::AsWide;
using SystemErrors::kNoError;

static_assert(kGenericRead == GENERIC_READ && kGenericWrite == GENERIC_WRITE && kGenericExecute == GENERIC_EXECUTE);
static_assert(kAccessDelete == DELETE);
static_assert(kShareRead == FILE_SHARE_READ && kShareWrite == FILE_SHARE_WRITE && kShareDelete == FILE_SHARE_DELETE);
static_assert(kCreateNew == CREATE_NEW && kCreateAlways == CREATE_ALWAYS && kOpenExisting == OPEN_EXISTING);
static_assert(kOpenAlways == OPEN_ALWAYS && kTruncateExisting == TRUNCATE_EXISTING);
static_assert(kAttributeHidden == FILE_ATTRIBUTE_HIDDEN && kAttributeNormal == FILE_ATTRIBUTE_NORMAL);
static_assert(kFlagBackupSemantics == FILE_FLAG_BACKUP_SEMANTICS && kFlagNoBuffering == FILE_FLAG_NO_BUFFERING);
static_assert(kFlagDeleteOnClose == FILE_FLAG_DELETE_ON_CLOSE && kFlagSequentialScan == FILE_FLAG_SEQUENTIAL_SCAN);
static_assert(kFromBegin == FILE_BEGIN && kFromCurrent == FILE_CURRENT && kFromEnd == FILE_END);

SystemError ErrorUnless(BOOL inDone)
{
    return inDone ? kNoError : ::GetLastError();
}

struct Progress
{
    CopyProgress mCall;
    void* mData;
};

DWORD CALLBACK ReportProgress(LARGE_INTEGER inTotal, LARGE_INTEGER inTransferred, LARGE_INTEGER, LARGE_INTEGER, DWORD,
                              DWORD, HANDLE, HANDLE, void* inProgress)
{
    if (inProgress == nullptr) {
        return PROGRESS_CANCEL;
    }
    const Progress& progress = *static_cast<const Progress*>(inProgress);
    const bool goesOn = progress.mCall(static_cast<std::uint64_t>(inTotal.QuadPart),
                                       static_cast<std::uint64_t>(inTransferred.QuadPart), progress.mData);
    return goesOn ? PROGRESS_CONTINUE : PROGRESS_CANCEL;
}

} // namespace

SystemError CreateFile_Impl(const UTF16String& inPath, std::uint32_t inAccess, std::uint32_t inShareMode,
                            std::uint32_t inDisposition, std::uint32_t inFlags, Handle& outFile)
{
    outFile = ::CreateFileW(AsWide(inPath.c_str()), inAccess, inShareMode, nullptr, inDisposition, inFlags, nullptr);
    return outFile != INVALID_HANDLE_VALUE ? kNoError : ::GetLastError();
}

void CloseFile_Impl(Handle inFile)
{
    ::CloseHandle(inFile);
}

SystemError ReadFile_Impl(Handle inFile, void* outBuffer, std::uint32_t inCount, std::uint32_t& outBytesRead)
{
    DWORD bytes = 0;
    const BOOL done = ::ReadFile(inFile, outBuffer, inCount, &bytes, nullptr);
    const SystemError error = ErrorUnless(done);
    outBytesRead = bytes;
    return error;
}

SystemError WriteFile_Impl(Handle inFile, const void* inBuffer, std::uint32_t inCount, std::uint32_t& outBytesWritten)
{
    DWORD bytes = 0;
    const BOOL done = ::WriteFile(inFile, inBuffer, inCount, &bytes, nullptr);
    const SystemError error = ErrorUnless(done);
    outBytesWritten = bytes;
    return error;
}

int SetFilePointer_Impl(Handle inFile, std::int64_t inOffset, std::uint32_t inMethod, std::int64_t* outPosition)
{
    LARGE_INTEGER offset;
    offset.QuadPart = inOffset;
    LARGE_INTEGER position;
    const BOOL answer = ::SetFilePointerEx(inFile, offset, &position, inMethod);
    if (answer && outPosition != nullptr) {
        *outPosition = position.QuadPart;
    }
    return answer;
}

SystemError SetEndOfFile_Impl(Handle inFile)
{
    return ErrorUnless(::SetEndOfFile(inFile));
}

std::uint32_t GetFileSize_Impl(Handle inFile, std::uint32_t& outHigh)
{
    DWORD high = outHigh;
    const DWORD low = ::GetFileSize(inFile, &high);
    outHigh = high;
    return low;
}

SystemError GetLastWriteTime_Impl(Handle inFile, std::uint64_t& outTime)
{
    FILETIME created;
    FILETIME accessed;
    FILETIME written;
    if (!::GetFileTime(inFile, &created, &accessed, &written)) {
        return ::GetLastError();
    }
    outTime = std::uint64_t{written.dwHighDateTime} << 32 | written.dwLowDateTime;
    return kNoError;
}

SystemError GetSizeOfPath_Impl(const UTF16String& inPath, std::uint64_t& outSize)
{
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!::GetFileAttributesExW(AsWide(inPath.c_str()), GetFileExInfoStandard, &data)) {
        return ::GetLastError();
    }
    outSize = std::uint64_t{data.nFileSizeHigh} << 32 | data.nFileSizeLow;
    return kNoError;
}

SystemError DeleteFile_Impl(const UTF16String& inPath)
{
    return ErrorUnless(::DeleteFileW(AsWide(inPath.c_str())));
}

SystemError CopyFile_Impl(const UTF16String& inSource, const UTF16String& inDestination, CopyProgress inProgress,
                          void* inData)
{
    const wchar_t* const source = AsWide(inSource.c_str());
    const wchar_t* const destination = AsWide(inDestination.c_str());
    if (inProgress == nullptr) {
        return ErrorUnless(::CopyFileW(source, destination, FALSE));
    }
    Progress progress{inProgress, inData};
    BOOL cancel = FALSE;
    return ErrorUnless(::CopyFileExW(source, destination, &ReportProgress, &progress, &cancel, 0));
}

SystemError MoveFile_Impl(const UTF16String& inSource, const UTF16String& inDestination)
{
    return ErrorUnless(::MoveFileW(AsWide(inSource.c_str()), AsWide(inDestination.c_str())));
}

SystemError ReplaceFile_Impl(const UTF16String& inReplaced, const UTF16String& inReplacement,
                             const UTF16String& inBackup, BackupDisposition inBackupDisposition)
{
    const SystemError error =
        ErrorUnless(::ReplaceFileW(AsWide(inReplaced.c_str()), AsWide(inReplacement.c_str()), AsWide(inBackup.c_str()),
                                   REPLACEFILE_WRITE_THROUGH, nullptr, nullptr));
    if (error == SystemErrors::kNoError && inBackupDisposition == BackupDisposition::kDelete) {
        ::DeleteFileW(AsWide(inBackup.c_str()));
    }
    return error;
}

} // namespace Platform
} // namespace Files
} // namespace ORL
