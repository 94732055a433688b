// Operations on trees of folders, through open folders and single names. No step follows a link, so no step leaves the
// tree, even if a folder is replaced by a link during the operation.
//
// A tree contains files, folders and links. Other entries (pipes, devices) can be moved within their volume and
// deleted, but not copied: ENOTSUP. An entry that is open through a handle that does not share the operation stays
// unchanged: ETXTBSY, which LinuxErrors converts to 32. A deeper tree needs more memory, but no more descriptors or
// stack (LinuxTreePath.h). The first failure stops the operation; finished steps are not undone. Every function returns
// 0 or an errno and may throw std::bad_alloc.
#pragma once

#include "../Paths/LinuxOpenFolder.h"
#include "LinuxTreeEntryShare.h"

#include <string>
#include <vector>

namespace ORL {
namespace Linux {

/// The name of an entry, and its type as listed (DT_DIR ...).
struct TreeEntry
{
    std::string mName;
    unsigned char mType;
};

using TreeEntries = std::vector<TreeEntry>;

/// Lists all names of a folder before any of them is changed, because a listing is undefined while its folder changes.
int ListFolder(int inFolder, TreeEntries& outEntries);

/// Returns ETXTBSY if anything in the folder, at any depth, is open without sharing delete access.
int CheckContentsDeletable(int inFolder);

/// Deletes the contents of the folder. Does not enter the mount point of another volume: EBUSY.
int WipeContents(int inFolder);

/// Deletes one entry and its contents. An entry that no longer exists is not an error.
int WipeEntry(int inFolder, const TreeEntry& inEntry);

/// The state of a finished copy. kSynced is for moves: contents and names are synced, except the entry's own name in
/// its folder, and permissions are kept regardless of the umask.
enum class CopyDurability { kWritten, kSynced };

/// Copies the contents of one folder into another, replacing files with the same name. A file gets its name only when
/// it is complete. Keeps contents, permissions and, for files, last-write times. Fails with EINVAL if a source folder
/// is also part of the destination, through a different path.
int CopyContents(int inFrom, int inTo, CopyDurability inDurability);
int CopyEntry(int inFrom, const TreeEntry& inEntry, int inTo, CopyDurability inDurability);

/// Moves the contents of one folder into another by the same rules. Between volumes it copies each entry, then deletes
/// the original after the copy has been synced.
int MoveContents(int inFrom, int inTo);

} // namespace Linux
} // namespace ORL
