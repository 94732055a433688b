// A helper shared by the string conversions.
#pragma once

#include <cstddef>
#include <string>

namespace ORL {
namespace Internal {

/// Returns inLength units as UTF-8, zero units included.
std::string EncodeUTF8(const unsigned short* inText, std::size_t inLength);

} // namespace Internal
} // namespace ORL
