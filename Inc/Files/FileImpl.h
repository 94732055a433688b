// The implementation of File.
#pragma once

#include <ORLFile.h>
#include <ORLImpl.h>

#include <Platform/File.h>

#include <cstdint>

namespace ORL {

struct ORL_LOCAL File::PrivateImpl : Impl
{
    Files::Platform::Handle mHandle = Files::Platform::InvalidHandle();
    InterfaceRef<IFileBuffer, IFileBuffer> mFileBuffer; // null unless the file is read through a block cache
    std::uint32_t mBlockSize = 0;                       // block size of mFileBuffer in bytes, at least 65536
    std::int64_t mPosition = 0;                         // position of reads through mFileBuffer

    bool IsOpen() const noexcept { return mHandle != Files::Platform::InvalidHandle(); }

    /// Returns the size, joined from the two halves that the system reports.
    std::uint64_t GetSize() const;

    /// Requests a buffer from the factory. Returns whether the factory provided a buffer.
    bool SetUpBuffer(const UTF16String& inFullPath);

    Result ReadFromSystem(void* outBuffer, std::uint32_t inCount, std::uint32_t& outBytesRead);
    Result ReadThroughBuffer(void* outBuffer, std::uint32_t inCount, std::uint32_t& outBytesRead);
    Result SetFilePointer(std::int64_t inOffset, FilePointerMoveMethod::Type inMethod);

private:
    using Block = ObjectPtr<MemoryBufferWrapper>;

    std::int64_t TargetOf(std::int64_t inOffset, FilePointerMoveMethod::Type inMethod) const;
    Result FetchBlock(std::int64_t inBlockPosition, Block& outBlock);
};

namespace Files {

/// The smallest block size of a cache, in bytes.
inline constexpr std::uint32_t kSmallestBlock = 65536;

/// The result for a failure without an error code.
inline constexpr Result kBareFailure = -1;

/// Converts a system error to a result: 0 to kSuccess.
Result ResultOf(SystemError inError);

// Return the system's values for the flags. Unknown bits are ignored.
std::uint32_t SystemAccess(FileAccessFlags::Type inAccess) noexcept;
std::uint32_t SystemShareMode(FileShareModeFlags::Type inShareMode) noexcept;
/// Several dispositions combined with OR yield another disposition or an invalid one.
std::uint32_t SystemDisposition(FileCreateDispositionFlags::Type inDisposition) noexcept;
std::uint32_t SystemFlags(FileAttributesFlags::Type inAttributes) noexcept;
/// Invalid values are treated as kFilePointer_Current.
std::uint32_t SystemMoveMethod(FilePointerMoveMethod::Type inMethod) noexcept;

} // namespace Files
} // namespace ORL
