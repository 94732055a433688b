// Reads the target of a symbolic link.
#pragma once

#include <climits>
#include <cstddef>

namespace ORL {
namespace Linux {

/// The target of a symbolic link, exactly as stored.
class LinkTarget
{
public:
    /// Reads a link by its name in an open folder, or by its path with AT_FDCWD. Returns 0; on failure returns an errno
    /// and empties the target. ENAMETOOLONG means that it exceeds the kernel's limit.
    int Read(int inFolder, const char* inName) noexcept;

    const char* Text() const noexcept { return mText; }
    std::size_t Size() const noexcept { return mSize; }

private:
    std::size_t mSize = 0;
    char mText[PATH_MAX]; // valid after Read
};

} // namespace Linux
} // namespace ORL
