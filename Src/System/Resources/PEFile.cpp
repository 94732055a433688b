#include <Resources/ResourceReaders.h>

#include "PESections.h"

namespace ORL {
namespace Resources {

namespace {

constexpr std::size_t kDirectoryHeader = 16;
constexpr std::size_t kDirectoryEntry = 8;
constexpr std::size_t kDataEntry = 16;
constexpr std::uint32_t kHighBit = 0x80000000;

// A directory has three levels: types, names, languages. In a valid directory, entries and strings do not overlap, so
// their number is limited by its size. The walk stops at that limit, because entries of a hostile directory may overlap
// or form cycles.
class DirectoryWalk
{
public:
    DirectoryWalk(const Bytes& inDirectory, const PESections& inSections, ResourceIndex& ioIndex)
        : mDirectory(inDirectory), mSections(inSections), mIndex(ioIndex),
          mEntriesLeft(inDirectory.mSize / kDirectoryEntry), mUnitsLeft(inDirectory.mSize)
    {
    }

    bool Run()
    {
        ForEachEntry(0, [this](std::uint32_t inName, std::uint32_t inTarget) { ReadType(inName, inTarget); });
        return mIsWhole;
    }

private:
    template <class Visit>
    void ForEachEntry(std::uint64_t inPlace, const Visit& inVisit)
    {
        if (!IsInside(mDirectory, inPlace, kDirectoryHeader)) {
            mIsWhole = false;
            return;
        }
        const std::size_t count = std::size_t{NumberAt<std::uint16_t>(mDirectory, inPlace + 12)}
                                  + NumberAt<std::uint16_t>(mDirectory, inPlace + 14);
        std::uint64_t entry = inPlace + kDirectoryHeader;
        for (std::size_t i = 0; i < count; ++i, entry += kDirectoryEntry) {
            if (!IsInside(mDirectory, entry, kDirectoryEntry) || mEntriesLeft == 0) {
                mIsWhole = false;
                return;
            }
            --mEntriesLeft;
            inVisit(NumberAt<std::uint32_t>(mDirectory, entry), NumberAt<std::uint32_t>(mDirectory, entry + 4));
        }
    }

    void ReadType(std::uint32_t inName, std::uint32_t inTarget)
    {
        StoredName type;
        if (!ReadName(inName, type) || !IsDirectory(inTarget)) {
            mIsWhole = false;
            return;
        }
        ForEachEntry(inTarget & ~kHighBit, [&](std::uint32_t inSecond, std::uint32_t inSecondTarget) {
            ReadNamed(type, inSecond, inSecondTarget);
        });
    }

    void ReadNamed(const StoredName& inType, std::uint32_t inName, std::uint32_t inTarget)
    {
        StoredName name;
        if (!ReadName(inName, name) || !IsDirectory(inTarget)) {
            mIsWhole = false;
            return;
        }
        ForEachEntry(inTarget & ~kHighBit, [&](std::uint32_t inLanguage, std::uint32_t inData) {
            ReadData(inType, name, inLanguage, inData);
        });
    }

    void ReadData(const StoredName& inType, const StoredName& inName, std::uint32_t inLanguage, std::uint32_t inPlace)
    {
        Bytes data;
        if (inLanguage > 0xFFFF || IsDirectory(inPlace) || !IsInside(mDirectory, inPlace, kDataEntry)
            || !mSections.Find(NumberAt<std::uint32_t>(mDirectory, inPlace),
                               NumberAt<std::uint32_t>(mDirectory, std::uint64_t{inPlace} + 4), data)) {
            mIsWhole = false;
            return;
        }
        mIndex.Add(inType, inName, static_cast<unsigned short>(inLanguage), data.mData,
                   static_cast<std::uint32_t>(data.mSize));
    }

    // The name is a number, or the offset of a string that begins with its length.
    bool ReadName(std::uint32_t inName, StoredName& outName)
    {
        if ((inName & kHighBit) == 0) {
            outName = mIndex.Store(NameView::OfNumber(static_cast<unsigned short>(inName)));
            return inName <= 0xFFFF;
        }
        const std::uint64_t place = inName & ~kHighBit;
        std::uint16_t count = 0;
        if (!ReadNumber(mDirectory, place, count) || !IsInside(mDirectory, place + 2, std::uint64_t{count} * 2)
            || count > mUnitsLeft) {
            return false;
        }
        mUnitsLeft -= count;
        outName = mIndex.Store(NameView::OfText(UnitsAt(mDirectory, place + 2, count).data(), count));
        return true;
    }

    static bool IsDirectory(std::uint32_t inTarget) noexcept { return (inTarget & kHighBit) != 0; }

    const Bytes mDirectory;
    const PESections& mSections;
    ResourceIndex& mIndex;
    std::size_t mEntriesLeft;
    std::size_t mUnitsLeft;
    bool mIsWhole = true;
};

} // namespace

bool IsPEFile(const Bytes& inFile)
{
    PESections sections;
    return sections.Read(inFile);
}

ReadOutcome ReadPEFile(const Bytes& inFile, ResourceIndex& ioIndex)
{
    PESections sections;
    if (!sections.Read(inFile)) {
        return ReadOutcome::kRefused;
    }
    if (sections.ResourceAddress() == 0) {
        return ReadOutcome::kComplete;
    }
    Bytes directory;
    if (!sections.FindToEnd(sections.ResourceAddress(), directory)) {
        return ReadOutcome::kPartial;
    }
    return DirectoryWalk(directory, sections, ioIndex).Run() ? ReadOutcome::kComplete : ReadOutcome::kPartial;
}

} // namespace Resources
} // namespace ORL
