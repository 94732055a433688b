// Floor: System
// Types and names of resources: numbers or texts without regard to case.
#pragma once

#include <tvxcore/String.h>

#include <cstddef>
#include <cstdint>

namespace ORL {
namespace Resources {

/// A type or name as a lookup takes it. Holds no memory: a text is the caller's.
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

    /// Reads the home platform's form: a number in the pointer's value, or a terminated text, of which "#" and digits
    /// are a number. Returns false for a text of "#" and a number beyond 16 bits, which names nothing.
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

/// The form of a text in which two names are equal exactly if they differ in case alone. ASCII becomes upper case; a
/// text with any other unit is folded as a whole.
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
