#include <Resources/ResourceReaders.h>

#include "ByteReader.h"

#include <algorithm>

namespace ORL {
namespace Resources {

namespace {

constexpr unsigned char kMagic[] = {0x7F, 'E', 'L', 'F', 2 /* 64 bits */, 1 /* little-endian */};
constexpr std::size_t kHeader = 64;
constexpr std::size_t kSegmentHeader = 56;
constexpr std::uint32_t kLoad = 1;
constexpr std::uint32_t kNote = 4;

constexpr char kOwner[] = "ORL";
constexpr std::uint32_t kResourceNoteType = 1;
constexpr std::size_t kNoteHeader = 12;
constexpr std::size_t kNoteContents = 16;

struct Segment
{
    std::uint32_t mType;
    std::uint64_t mOffset;
    std::uint64_t mAddress;
    std::uint64_t mSize;
};

std::uint64_t RoundUpTo4(std::uint64_t inSize) noexcept
{
    return (inSize + 3) & ~std::uint64_t{3};
}

// Stores the load and note segments. Returns false if one is not completely in the file, or if the table is invalid.
bool ReadSegments(const Bytes& inFile, std::vector<Segment>& outSegments)
{
    const std::uint64_t table = NumberAt<std::uint64_t>(inFile, 32);
    const std::uint16_t entrySize = NumberAt<std::uint16_t>(inFile, 54);
    const std::uint16_t count = NumberAt<std::uint16_t>(inFile, 56);
    if (entrySize != kSegmentHeader || !IsInside(inFile, table, std::uint64_t{count} * kSegmentHeader)) {
        return false;
    }
    bool isWhole = true;
    for (unsigned int i = 0; i < count; ++i) {
        const std::uint64_t header = table + i * kSegmentHeader;
        const Segment segment{NumberAt<std::uint32_t>(inFile, header), NumberAt<std::uint64_t>(inFile, header + 8),
                              NumberAt<std::uint64_t>(inFile, header + 16),
                              NumberAt<std::uint64_t>(inFile, header + 32)};
        if (segment.mType != kLoad && segment.mType != kNote) {
            continue;
        }
        if (IsInside(inFile, segment.mOffset, segment.mSize)) {
            outSegments.push_back(segment);
        } else {
            isWhole = false;
        }
    }
    return isWhole;
}

// Finds the bytes at an address of the loaded module.
bool FindAddress(const Bytes& inFile, const std::vector<Segment>& inSegments, std::uint64_t inAddress,
                 std::uint64_t inSize, Bytes& outBytes)
{
    for (const Segment& segment : inSegments) {
        const std::uint64_t inside = inAddress - segment.mAddress;
        if (segment.mType == kLoad && inAddress >= segment.mAddress && inside <= segment.mSize
            && inSize <= segment.mSize - inside) {
            outBytes = PartOf(inFile, segment.mOffset + inside, inSize);
            return true;
        }
    }
    return false;
}

} // namespace

std::vector<ResourceNote> FindResourceNotes(const Bytes& inNotes)
{
    std::vector<ResourceNote> found;
    std::uint64_t place = 0;
    while (IsInside(inNotes, place, kNoteHeader)) {
        const std::uint32_t nameSize = NumberAt<std::uint32_t>(inNotes, place);
        const std::uint32_t contentsSize = NumberAt<std::uint32_t>(inNotes, place + 4);
        const std::uint32_t type = NumberAt<std::uint32_t>(inNotes, place + 8);
        const std::uint64_t name = place + kNoteHeader;
        const std::uint64_t contents = name + RoundUpTo4(nameSize);
        if (!IsInside(inNotes, contents, contentsSize)) {
            break;
        }
        if (type == kResourceNoteType && contentsSize == kNoteContents && nameSize == sizeof(kOwner)
            && std::equal(kOwner, kOwner + sizeof(kOwner), inNotes.mData + name)) {
            found.push_back({static_cast<std::size_t>(contents), NumberAt<std::int64_t>(inNotes, contents),
                             NumberAt<std::uint64_t>(inNotes, contents + 8)});
        }
        place = contents + RoundUpTo4(contentsSize);
    }
    return found;
}

ReadOutcome ReadELFFile(const Bytes& inFile, ResourceIndex& ioIndex)
{
    if (!IsInside(inFile, 0, kHeader) || !std::equal(kMagic, kMagic + sizeof(kMagic), inFile.mData)) {
        return ReadOutcome::kRefused;
    }
    std::vector<Segment> segments;
    bool isWhole = ReadSegments(inFile, segments);
    // The number of bytes that may still be scanned. Valid segments do not overlap, so the file's size is enough for
    // them; the limit bounds the work on a malicious file.
    std::uint64_t bytesLeft = inFile.mSize;
    std::uint64_t noteBytesLeft = inFile.mSize;
    for (const Segment& segment : segments) {
        if (segment.mType != kNote) {
            continue;
        }
        if (segment.mSize > noteBytesLeft) {
            return ReadOutcome::kPartial;
        }
        noteBytesLeft -= segment.mSize;
        for (const ResourceNote& note : FindResourceNotes(PartOf(inFile, segment.mOffset, segment.mSize))) {
            const std::uint64_t address = segment.mAddress + note.mOffset + static_cast<std::uint64_t>(note.mDistance);
            Bytes file;
            if (note.mSize > bytesLeft || !FindAddress(inFile, segments, address, note.mSize, file)) {
                isWhole = false;
                continue;
            }
            bytesLeft -= note.mSize;
            isWhole = ReadResFile(file, ioIndex) == ReadOutcome::kComplete && isWhole;
        }
    }
    return isWhole ? ReadOutcome::kComplete : ReadOutcome::kPartial;
}

} // namespace Resources
} // namespace ORL
