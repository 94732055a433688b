// Floor: System
// Types and names of resources: numbers, or case-insensitive strings.
#pragma once

#include <tvxcore/String.h>

#include <cstddef>
#include <cstdint>

namespace ORL {
namespace Resources {

/// The type or name argument of a lookup. Does not own its string.
class NameView
{
public:
    NameView() = default;

    static NameView OfNumber(unsigned short inID) noexcept
    {
        NameView name;
        name.mID = inID;
        return name;
    }

    static NameView OfText(const unsigned short* inUnits, std::size_t inCount) noexcept
    {
        NameView name;
        name.mUnits = inUnits;
        name.mCount = inCount;
        return name;
    }

    /// Parses the Windows form: a number in the pointer's value, or a terminated string; "#" and digits denote a
    /// number. Returns false if the number after "#" exceeds 16 bits.
    static bool Parse(const unsigned short* inName, NameView& outName) noexcept;

    bool IsText() const noexcept { return mUnits != nullptr; }
    unsigned short ID() const noexcept { return mID; }
    const unsigned short* Units() const noexcept { return mUnits; }
    std::size_t Count() const noexcept { return mCount; }

private:
    const unsigned short* mUnits = nullptr;
    std::size_t mCount = 0;
    unsigned short mID = 0;
};

/// Returns the canonical form of a string, which is equal for two names if and only if they differ at most in case.
/// ASCII becomes upper case; a string with any other unit is case-folded as a whole.
UTF16String CanonicalName(const unsigned short* inUnits, std::size_t inCount);

inline bool IsAscii(const unsigned short* inUnits, std::size_t inCount) noexcept
{
    unsigned int all = 0;
    for (std::size_t i = 0; i < inCount; ++i) {
        all |= inUnits[i];
    }
    return all < 0x80;
}

inline unsigned short AsciiUpper(unsigned short inUnit) noexcept
{
    return inUnit >= 'a' && inUnit <= 'z' ? static_cast<unsigned short>(inUnit - ('a' - 'A')) : inUnit;
}

} // namespace Resources
} // namespace ORL
