#include <ORLLocale.h>

#include <Core/UntilUnload.h>
#include <ORLString.h>
#include <Strings/LocaleInternals.h>
#include <tvxcore/StringStream.h>
#include <tvxcore/UTF16Facets.h>

#include <algorithm>
#include <climits>
#include <sstream>
#include <string>
#include <vector>

namespace ORL {
namespace Locale {

namespace {

using Units = std::basic_string<unsigned short>;

const UntilUnload<std::locale> sNativeLocale(MakeLocale(""));

bool IsDigit(unsigned short inUnit)
{
    return inUnit >= '0' && inUnit <= '9';
}

// Returns the position after white space and a sign, where the digits and separators of a number begin.
std::size_t StartOfDigits(const Units& inText)
{
    std::size_t at = 0;
    while (at < inText.size() && (inText[at] == ' ' || (inText[at] >= '\t' && inText[at] <= '\r'))) {
        ++at;
    }
    return at < inText.size() && (inText[at] == '+' || inText[at] == '-') ? at + 1 : at;
}

// Checks that the groups of digits, leftmost first, have the sizes that the locale's grouping requires. The grouping's
// entries count from the right, the last one repeats, and the leftmost group may be short.
bool AreWellGrouped(const std::vector<std::size_t>& inGroups, std::size_t inCount, const std::string& inGrouping)
{
    for (std::size_t i = 0; i < inCount; ++i) {
        const char entry = inGrouping[std::min(i, inGrouping.size() - 1)];
        const std::size_t digits = inGroups[inCount - 1 - i];
        const bool isLeftmost = i + 1 == inCount;
        const bool isEndless = entry <= 0 || entry == CHAR_MAX;
        const std::size_t wanted = isEndless ? 0 : static_cast<std::size_t>(entry);
        if (isLeftmost ? (!isEndless && digits > wanted) || digits == 0 : isEndless || digits != wanted) {
            return false;
        }
    }
    return true;
}

// Returns the text up to the first separator that does not end a group, because reading stops at the first unexpected
// character. The standard stream would skip such a separator and read "1.5" as 15.
Units WithoutMisplacedSeparators(const Units& inText, const std::numpunct<unsigned short>& inPunctuation)
{
    const std::string grouping = inPunctuation.grouping();
    const unsigned short separator = inPunctuation.thousands_sep();
    std::vector<std::size_t> groups(1, 0);
    std::vector<std::size_t> separators;
    for (std::size_t at = StartOfDigits(inText); at < inText.size(); ++at) {
        if (IsDigit(inText[at])) {
            ++groups.back();
        } else if (inText[at] == separator && !grouping.empty()) {
            separators.push_back(at);
            groups.push_back(0);
        } else {
            break;
        }
    }
    std::size_t kept = separators.size();
    while (kept > 0 && !AreWellGrouped(groups, kept + 1, grouping)) {
        --kept;
    }
    return kept == separators.size() ? inText : inText.substr(0, separators[kept]);
}

// Returns the value that the stream stores, even if reading failed; the state of the stream is not checked.
double ReadNatively(const UTF16String& inText, const std::locale& inNative)
{
    const std::locale locale = tvxcore::utility::UTF16Locale(inNative);
    const Units text = tvxcore::utility::UTF16ToWstring(inText);
    std::basic_stringstream<unsigned short> stream;
    stream.imbue(locale);
    stream.str(WithoutMisplacedSeparators(text, std::use_facet<std::numpunct<unsigned short>>(locale)));
    double value = 0.0;
    stream >> value;
    return value;
}

double ReadInCLocale(const UTF16String& inText)
{
    tvxcore::iUTF16StringStream stream(inText);
    double value = 0.0;
    stream >> value;
    return stream.fail() ? 0.0 : value;
}

} // namespace

const std::locale& Native()
{
    return sNativeLocale.Get();
}

const std::locale& Default()
{
    static const UntilUnload<std::locale> sDefaultLocale(std::locale::classic());
    return sDefaultLocale.Get();
}

void Initialize()
{
    std::locale::global(Default());
}

double GetValueFromDisplayString(const UTF16String& inText, const std::locale& inNative)
{
    if (inText.empty()) {
        return 0.0;
    }
    const double native = ReadNatively(inText, inNative);
    const double classic = ReadInCLocale(inText);
    if (native > 0.0 && classic > 0.0) {
        return native > classic ? native : classic;
    }
    if (native < 0.0 && classic < 0.0) {
        return native < classic ? native : classic;
    }
    return classic;
}

double GetValueFromDisplayString(const UTF16String& inText)
{
    return GetValueFromDisplayString(inText, Native());
}

} // namespace Locale
} // namespace ORL
