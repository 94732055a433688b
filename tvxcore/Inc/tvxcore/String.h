// The string types, and UTF-16 literals of unsigned short.
#pragma once

#include <tvxcore/SmallBlockAllocator.h>

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

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

namespace Internal {

/// Hashes the bytes of a string.
template <class String>
struct TextHash
{
    std::size_t operator()(const String& inText) const noexcept
    {
        const auto* const bytes = reinterpret_cast<const char*>(inText.data());
        return std::hash<std::string_view>()(
            std::string_view(bytes, inText.size() * sizeof(typename String::value_type)));
    }
};

} // namespace Internal
} // namespace utility

namespace literals {

/// Returns the literal as a 16-bit string: u"text"_utf16. Keeps embedded zero units. Throws std::bad_alloc.
inline UTF16String operator""_utf16(const char16_t* inText, std::size_t inLength)
{
    return UTF16String(inText, inText + inLength);
}

} // namespace literals
} // namespace tvxcore

/// Hashes a string, for unordered containers. Partial specialisations, so that a host's own take precedence.
template <class Traits>
struct std::hash<
    std::basic_string<unsigned short, Traits, tvxcore::utility::SmallBlockAllocator::STLAllocator<unsigned short>>>
    : tvxcore::utility::Internal::TextHash<std::basic_string<
          unsigned short, Traits, tvxcore::utility::SmallBlockAllocator::STLAllocator<unsigned short>>>
{
};

template <class Traits>
struct std::hash<
    std::basic_string<unsigned char, Traits, tvxcore::utility::SmallBlockAllocator::STLAllocator<unsigned char>>>
    : tvxcore::utility::Internal::TextHash<
          std::basic_string<unsigned char, Traits, tvxcore::utility::SmallBlockAllocator::STLAllocator<unsigned char>>>
{
};

/// Makes a zero-terminated const unsigned short* with static lifetime from a narrow literal: TVX_UTF16("text").
#define TVX_UTF16(text)                                                                                                \
  ([]() noexcept -> const unsigned short* {                                                                            \
  static constexpr ::tvxcore::utility::UTF16Literal literal{u"" text};                                                 \
  return literal.mUnits;                                                                                               \
  }())
