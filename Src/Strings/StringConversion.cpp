#include <ORLString.h>

#include <Strings/StringConversion.h>

#include <tvxcore/Text.h>

#include <cstring>

namespace ORL {

namespace Internal {

std::string EncodeUTF8(const unsigned short* inText, std::size_t inLength)
{
    // Most names and paths fit into this buffer, so they are converted without an intermediate string.
    constexpr std::size_t kShort = 512;
    if (inLength <= kShort) {
        char text[3 * kShort];
        unsigned char* const bytes = reinterpret_cast<unsigned char*>(text);
        return std::string(text, tvxcore::utility::UTF16to8(inText, inLength, bytes));
    }
    const UTF8String encoded = tvxcore::utility::UTF16to8(inText, inLength);
    return std::string(reinterpret_cast<const char*>(encoded.data()), encoded.size());
}

} // namespace Internal

UTF16String MakeString(const char* inText)
{
    return tvxcore::utility::UTF8to16(reinterpret_cast<const unsigned char*>(inText), std::strlen(inText));
}

UTF16String MakeString(const unsigned char* inText)
{
    return MakeString(reinterpret_cast<const char*>(inText));
}

UTF16String MakeString(const std::string& inText)
{
    return MakeString(inText.c_str());
}

UTF16String MakeString(const UTF8String& inText)
{
    return tvxcore::utility::UTF8to16(inText);
}

UTF16String MakeString(const unsigned short* inText)
{
    return UTF16String(inText);
}

UTF16String MakeString(const CString& inText)
{
    return UTF16String(inText.GetString());
}

UTF16String MakeStringFromWchar(const unsigned short* inText)
{
    return tvxcore::utility::WcharToUTF16(inText);
}

std::string MakeStdString(const UTF16String& inText)
{
    return Internal::EncodeUTF8(inText.data(), inText.size());
}

CString MakeCString(const UTF16String& inText)
{
    return CString(inText.c_str());
}

} // namespace ORL

namespace tvxcore {
namespace utility {

UTF16String WcharToUTF16(const unsigned short* inText)
{
    return UTF16String(inText);
}

std::basic_string<unsigned short, std::char_traits<unsigned short>, std::allocator<unsigned short>>
UTF16ToWstring(const UTF16String& inText)
{
    return {inText.data(), inText.size()};
}

} // namespace utility
} // namespace tvxcore
