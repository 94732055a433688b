// How a locale writes numbers.
#pragma once

#include <tvxcore/NumberPunctuation.h>
#include <tvxcore/String.h>

#include <string>

namespace tvxcore {
namespace utility {
namespace Platform {

/// How a number is displayed.
struct NumberStyle
{
    bool mHasLeadingZero;
    bool mIsGrouped;
    unsigned mFractionDigits; // 0 to 9, as many as the decimal string has
};

/// Formats a decimal string ("-1234.50": ASCII digits, at least one before the point, already rounded) by the rules of
/// a locale: a name such as "de-DE", or null for that of the user. An unknown name is treated as the classic locale.
UTF16String FormatNumber_Impl(const std::string& inDecimal, const NumberStyle& inStyle, const char* inLocale);

/// Returns the punctuation of the user's locale. Determines the locale on each call.
NumberPunctuation FindUserPunctuation_Impl();

} // namespace Platform
} // namespace utility
} // namespace tvxcore
