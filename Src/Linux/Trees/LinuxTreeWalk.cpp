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
    int failure = mPath.Enter(inName);
    if (failure != 0) {
        return failure;
    }
    TreeEntries entries;
    failure = Accept(mPath.Status());
    failure = failure == 0 ? ListFolder(mPath.Folder(), entries) : failure;
    if (failure != 0) {
        mPath.Leave();
        return failure;
    }
    mLevels.push_back({std::move(entries), 0});
    return 0;
}

int TreeWalk::LeaveFolder()
{
    mLevels.pop_back();
    int failure = mLevels.empty() ? 0 : mPath.OpenAbove();
    if (failure == 0 && !mLevels.empty()) {
        const Level& above = mLevels.back();
        failure = Leave(mPath.Above(), above.mEntries[above.mNext - 1].mName.c_str());
        mPath.Leave();
    }
    return failure;
}

} // namespace Linux
} // namespace ORL
