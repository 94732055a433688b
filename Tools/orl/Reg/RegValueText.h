// The values of the registry as people write and read them.
#pragma once

#include <ORLRegistryStore.h>

#include <string>

namespace orl {

/// "string", "expand", "binary", "u32", "u64", "strings", or "type 0x4d" for a type without a name.
std::string ShowRegType(unsigned int inType);

/// Whether the bytes of the value are what its type promises: text that ends in its only zero unit, 4 bytes, 8 bytes.
bool IsWellFormedRegValue(const ORL::RegistryValue& inValue);

/// The bytes as 16-bit units, lowest byte first; an odd byte at the end is left out.
UTF16String UnitsOfRegData(const std::vector<unsigned char>& inData);

/// The units as bytes, with a terminator behind them.
std::vector<unsigned char> RegDataOfText(const UTF16String& inText);

/// The number of a well-formed value of 4 or 8 bytes.
unsigned long long NumberOfRegValue(const ORL::RegistryValue& inValue);

/// The value alone, as scripts take it: text as it is, numbers in decimal, all else as hexadecimal digits.
std::string PlainRegValue(const ORL::RegistryValue& inValue);

/// The value for people, on one line: quoted text, numbers in decimal and hexadecimal, the beginning of long data.
std::string ShowRegValue(const ORL::RegistryValue& inValue);

/// One JSON object: name, type, and the value, or its bytes as hexadecimal digits under "data".
std::string JsonOfRegValue(const ORL::RegistryValue& inValue);

/// The data of a value that the command line names by its type ("string", "expand", "u32", "u64" or "binary") and its
/// text. Throws Failure with the exit code of a wrong command line if the text does not fit the type.
ORL::RegistryValue ReadRegValue(const std::string& inType, const std::string& inText);

} // namespace orl
