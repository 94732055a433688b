// 16-bit text beside narrow literals, and a printer so that a failed test shows both.
#pragma once

#include <tvxcore/String.h>

#include <ostream>
#include <string>

namespace ORLTest {

/// The units of a u"" literal.
inline UTF16String Units(const std::u16string& inText)
{
    return UTF16String(inText.begin(), inText.end());
}

/// The bytes of a narrow literal.
inline UTF8String Bytes(const std::string& inText)
{
    return UTF8String(inText.begin(), inText.end());
}

/// ASCII as it is, every other unit as <hex>.
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
