#include "LinuxTree.h"

#include <cerrno>

namespace ORL {
namespace Linux {

Descriptor::~Descriptor()
{
    if (mFile >= 0) {
        System().mClose(mFile);
    }
}

int Descriptor::Close() noexcept
{
    const int file = mFile;
    mFile = -1;
    return file < 0 || System().mClose(file) == 0 || errno == EINTR ? 0 : errno; // it is closed in any case
}

int OpenSubfolder(int inFolder, const char* inName)
{
    return System().mOpenAt(inFolder, inName, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK, 0);
}

int ListFolder(int inFolder, std::vector<TreeEntry>& outEntries)
{
    // A list of its own, from the beginning: the folder's place in its list is the folder's.
    OpenFolder folder(System().mOpenAt(inFolder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0));
    if (!folder.IsOpen()) {
        return errno;
    }
    while (const dirent64* entry = folder.Next()) {
        outEntries.push_back(TreeEntry{entry->d_name, entry->d_type});
    }
    return folder.Failure();
}

namespace {

int WipeFolder(int inFolder, const char* inName)
{
    TreeHold folder;
    int failure = folder.EnterOpen(OpenSubfolder(inFolder, inName), kShareDelete, kShareAll);
    failure = failure == 0 ? WipeContents(folder.File()) : failure;
    if (failure != 0) {
        return failure;
    }
    return System().mUnlinkAt(inFolder, inName, AT_REMOVEDIR) == 0 ? 0 : errno;
}

int WipeFile(int inFolder, const char* inName)
{
    TreeHold file;
    const int failure = file.EnterFile(inFolder, inName, kShareDelete, kShareAll);
    if (failure != 0) {
        return failure;
    }
    return System().mUnlinkAt(inFolder, inName, 0) == 0 ? 0 : errno;
}

} // namespace

// The listing may be wrong by now, so the system has the last word on what is a folder.
int WipeEntry(int inFolder, const TreeEntry& inEntry)
{
    int failure = EISDIR;
    if (inEntry.mType != DT_DIR) {
        failure = WipeFile(inFolder, inEntry.mName.c_str());
    }
    if (failure == EISDIR) {
        failure = WipeFolder(inFolder, inEntry.mName.c_str());
    }
    return failure == ENOENT ? 0 : failure;
}

int WipeContents(int inFolder)
{
    std::vector<TreeEntry> entries;
    int failure = ListFolder(inFolder, entries);
    for (std::size_t i = 0; failure == 0 && i < entries.size(); ++i) {
        failure = WipeEntry(inFolder, entries[i]);
    }
    return failure;
}

} // namespace Linux
} // namespace ORL
