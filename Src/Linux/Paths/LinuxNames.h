// Converts one entry name between its bytes on disk and the 16-bit units of library paths.
//
// A name that is UTF-8 and legal in a library path is the same in both forms. Every other byte is encoded as one
// private code unit, U+F000 plus the byte. The encoding applies to bytes that are not UTF-8, to characters that are
// illegal in the names in library paths (control characters and " * : < > ? \ |), and to a blank or dot at the end,
// which plain paths would drop. A character on disk that equals one of these units is encoded as its three bytes.
// Every name therefore survives the round trip.
#pragma once

#include <Platform/SystemErrors.h>
#include <tvxcore/String.h>

#include <cstddef>
#include <string>

namespace ORL {
namespace Linux {

/// Appends the units of a name, which may contain any byte but "/" and 0.
void AppendUnitsOfName(UTF16String& ioText, const char* inName, std::size_t inSize);

/// Appends the bytes of a name: the inverse of AppendUnitsOfName. An unpaired surrogate becomes its three bytes and
/// converts back to the same surrogate.
void AppendBytesOfName(std::string& ioBytes, const unsigned short* inUnits, std::size_t inCount);

/// Checks whether the units are a valid name. Returns 0, or 123 for an empty name, one with more than 255 units, or one
/// that contains a control character or any of " * / < > ? \ |. A ":" would select a stream of the file; Linux has no
/// streams, so the result is 2.
SystemError CheckName(const unsigned short* inUnits, std::size_t inCount) noexcept;

} // namespace Linux
} // namespace ORL
