// Where the addresses of a Windows module lie in its file.
#pragma once

#include "ByteReader.h"

#include <vector>

namespace ORL {
namespace Resources {

class PESections
{
public:
    /// Reads headers and section table. False if the bytes are no such module, or a section is not wholly among them.
    /// Throws std::bad_alloc.
    bool Read(const Bytes& inFile);

    /// The address of the resource directory; 0 if there is none.
    std::uint32_t ResourceAddress() const noexcept { return mResourceAddress; }

    /// The bytes at an address of the loaded module. False unless one section of the file holds them all.
    bool Find(std::uint32_t inAddress, std::uint32_t inSize, Bytes& outBytes) const noexcept;

    /// The bytes from an address to the end of its section.
    bool FindToEnd(std::uint32_t inAddress, Bytes& outBytes) const noexcept;

private:
    struct Section
    {
        std::uint32_t mAddress;
        Bytes mBytes;
    };

    bool ReadSections(const Bytes& inFile, std::uint64_t inTable, unsigned int inCount);

    std::vector<Section> mSections;
    std::uint32_t mResourceAddress = 0;
};

} // namespace Resources
} // namespace ORL
