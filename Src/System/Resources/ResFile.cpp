#include <Resources/ResourceReaders.h>

#include "ByteReader.h"

#include <algorithm>

namespace ORL {
namespace Resources {

namespace {

// An entry consists of the size of the data, the size of the header, type, name, padding to 4 bytes, 16 bytes with the
// language at offset 6, the data, and padding to 4 bytes.
constexpr std::size_t kSmallestHeader = 32;
constexpr std::size_t kFixedPart = 16;
constexpr std::size_t kLanguageInFixedPart = 6;
constexpr unsigned short kNumberFollows = 0xFFFF;

constexpr unsigned char kEmptyEntry[kSmallestHeader] = {0, 0, 0, 0, 32, 0, 0, 0, 0xFF, 0xFF, 0, 0, 0xFF, 0xFF};

constexpr std::uint64_t RoundUpTo4(std::uint64_t inSize) noexcept
{
    return (inSize + 3) & ~std::uint64_t{3};
}

// A type or name in a header: 0xFFFF and a number, or a zero-terminated string.
class HeaderName
{
public:
    // Reads the name at ioPlace and advances ioPlace past it. Returns false if the header ends before the name does.
    bool Read(const Bytes& inHeader, std::uint64_t& ioPlace)
    {
        unsigned short unit = 0;
        if (!ReadNumber(inHeader, ioPlace, unit)) {
            return false;
        }
        if (unit == kNumberFollows) {
            const bool isWhole = ReadNumber(inHeader, ioPlace + 2, mNumber);
            ioPlace += 4;
            return isWhole;
        }
        const std::uint64_t start = ioPlace;
        for (; unit != 0; ioPlace += 2) {
            if (!ReadNumber(inHeader, ioPlace + 2, unit)) {
                return false;
            }
        }
        mIsText = true;
        mCount = static_cast<std::size_t>((ioPlace - start) / 2);
        mText = UnitsAt(inHeader, start, mCount);
        ioPlace += 2;
        return true;
    }

    NameView View() const noexcept
    {
        return mIsText ? NameView::OfText(mText.data(), mCount) : NameView::OfNumber(mNumber);
    }

private:
    bool mIsText = false;
    unsigned short mNumber = 0;
    std::size_t mCount = 0;
    std::vector<unsigned short> mText;
};

bool AddEntry(const Bytes& inHeader, const Bytes& inData, ResourceIndex& ioIndex)
{
    HeaderName type;
    HeaderName name;
    std::uint64_t place = 8;
    if (!type.Read(inHeader, place) || !name.Read(inHeader, place)) {
        return false;
    }
    place = RoundUpTo4(place);
    unsigned short language = 0;
    if (!IsInside(inHeader, place, kFixedPart) || !ReadNumber(inHeader, place + kLanguageInFixedPart, language)) {
        return false;
    }
    ioIndex.Add(ioIndex.Store(type.View()), ioIndex.Store(name.View()), language, inData.mData,
                static_cast<std::uint32_t>(inData.mSize));
    return true;
}

} // namespace

bool IsResFile(const Bytes& inFile) noexcept
{
    return inFile.mSize >= sizeof(kEmptyEntry)
           && std::equal(kEmptyEntry, kEmptyEntry + sizeof(kEmptyEntry), inFile.mData);
}

ReadOutcome ReadResFile(const Bytes& inFile, ResourceIndex& ioIndex)
{
    if (!IsResFile(inFile)) {
        return ReadOutcome::kRefused;
    }
    std::uint64_t place = sizeof(kEmptyEntry);
    while (place < inFile.mSize) {
        std::uint32_t dataSize = 0;
        std::uint32_t headerSize = 0;
        const bool hasSizes = ReadNumber(inFile, place, dataSize) && ReadNumber(inFile, place + 4, headerSize);
        if (!hasSizes || headerSize < kSmallestHeader - 8 || !IsInside(inFile, place, headerSize)
            || !IsInside(inFile, place + headerSize, dataSize)) {
            return ReadOutcome::kPartial;
        }
        const std::uint64_t data = place + headerSize;
        if (!AddEntry(PartOf(inFile, place, headerSize), PartOf(inFile, data, dataSize), ioIndex)) {
            return ReadOutcome::kPartial;
        }
        place = RoundUpTo4(data + dataSize);
    }
    return ReadOutcome::kComplete;
}

} // namespace Resources
} // namespace ORL
