// What an ingest needs of the system besides the library: folders that are held and compared by identity, listings that
// report where they break off, times that are kept, and contents that are on disk for sure.
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

/// Tells one file or folder from all others that are there at the same time.
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
    std::uint64_t mAllocated = 0; // bytes on the disk; fewer than the size where the file has holes
    unsigned __int64 mTime = 0;   // of the last write, in the library's units
};

enum class Links { kFollow, kStay };

/// A folder that stays this one, whatever happens to the names that led to it, and however long they are. Names are
/// those of one entry, as bytes of the host (UTF-8 on Windows). Usable from several threads at once.
///
/// Each operation returns kSuccess, or what the system's error stands for.
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

    /// Library paths that lead here, and to an entry, for as long as this object lives.
    UTF16String Path() const;
    UTF16String PathOf(const std::string& inName) const;

    /// The names of all entries, in no order. Fails also where the listing breaks off.
    ORL::Result List(std::vector<std::string>& outNames) const;

    ORL::Result Look(const std::string& inName, Links inLinks, EntryStatus& outStatus) const;
    ORL::Result MakeFolder(const std::string& inName) const;

    /// Renames within this folder. kAlreadyExists where something has the new name: that stays, by the system's own
    /// doing.
    ORL::Result MoveToFreeName(const std::string& inFrom, const std::string& inTo) const;

    /// Removes a file or a link itself, or an empty folder.
    ORL::Result Remove(const std::string& inName) const;
    ORL::Result RemoveFolder(const std::string& inName) const;

    /// Waits until the names in this folder are on disk, as far as the file system can be asked to.
    ORL::Result Sync() const;

    /// Waits until the contents of a file are on disk that was settled when it was written.
    ORL::Result SyncFile(const std::string& inName) const;

    /// Waits until everything on this folder's volume is on disk.
    ORL::Result SyncVolume() const;

private:
    struct State;

    std::unique_ptr<State> mState;
};

/// Whether SyncVolume works for an ordinary user here.
bool CanSyncVolumes();

bool IdentifyFile(ORL::File& inFile, EntryIdentity& outIdentity);

/// Sets the last-write time of a file that is open to write, in the library's units.
bool SetLastWriteTime(ORL::File& ioFile, unsigned __int64 inTime);

/// Lets parts of a new file that are skipped stay holes.
void LetHaveHoles(ORL::File& ioFile);

/// Waits until a file's contents are on disk.
bool FlushFile(ORL::File& ioFile);

/// For a file that belongs to a group: does at once what SyncFile does not do.
bool SettleFile(ORL::File& ioFile);

} // namespace orl
