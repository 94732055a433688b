// Reading of little-endian numbers from bytes that nobody vouches for.
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

/// A number at a place that IsInside has found good.
template <class Number>
Number NumberAt(const Bytes& inBytes, std::uint64_t inPlace) noexcept
{
    Number number;
    std::memcpy(&number, inBytes.mData + inPlace, sizeof(number));
    return number;
}

/// The same anywhere; returns false if it is not wholly inside.
template <class Number>
bool ReadNumber(const Bytes& inBytes, std::uint64_t inPlace, Number& outNumber) noexcept
{
    if (!IsInside(inBytes, inPlace, sizeof(outNumber))) {
        return false;
    }
    outNumber = NumberAt<Number>(inBytes, inPlace);
    return true;
}

/// Part of the bytes, which must be inside.
inline Bytes PartOf(const Bytes& inBytes, std::uint64_t inPlace, std::uint64_t inSize) noexcept
{
    Bytes part;
    part.mData = inBytes.mData + inPlace;
    part.mSize = static_cast<std::size_t>(inSize);
    return part;
}

/// Units that need not be aligned, copied.
inline std::vector<unsigned short> UnitsAt(const Bytes& inBytes, std::uint64_t inPlace, std::size_t inCount)
{
    std::vector<unsigned short> units(inCount + 1); // never without memory, so that an empty text is a text
    if (inCount != 0) {
        std::memcpy(units.data(), inBytes.mData + inPlace, inCount * sizeof(unsigned short));
    }
    return units;
}

} // namespace Resources
} // namespace ORL
