// Floor: System
// The resources of one module or file, found by type, name and language.
#pragma once

#include <Resources/ResourceName.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ORL {
namespace Resources {

/// A stored type or name: a number, or a string in the index's memory.
struct StoredName
{
    std::uint32_t mOffset = 0; // offset of the unmodified string; its canonical form follows it
    std::uint32_t mCount = 0;
    std::uint32_t mCanonicalCount = 0;
    unsigned short mID = 0;
    bool mIsText = false;
};

struct ResourceEntry
{
    StoredName mType;
    StoredName mName;
    unsigned short mLanguage = 0;
    std::uint32_t mSize = 0;
    const unsigned char* mData = nullptr;
};

/// Filled once by a reader, then finished and immutable; lookups are then thread-safe. The index does not own the data
/// of the entries, which must outlive it.
class ResourceIndex
{
public:
    /// Copies a name. Throws std::bad_alloc.
    StoredName Store(const NameView& inName);

    void Add(const StoredName& inType, const StoredName& inName, unsigned short inLanguage, const unsigned char* inData,
             std::uint32_t inSize);

    /// Sorts the entries by type, name and language; strings precede numbers. Of several entries with the same type,
    /// name and language only the first one added is kept. Throws std::bad_alloc.
    void Finish();

    /// Returns the sorted entries. Entries of one type are adjacent, and so are those of one type and name.
    const std::vector<ResourceEntry>& Entries() const noexcept { return mEntries; }

    /// Returns the unmodified string of a stored name; null for a number.
    const unsigned short* Text(const StoredName& inName) const noexcept;

    /// Finds a resource as Windows does: in the language, in its neutral sublanguage, in the neutral language. If the
    /// primary language is 0, then tries inUserLanguage, its neutral sublanguage, American English, and the first
    /// language that exists. Returns null if the index has no such resource.
    const ResourceEntry* Find(const NameView& inType, const NameView& inName, unsigned short inLanguage,
                              unsigned short inUserLanguage) const;

    /// Returns the entry of exactly that language, or null.
    const ResourceEntry* FindExact(const NameView& inType, const NameView& inName, unsigned short inLanguage) const;

    /// Returns the first entry of a type, or null.
    const ResourceEntry* FindFirstOfType(const NameView& inType) const;

private:
    struct Group // the entries of one type and name
    {
        std::uint32_t mHash;
        std::uint32_t mFirst;
        std::uint32_t mCount;
    };

    const Group* FindGroup(const NameView& inType, const NameView& inName) const;
    const Group* ProbeGroup(const NameView& inType, const NameView& inName) const;
    const ResourceEntry* InLanguage(const Group& inGroup, unsigned short inLanguage) const noexcept;
    bool Equals(const StoredName& inStored, const NameView& inCanonical) const noexcept;
    int Compare(const StoredName& inLeft, const StoredName& inRight) const noexcept;
    NameView View(const StoredName& inName) const noexcept;
    void MakeGroups();
    void MakeTable();

    std::vector<ResourceEntry> mEntries;
    std::vector<unsigned short> mTexts;
    std::vector<Group> mGroups;
    std::vector<std::uint32_t> mTable; // indices of groups plus one; 0 is free
    std::size_t mMask = 0;
};

} // namespace Resources
} // namespace ORL
