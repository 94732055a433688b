#include <CorePlatform/NumberFormat.h>

#include <algorithm>
#include <climits>
#include <string>

namespace tvxcore {
namespace utility {
namespace Platform {

namespace {

// Inserts separators between the groups of digits, counted from the right.
UTF16String Grouped(const std::string& inDigits, const NumberPunctuation& inPunctuation)
{
    UTF16String text(inDigits.begin(), inDigits.end());
    const std::string& grouping = inPunctuation.mGrouping;
    std::size_t place = text.size();
    for (std::size_t group = 0; !grouping.empty(); ++group) {
        const char size = grouping[std::min(group, grouping.size() - 1)];
        if (size <= 0 || size == CHAR_MAX || place <= static_cast<std::size_t>(size)) {
            break;
        }
        place -= static_cast<std::size_t>(size);
        text.insert(place, 1, inPunctuation.mThousandsSeparator);
    }
    return text;
}

// Digits and sign are ASCII in every locale: the code that reads numbers accepts no others.
UTF16String Format(const std::string& inDecimal, const NumberStyle& inStyle, const NumberPunctuation& inPunctuation)
{
    const std::size_t start = inDecimal[0] == '-' ? 1 : 0;
    const std::size_t point = std::min(inDecimal.find('.'), inDecimal.size());
    std::string digits = inDecimal.substr(start, point - start);
    if (digits == "0" && !inStyle.mHasLeadingZero && inStyle.mFractionDigits != 0) {
        digits.clear();
    }
    UTF16String text = inStyle.mIsGrouped ? Grouped(digits, inPunctuation) : UTF16String(digits.begin(), digits.end());
    if (start != 0) {
        text.insert(text.begin(), '-');
    }
    if (inStyle.mFractionDigits != 0) {
        text += inPunctuation.mDecimalPoint;
        text.append(inDecimal.begin() + static_cast<std::ptrdiff_t>(point) + 1, inDecimal.end());
    }
    return text;
}

} // namespace

UTF16String FormatNumber_Impl(const std::string& inDecimal, const NumberStyle& inStyle, const char* inLocale)
{
    if (inLocale == nullptr) {
        return Format(inDecimal, inStyle, UserNumberPunctuation());
    }
    NumberPunctuation punctuation;
    FindNumberPunctuation(inLocale, punctuation);
    return Format(inDecimal, inStyle, punctuation);
}

} // namespace Platform
} // namespace utility
} // namespace tvxcore
