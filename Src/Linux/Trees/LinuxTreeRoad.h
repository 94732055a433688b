// The way from a folder down into its tree.
#pragma once

#include "LinuxTreeHold.h"

#include <cstddef>
#include <deque>

namespace ORL {
namespace Linux {

/// However long the way is, it costs few descriptors: only its deepest folders are open. One above them is opened again,
/// from the folder below it, when the work comes back to it, and must be the folder that it was.
class TreeRoad
{
public:
    /// inTop stays the caller's, and open. Every other folder is held with these rights while it is open.
    explicit TreeRoad(int inTop, unsigned inUses = kShareNothing, unsigned inShares = kShareAll)
        : mTop(inTop), mUses(inUses), mShares(inShares)
    {
    }

    /// The deepest folder.
    int Folder() const noexcept { return mLevels.empty() ? mTop : mLevels.back().mHold.File(); }

    /// Goes down into a subfolder. 0, ETXTBSY or the errno that kept it from it; the way is then as before.
    int Enter(const char* inName);

    /// The status of the deepest folder, which is not the top.
    const struct statx& Status() const noexcept { return mLevels.back().mHold.Status(); }

    /// Sees to it that the folder above the deepest one is open. 0, ETXTBSY or an errno: ESTALE when another folder is there
    /// by now.
    int OpenAbove();

    /// That folder.
    int Above() const noexcept { return mLevels.size() < 2 ? mTop : mLevels[mLevels.size() - 2].mHold.File(); }

    /// Goes up, to a folder that OpenAbove has opened.
    void Leave() noexcept { mLevels.pop_back(); }

    /// Whether the deepest folder of inOther is one of this way, the top included.
    bool IsOn(const TreeRoad& inOther) const;

private:
    struct Level
    {
        TreeHold mHold;
        FileIdentity mIdentity;
    };

    const int mTop;
    const unsigned mUses;
    const unsigned mShares;
    std::deque<Level> mLevels; // their places in memory do not change: a hold is on a list
};

} // namespace Linux
} // namespace ORL
