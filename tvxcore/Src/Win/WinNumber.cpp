// The locale data come from the system. The number is formatted here, because the system's formatting function fails
// for numbers that do not fit its buffers.
#include <CorePlatform/NumberFormat.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>
#include <windows.h>

namespace tvxcore {
namespace utility {
namespace Platform {

namespace {

std::wstring Text(const wchar_t* inLocale, LCTYPE inWhat, const wchar_t* inDefault)
{
    wchar_t text[16];
    return ::GetLocaleInfoEx(inLocale, inWhat, text, static_cast<int>(std::size(text))) != 0 ? text : inDefault;
}

DWORD Number(const wchar_t* inLocale, LCTYPE inWhat, DWORD inDefault)
{
    DWORD number = 0;
    const int size = static_cast<int>(sizeof(number) / sizeof(wchar_t));
    return ::GetLocaleInfoEx(inLocale, inWhat | LOCALE_RETURN_NUMBER, reinterpret_cast<wchar_t*>(&number), size) != 0
               ? number
               : inDefault;
}

// "3;2;0" is a group of three and then groups of two. Without the final zero the rest is one group.
struct Grouping
{
    std::vector<std::size_t> mSizes;
    bool mRepeatsLast = false;
};

Grouping ParseGrouping(const std::wstring& inText)
{
    Grouping grouping;
    for (const wchar_t character : inText) {
        if (character >= L'1' && character <= L'9') {
            grouping.mSizes.push_back(static_cast<std::size_t>(character - L'0'));
        } else if (character == L'0') {
            grouping.mRepeatsLast = !grouping.mSizes.empty();
        }
    }
    return grouping;
}

std::wstring Group(const std::wstring& inDigits, const Grouping& inGrouping, const std::wstring& inSeparator)
{
    std::wstring text = inDigits;
    std::size_t place = text.size();
    for (std::size_t group = 0;; ++group) {
        if (group >= inGrouping.mSizes.size() && !inGrouping.mRepeatsLast) {
            return text;
        }
        const std::size_t size = inGrouping.mSizes[(std::min)(group, inGrouping.mSizes.size() - 1)];
        if (place <= size) {
            return text;
        }
        place -= size;
        text.insert(place, inSeparator);
    }
}

// Writes a negative number in one of the five formats that the system defines.
std::wstring Negative(const std::wstring& inText, const std::wstring& inSign, DWORD inOrder)
{
    switch (inOrder) {
    case 0: return L'(' + inText + L')';
    case 2: return inSign + L' ' + inText;
    case 3: return inText + inSign;
    case 4: return inText + L' ' + inSign;
    default: return inSign + inText;
    }
}

std::wstring Format(const std::string& inDecimal, const NumberStyle& inStyle, const wchar_t* inLocale, bool inGroups)
{
    const bool isNegative = inDecimal[0] == '-';
    const std::size_t point = (std::min)(inDecimal.find('.'), inDecimal.size());
    std::wstring text(inDecimal.begin() + (isNegative ? 1 : 0), inDecimal.begin() + static_cast<std::ptrdiff_t>(point));
    if (text == L"0" && !inStyle.mHasLeadingZero && inStyle.mFractionDigits != 0) {
        text.clear();
    }
    if (inGroups) {
        text = Group(text, ParseGrouping(Text(inLocale, LOCALE_SGROUPING, L"3;0")),
                     Text(inLocale, LOCALE_STHOUSAND, L","));
    }
    if (inStyle.mFractionDigits != 0) {
        text += Text(inLocale, LOCALE_SDECIMAL, L".");
        text.append(inDecimal.begin() + static_cast<std::ptrdiff_t>(point) + 1, inDecimal.end());
    }
    return isNegative
               ? Negative(text, Text(inLocale, LOCALE_SNEGATIVESIGN, L"-"), Number(inLocale, LOCALE_INEGNUMBER, 1))
               : text;
}

} // namespace

UTF16String FormatNumber_Impl(const std::string& inDecimal, const NumberStyle& inStyle, const char* inLocale)
{
    if (inLocale == nullptr) {
        const std::wstring text = Format(inDecimal, inStyle, LOCALE_NAME_USER_DEFAULT, inStyle.mIsGrouped);
        return UTF16String(text.begin(), text.end());
    }
    // The invariant locale equals the classic one, except that it groups digits.
    const std::wstring wanted(inLocale, inLocale + std::strlen(inLocale));
    const bool isKnown = ::IsValidLocaleName(wanted.c_str()) != FALSE;
    const std::wstring text =
        Format(inDecimal, inStyle, isKnown ? wanted.c_str() : LOCALE_NAME_INVARIANT, isKnown && inStyle.mIsGrouped);
    return UTF16String(text.begin(), text.end());
}

} // namespace Platform
} // namespace utility
} // namespace tvxcore
