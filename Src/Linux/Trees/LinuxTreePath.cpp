#include "LinuxTreePath.h"

#include <algorithm>
#include <cerrno>
#include <sys/sysmacros.h>

namespace ORL {
namespace Linux {

namespace {

// Every step needs two open folders. With a third one, entering and leaving a subfolder reopens no folder.
constexpr std::size_t kOpenLevels = 3;

} // namespace

int TreePath::Enter(const char* inName)
{
    const int above = Folder();
    mLevels.emplace_back();
    TreeEntryShare& share = mLevels.back().mShare;
    const int failure = share.EnterOpen(OpenFolderByName(above, inName, O_NOFOLLOW), mUses, mShares);
    if (failure != 0) {
        mLevels.pop_back();
        return failure;
    }
    mLevels.back().mIdentity = share.Identity();
    if (mLevels.size() > kOpenLevels) {
        mLevels[mLevels.size() - 1 - kOpenLevels].mShare.Close();
    }
    return 0;
}

int TreePath::OpenAbove()
{
    if (Above() >= 0) {
        return 0;
    }
    Level& above = mLevels[mLevels.size() - 2];
    int failure = above.mShare.EnterOpen(OpenFolderByName(Folder(), "..", O_NOFOLLOW), mUses, mShares);
    const bool isAnother = failure == 0 && !(above.mShare.Identity() == above.mIdentity);
    if (isAnother || failure == ENOENT) {
        failure = ESTALE;
    }
    if (failure != 0) {
        above.mShare.Close();
    }
    return failure;
}

bool TreePath::ContainsDeepestOf(const TreePath& inOther) const
{
    const FileIdentity deepest = inOther.mLevels.back().mIdentity;
    struct statx top;
    const bool isTop = System().mStatx(mTop, "", AT_EMPTY_PATH, STATX_INO, &top) == 0
                       && FileIdentity{makedev(top.stx_dev_major, top.stx_dev_minor), top.stx_ino} == deepest;
    return isTop || std::any_of(mLevels.begin(), mLevels.end(), [&deepest](const Level& inLevel) {
               return inLevel.mIdentity == deepest;
           });
}

} // namespace Linux
} // namespace ORL
