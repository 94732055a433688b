#include <Strings/LocaleInternals.h>

#include <Platform/Locale.h>
#include <tvxcore/NumberPunctuation.h>

#include <exception>
#include <string>

namespace ORL {
namespace Locale {

namespace {

using tvxcore::utility::NumberPunctuation;

// Only the 16-bit facet can represent a non-ASCII separator; the narrow facet uses a space.
template <class Character>
Character Fit(unsigned short inUnit)
{
    return sizeof(Character) == 1 && inUnit > 127 ? static_cast<Character>(' ') : static_cast<Character>(inUnit);
}

template <class Character>
class Punctuation : public std::numpunct<Character>
{
public:
    explicit Punctuation(const NumberPunctuation& inPunctuation) : mPunctuation(inPunctuation) {}

protected:
    Character do_decimal_point() const override { return Fit<Character>(mPunctuation.mDecimalPoint); }
    Character do_thousands_sep() const override { return Fit<Character>(mPunctuation.mThousandsSeparator); }
    std::string do_grouping() const override { return mPunctuation.mGrouping; }

private:
    const NumberPunctuation mPunctuation;
};

bool IsClassic(const NumberPunctuation& inPunctuation)
{
    return inPunctuation.mDecimalPoint == '.' && inPunctuation.mGrouping.empty();
}

bool Find(const char* inName, NumberPunctuation& outPunctuation)
{
    if (*inName != '\0') {
        return tvxcore::utility::FindNumberPunctuation(inName, outPunctuation);
    }
    outPunctuation = tvxcore::utility::UserNumberPunctuation();
    return !IsClassic(outPunctuation);
}

} // namespace

std::locale MakeLocale(const char* inName) noexcept
{
    const std::locale base = Platform::FindLocale_Impl(inName);
    try {
        NumberPunctuation punctuation;
        if (!Find(inName, punctuation)) {
            return base;
        }
        const std::locale narrow(base, new Punctuation<char>(punctuation));
        return std::locale(narrow, new Punctuation<wchar_t>(punctuation));
    } catch (const std::exception&) {
        return base;
    }
}

} // namespace Locale
} // namespace ORL
