// Floor: System
// Tracks the values of a key that other processes have changed. The board contains only hashes of the names of changed
// values.
//
// A changed hash makes every name with that hash stale. Loading a name makes that name current; other names with the
// same hash stay stale.
#pragma once

#include "LinuxRegistryNames.h"

#include <unordered_map>
#include <vector>

namespace ORL {
namespace Registry {
namespace Linux {

class StaleNames
{
public:
    /// Above this number of hashes, loading all values of the key is cheaper.
    static constexpr std::size_t kMaxHashes = 1024;

    bool IsEmpty() const noexcept { return mLoaded.empty(); }
    bool IsFull() const noexcept { return mLoaded.size() >= kMaxHashes; }

    bool Contains(std::uint64_t inHash, UnitsView inFolded) const noexcept
    {
        const auto found = mLoaded.find(inHash);
        if (found == mLoaded.end()) {
            return false;
        }
        for (const Units& name : found->second) {
            if (name == inFolded) {
                return false;
            }
        }
        return true;
    }

    /// Makes all names with a hash stale.
    void Add(std::uint64_t inHash) { mLoaded[inHash].clear(); }

    /// Makes one name current, after it was loaded.
    void Remove(std::uint64_t inHash, UnitsView inFolded)
    {
        if (Contains(inHash, inFolded)) {
            mLoaded[inHash].emplace_back(inFolded);
        }
    }

    void Clear() noexcept { mLoaded.clear(); }

private:
    std::unordered_map<std::uint64_t, std::vector<Units>> mLoaded; // for each hash, the names loaded since its change
};

} // namespace Linux
} // namespace Registry
} // namespace ORL
