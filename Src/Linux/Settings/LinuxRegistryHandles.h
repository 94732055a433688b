// Floor: System
// The open handles of a store. A handle that was closed is known as such, even after its place is used again.
//
// Not thread-safe; the store locks it.
#pragma once

#include "LinuxRegistryTree.h"

#include <Platform/Registry.h>

#include <memory>
#include <vector>

namespace ORL {
namespace Registry {
namespace Linux {

/// Which store a handle belongs to, and which of its handles it is.
struct HandleParts
{
    bool mIsRoot = false;
    bool mIsMachine = false;
    std::uint32_t mSlot = 0;
    std::uint32_t mSerial = 0;
};

/// False for what was never a handle.
bool TakeApart(Platform::KeyHandle inHandle, HandleParts& outParts) noexcept;

class HandleTable
{
public:
    explicit HandleTable(bool inIsMachine) noexcept : mIsMachine(inIsMachine) {}

    /// Throws std::bad_alloc.
    Platform::KeyHandle Add(std::shared_ptr<StoredKey> inKey, unsigned inAccess);

    /// False for a handle that is not open.
    bool Find(const HandleParts& inParts, StoredKey*& outKey, unsigned& outAccess) const noexcept;

    /// Empty for a handle that is not open; else the key, which may end with it.
    std::shared_ptr<StoredKey> Remove(const HandleParts& inParts) noexcept;

    /// Gives its memory back. No handle may be open.
    void Clear() noexcept;

    bool IsEmpty() const noexcept { return mFree.size() == mEntries.size(); }

private:
    struct Entry
    {
        std::shared_ptr<StoredKey> mKey; // null while closed
        unsigned mAccess = 0;
        std::uint32_t mSerial = 0;
    };

    const bool mIsMachine;
    std::vector<Entry> mEntries;
    std::vector<std::uint32_t> mFree;
};

} // namespace Linux
} // namespace Registry
} // namespace ORL
