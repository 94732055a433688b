// Reads and writes files, and moves the file position.
#include <Files/FileImpl.h>

#include <ORLDebug.h>

namespace ORL {

using namespace Files;
using namespace Files::Platform;

namespace {

// A seek reports failure only if the system returns this value. The system returns 0 for a rejected seek, so rejected
// seeks report success; hosts rely on it.
constexpr int kFailedSeek = -1;

Result ResultOfSeek(int inAnswer)
{
    return inAnswer == kFailedSeek ? kBareFailure : kSuccess;
}

} // namespace

Result File::PrivateImpl::ReadFromSystem(void* outBuffer, std::uint32_t inCount, std::uint32_t& outBytesRead)
{
    return ResultOf(ReadFile_Impl(mHandle, outBuffer, inCount, outBytesRead));
}

Result File::Read(void* outBuffer, unsigned int inCount, unsigned int& outBytesRead)
{
    ORL_INPUT_CONTRACT_AT(IsOpen(), "WinFile", __LINE__);
    return mImpl->mFileBuffer ? mImpl->ReadThroughBuffer(outBuffer, inCount, outBytesRead)
                              : mImpl->ReadFromSystem(outBuffer, inCount, outBytesRead);
}

Result File::Write(const void* inBuffer, unsigned int inCount, unsigned int& outBytesWritten)
{
    ORL_INPUT_CONTRACT_AT(IsOpen(), "WinFile", __LINE__);
    return ResultOf(WriteFile_Impl(mImpl->mHandle, inBuffer, inCount, outBytesWritten));
}

Result File::PrivateImpl::SetFilePointer(std::int64_t inOffset, FilePointerMoveMethod::Type inMethod)
{
    if (mFileBuffer) {
        mPosition = TargetOf(inOffset, inMethod);
        // The system would reject a position inside a block, so do not seek; each read seeks first anyway.
        if (mPosition % mBlockSize != 0) {
            return kSuccess;
        }
    }
    return ResultOfSeek(SetFilePointer_Impl(mHandle, inOffset, SystemMoveMethod(inMethod), nullptr));
}

Result File::SetFilePointer(__int64 inOffset, FilePointerMoveMethod::Type inMethod)
{
    ORL_INPUT_CONTRACT_AT(IsOpen(), "WinFile", __LINE__);
    return mImpl->SetFilePointer(inOffset, inMethod);
}

Result File::GetFilePointer(__int64& outPosition)
{
    ORL_INPUT_CONTRACT_AT(IsOpen(), "WinFile", __LINE__);
    if (mImpl->mFileBuffer) {
        outPosition = mImpl->mPosition;
        return kSuccess;
    }
    std::int64_t position = outPosition;
    const int answer = SetFilePointer_Impl(mImpl->mHandle, 0, kFromCurrent, &position);
    outPosition = position;
    return ResultOfSeek(answer);
}

Result File::SetEndOfFile()
{
    ORL_INPUT_CONTRACT_AT(IsOpen(), "WinFile", __LINE__);
    return SetEndOfFile_Impl(mImpl->mHandle) == SystemErrors::kNoError ? kSuccess : kBareFailure;
}

} // namespace ORL
