// System functions that an ingest needs beyond the library's: open folders with an identity, listings that report when
// they are incomplete, last-write times, and flushes to disk.
#pragma once

#include <ORLFile.h>
#include <ORLResult.h>
#include <cstdint>
#include <memory>
#include <string>
#include <tuple>
#include <tvxcore/String.h>
#include <vector>

namespace orl {

/// Identifies one file or folder among all that exist at the same time.
struct EntryIdentity
{
    std::uint64_t mVolume = 0;
    std::uint64_t mEntry = 0;

    bool operator==(const EntryIdentity& inOther) const
    {
        return mVolume == inOther.mVolume && mEntry == inOther.mEntry;
    }
    bool operator!=(const EntryIdentity& inOther) const { return !(*this == inOther); }
    bool operator<(const EntryIdentity& inOther) const
    {
        return std::tie(mVolume, mEntry) < std::tie(inOther.mVolume, inOther.mEntry);
    }
};

struct EntryStatus
{
    enum Kind { kFile, kFolder, kLink, kOther };

    Kind mKind = kOther;
    EntryIdentity mIdentity;
    std::uint64_t mSize = 0;
    std::uint64_t mAllocated = 0; // bytes on disk; less than the size if the file has holes
    unsigned __int64 mTime = 0;   // last-write time, in the library's units

    // The permissions that SetPermissions sets on a copy: on Linux the nine permission bits, with access for the owner
    // added, so that the copy can be read back; on Windows 1 for a read-only file, otherwise 0.
    unsigned mPermissions = 0;

    // Whether only this user and the system's administrator can have written the file. Always true on Windows, where
    // the folder's access list decides.
    bool mIsTrusted = true;
};

enum class Links { kFollow, kNoFollow };

/// A folder with an identity. A name is a single component, in raw bytes (UTF-8 on Windows). Operations may run
/// on several threads at once. Each operation returns kSuccess or the result for the system's error.
///
/// On Linux the object holds a descriptor, so renaming a parent folder does not affect it and path length is not
/// limited. On Windows the object keeps the extended path, limited to 32767 units; callers detect a replaced folder
/// by comparing its identity.
class HeldFolder
{
public:
    HeldFolder();
    ~HeldFolder();
    HeldFolder(HeldFolder&& ioOther) noexcept;
    HeldFolder& operator=(HeldFolder&& ioOther) noexcept;

    static ORL::Result Open(const UTF16String& inPath, HeldFolder& outFolder);
    ORL::Result OpenFolder(const std::string& inName, Links inLinks, HeldFolder& outFolder) const;

    bool IsOpen() const { return mState != nullptr; }
    const EntryIdentity& Identity() const;

    /// Return the library path of this folder, and of an entry in it. Valid while this object lives.
    UTF16String Path() const;
    UTF16String PathOf(const std::string& inName) const;

    /// Lists the names of all entries, unordered. Fails if the listing is incomplete.
    ORL::Result List(std::vector<std::string>& outNames) const;

    ORL::Result GetStatus(const std::string& inName, Links inLinks, EntryStatus& outStatus) const;
    ORL::Result MakeFolder(const std::string& inName) const;

    /// Sets the permissions of a file. Does not follow links.
    ORL::Result SetPermissionsOf(const std::string& inName, unsigned inPermissions) const;

    /// Sets the permissions of this folder. Does nothing on Windows, where folders have no permissions.
    ORL::Result SetPermissions(unsigned inPermissions) const;

    /// Renames within this folder. Returns kAlreadyExists if the new name is taken. The check is atomic, except on
    /// Linux file systems that support neither exclusive renames nor hard links.
    ORL::Result RenameNoReplace(const std::string& inFrom, const std::string& inTo) const;

    /// Remove deletes a file or a link itself, RemoveFolder an empty folder.
    ORL::Result Remove(const std::string& inName) const;
    ORL::Result RemoveFolder(const std::string& inName) const;

    /// Returns whether this user may create and delete entries. Always succeeds on Windows, which has no such query.
    ORL::Result CheckWritable() const;

    /// Sets the last-write time of this folder, in the library's units.
    ORL::Result SetLastWriteTime(unsigned __int64 inTime) const;

    /// Waits until the names in this folder are on disk, as far as the file system supports it.
    ORL::Result Sync() const;

    /// Waits until the contents of a file are on disk. Requires a call to PrepareSync after the last write.
    ORL::Result SyncFile(const std::string& inName) const;

    /// Waits until everything on this folder's volume is on disk.
    ORL::Result SyncVolume() const;

private:
    struct State;

    std::unique_ptr<State> mState;
};

/// Allows this process as many open files as the administrator permits. Does nothing on Windows.
void RaiseOpenFileLimit();

/// Returns whether SyncVolume works on this platform without administrator rights.
bool CanSyncVolumes();

bool IdentifyFile(ORL::File& inFile, EntryIdentity& outIdentity);

/// Sets the last-write time of a file open for writing, in the library's units.
bool SetLastWriteTime(ORL::File& ioFile, unsigned __int64 inTime);

/// Makes a new file sparse, so that skipped parts stay holes.
void MakeSparse(ORL::File& ioFile);

/// Waits until a file's contents are on disk.
bool FlushFile(ORL::File& ioFile);

/// Prepares a written file for SyncFile: flushes it now on systems where SyncFile does nothing.
bool PrepareSync(ORL::File& ioFile);

} // namespace orl
