#include "LinuxTreeWalk.h"

#include <cerrno>
#include <utility>

namespace ORL {
namespace Linux {

namespace {

class TreeCheck : public TreeWalk
{
public:
    using TreeWalk::TreeWalk;

private:
    int Visit(const TreeEntry& inEntry) override
    {
        const char* const name = inEntry.mName.c_str();
        const bool mayBeFolder = inEntry.mType == DT_DIR || inEntry.mType == DT_UNKNOWN;
        int failure = mayBeFolder ? EnterFolder(name) : ENOTDIR;
        if (failure == ENOTDIR || failure == ELOOP) {
            TreeEntryShare file;
            failure = file.EnterFile(Folder(), name, kShareDelete, kShareAll);
        }
        // A folder without read or search permission cannot be checked; this is not an error.
        return failure == EACCES ? 0 : failure;
    }

    int Leave(int, const char*) override { return 0; }
};

} // namespace

int CheckContentsDeletable(int inFolder)
{
    TreeEntries entries;
    const int failure = ListFolder(inFolder, entries);
    return failure == 0 ? TreeCheck(inFolder).Run(std::move(entries)) : failure;
}

} // namespace Linux
} // namespace ORL
