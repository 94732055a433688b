// Floor: Platform
// The system's conversions between a code page and 16-bit text.
//
// They answer as the home platform's MultiByteToWideChar and WideCharToMultiByte do with flags 0: bytes and units that
// have no counterpart become the page's best fit or its default character, so only an unknown page and a text longer
// than the system's sizes (2^31 - 1) fail. A page is a number other than 0: the caller asks once which page 0 stands
// for, so that measuring and converting use the same one.
#pragma once

#include <cstddef>

namespace ORL {
namespace StringUtils {
namespace Platform {

/// The number of units that inBytes bytes become. 0 if the system cannot convert them. inBytes is not 0.
std::size_t MeasureUnits_Impl(unsigned int inCodePage, const char* inText, std::size_t inBytes);

/// Converts, and returns the number of units written; 0 if the system cannot convert. outUnits has room for inCapacity
/// units, which are at least as many as MeasureUnits_Impl returns. There are never more units than bytes.
std::size_t ToUnits_Impl(unsigned int inCodePage, const char* inText, std::size_t inBytes, unsigned short* outUnits,
                         std::size_t inCapacity);

/// The same in the other direction. There are never more than four bytes to a unit.
std::size_t MeasureBytes_Impl(unsigned int inCodePage, const unsigned short* inText, std::size_t inUnits);
std::size_t ToBytes_Impl(unsigned int inCodePage, const unsigned short* inText, std::size_t inUnits, char* outBytes,
                         std::size_t inCapacity);

/// The number of the page that 0 stands for.
unsigned int GetDefaultCodePage_Impl();

} // namespace Platform
} // namespace StringUtils
} // namespace ORL
