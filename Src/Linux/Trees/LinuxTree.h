// Trees of folders, walked by open folders and single names: no step follows a link, and nobody who puts one in the
// place of a folder meanwhile leads a step out of the tree.
//
// A tree holds files, folders and links; anything else (a pipe, a device) can be moved on its volume and deleted, but
// not copied: ENOTSUP. What is open elsewhere and does not share what is to be done with it stays as it is: ETXTBSY,
// which is 32 at home. The depth of a tree costs memory, no descriptors and no stack (LinuxTreeRoad.h). The first
// failure ends the work; what was done stays done. Every function returns 0 or an errno and may throw std::bad_alloc.
#pragma once

#include "../LinuxOpenFolder.h"
#include "LinuxTreeHold.h"

#include <string>
#include <vector>

namespace ORL {
namespace Linux {

/// One name of a folder, and the type that the listing reports for it (DT_DIR ...).
struct TreeEntry
{
    std::string mName;
    unsigned char mType;
};

using TreeEntries = std::vector<TreeEntry>;

/// All names of a folder, before any of them is touched: a list does not say what it does when it changes.
int ListFolder(int inFolder, TreeEntries& outEntries);

/// ETXTBSY when something in the folder, at any depth, is open and does not share that it goes.
int CheckContentsMayGo(int inFolder);

/// Deletes all that is in the folder. A folder that another volume is mounted on is not entered: EBUSY.
int WipeContents(int inFolder);

/// Deletes one entry with all that is in it. One that is gone already is fine.
int WipeEntry(int inFolder, const TreeEntry& inEntry);

/// What holds of a copy when it is done. kIsOnDisk, for moves: contents and names, but for the name of the entry itself in
/// its folder; and permissions are kept whatever the mask of the process is.
enum class CopyEnd { kIsWritten, kIsOnDisk };

/// Copies all that is in one folder into another, over files of the same name. A file gets its name when it is whole.
/// Contents, permissions and last-write times are kept, the latter of files. A folder that turns out to be one that the
/// copy goes into, by another way to it, ends the work: EINVAL.
int CopyContents(int inFrom, int inTo, CopyEnd inEnd);
int CopyEntry(int inFrom, const TreeEntry& inEntry, int inTo, CopyEnd inEnd);

/// Moves likewise; between volumes by copying. An entry is deleted there when its copy is on disk.
int MoveContents(int inFrom, int inTo);

} // namespace Linux
} // namespace ORL
