#include "LinuxTreeWalk.h"

#include <cerrno>
#include <utility>

namespace ORL {
namespace Linux {

namespace {

int WipeFile(int inFolder, const char* inName)
{
    TreeEntryShare file;
    const int failure = file.EnterFile(inFolder, inName, kShareDelete, kShareAll);
    if (failure != 0) {
        return failure;
    }
    return System().mUnlinkAt(inFolder, inName, 0) == 0 ? 0 : errno;
}

class TreeWipe : public TreeWalk
{
public:
    using TreeWalk::TreeWalk;

private:
    // The listing may be outdated, so an entry listed as a file may turn out to be a folder (EISDIR).
    int Visit(const TreeEntry& inEntry) override
    {
        const char* const name = inEntry.mName.c_str();
        const int failure = inEntry.mType != DT_DIR ? WipeFile(Folder(), name) : EISDIR;
        return failure == EISDIR ? EnterFolder(name) : failure;
    }

    // A mounted volume is not part of the tree and cannot be removed with it.
    int Accept(const struct statx& inStatus) override
    {
        return (inStatus.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0 ? EBUSY : 0;
    }

    int Leave(int inAbove, const char* inName) override
    {
        return System().mUnlinkAt(inAbove, inName, AT_REMOVEDIR) == 0 ? 0 : errno;
    }
};

} // namespace

int WipeEntry(int inFolder, const TreeEntry& inEntry)
{
    return TreeWipe(inFolder).Run({inEntry});
}

int WipeContents(int inFolder)
{
    TreeEntries entries;
    const int failure = ListFolder(inFolder, entries);
    return failure == 0 ? TreeWipe(inFolder).Run(std::move(entries)) : failure;
}

} // namespace Linux
} // namespace ORL
