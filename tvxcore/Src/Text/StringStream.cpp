#include <tvxcore/StringStream.h>

namespace tvxcore {

iUTF16StringStream::iUTF16StringStream(const UTF16String& inText) : basic_istringstream(inText)
{
    imbue(std::locale());
}

iUTF16StringStream::~iUTF16StringStream() = default;

std::locale iUTF16StringStream::imbue(const std::locale& inLocale)
{
    return basic_istringstream::imbue(utility::UTF16Locale(inLocale));
}

oUTF16StringStream::oUTF16StringStream()
{
    imbue(std::locale());
}

oUTF16StringStream::~oUTF16StringStream() = default;

std::locale oUTF16StringStream::imbue(const std::locale& inLocale)
{
    return basic_ostringstream::imbue(utility::UTF16Locale(inLocale));
}

} // namespace tvxcore
