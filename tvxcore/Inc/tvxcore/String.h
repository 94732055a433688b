// The string types, and the macro for literals of 16-bit units.
#pragma once

#include <tvxcore/SmallBlockAllocator.h>

#include <cstddef>
#include <string>

/// A string of UTF-16 units. A unit is unsigned short on every platform, regardless of wchar_t.
using UTF16String = std::basic_string<unsigned short, std::char_traits<unsigned short>,
                                      tvxcore::utility::SmallBlockAllocator::STLAllocator<unsigned short>>;

/// A UTF-8 string.
using UTF8String = std::basic_string<unsigned char, std::char_traits<unsigned char>,
                                     tvxcore::utility::SmallBlockAllocator::STLAllocator<unsigned char>>;

namespace tvxcore {
namespace utility {

using ::UTF16String;
using ::UTF8String;

/// The units of a u"" literal, terminator included, as unsigned short.
template <std::size_t N>
struct UTF16Literal
{
    unsigned short mUnits[N]; ///< with the terminator

    constexpr UTF16Literal(const char16_t (&inText)[N]) : mUnits{}
    {
        for (std::size_t i = 0; i < N; ++i) {
            mUnits[i] = inText[i];
        }
    }
};

} // namespace utility
} // namespace tvxcore

/// Makes a zero-terminated const unsigned short* with static lifetime from a narrow literal: TVX_UTF16("text").
#define TVX_UTF16(text)                                                                                                \
  ([]() noexcept -> const unsigned short* {                                                                            \
  static constexpr ::tvxcore::utility::UTF16Literal literal{u"" text};                                                 \
  return literal.mUnits;                                                                                               \
  }())
