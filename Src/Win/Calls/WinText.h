// Converts units to the system's wide characters and back: on Windows both are UTF-16 units.
#pragma once

namespace ORL {
namespace Win {

static_assert(sizeof(wchar_t) == sizeof(unsigned short));

inline const wchar_t* AsWide(const unsigned short* inUnits) noexcept
{
    return reinterpret_cast<const wchar_t*>(inUnits);
}

inline wchar_t* AsWide(unsigned short* inUnits) noexcept
{
    return reinterpret_cast<wchar_t*>(inUnits);
}

inline const unsigned short* AsUnits(const wchar_t* inText) noexcept
{
    return reinterpret_cast<const unsigned short*>(inText);
}

} // namespace Win
} // namespace ORL
