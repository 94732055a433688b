#include <Text/Utf.h>
#include <Text/UtfCharacter.h>

namespace tvxcore {
namespace utf {

std::size_t ToUTF16Plain(const unsigned char* inText, std::size_t inLength, unsigned short* outText) noexcept
{
    const unsigned char* const end = inText + inLength;
    unsigned short* out = outText;
    while (inText != end) {
        out = StepToUTF16(inText, end, out);
    }
    return static_cast<std::size_t>(out - outText);
}

std::size_t ToUTF8Plain(const unsigned short* inText, std::size_t inLength, unsigned char* outText) noexcept
{
    const unsigned short* const end = inText + inLength;
    unsigned char* out = outText;
    while (inText != end) {
        out = StepToUTF8(inText, end, out);
    }
    return static_cast<std::size_t>(out - outText);
}

} // namespace utf
} // namespace tvxcore
