// Reads small text files in /proc.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace ORL {
namespace Linux {

/// Reads a file from its start until the buffer is full or the file ends. Returns 0, or the errno of the call that
/// failed; outSize is the number of bytes read, even on failure.
int ReadProcFile(const char* inPath, char* outBuffer, std::size_t inSize, std::size_t& outSize) noexcept;

/// Parses the first decimal number of a blank-separated list, and removes it. Returns false and changes nothing if
/// the text does not begin with blanks and a decimal number of at most 64 bits.
bool TakeNumber(std::string_view& ioText, std::uint64_t& outNumber) noexcept;

} // namespace Linux
} // namespace ORL
