#include <Resources/ResourceName.h>

#include <tvxcore/Text.h>

namespace ORL {
namespace Resources {

namespace {

bool IsBlank(unsigned short inUnit) noexcept
{
    return inUnit == ' ' || (inUnit >= '\t' && inUnit <= '\r');
}

// Parses a number as Windows does: it may begin with blanks and a sign, and characters after the digits are ignored.
bool ParseNumber(const unsigned short* inText, unsigned short& outNumber) noexcept
{
    while (IsBlank(*inText)) {
        ++inText;
    }
    const bool isNegative = *inText == '-';
    if (isNegative || *inText == '+') {
        ++inText;
    }
    std::uint32_t number = 0;
    for (; *inText >= '0' && *inText <= '9'; ++inText) {
        number = number * 10 + (*inText - unsigned('0'));
        if (number > 0xFFFF) {
            return false;
        }
    }
    outNumber = static_cast<unsigned short>(number);
    return !isNegative || number == 0;
}

} // namespace

bool NameView::Parse(const unsigned short* inName, NameView& outName) noexcept
{
    const std::uintptr_t value = reinterpret_cast<std::uintptr_t>(inName);
    if (value <= 0xFFFF) {
        outName = OfNumber(static_cast<unsigned short>(value));
        return true;
    }
    if (inName[0] == '#') {
        unsigned short number = 0;
        const bool isNumber = ParseNumber(inName + 1, number);
        outName = OfNumber(number);
        return isNumber;
    }
    outName = OfText(inName, std::char_traits<unsigned short>::length(inName));
    return true;
}

UTF16String CanonicalName(const unsigned short* inUnits, std::size_t inCount)
{
    UTF16String name(inUnits, inCount);
    if (!IsAscii(inUnits, inCount)) {
        return tvxcore::utility::FoldCase(name);
    }
    for (unsigned short& unit : name) {
        unit = AsciiUpper(unit);
    }
    return name;
}

} // namespace Resources
} // namespace ORL
