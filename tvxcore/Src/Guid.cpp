#include <tvxcore/Guid.h>

#include <CorePlatform/Random.h>

#include <system_error>

namespace tvxcore {
namespace utility {

namespace {

// Appends the low inDigits hexadecimal digits of a number.
unsigned short* AppendHex(unsigned short* outText, std::uint64_t inNumber, int inDigits)
{
    for (int digit = inDigits - 1; digit >= 0; --digit) {
        *outText++ = static_cast<unsigned short>("0123456789abcdef"[(inNumber >> (4 * digit)) & 0xF]);
    }
    return outText;
}

} // namespace

Guid Guid::CreateUnique()
{
    std::uint64_t words[2];
    if (!Platform::FillRandom_Impl(words, sizeof(words))) {
        throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again),
                                "Guid::CreateUnique: the system gives no random bytes");
    }
    // The version, 4, is the top digit of the third number; the variant is the top two bits of the ninth byte.
    constexpr std::uint64_t kVersionMask = 0xF000000000000000u;
    constexpr std::uint64_t kVersion4 = 0x4000000000000000u;
    constexpr std::uint64_t kVariantMask = 0xC0;
    constexpr std::uint64_t kVariant = 0x80;
    return Guid((words[0] & ~kVersionMask) | kVersion4, (words[1] & ~kVariantMask) | kVariant);
}

UTF16String Guid::AsString() const
{
    unsigned short text[38];
    unsigned short* out = text;
    *out++ = '{';
    out = AppendHex(out, FirstWord(), 8);
    *out++ = '-';
    out = AppendHex(out, FirstWord() >> 32, 4);
    *out++ = '-';
    out = AppendHex(out, FirstWord() >> 48, 4);
    *out++ = '-';
    for (int byte = 0; byte < 8; ++byte) {
        if (byte == 2) {
            *out++ = '-';
        }
        out = AppendHex(out, SecondWord() >> (8 * byte), 2);
    }
    *out++ = '}';
    return UTF16String(text, out);
}

} // namespace utility
} // namespace tvxcore
