// A table holds the punctuation of each locale, so no lookup needs installed locale data.
#include <tvxcore/NumberPunctuation.h>

#include <CorePlatform/NumberFormat.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <locale>
#include <new>
#include <stdexcept>
#include <string>

namespace tvxcore {
namespace utility {

namespace {

struct KnownLocale
{
    const char* mName; // "de", and "de_CH" if a region differs
    char16_t mDecimalPoint;
    char16_t mThousandsSeparator;
    char mGroup;
    char mSecondGroup;
};

#include "NumberPunctuationTable.inc"

const KnownLocale* Find(const std::string& inName)
{
    const auto isBefore = [](const KnownLocale& inKnown, const std::string& inWanted) {
        return inKnown.mName < inWanted;
    };
    const auto found = std::lower_bound(std::begin(kKnownLocales), std::end(kKnownLocales), inName, isBefore);
    return found != std::end(kKnownLocales) && found->mName == inName ? found : nullptr;
}

// Returns the next part of a locale's name and advances ioText past it.
std::string NextPart(const char*& ioText)
{
    const std::size_t length = std::strcspn(ioText, "_-.@");
    std::string part(ioText, std::min<std::size_t>(length, 9)); // longer than every valid part
    ioText += length;
    if (*ioText == '_' || *ioText == '-') {
        ++ioText;
    }
    return part;
}

template <class Change>
std::string Changed(std::string inText, Change inChange)
{
    for (char& character : inText) {
        character = static_cast<char>(inChange(static_cast<unsigned char>(character)));
    }
    return inText;
}

int ToLower(int inCharacter)
{
    return inCharacter >= 'A' && inCharacter <= 'Z' ? inCharacter + ('a' - 'A') : inCharacter;
}

int ToUpper(int inCharacter)
{
    return inCharacter >= 'a' && inCharacter <= 'z' ? inCharacter - ('a' - 'A') : inCharacter;
}

const char* FirstSetVariable(std::initializer_list<const char*> inVariables)
{
    for (const char* const variable : inVariables) {
        const char* const value = std::getenv(variable);
        if (value != nullptr && *value != '\0') {
            return value;
        }
    }
    return "C";
}

// Queries the C library, which may have a locale that the table lacks, such as one built on this machine.
NumberPunctuation OfInstalledLocale()
{
    NumberPunctuation punctuation;
    try {
        const std::locale installed("");
        const auto& facet = std::use_facet<std::numpunct<wchar_t>>(installed);
        punctuation.mDecimalPoint = static_cast<unsigned short>(facet.decimal_point());
        punctuation.mThousandsSeparator = static_cast<unsigned short>(facet.thousands_sep());
        punctuation.mGrouping = facet.grouping();
    } catch (const std::runtime_error&) { // the locale is not installed
    }
    return punctuation;
}

} // namespace

namespace Platform {

NumberPunctuation FindUserPunctuation_Impl()
{
    NumberPunctuation punctuation;
    // Uses the variables in the same order as the C library.
    if (FindNumberPunctuation(FirstSetVariable({"LC_ALL", "LC_NUMERIC", "LANG"}), punctuation)) {
        return punctuation;
    }
    return OfInstalledLocale();
}

} // namespace Platform

bool FindNumberPunctuation(const char* inLocale, NumberPunctuation& outPunctuation)
{
    const char* rest = inLocale;
    const std::string language = Changed(NextPart(rest), ToLower);
    std::string region = NextPart(rest);
    if (region.size() == 4) { // the part is a script, such as "Latn"
        region = NextPart(rest);
    }
    const KnownLocale* known = Find(language + "_" + Changed(region, ToUpper));
    known = known != nullptr ? known : Find(language);
    if (known == nullptr) {
        return false;
    }
    outPunctuation.mDecimalPoint = known->mDecimalPoint;
    outPunctuation.mThousandsSeparator = known->mThousandsSeparator;
    outPunctuation.mGrouping.assign(1, known->mGroup);
    if (known->mSecondGroup != known->mGroup) {
        outPunctuation.mGrouping += known->mSecondGroup;
    }
    return true;
}

} // namespace utility
} // namespace tvxcore
