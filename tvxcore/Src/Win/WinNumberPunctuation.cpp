#include <tvxcore/NumberPunctuation.h>

#include <CorePlatform/NumberFormat.h>

#include <climits>
#include <cstring>
#include <string>
#include <windows.h>

namespace tvxcore {
namespace utility {

namespace {

std::wstring Ask(const wchar_t* inName, LCTYPE inWhat)
{
    wchar_t text[32] = {};
    return ::GetLocaleInfoEx(inName, inWhat, text, 32) > 0 ? std::wstring(text) : std::wstring();
}

// The system writes "3;0" for repeated groups of three, and "3" for a single group of three.
std::string GroupingOf(const std::wstring& inText)
{
    std::string grouping;
    for (const wchar_t unit : inText) {
        if (unit > L'0' && unit <= L'9') {
            grouping.push_back(static_cast<char>(unit - L'0'));
        }
    }
    const bool repeats = inText.size() >= 2 && inText.compare(inText.size() - 2, 2, L";0") == 0;
    if (!grouping.empty() && !repeats) {
        grouping.push_back(static_cast<char>(CHAR_MAX));
    }
    return grouping;
}

NumberPunctuation PunctuationOf(const wchar_t* inName)
{
    NumberPunctuation punctuation;
    const std::wstring point = Ask(inName, LOCALE_SDECIMAL);
    const std::wstring separator = Ask(inName, LOCALE_STHOUSAND);
    if (!point.empty()) {
        punctuation.mDecimalPoint = point[0];
    }
    if (!separator.empty()) {
        punctuation.mThousandsSeparator = separator[0];
        punctuation.mGrouping = GroupingOf(Ask(inName, LOCALE_SGROUPING));
    }
    return punctuation;
}

} // namespace

namespace Platform {

NumberPunctuation FindUserPunctuation_Impl()
{
    return PunctuationOf(LOCALE_NAME_USER_DEFAULT);
}

} // namespace Platform

bool FindNumberPunctuation(const char* inLocale, NumberPunctuation& outPunctuation)
{
    const std::wstring name(inLocale, inLocale + std::strlen(inLocale));
    if (name.empty() || ::IsValidLocaleName(name.c_str()) == FALSE) {
        return false;
    }
    outPunctuation = PunctuationOf(name.c_str());
    return true;
}

} // namespace utility
} // namespace tvxcore
