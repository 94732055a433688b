// Formats a size in bytes as a short string.
#include <ORLDiskUtils.h>

#include <string>
#include <tvxcore/Localizer.h>
#include <tvxcore/Number.h>
#include <tvxcore/Text.h>

namespace ORL {
namespace DiskUtils {

namespace {

// Formats inBytes in units of inUnit bytes, for the user's locale.
UTF16String Fraction(unsigned __int64 inBytes, unsigned __int64 inUnit, std::size_t inDigits)
{
    // The units are powers of two, so only the conversion of the bytes to double can round.
    const double number = static_cast<double>(inBytes) / static_cast<double>(inUnit);
    return tvxcore::utility::NumberToString(number, 1, inDigits, tvxcore::utility::Flags<unsigned short>(), 31);
}

// Formats a number as plain digits, independent of the locale.
UTF16String Whole(unsigned __int64 inNumber)
{
    return tvxcore::utility::AsciiToUTF16(std::to_string(inNumber).c_str());
}

UTF16String WithUnit(UTF16String inNumber, const char* inUnit)
{
    inNumber += ' ';
    return inNumber += tvxcore::config::Localizer::Get()->Localize(inUnit);
}

} // namespace

UTF16String MakeDiskSpaceString(unsigned __int64 inBytes)
{
    if (inBytes >= kSize_teraByte) {
        return WithUnit(Fraction(inBytes, kSize_teraByte, 2), "$$$/Mirencore/ORL/Foundation/terabytes=TB");
    }
    if (inBytes >= kSize_gigaByte) {
        return WithUnit(Fraction(inBytes, kSize_gigaByte, 1), "$$$/Mirencore/ORL/Foundation/gigabytes=GB");
    }
    if (inBytes >= kSize_megaByte) {
        return WithUnit(Fraction(inBytes, kSize_megaByte, 1), "$$$/Mirencore/ORL/Foundation/megabytes=MB");
    }
    if (inBytes >= kSize_kiloByte) {
        return WithUnit(Whole(inBytes >> 10), "$$$/Mirencore/ORL/Foundation/kilobytes=KB");
    }
    return WithUnit(Whole(inBytes), "$$$/Mirencore/ORL/Foundation/bytes=B");
}

} // namespace DiskUtils
} // namespace ORL
