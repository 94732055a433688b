// A walk through one tree that looks at every entry, and at each folder again when all in it is done.
#pragma once

#include "LinuxTree.h"
#include "LinuxTreeRoad.h"

#include <vector>

namespace ORL {
namespace Linux {

/// Holds every folder that it is in, to delete or move it. What goes by itself meanwhile (ENOENT) is passed over.
class TreeWalk
{
public:
    explicit TreeWalk(int inTop) : mRoad(inTop, kShareDelete, kShareAll) {}
    virtual ~TreeWalk() = default;
    TreeWalk(const TreeWalk&) = delete;
    TreeWalk& operator=(const TreeWalk&) = delete;

    /// 0, or the first failure.
    int Run(TreeEntries&& inEntries);

protected:
    /// Looks at an entry of Folder(); may go into it by EnterFolder.
    virtual int Visit(const TreeEntry& inEntry) = 0;

    /// Whether the folder that was just entered is to be walked: 0, or why not.
    virtual int Accept(const struct statx&) { return 0; }

    /// All in a folder is done. It is still held.
    virtual int Leave(int inAbove, const char* inName) = 0;

    int EnterFolder(const char* inName);
    int Folder() const noexcept { return mRoad.Folder(); }

private:
    struct Level
    {
        TreeEntries mEntries;
        std::size_t mNext;
    };

    int LeaveFolder();

    TreeRoad mRoad;
    std::vector<Level> mLevels;
};

} // namespace Linux
} // namespace ORL
