#include <Platform/Locale.h>

#include <windows.h>

#include <climits>
#include <string>

namespace ORL {
namespace Locale {
namespace Platform {

namespace {

// The compiler's standard library knows no named locale here, so the system tells how numbers are written.
struct Punctuation
{
    wchar_t mDecimalPoint = L'.';
    wchar_t mThousandsSeparator = L',';
    std::string mGrouping;
};

std::wstring Ask(const wchar_t* inName, LCTYPE inWhat)
{
    wchar_t text[32] = {};
    return ::GetLocaleInfoEx(inName, inWhat, text, 32) > 0 ? std::wstring(text) : std::wstring();
}

// The system writes "3;0" for groups of three for ever, and "3" for one group of three.
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

Punctuation PunctuationOf(const wchar_t* inName)
{
    Punctuation punctuation;
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

// A character that one byte cannot hold is left to the wide facet; the narrow one groups by a blank.
template <class Character>
Character Fit(wchar_t inUnit)
{
    return sizeof(Character) == 1 && inUnit > 127 ? static_cast<Character>(' ') : static_cast<Character>(inUnit);
}

template <class Character>
class SystemPunctuation : public std::numpunct<Character>
{
public:
    explicit SystemPunctuation(const Punctuation& inPunctuation) : mPunctuation(inPunctuation) {}

protected:
    Character do_decimal_point() const override { return Fit<Character>(mPunctuation.mDecimalPoint); }
    Character do_thousands_sep() const override { return Fit<Character>(mPunctuation.mThousandsSeparator); }
    std::string do_grouping() const override { return mPunctuation.mGrouping; }

private:
    Punctuation mPunctuation;
};

} // namespace

std::locale MakeLocale_Impl(const char* inName) noexcept
{
    try {
        const std::wstring name(inName, inName + std::char_traits<char>::length(inName));
        const wchar_t* const systemName = name.empty() ? LOCALE_NAME_USER_DEFAULT : name.c_str();
        if (!name.empty() && !::IsValidLocaleName(systemName)) {
            return std::locale::classic();
        }
        const Punctuation punctuation = PunctuationOf(systemName);
        const std::locale narrow(std::locale::classic(), new SystemPunctuation<char>(punctuation));
        return std::locale(narrow, new SystemPunctuation<wchar_t>(punctuation));
    } catch (...) {
        return std::locale::classic();
    }
}

} // namespace Platform
} // namespace Locale
} // namespace ORL
