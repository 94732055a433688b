// Registry values as text for command lines and listings.
#pragma once

#include <ORLRegistryStore.h>

#include <string>

namespace orl {

/// Returns "string", "expand", "binary", "u32", "u64", "strings", or "type 0x4d" for a type without a name.
std::string ShowRegType(unsigned int inType);

/// Returns whether the data fits the type: a string whose only zero unit is the last, 4 bytes, or 8 bytes. Data of any
/// other type always fits.
bool IsWellFormedRegValue(const ORL::RegistryValue& inValue);

/// Converts bytes to 16-bit units, little-endian; ignores an odd byte at the end.
UTF16String UnitsOfRegData(const std::vector<unsigned char>& inData);

/// Returns the bytes of the string with a zero terminator.
std::vector<unsigned char> RegDataOfText(const UTF16String& inText);

/// Returns the number in a well-formed value of 4 or 8 bytes.
unsigned long long NumberOfRegValue(const ORL::RegistryValue& inValue);

/// Returns the bare value for scripts: text unchanged, numbers in decimal, all other data in hexadecimal digits.
std::string PlainRegValue(const ORL::RegistryValue& inValue);

/// Returns the value on one line for a listing: quoted text, numbers in decimal and hexadecimal, the start of other
/// data.
std::string ShowRegValue(const ORL::RegistryValue& inValue);

/// Converts command-line text to a value of the type "string", "expand", "u32", "u64" or "binary". Throws
/// Failure with kExitUsage if the text does not fit the type.
ORL::RegistryValue ReadRegValue(const std::string& inType, const std::string& inText);

} // namespace orl
