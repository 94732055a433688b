// Trees of folders, gone through by open folders and single names: no step follows a link, and nobody who puts one in
// the place of a folder meanwhile leads a step out of the tree.
//
// A tree holds files, folders and links; anything else (a pipe, a device) can be moved on its volume and deleted, but
// not copied: ENOTSUP. What is open elsewhere and does not share what is to be done with it stays as it is: ETXTBSY,
// which is 32 at home. One file descriptor is held for each level. The first failure ends the work; what was done
// stays done. Every function gives 0 or an errno.
#pragma once

#include "LinuxOpenFolder.h"
#include "LinuxShareModes.h"

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

    /// Closes it now, and tells what the system tells: 0 or an errno. Some file systems say only here that there was no room.
    int Close() noexcept;

private:
    int mFile;
};

/// One name of a folder, and what the listing tells of it (DT_DIR ...).
struct TreeEntry
{
    std::string mName;
    unsigned char mType;
};

/// Asks for a moment for the right to use an entry, beside the handles of all processes: each step of a tree holds what it
/// works on. Links, pipes and the like are held by nobody.
class TreeHold
{
public:
    TreeHold() = default;
    ~TreeHold() { mShares.Release(mFile); }
    TreeHold(const TreeHold&) = delete;
    TreeHold& operator=(const TreeHold&) = delete;

    /// A file by its name; a folder and a name that is not there are fine, and not held. 0, ETXTBSY or the errno that kept it
    /// from asking.
    int EnterFile(int inFolder, const char* inName, unsigned inUses, unsigned inShares);

    /// An open file or folder, which belongs to the hold from now on, whatever the answer is. It may be a failed open's -1.
    int EnterOpen(int inFile, unsigned inUses, unsigned inShares);

    int File() const noexcept { return mFile; }

private:
    int mFile = -1;
    ShareHolder mShares;
};

/// All names of a folder, before any of them is touched: a list does not say what it does when it changes.
int ListFolder(int inFolder, std::vector<TreeEntry>& outEntries);

/// ETXTBSY when something in the folder, at any depth, is open and does not share that it goes.
int CheckContentsMayGo(int inFolder);

/// Opens a folder by its name in another one. A link is no folder.
int OpenSubfolder(int inFolder, const char* inName);

/// Deletes all that is in the folder.
int WipeContents(int inFolder);

/// Deletes one entry with all that is in it. One that is gone already is fine.
int WipeEntry(int inFolder, const TreeEntry& inEntry);

/// What holds of a copy when it is done. kIsOnDisk: contents and names, but for the name of the entry itself in its folder.
enum class CopyEnd { kIsWritten, kIsOnDisk };

/// Copies all that is in one folder into another, over files of the same name. A file gets its name when it is whole.
/// Contents, permissions and last-write times are kept, the latter of files.
int CopyContents(int inFrom, int inTo, CopyEnd inEnd);
int CopyEntry(int inFrom, const TreeEntry& inEntry, int inTo, CopyEnd inEnd);

/// Moves likewise; between volumes by copying. An entry is deleted there when its copy is on disk.
int MoveContents(int inFrom, int inTo);

} // namespace Linux
} // namespace ORL
