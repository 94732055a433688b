// What a step through a tree holds while it works.
#pragma once

#include "../LinuxShareModes.h"
#include "../SystemCalls.h"

#include <sys/stat.h>

namespace ORL {
namespace Linux {

/// Asks for a moment for the right to use an entry, beside the handles of all processes: each step of a tree holds what it
/// works on. Links, pipes and the like are held by nobody.
class TreeHold
{
public:
    TreeHold() = default;
    ~TreeHold() { Close(); }
    TreeHold(const TreeHold&) = delete;
    TreeHold& operator=(const TreeHold&) = delete;

    /// A file by its name; a folder and a name that is not there are fine, and not held. 0, ETXTBSY or the errno that kept it
    /// from asking.
    int EnterFile(int inFolder, const char* inName, unsigned inUses, unsigned inShares);

    /// An open file or folder, which belongs to the hold from now on, whatever the answer is. It may be a failed open's -1.
    int EnterOpen(int inFile, unsigned inUses, unsigned inShares);

    /// Releases the hold now and closes the file.
    void Close() noexcept;

    /// -1 when nothing is open.
    int File() const noexcept { return mFile; }

    /// Of what EnterOpen has entered.
    FileIdentity Identity() const noexcept;
    const struct statx& Status() const noexcept { return mStatus; }

private:
    int mFile = -1;
    struct statx mStatus = {};
    ShareHolder mShares;
};

/// Opens a folder by its name in another one. A link is no folder. -1 and errno for a failure.
int OpenSubfolder(int inFolder, const char* inName);

} // namespace Linux
} // namespace ORL
