// Decodes the bytes of a registry text file.
#pragma once

#include <tvxcore/String.h>

#include <string>

namespace orl {

/// Returns the text without its byte order mark. Throws RegFileFault if the bytes are not valid text.
UTF16String DecodeRegFile(const std::string& inBytes);

} // namespace orl
