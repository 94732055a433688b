#include "PESections.h"

#include <algorithm>

namespace ORL {
namespace Resources {

namespace {

constexpr std::uint16_t kDosMagic = 0x5A4D;    // "MZ"
constexpr std::uint32_t kPEMagic = 0x00004550; // "PE"
constexpr std::uint16_t kMagic32 = 0x10B;
constexpr std::uint16_t kMagic64 = 0x20B;
constexpr std::size_t kNewHeaderField = 0x3C;
constexpr std::size_t kFileHeader = 24; // size of the header with its magic number
constexpr std::size_t kSectionHeader = 40;
constexpr std::uint32_t kResourceDirectory = 2;

} // namespace

bool PESections::Read(const Bytes& inFile)
{
    std::uint16_t dosMagic = 0;
    std::uint32_t header = 0;
    std::uint32_t magic = 0;
    if (!ReadNumber(inFile, 0, dosMagic) || dosMagic != kDosMagic || !ReadNumber(inFile, kNewHeaderField, header)
        || !ReadNumber(inFile, header, magic) || magic != kPEMagic || !IsInside(inFile, header, kFileHeader + 2)) {
        return false;
    }
    const unsigned int sectionCount = NumberAt<std::uint16_t>(inFile, std::uint64_t{header} + 6);
    const std::uint16_t optionalSize = NumberAt<std::uint16_t>(inFile, std::uint64_t{header} + 20);
    const std::uint64_t optional = std::uint64_t{header} + kFileHeader;
    const std::uint16_t optionalMagic = NumberAt<std::uint16_t>(inFile, optional);
    if (!IsInside(inFile, optional, optionalSize) || (optionalMagic != kMagic32 && optionalMagic != kMagic64)) {
        return false;
    }
    const Bytes optionalHeader = PartOf(inFile, optional, optionalSize);
    const std::uint64_t countField = optionalMagic == kMagic64 ? 108 : 92;
    std::uint32_t directories = 0;
    if (ReadNumber(optionalHeader, countField, directories) && directories > kResourceDirectory) {
        ReadNumber(optionalHeader, countField + 4 + 8 * kResourceDirectory, mResourceAddress);
    }
    return ReadSections(inFile, optional + optionalSize, sectionCount);
}

bool PESections::ReadSections(const Bytes& inFile, std::uint64_t inTable, unsigned int inCount)
{
    if (!IsInside(inFile, inTable, std::uint64_t{inCount} * kSectionHeader)) {
        return false;
    }
    for (unsigned int i = 0; i < inCount; ++i) {
        const std::uint64_t header = inTable + i * kSectionHeader;
        const std::uint32_t memorySize = NumberAt<std::uint32_t>(inFile, header + 8);
        const std::uint32_t address = NumberAt<std::uint32_t>(inFile, header + 12);
        const std::uint32_t fileSize = NumberAt<std::uint32_t>(inFile, header + 16);
        const std::uint32_t place = NumberAt<std::uint32_t>(inFile, header + 20);
        if (fileSize == 0 || place == 0) {
            continue; // the section has no bytes in the file
        }
        if (!IsInside(inFile, place, fileSize)) {
            return false;
        }
        const std::uint32_t size = memorySize != 0 ? std::min(memorySize, fileSize) : fileSize;
        mSections.push_back({address, PartOf(inFile, place, size)});
    }
    return true;
}

bool PESections::FindToEnd(std::uint32_t inAddress, Bytes& outBytes) const noexcept
{
    for (const Section& section : mSections) {
        if (inAddress >= section.mAddress && inAddress - section.mAddress < section.mBytes.mSize) {
            const std::uint32_t place = inAddress - section.mAddress;
            outBytes = PartOf(section.mBytes, place, section.mBytes.mSize - place);
            return true;
        }
    }
    return false;
}

bool PESections::Find(std::uint32_t inAddress, std::uint32_t inSize, Bytes& outBytes) const noexcept
{
    Bytes rest;
    if (!FindToEnd(inAddress, rest) || inSize > rest.mSize) {
        return false;
    }
    outBytes = PartOf(rest, 0, inSize);
    return true;
}

} // namespace Resources
} // namespace ORL
