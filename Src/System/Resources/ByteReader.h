// Reads little-endian numbers from untrusted bytes.
#pragma once

#include <Resources/ResourceReaders.h>

#include <cstdint>
#include <cstring>

namespace ORL {
namespace Resources {

inline bool IsInside(const Bytes& inBytes, std::uint64_t inPlace, std::uint64_t inSize) noexcept
{
    return inPlace <= inBytes.mSize && inSize <= inBytes.mSize - inPlace;
}

/// Returns the number at an offset. The caller must have checked with IsInside that the number is inside the bytes.
template <class Number>
Number NumberAt(const Bytes& inBytes, std::uint64_t inPlace) noexcept
{
    Number number;
    std::memcpy(&number, inBytes.mData + inPlace, sizeof(number));
    return number;
}

/// Reads the number at any offset. Returns false if the number is not completely inside the bytes.
template <class Number>
bool ReadNumber(const Bytes& inBytes, std::uint64_t inPlace, Number& outNumber) noexcept
{
    if (!IsInside(inBytes, inPlace, sizeof(outNumber))) {
        return false;
    }
    outNumber = NumberAt<Number>(inBytes, inPlace);
    return true;
}

/// Returns a subrange, which must be completely inside the bytes.
inline Bytes PartOf(const Bytes& inBytes, std::uint64_t inPlace, std::uint64_t inSize) noexcept
{
    Bytes part;
    part.mData = inBytes.mData + inPlace;
    part.mSize = static_cast<std::size_t>(inSize);
    return part;
}

/// Copies units, which need not be aligned.
inline std::vector<unsigned short> UnitsAt(const Bytes& inBytes, std::uint64_t inPlace, std::size_t inCount)
{
    std::vector<unsigned short> units(inCount + 1); // one extra unit: a null data() would mean a number
    if (inCount != 0) {
        std::memcpy(units.data(), inBytes.mData + inPlace, inCount * sizeof(unsigned short));
    }
    return units;
}

} // namespace Resources
} // namespace ORL
