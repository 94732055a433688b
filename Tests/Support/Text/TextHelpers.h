// Converts literals to 16-bit text and prints that text, so that a failed test shows both sides.
#pragma once

#include <tvxcore/String.h>

#include <ostream>
#include <string>

namespace ORLTest {

/// Returns the units of a u"" literal.
inline UTF16String Units(const std::u16string& inText)
{
    return UTF16String(inText.begin(), inText.end());
}

/// Returns the bytes of a narrow literal.
inline UTF8String Bytes(const std::string& inText)
{
    return UTF8String(inText.begin(), inText.end());
}

/// Returns printable ASCII unchanged and every other unit as <hex>.
inline std::string Show(const UTF16String& inText)
{
    std::string text;
    for (const unsigned short unit : inText) {
        if (unit >= 0x20 && unit < 0x7F) {
            text += static_cast<char>(unit);
        } else {
            static const char kDigits[] = "0123456789abcdef";
            text += '<';
            for (int shift = 12; shift >= 0; shift -= 4) {
                text += kDigits[(unit >> shift) & 0xF];
            }
            text += '>';
        }
    }
    return text;
}

} // namespace ORLTest
