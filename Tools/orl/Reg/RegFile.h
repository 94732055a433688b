// The registry text format of version 5.00, with which settings travel between machines.
//
//   Windows Registry Editor Version 5.00
//
//   [HKEY_CURRENT_USER\Software\Example]      a key
//   @="text"                                  its default value
//   "Width"=dword:00000780                    a value: text, dword:, hex: or hex(type):
//   "Old"=-                                   deletes a value
//   [-HKEY_CURRENT_USER\Software\Gone]        deletes a key with all below it
//   ; comment
//
// A name or text in quotes writes " and \ with a \ before it, and may go on over line ends. Bytes are hexadecimal, with
// commas between them; a \ at the end of a line goes on with the next. A file is UTF-16 with a byte order mark and ends
// its lines with CR LF; readers take UTF-16 in either byte order and UTF-8 too, and any line end.
#pragma once

#include <ORLRegistryStore.h>
#include <tvxcore/String.h>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace orl {

/// A line of the file that makes no sense. Lines count from 1.
class RegFileFault : public std::runtime_error
{
public:
    RegFileFault(std::size_t inLine, const std::string& inWhat) : std::runtime_error(inWhat), mLine(inLine) {}

    std::size_t Line() const noexcept { return mLine; }

private:
    std::size_t mLine;
};

/// Reads a whole file: what it asks for, in its order. Throws RegFileFault for the first wrong line.
std::vector<ORL::RegistryEdit> ReadRegFile(const std::string& inBytes);

/// One key with its values, as a file holds it.
struct RegFileKey
{
    UTF16String mName; // with its root, see LongRegKeyName
    std::vector<ORL::RegistryValue> mValues;
};

/// Whether the format can hold the name of a key: a line end in it cannot be written.
bool CanWriteRegKey(const UTF16String& inName);

/// The text of a file, with CR LF line ends and without byte order mark. Keys keep their order; values are sorted by
/// name, the default value first, so that equal keys make equal files whatever store they come from.
UTF16String WriteRegFile(const std::vector<RegFileKey>& inKeys);

/// Whether a name comes before another in a file: without regard to case, then by units.
bool IsRegNameBefore(const UTF16String& inFirst, const UTF16String& inSecond);

/// UTF-16, lowest byte first, behind a byte order mark.
std::string EncodeRegFile(const UTF16String& inText);

} // namespace orl
