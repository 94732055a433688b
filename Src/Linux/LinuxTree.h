// Trees of folders, gone through by open folders and single names: no step follows a link, and nobody who puts one in
// the place of a folder meanwhile leads a step out of the tree.
//
// A tree holds files, folders and links; anything else (a pipe, a device) can be moved on its volume and deleted, but
// not copied: ENOTSUP. One file descriptor is held for each level. The first failure ends the work; what was done
// stays done. Every function gives 0 or an errno.
#pragma once

#include "LinuxOpenFolder.h"

#include <string>
#include <vector>

namespace ORL {
namespace Linux {

/// An open file or folder of the host, or a failed open.
class Descriptor
{
public:
    explicit Descriptor(int inFile = -1) noexcept : mFile(inFile) {}
    ~Descriptor();
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    explicit operator bool() const noexcept { return mFile >= 0; }
    int Get() const noexcept { return mFile; }

private:
    int mFile;
};

/// One name of a folder, and what the listing tells of it (DT_DIR ...).
struct TreeEntry
{
    std::string mName;
    unsigned char mType;
};

/// All names of a folder, before any of them is touched: a list does not say what it does when it changes.
int ListFolder(int inFolder, std::vector<TreeEntry>& outEntries);

/// Opens a folder by its name in another one. A link is no folder.
int OpenSubfolder(int inFolder, const char* inName);

/// Deletes all that is in the folder.
int WipeContents(int inFolder);

/// Deletes one entry with all that is in it. One that is gone already is fine.
int WipeEntry(int inFolder, const TreeEntry& inEntry);

/// Copies all that is in one folder into another, over files of the same name. A file gets its name when it is whole.
/// Contents, permissions and last-write times are kept, the latter of files.
int CopyContents(int inFrom, int inTo);
int CopyEntry(int inFrom, const TreeEntry& inEntry, int inTo);

/// Moves likewise; between volumes by copying.
int MoveContents(int inFrom, int inTo);

} // namespace Linux
} // namespace ORL
