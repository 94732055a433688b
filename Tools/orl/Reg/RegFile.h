// The registry text format, version 5.00, which moves settings between machines.
//
//   Windows Registry Editor Version 5.00
//
//   [HKEY_CURRENT_USER\Software\Example]      a key
//   @="text"                                  its default value
//   "Width"=dword:00000780                    a value: text, dword:, hex: or hex(type):
//   "Old"=-                                   deletes a value
//   [-HKEY_CURRENT_USER\Software\Gone]        deletes a key with everything below it
//   ; comment
//
// In a quoted name or string, " and \ are escaped with \, and line breaks are allowed. Bytes are hexadecimal, separated
// by commas; a \ at the end of a line continues the list. The writer produces UTF-16 with a byte order mark and
// CR LF line endings. The reader also accepts UTF-16 in the other byte order, UTF-8, and any line ending.
#pragma once

#include <ORLRegistryStore.h>
#include <tvxcore/String.h>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace orl {

/// An invalid line of the file. Lines are numbered from 1.
class RegFileFault : public std::runtime_error
{
public:
    RegFileFault(std::size_t inLine, const std::string& inWhat) : std::runtime_error(inWhat), mLine(inLine) {}

    std::size_t Line() const noexcept { return mLine; }

private:
    std::size_t mLine;
};

/// Parses a whole file and returns its changes in file order. Throws RegFileFault for the first invalid
/// line.
std::vector<ORL::RegistryEdit> ReadRegFile(const std::string& inBytes);

/// A key with its values, to be written to a file.
struct RegFileKey
{
    UTF16String mName; // the key with its root, as LongRegKeyName returns it
    std::vector<ORL::RegistryValue> mValues;
};

/// Returns whether the format can represent the name of a key, that is, whether the name contains no line break.
bool CanWriteRegKey(const UTF16String& inName);

/// Returns the contents of a file, with CR LF line endings and without a byte order mark. Keys keep their order. Values
/// are sorted by name, the default value first, so that equal keys yield equal files from any store.
UTF16String WriteRegFile(const std::vector<RegFileKey>& inKeys);

/// Returns whether a name sorts before another in a file: ignoring case first, then by code units.
bool IsRegNameBefore(const UTF16String& inFirst, const UTF16String& inSecond);

/// Encodes as UTF-16 little-endian with a byte order mark.
std::string EncodeRegFile(const UTF16String& inText);

} // namespace orl
