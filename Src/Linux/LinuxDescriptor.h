// Owner of one open file of the host.
#pragma once

#include "SystemCalls.h"

#include <cerrno>

namespace ORL {
namespace Linux {

/// Owns an open file or folder, or represents a failed open. Never allocates, so that an open file has an owner at
/// once. Keep it by value, and move it.
class Descriptor
{
public:
    explicit Descriptor(int inFile = -1) noexcept : mFile(inFile) {}
    Descriptor(Descriptor&& ioOther) noexcept : mFile(ioOther.Release()) {}
    ~Descriptor() { Close(); }

    Descriptor& operator=(Descriptor&& ioOther) noexcept
    {
        const int file = ioOther.Release();
        Close();
        mFile = file;
        return *this;
    }

    explicit operator bool() const noexcept { return mFile >= 0; }
    int Get() const noexcept { return mFile; }

    /// Releases ownership and returns the file.
    int Release() noexcept
    {
        const int file = mFile;
        mFile = -1;
        return file;
    }

    /// Closes the file. Returns 0 or an errno: some file systems report a full disk only here. The file is closed in
    /// any case, and EINTR is not reported. Preserves errno.
    int Close() noexcept
    {
        const int earlier = errno;
        const int file = Release();
        const int failure = file < 0 || System().mClose(file) == 0 || errno == EINTR ? 0 : errno;
        errno = earlier;
        return failure;
    }

private:
    int mFile;
};

} // namespace Linux
} // namespace ORL
