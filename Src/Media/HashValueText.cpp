#include <ORLHashValue.h>

#include <Strings/Tokenizer.h>
#include <tvxcore/StringStream.h>
#include <tvxcore/Text.h>

#include <ios>
#include <string>

namespace ORL {

namespace {

// Appends inWord without leading zeros, as a stream does with std::hex.
void AppendHexadecimal(UTF16String& ioText, std::uint32_t inWord)
{
    static constexpr char kDigits[] = "0123456789abcdef";
    int shift = 28;
    while (shift > 0 && (inWord >> shift) == 0) {
        shift -= 4;
    }
    for (; shift >= 0; shift -= 4) {
        ioText += static_cast<unsigned short>(kDigits[(inWord >> shift) & 0xFu]);
    }
}

} // namespace

std::basic_ostream<unsigned short>& operator<<(std::basic_ostream<unsigned short>& ioStream, const HashValue& inHash)
{
    UTF16String text;
    for (std::size_t i = 0; i < HashValue::kWordCount; ++i) {
        if (i != 0) {
            text += static_cast<unsigned short>(':');
        }
        AppendHexadecimal(text, inHash.GetWord(i));
    }
    return ioStream.write(text.data(), static_cast<std::streamsize>(text.size()));
}

std::basic_istream<unsigned short>& operator>>(std::basic_istream<unsigned short>& ioStream, HashValue& outHash)
{
    UTF16String text;
    ioStream >> text;
    Tokenizer tokens(text, tvxcore::utility::AsciiToUTF16(":"), Tokenizer::Runs::kSkip);
    for (std::uint32_t& word : outHash.mWords) {
        tvxcore::iUTF16StringStream stream(tokens.Next());
        stream >> std::hex >> word;
    }
    return ioStream;
}

} // namespace ORL
