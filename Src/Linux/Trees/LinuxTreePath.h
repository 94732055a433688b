// Tracks the path from the top of a tree to the current folder of a walk.
#pragma once

#include "LinuxTreeEntryShare.h"

#include <cstddef>
#include <deque>

namespace ORL {
namespace Linux {

/// A path of folders, of which only the deepest are open, so that a path of any length needs few descriptors. When the
/// walk returns to a closed folder, the path reopens it through ".." of the folder below it; it must be the same folder
/// as before.
class TreePath
{
public:
    /// Does not own inTop, which must stay open. Every other folder is held with these rights while it is open.
    explicit TreePath(int inTop, unsigned inUses = kShareNothing, unsigned inShares = kShareAll)
        : mTop(inTop), mUses(inUses), mShares(inShares)
    {
    }

    /// Returns the deepest folder.
    int Folder() const noexcept { return mLevels.empty() ? mTop : mLevels.back().mShare.File(); }

    /// Enters a subfolder. Returns 0, ETXTBSY or an errno; on failure the path is unchanged.
    int Enter(const char* inName);

    /// Returns the status of the deepest folder, which must not be the top.
    const struct statx& Status() const noexcept { return mLevels.back().mShare.Status(); }

    /// Opens the folder above the deepest one if needed. Returns 0, ETXTBSY or an errno: ESTALE if the folder above is
    /// no longer the same.
    int OpenAbove();

    /// Returns the folder above the deepest one.
    int Above() const noexcept { return mLevels.size() < 2 ? mTop : mLevels[mLevels.size() - 2].mShare.File(); }

    /// Goes up to the folder that OpenAbove opened.
    void Leave() noexcept { mLevels.pop_back(); }

    /// Returns true if the deepest folder of inOther is on this path, including the top.
    bool ContainsDeepestOf(const TreePath& inOther) const;

private:
    struct Level
    {
        TreeEntryShare mShare;
        FileIdentity mIdentity;
    };

    const int mTop;
    const unsigned mUses;
    const unsigned mShares;
    std::deque<Level> mLevels; // a deque, because a registration is in a list and must not move
};

} // namespace Linux
} // namespace ORL
