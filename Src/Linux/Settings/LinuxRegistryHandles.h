// Floor: System
// The open handles of a store. A closed handle is detected even after its slot is reused.
//
// Not thread-safe; the store locks the table.
#pragma once

#include "Store/LinuxRegistryTree.h"

#include <Platform/Registry.h>

#include <memory>
#include <vector>

namespace ORL {
namespace Registry {
namespace Linux {

enum class StoreKind { kUser, kMachine };

/// The parts of a handle: its store, its slot there, and the serial number of the slot.
struct HandleParts
{
    bool mIsRoot = false;
    bool mIsMachine = false;
    std::uint32_t mSlot = 0;
    std::uint32_t mSerial = 0;
};

/// Splits a handle into its parts. Returns false for a value that is not a handle.
bool DecodeHandle(Platform::KeyHandle inHandle, HandleParts& outParts) noexcept;

class HandleTable
{
public:
    explicit HandleTable(StoreKind inKind) noexcept : mKind(inKind) {}

    /// Adds a handle. Throws std::bad_alloc.
    Platform::KeyHandle Add(std::shared_ptr<StoredKey> inKey, unsigned inAccess);

    /// Returns false for a handle that is not open.
    bool Find(const HandleParts& inParts, StoredKey*& outKey, unsigned& outAccess) const noexcept;

    /// Returns the key of the removed handle, or null for a handle that is not open. The result may be the last
    /// reference to the key.
    std::shared_ptr<StoredKey> Remove(const HandleParts& inParts) noexcept;

    /// Frees the memory of the table. No handle may be open.
    void Clear() noexcept;

    bool IsEmpty() const noexcept { return mFree.size() == mEntries.size(); }

private:
    struct Entry
    {
        std::shared_ptr<StoredKey> mKey; // null while closed
        unsigned mAccess = 0;
        std::uint32_t mSerial = 0;
    };

    const StoreKind mKind;
    std::vector<Entry> mEntries;
    std::vector<std::uint32_t> mFree;
};

} // namespace Linux
} // namespace Registry
} // namespace ORL
