// The conversions of ORLStringUtils.h with the code page as a parameter. Each reports its assertions under its own
// name.
#pragma once

#include <tvxcore/String.h>

#include <string>

namespace ORL {
namespace Internal {

UTF16String To16BitUnicode(const std::string& inText, unsigned int inCodePage);
std::string ToMultiByteWithCodePage(const UTF16String& inText, unsigned int inCodePage);

UTF16String CodePageMultiByteToUnicode16(const std::string& inText, unsigned int inCodePage);
std::string Unicode16ToCodePageMultiByte(const UTF16String& inText, unsigned int inCodePage);

} // namespace Internal
} // namespace ORL
