// Floor: System
// A page of shared memory through which the processes that share a store notify each other of changes. A reader polls
// it instead of querying the database.
//
// The generation is a counter. It is even while nothing changes, and odd from just before a commit until just after it;
// it stays odd if the writer dies in between. For each change the board has an entry with the affected key or value. A
// writer posts the entry before the commit. While the generation is odd, a reader treats the change as made and reads
// what it affects from the database, so it never returns an old value for a new one.
//
// Writers hold the database's write lock from PostChange to the commit.
#pragma once

#include "../../Files/LinuxDescriptor.h"

#include <Platform/SystemErrors.h>

#include <cstdint>
#include <string>
#include <vector>

namespace ORL {
namespace Registry {
namespace Linux {

/// The key or value that one commit changes.
struct Change
{
    enum Kind : std::uint32_t {
        kEverything = 0,
        kSubKeys = 1, // the list of direct subkeys of mKey
        kValue = 2    // the value of mKey with the hash mHash
    };

    Kind mKind = kEverything;
    std::uint64_t mKey = 0;
    std::uint64_t mHash = 0;
};

class ChangeBoard
{
public:
    static constexpr std::size_t kSlots = 256;

    ChangeBoard() = default;
    ~ChangeBoard() { Close(); }
    ChangeBoard(const ChangeBoard&) = delete;
    ChangeBoard& operator=(const ChangeBoard&) = delete;

    /// Opens the board's file, or creates it, and maps it. Opens the file read-only if the process may not write it,
    /// and then returns 2 if the file is missing or incomplete. Returns 50 if the file system does not support shared
    /// memory, and 1017 for a board with a different format.
    SystemError Open(const std::string& inFile, bool inIsWorldReadable);
    void Close() noexcept;
    bool IsOpen() const noexcept { return mPage != nullptr; }

    /// Returns whether the board's name still refers to this file. A new board is not written during its first
    /// kGracePeriodMilliseconds, so a process that calls this at shorter intervals misses no change.
    bool IsFileCurrent() const noexcept;
    static constexpr int kGracePeriodMilliseconds = 25;
    bool IsWritable() const noexcept { return mIsWritable; }

    /// Locks the file while a store is opened or set aside. Waits up to 20 seconds and then returns an
    /// error. The kernel releases the lock when its process exits.
    SystemError Lock() noexcept;
    void Unlock() noexcept;

    std::uint64_t Generation() const noexcept;

    /// Stores the changes after generation inSince, which is even. Returns false if some entries have been overwritten.
    /// outFinished is the last even generation. A change whose commit is in progress is returned both by this call and
    /// by the next.
    bool ChangesSince(std::uint64_t inSince, std::uint64_t& outFinished, std::vector<Change>& outChanges) const;

    /// Posts a change and returns its odd generation. Never throws.
    std::uint64_t PostChange(const Change& inChange) noexcept;

    /// Makes the generation even, after the change was committed or rolled back.
    void FinishChange(std::uint64_t inPosted) noexcept;

private:
    struct Page;

    void WaitForGracePeriod() noexcept;

    Page* mPage = nullptr;
    ORL::Linux::Descriptor mFile;
    std::string mName;
    std::uint64_t mDevice = 0;
    std::uint64_t mInode = 0;
    bool mIsWritable = false;
};

} // namespace Linux
} // namespace Registry
} // namespace ORL
