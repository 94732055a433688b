// Floor: Platform
// The system's conversions between code pages and UTF-16.
//
// The conversions return the same results as the Windows functions MultiByteToWideChar and WideCharToMultiByte with
// flags 0: bytes and units without a counterpart become the page's best fit or its default character. Only an unknown
// page and an input longer than 2^31 - 1 fail. A page is a number other than 0: the caller resolves page 0 once, so
// that measuring and converting use the same page.
#pragma once

#include <cstddef>

namespace ORL {
namespace StringUtils {
namespace Platform {

/// Returns an upper bound of the number of units that inBytes bytes convert to, without reading them; 0 if the system
/// cannot convert that many or lacks the page. inBytes must not be 0, here and below.
std::size_t MaxUnits_Impl(unsigned int inCodePage, std::size_t inBytes);

/// Returns the number of units that inBytes bytes convert to; 0 if the system cannot convert them.
std::size_t MeasureUnits_Impl(unsigned int inCodePage, const char* inText, std::size_t inBytes);

/// Converts, and returns the number of units written; 0 if the system cannot convert. inCapacity is the capacity of
/// outUnits, at least the result of MeasureUnits_Impl.
std::size_t ToUnits_Impl(unsigned int inCodePage, const char* inText, std::size_t inBytes, unsigned short* outUnits,
                         std::size_t inCapacity);

/// The same functions for the opposite direction, from units to bytes.
std::size_t MaxBytes_Impl(unsigned int inCodePage, std::size_t inUnits);
std::size_t MeasureBytes_Impl(unsigned int inCodePage, const unsigned short* inText, std::size_t inUnits);
std::size_t ToBytes_Impl(unsigned int inCodePage, const unsigned short* inText, std::size_t inUnits, char* outBytes,
                         std::size_t inCapacity);

/// Returns the number of the page that 0 denotes.
unsigned int GetDefaultCodePage_Impl();

} // namespace Platform
} // namespace StringUtils
} // namespace ORL
