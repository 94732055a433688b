// Opens host files, and declares the owner of one open file.
#pragma once

#include "../Calls/SystemCalls.h"

#include <cerrno>
#include <sys/types.h>

namespace ORL {
namespace Linux {

/// Owns an open file or folder, or represents a failed open. Never allocates, so every open file immediately has an
/// owner. Keep a Descriptor by value, and move it.
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

    /// Closes the file. Returns 0 or an errno: some file systems report a full disk only on close. The file is closed
    /// in any case, and EINTR is not reported. Preserves errno.
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

/// These functions open a file by its path, or by its name in an open folder, with the flags and mode of open(2). They
/// repeat a call that a signal interrupts, and add O_CLOEXEC, so that no child process inherits the file. On failure
/// they return an empty Descriptor and set errno.
Descriptor OpenByPath(const char* inPath, int inFlags, mode_t inMode = 0) noexcept;
Descriptor OpenByName(int inFolder, const char* inName, int inFlags, mode_t inMode = 0) noexcept;

/// Opens a folder by its name in a parent folder, or by its path with AT_FDCWD. inLink is 0 to follow a link, or
/// O_NOFOLLOW to fail for one.
Descriptor OpenFolderByName(int inFolder, const char* inName, int inLink) noexcept;

} // namespace Linux
} // namespace ORL
