// One name of a folder, as the disk holds it (bytes) and as library paths hold it (16-bit units).
//
// A name that is UTF-8 and legal in a library path reads the same in both. Every other byte travels as one private
// code unit, U+F000 and the byte: bytes that are no UTF-8, characters that a library path cannot hold inside a name
// (control characters and " * : < > ? \ |), a blank or dot at the end, which plain paths would lose. A character of
// the disk that looks like one of these units travels as its three bytes, so that every name comes back as it was.
#pragma once

#include <Platform/SystemErrors.h>
#include <tvxcore/String.h>

#include <cstddef>
#include <string>

namespace ORL {
namespace Linux {

/// Adds the units of a name. Every byte but "/" and 0 is fine.
void AppendUnitsOfName(UTF16String& ioText, const char* inName, std::size_t inSize);

/// Adds the bytes of a name: the inverse of AppendUnitsOfName. Half a surrogate pair becomes its three bytes and
/// comes back as the same half.
void AppendBytesOfName(std::string& ioBytes, const unsigned short* inUnits, std::size_t inCount);

/// Whether the system takes the units as a name: 0, or 123 for an empty name, one of more than 255 units, and one that
/// holds a control character or any of " * / < > ? \ |. A ":" asks for a stream inside the file, of which there is
/// none: 2.
SystemError CheckName(const unsigned short* inUnits, std::size_t inCount) noexcept;

} // namespace Linux
} // namespace ORL
