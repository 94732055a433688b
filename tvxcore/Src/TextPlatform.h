// What the text and machine services ask of the system. Src/Linux and Src/Win each answer all of it.
#pragma once

#include <tvxcore/String.h>

#include <cstddef>
#include <string>

namespace tvxcore {
namespace platform {

/// Fills outBytes from the system's source of random numbers. False when the system gives none.
bool FillRandom(void* outBytes, std::size_t inCount) noexcept;

/// How a number is to be shown.
struct NumberStyle
{
    bool mHasLeadingZero;
    bool mIsGrouped;
    unsigned mFractionDigits; // 0 to 9, as many as the decimal text has
};

/// The decimal text ("-1234.50": ASCII digits, at least one before the point, already rounded) by the rules of a
/// locale: a name such as "de-DE", or null for the user's. An unknown name counts as the classic locale.
UTF16String FormatNumber(const std::string& inDecimal, const NumberStyle& inStyle, const char* inLocale);

} // namespace platform
} // namespace tvxcore
