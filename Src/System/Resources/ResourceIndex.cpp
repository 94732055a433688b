#include <Resources/ResourceIndex.h>

#include <algorithm>
#include <limits>
#include <new>

namespace ORL {
namespace Resources {

namespace {

constexpr unsigned short kNeutral = 0;
constexpr unsigned short kAmericanEnglish = 1033;
constexpr unsigned short kPrimaryMask = 0x3FF;

// Multiplies by an odd number and XORs the upper half into the lower one, so that each bit of the input affects the
// lower bits, which select the slot in the table.
class Hasher
{
public:
    void Add(const NameView& inCanonical) noexcept
    {
        if (!inCanonical.IsText()) {
            AddWord(inCanonical.ID());
            return;
        }
        for (std::size_t i = 0; i < inCanonical.Count(); ++i) {
            mState = (mState ^ AsciiUpper(inCanonical.Units()[i])) * kFactor;
        }
        AddWord(kText + inCanonical.Count());
    }

    std::uint32_t Value() const noexcept { return static_cast<std::uint32_t>(mState ^ (mState >> 32)); }

private:
    static constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15;
    static constexpr std::uint64_t kText = std::uint64_t{1} << 32; // distinguishes strings from 16-bit numbers

    void AddWord(std::uint64_t inWord) noexcept
    {
        mState = (mState ^ inWord) * kFactor;
        mState ^= mState >> 32;
    }

    std::uint64_t mState = 0;
};

std::uint32_t HashOf(const NameView& inType, const NameView& inName) noexcept
{
    Hasher hasher;
    hasher.Add(inType);
    hasher.Add(inName);
    return hasher.Value();
}

bool IsCanonical(const NameView& inName) noexcept
{
    return !inName.IsText() || IsAscii(inName.Units(), inName.Count());
}

// The canonical form of a name. Only a string with non-ASCII units is copied and case-folded.
class Canonical
{
public:
    explicit Canonical(const NameView& inName) : mView(inName)
    {
        if (!IsCanonical(inName)) {
            mText = CanonicalName(inName.Units(), inName.Count());
            mView = NameView::OfText(mText.data(), mText.size());
        }
    }
    Canonical(const Canonical&) = delete;
    Canonical& operator=(const Canonical&) = delete;

