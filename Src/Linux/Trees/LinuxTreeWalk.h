// A walk through one tree that visits every entry, and each folder again after its contents.
#pragma once

#include "LinuxTree.h"
#include "LinuxTreePath.h"

#include <vector>

namespace ORL {
namespace Linux {

/// Registers every open folder on its path with the share modes, for deleting or moving it. Entries that disappear
/// during the walk (ENOENT) are skipped.
class TreeWalk
{
public:
    explicit TreeWalk(int inTop) : mPath(inTop, kShareDelete, kShareAll) {}
    virtual ~TreeWalk() = default;
    TreeWalk(const TreeWalk&) = delete;
    TreeWalk& operator=(const TreeWalk&) = delete;

    /// Returns 0 or the first failure.
    int Run(TreeEntries&& inEntries);

protected:
    /// Handles an entry of Folder(); may enter it with EnterFolder.
    virtual int Visit(const TreeEntry& inEntry) = 0;

    /// Returns 0 to walk the folder just entered, or an errno to refuse it.
    virtual int Accept(const struct statx&) { return 0; }

    /// Called after the contents of a folder have been visited, while the folder is still held.
    virtual int Leave(int inAbove, const char* inName) = 0;

    int EnterFolder(const char* inName);
    int Folder() const noexcept { return mPath.Folder(); }

private:
    struct Level
    {
        TreeEntries mEntries;
        std::size_t mNext;
    };

    int LeaveFolder();

    TreePath mPath;
    std::vector<Level> mLevels;
};

} // namespace Linux
} // namespace ORL
