// Reads files through a host's block cache. The handle bypasses the system's cache, so it is read only in whole blocks
// at block boundaries.
#include <Files/FileImpl.h>

#include <ORLDebug.h>

#include <algorithm>
#include <cstring>

namespace ORL {

using namespace Files::Platform;

namespace {

// Returns the number of bytes to read: inCount, or fewer at the end of the file.
std::uint32_t BytesLeft(std::uint64_t inStart, std::uint32_t inCount, std::uint64_t inSize)
{
    if (inStart + inCount <= inSize) {
        return inCount;
    }
    return inSize > inStart ? static_cast<std::uint32_t>(inSize - inStart) : 0;
}

} // namespace

// Gets the block from the buffer, or else reads it from disk and offers it to the buffer. Even the last block is
// requested in full, although fewer bytes are read; the bytes past the end are never used.
Result File::PrivateImpl::FetchBlock(std::int64_t inBlockPosition, Block& outBlock)
{
    if (ResultSucceeded(mFileBuffer->GetBlock(inBlockPosition, outBlock)) && outBlock) {
        return kSuccess;
    }
    outBlock = Block(new MemoryBufferWrapper(mBlockSize));
    Result result = SetFilePointer(inBlockPosition, FilePointerMoveMethod::kFilePointer_Begin);
    if (!ResultSucceeded(result)) {
        return result;
    }
    std::uint32_t bytesRead = 0;
    result = ReadFromSystem(outBlock->GetBuffer(), mBlockSize, bytesRead);
    if (ResultSucceeded(result)) {
        mFileBuffer->AddBlock(outBlock, inBlockPosition);
    }
    return result;
}

Result File::PrivateImpl::ReadThroughBuffer(void* outBuffer, std::uint32_t inCount, std::uint32_t& outBytesRead)
{
    const std::int64_t start = mPosition;
    std::uint32_t offset = static_cast<std::uint32_t>(start % mBlockSize);
    std::int64_t blockPosition = start - offset;
    std::uint32_t remaining = BytesLeft(static_cast<std::uint64_t>(start), inCount, GetSize());
    char* buffer = static_cast<char*>(outBuffer);
    outBytesRead = 0;
    while (remaining != 0) {
        Block block;
        const Result result = FetchBlock(blockPosition, block);
        if (!ResultSucceeded(result)) {
            return result;
        }
        const std::uint32_t count = std::min(mBlockSize - offset, remaining);
        std::memcpy(buffer, static_cast<const char*>(block->GetBuffer()) + offset, count);
        outBytesRead += count;
        buffer += count;
        remaining -= count;
        blockPosition += mBlockSize;
        offset = 0;
    }
    // Set here, because FetchBlock has moved the position.
    mPosition = start + outBytesRead;
    return kSuccess;
}

// Returns the target of a seek, clamped to [0, size]. An offset from the end counts backwards regardless of its sign.
std::int64_t File::PrivateImpl::TargetOf(std::int64_t inOffset, FilePointerMoveMethod::Type inMethod) const
{
    const std::int64_t size = static_cast<std::int64_t>(GetSize());
    std::int64_t target = mPosition;
    switch (inMethod) {
    case FilePointerMoveMethod::kFilePointer_Begin: target = inOffset; break;
    case FilePointerMoveMethod::kFilePointer_Current:
        target =
            static_cast<std::int64_t>(static_cast<std::uint64_t>(inOffset) + static_cast<std::uint64_t>(mPosition));
        break;
    case FilePointerMoveMethod::kFilePointer_End: target = inOffset < 1 ? size + inOffset : size - inOffset; break;
    default: ORL_ASSERT_AT(false, "WinFile", __LINE__, "ORL::File::SetFilePointer"); break;
    }
    return std::min(std::max<std::int64_t>(target, 0), size);
}

} // namespace ORL