    const NameView& View() const noexcept { return mView; }

private:
    UTF16String mText;
    NameView mView;
};

} // namespace

StoredName ResourceIndex::Store(const NameView& inName)
{
    StoredName stored;
    if (!inName.IsText()) {
        stored.mID = inName.ID();
        return stored;
    }
    const UTF16String canonical = CanonicalName(inName.Units(), inName.Count());
    if (mTexts.size() + inName.Count() + canonical.size() > std::numeric_limits<std::uint32_t>::max()) {
        throw std::bad_alloc();
    }
    stored.mIsText = true;
    stored.mOffset = static_cast<std::uint32_t>(mTexts.size());
    stored.mCount = static_cast<std::uint32_t>(inName.Count());
    stored.mCanonicalCount = static_cast<std::uint32_t>(canonical.size());
    mTexts.insert(mTexts.end(), inName.Units(), inName.Units() + inName.Count());
    mTexts.insert(mTexts.end(), canonical.begin(), canonical.end());
    return stored;
}

void ResourceIndex::Add(const StoredName& inType, const StoredName& inName, unsigned short inLanguage,
                        const unsigned char* inData, std::uint32_t inSize)
{
    mEntries.push_back({inType, inName, inLanguage, inSize, inData});
}

const unsigned short* ResourceIndex::Text(const StoredName& inName) const noexcept
{
    static const unsigned short kEmpty = 0;
    if (!inName.mIsText) {
        return nullptr;
    }
    return mTexts.empty() ? &kEmpty : mTexts.data() + inName.mOffset;
}

// Returns the canonical form of a stored name.
NameView ResourceIndex::View(const StoredName& inName) const noexcept
{
    if (!inName.mIsText) {
        return NameView::OfNumber(inName.mID);
    }
    return NameView::OfText(Text(inName) + inName.mCount, inName.mCanonicalCount);
}

int ResourceIndex::Compare(const StoredName& inLeft, const StoredName& inRight) const noexcept
{
    if (inLeft.mIsText != inRight.mIsText) {
        return inLeft.mIsText ? -1 : 1;
    }
    if (!inLeft.mIsText) {
        return int{inLeft.mID} - int{inRight.mID};
    }
    const NameView left = View(inLeft);
    const NameView right = View(inRight);
    const std::size_t common = std::min(left.Count(), right.Count());
    const int order = std::char_traits<unsigned short>::compare(left.Units(), right.Units(), common);
    if (order != 0 || left.Count() == right.Count()) {
        return order;
    }
    return left.Count() < right.Count() ? -1 : 1;
}

void ResourceIndex::Finish()
{
    const auto order = [this](const ResourceEntry& inLeft, const ResourceEntry& inRight) {
        const int types = Compare(inLeft.mType, inRight.mType);
        return types != 0 ? types : Compare(inLeft.mName, inRight.mName);
    };
    std::stable_sort(mEntries.begin(), mEntries.end(), [&](const ResourceEntry& inLeft, const ResourceEntry& inRight) {
        const int names = order(inLeft, inRight);
        return names != 0 ? names < 0 : inLeft.mLanguage < inRight.mLanguage;
    });
    const auto same = [&](const ResourceEntry& inLeft, const ResourceEntry& inRight) {
        return inLeft.mLanguage == inRight.mLanguage && order(inLeft, inRight) == 0;
    };
    mEntries.erase(std::unique(mEntries.begin(), mEntries.end(), same), mEntries.end());
    MakeGroups();
    MakeTable();
}

void ResourceIndex::MakeGroups()
{
    mGroups.clear();
    for (std::size_t i = 0; i < mEntries.size(); ++i) {
        const ResourceEntry& entry = mEntries[i];
        if (i != 0 && Compare(mEntries[i - 1].mType, entry.mType) == 0
            && Compare(mEntries[i - 1].mName, entry.mName) == 0) {
            ++mGroups.back().mCount;
        } else {
            mGroups.push_back({HashOf(View(entry.mType), View(entry.mName)), static_cast<std::uint32_t>(i), 1});
        }
    }
}

// The table is at most half full, so a search needs few probes.
void ResourceIndex::MakeTable()
{
    std::size_t size = 2;
    while (size < 2 * mGroups.size()) {
        size *= 2;
    }
    mTable.assign(size, 0);
    mMask = size - 1;
    for (std::size_t i = 0; i < mGroups.size(); ++i) {
        std::size_t place = mGroups[i].mHash & mMask;
        while (mTable[place] != 0) {
            place = (place + 1) & mMask;
        }
        mTable[place] = static_cast<std::uint32_t>(i + 1);
    }
}

// The stored name is canonical. The queried name is too, except for the case of ASCII letters.
bool ResourceIndex::Equals(const StoredName& inStored, const NameView& inCanonical) const noexcept
{
    if (inStored.mIsText != inCanonical.IsText()) {
        return false;
    }
    if (!inStored.mIsText) {
        return inStored.mID == inCanonical.ID();
    }
    if (inStored.mCanonicalCount != inCanonical.Count()) {
        return false;
    }
    const unsigned short* const units = Text(inStored) + inStored.mCount;
    for (std::size_t i = 0; i < inCanonical.Count(); ++i) {
        if (AsciiUpper(units[i]) != AsciiUpper(inCanonical.Units()[i])) {
            return false;
        }
    }
    return true;
}

const ResourceIndex::Group* ResourceIndex::ProbeGroup(const NameView& inType, const NameView& inName) const
{
    const std::uint32_t hash = HashOf(inType, inName);
    for (std::size_t place = hash & mMask; mTable[place] != 0; place = (place + 1) & mMask) {
        const Group& group = mGroups[mTable[place] - 1];
        if (group.mHash == hash && Equals(mEntries[group.mFirst].mType, inType)
            && Equals(mEntries[group.mFirst].mName, inName)) {
            return &group;
        }
    }
    return nullptr;
}

const ResourceIndex::Group* ResourceIndex::FindGroup(const NameView& inType, const NameView& inName) const
{
    if (mGroups.empty()) {
        return nullptr;
    }
    // Fast path for most names, which are numbers or ASCII: constructing a Canonical costs time even without a copy.
    if (IsCanonical(inType) && IsCanonical(inName)) {
        return ProbeGroup(inType, inName);
    }
    const Canonical type(inType);
    const Canonical name(inName);
    return ProbeGroup(type.View(), name.View());
}

const ResourceEntry* ResourceIndex::InLanguage(const Group& inGroup, unsigned short inLanguage) const noexcept
{
    const ResourceEntry* const first = mEntries.data() + inGroup.mFirst;
    for (const ResourceEntry* entry = first; entry != first + inGroup.mCount; ++entry) {
        if (entry->mLanguage == inLanguage) {
            return entry;
        }
    }
    return nullptr;
}

const ResourceEntry* ResourceIndex::FindExact(const NameView& inType, const NameView& inName,
                                              unsigned short inLanguage) const
{
    const Group* const group = FindGroup(inType, inName);
    return group != nullptr ? InLanguage(*group, inLanguage) : nullptr;
}

const ResourceEntry* ResourceIndex::Find(const NameView& inType, const NameView& inName, unsigned short inLanguage,
                                         unsigned short inUserLanguage) const
{
    const Group* const group = FindGroup(inType, inName);
    if (group == nullptr) {
        return nullptr;
    }
    const bool isNeutral = (inLanguage & kPrimaryMask) == kNeutral;
    const unsigned short requestedLanguages[] = {inLanguage, static_cast<unsigned short>(inLanguage & kPrimaryMask),
                                                 kNeutral};
    for (const unsigned short language : requestedLanguages) {
        if (const ResourceEntry* const entry = InLanguage(*group, language)) {
            return entry;
        }
    }
    if (!isNeutral) {
        return nullptr;
    }
    const unsigned short userLanguages[] = {inUserLanguage, static_cast<unsigned short>(inUserLanguage & kPrimaryMask),
                                            kAmericanEnglish};
    for (const unsigned short language : userLanguages) {
        if (const ResourceEntry* const entry = InLanguage(*group, language)) {
            return entry;
        }
    }
    return mEntries.data() + group->mFirst;
}

const ResourceEntry* ResourceIndex::FindFirstOfType(const NameView& inType) const
{
    const Canonical type(inType);
    const auto entry = std::find_if(mEntries.begin(), mEntries.end(),
                                    [&](const ResourceEntry& inEntry) { return Equals(inEntry.mType, type.View()); });
    return entry != mEntries.end() ? &*entry : nullptr;
}

} // namespace Resources
} // namespace ORL
