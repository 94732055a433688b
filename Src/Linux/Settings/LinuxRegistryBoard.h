// Floor: System
// Where the processes that share a store tell each other what they change: a page of shared memory that a reader looks
// at instead of asking the database.
//
// A generation counts the changes. It is even while nothing changes, and odd from just before a commit until just after
// it, also when the writer dies in between. Of each change the board keeps what it concerns. The entry is posted before
// the commit, so a reader that knows of it never takes an old value for the new one: while a generation is odd it treats
// the change as done and asks the database about what the change concerns.
//
// Writers hold the database's write lock from Announce to the commit.
#pragma once

#include <Platform/SystemErrors.h>

#include <cstdint>
#include <string>
#include <vector>

namespace ORL {
namespace Registry {
namespace Linux {

/// What one commit changes.
struct Change
{
    enum Kind : std::uint32_t {
        kEverything = 0,
        kSubKeys = 1, // the list of keys directly below mKey
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

    /// Opens the board's file, or creates it, and maps it. Without the right to write it the board can be read alone: 2
    /// if there is none then. 50 where the file system has no shared memory, 1017 for a board of another format.
    SystemError Open(const std::string& inFile, bool inIsForAll);
    void Close() noexcept;
    bool IsOpen() const noexcept { return mPage != nullptr; }

    /// Whether the board's name still leads to it. A new board can be written kSettleMilliseconds after it was made and
    /// no sooner: who asks this more often than that misses no change that is posted on another board.
    bool IsInPlace() const noexcept;
    static constexpr int kSettleMilliseconds = 25;
    bool IsWritable() const noexcept { return mIsWritable; }

    /// Lock of the file, held while a store is opened or set aside. Waits for a while. It dies with its owner.
    SystemError Lock() noexcept;
    void Unlock() noexcept;

    std::uint64_t Generation() const noexcept;

    /// The changes after generation inSince, which was even. False if they are no longer all known. outSettled is the
    /// last even generation among them: a change under way is among them and comes again the next time.
    bool ChangesSince(std::uint64_t inSince, std::uint64_t& outSettled, std::vector<Change>& outChanges) const;

    /// Posts a change and returns the odd generation that it stands under. Never throws.
    std::uint64_t Announce(const Change& inChange) noexcept;

    /// The change is committed, or given up.
    void Settle(std::uint64_t inAnnounced) noexcept;

private:
    struct Page;

    void WaitUntilSettled() noexcept;

    Page* mPage = nullptr;
    int mFile = -1;
    std::string mName;
    std::uint64_t mDevice = 0;
    std::uint64_t mInode = 0;
    bool mIsWritable = false;
};

} // namespace Linux
} // namespace Registry
} // namespace ORL
