// Registers with the share modes the entry that a step of a tree operation works on.
#pragma once

#include "../Calls/SystemCalls.h"
#include "../Files/LinuxShareModes.h"

#include <sys/stat.h>

namespace ORL {
namespace Linux {

/// Briefly registers an entry with the share modes of all processes ("holds" it). Each step holds the entry that it
/// works on. Links, pipes and devices are never held.
class TreeEntryShare
{
public:
    /// Holds a file by its name. Does nothing for folders and missing names; that is not an error. Returns 0, ETXTBSY
    /// or the errno of the failed query.
    int EnterFile(int inFolder, const char* inName, unsigned inUses, unsigned inShares);

    /// Holds an open file or folder, and takes ownership of it even if this fails. ioFile may be the result of a failed
    /// open, whose errno is then returned.
    int EnterOpen(Descriptor&& ioFile, unsigned inUses, unsigned inShares);

    /// Releases the registration and closes the file.
    void Close() noexcept { mShares.Release(); }

    /// Returns -1 if nothing is open.
    int File() const noexcept { return mShares.File(); }

    /// Call this function only after EnterOpen.
    FileIdentity Identity() const noexcept;
    const struct statx& Status() const noexcept { return mStatus; }

private:
    ShareHolder mShares;
    struct statx mStatus = {};
};

} // namespace Linux
} // namespace ORL
