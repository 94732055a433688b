// Maps the addresses of a Windows module to the bytes of its file.
#pragma once

#include "ByteReader.h"

#include <vector>

namespace ORL {
namespace Resources {

class PESections
{
public:
    /// Reads headers and section table. Returns false if the bytes are not a Windows module or a section is truncated.
    /// Throws std::bad_alloc.
    bool Read(const Bytes& inFile);

    /// Returns the address of the resource directory; 0 if there is none.
    std::uint32_t ResourceAddress() const noexcept { return mResourceAddress; }

    /// Finds the bytes at an address of the loaded module. Returns false unless one section of the file contains all
    /// these bytes.
    bool Find(std::uint32_t inAddress, std::uint32_t inSize, Bytes& outBytes) const noexcept;

    /// Finds the bytes from an address to the end of its section. Returns false if no section contains the address.
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
