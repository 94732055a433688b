// The bytes of a registry text file as 16-bit text.
#pragma once

#include <tvxcore/String.h>

#include <string>

namespace orl {

/// Takes the byte order mark off. Throws RegFileFault if the bytes are no text.
UTF16String DecodeRegFile(const std::string& inBytes);

} // namespace orl
