#include "LinuxTreeWalk.h"

#include <cerrno>
#include <utility>

namespace ORL {
namespace Linux {

int ListFolder(int inFolder, TreeEntries& outEntries)
{
    // Rewinds first, because the folder may have been listed before.
    if (System().mSeek(inFolder, 0, SEEK_SET) != 0) {
        return errno;
    }
    FolderEntries entries(inFolder);
    while (const dirent64* entry = entries.Next()) {
        outEntries.push_back(TreeEntry{entry->d_name, entry->d_type});
    }
    return entries.Failure();
}

int TreeWalk::Run(TreeEntries&& inEntries)
{
    mLevels.push_back({std::move(inEntries), 0});
    int failure = 0;
    while (failure == 0 && !mLevels.empty()) {
        Level& level = mLevels.back();
        failure = level.mNext < level.mEntries.size() ? Visit(level.mEntries[level.mNext++]) : LeaveFolder();
        failure = failure == ENOENT ? 0 : failure;
    }
    return failure;
}

int TreeWalk::EnterFolder(const char* inName)
{
    int failure = mRoad.Enter(inName);
    if (failure != 0) {
        return failure;
    }
    TreeEntries entries;
    failure = Accept(mRoad.Status());
    failure = failure == 0 ? ListFolder(mRoad.Folder(), entries) : failure;
    if (failure != 0) {
        mRoad.Leave();
        return failure;
    }
    mLevels.push_back({std::move(entries), 0});
    return 0;
}

int TreeWalk::LeaveFolder()
{
    mLevels.pop_back();
    int failure = mLevels.empty() ? 0 : mRoad.OpenAbove();
    if (failure == 0 && !mLevels.empty()) {
        const Level& above = mLevels.back();
        failure = Leave(mRoad.Above(), above.mEntries[above.mNext - 1].mName.c_str());
        mRoad.Leave();
    }
    return failure;
}

} // namespace Linux
} // namespace ORL
