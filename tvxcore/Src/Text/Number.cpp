#include <tvxcore/Number.h>

#include <CorePlatform/NumberFormat.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <string>

namespace tvxcore {
namespace utility {

namespace {

constexpr std::size_t kMaxFractionDigits = 9;

// The digits are computed here, not by the system, so that numbers are rounded identically on every platform. printf is
// not used, since it writes the decimal point of the host's current locale.
std::string Print(std::chars_format inFormat, std::size_t inDigits, double inNumber)
{
    // The largest double has 309 digits before the decimal point.
    char text[400];
    return std::string(text, std::to_chars(text, std::end(text), inNumber, inFormat, static_cast<int>(inDigits)).ptr);
}

// Returns the digits of a non-negative number without the decimal point; the last inFractionDigits are the fraction.
std::string Digits(double inNumber, std::size_t inFractionDigits, long inPrecision)
{
    std::string digits = Print(std::chars_format::fixed, inFractionDigits, inNumber);
    digits.erase(std::remove(digits.begin(), digits.end(), '.'), digits.end());
    const std::size_t first = std::min(digits.find_first_not_of('0'), digits.size());
    const std::size_t precision = static_cast<std::size_t>(std::clamp(inPrecision, 1L, 400L));
    if (digits.size() - first <= precision) {
        return digits;
    }
    // Rounds the original number, not the digits, to the precision. A carry may add a digit.
    const std::string rounded = Print(std::chars_format::scientific, precision - 1, inNumber);
    const std::size_t exponentAt = rounded.find('e');
    const long exponent = std::strtol(rounded.c_str() + exponentAt + 1, nullptr, 10);
    std::string result = rounded.substr(0, exponentAt);
    result.erase(std::remove(result.begin(), result.end(), '.'), result.end());
    result.resize(static_cast<std::size_t>(exponent + 1 + static_cast<long>(inFractionDigits)), '0');
    return result;
}

std::string Decimal(double inNumber, std::size_t inFractionDigits, long inPrecision)
{
    std::string text = Digits(std::fabs(inNumber), inFractionDigits, inPrecision);
    const bool isZero = text.find_first_not_of('0') == std::string::npos;
    if (text.size() <= inFractionDigits) {
        text.insert(0, inFractionDigits + 1 - text.size(), '0');
    }
    if (inFractionDigits != 0) {
        text.insert(text.size() - inFractionDigits, 1, '.');
    }
    return inNumber < 0 && !isZero ? '-' + text : text;
}

} // namespace

UTF16String NumberToString(double inNumber, std::size_t inIntegerDigits, std::size_t inFractionDigits,
                           Flags<unsigned short> inFlags, long inPrecision)
{
    if (std::isnan(inNumber)) {
        return UTF16String({'N', 'a', 'N'});
    }
    if (std::isinf(inNumber)) {
        return inNumber < 0 ? UTF16String({'-', 0x221E}) : UTF16String({0x221E});
    }
    const std::size_t fractionDigits = std::min(inFractionDigits, kMaxFractionDigits);
    Platform::NumberStyle style;
    style.mHasLeadingZero = inIntegerDigits != 0;
    style.mIsGrouped = !inFlags.Has(kNumberFlag_NoGrouping);
    style.mFractionDigits = static_cast<unsigned>(fractionDigits);
    return Platform::FormatNumber_Impl(Decimal(inNumber, fractionDigits, inPrecision), style, nullptr);
}

} // namespace utility
} // namespace tvxcore
