#include "RegValueText.h"

#include "Failure.h"
#include "Text.h"

#include <cctype>
#include <cstdio>
#include <limits>

namespace orl {

namespace {

using ORL::RegistryValue;
using Types = ORL::RegistryValueTypes;

std::string Hex(unsigned long long inNumber)
{
    char text[24];
    std::snprintf(text, sizeof(text), "0x%llx", inNumber);
    return text;
}

bool IsText(unsigned int inType)
{
    return inType == Types::kString || inType == Types::kExpandString;
}

std::string TextOf(const RegistryValue& inValue)
{
    UTF16String units = UnitsOfRegData(inValue.mData);
    units.pop_back();
    return ToUTF8(units);
}

[[noreturn]] void Refuse(const std::string& inText, const std::string& inWhy)
{
    throw Failure("reg set: cannot use \"" + inText + "\": " + inWhy, kExitUsage);
}

// Returns -1 if the character is not a hexadecimal digit.
int DigitOf(char inCharacter)
{
    if (inCharacter >= '0' && inCharacter <= '9') {
        return inCharacter - '0';
    }
    const char lower = static_cast<char>(inCharacter | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

unsigned long long ReadNumber(const std::string& inText, unsigned long long inMost)
{
    const bool isHex = inText.compare(0, 2, "0x") == 0 || inText.compare(0, 2, "0X") == 0;
    const unsigned base = isHex ? 16 : 10;
    unsigned long long number = 0;
    for (std::size_t at = isHex ? 2 : 0; at < inText.size(); ++at) {
        const int digit = DigitOf(inText[at]);
        if (digit < 0 || digit >= static_cast<int>(base)) {
            Refuse(inText, "it is not a whole number (decimal, or hexadecimal with 0x)");
        }
        if (number > (inMost - static_cast<unsigned>(digit)) / base) {
            Refuse(inText, "the largest number of this type is " + std::to_string(inMost));
        }
        number = number * base + static_cast<unsigned>(digit);
    }
    if (inText.size() == (isHex ? 2u : 0u)) {
        Refuse(inText, "it is not a whole number (decimal, or hexadecimal with 0x)");
    }
    return number;
}

std::vector<unsigned char> BytesOfNumber(unsigned long long inNumber, std::size_t inCount)
{
    std::vector<unsigned char> bytes(inCount);
    for (unsigned char& byte : bytes) {
        byte = static_cast<unsigned char>(inNumber & 0xFF);
        inNumber >>= 8;
    }
    return bytes;
}

std::vector<unsigned char> ReadBytes(const std::string& inText)
{
    std::vector<unsigned char> bytes;
    bool isHalf = false;
    for (const char character : inText) {
        const int digit = DigitOf(character);
        if (digit < 0 && (character != ' ' || isHalf)) {
            Refuse(inText, "bytes are pairs of hexadecimal digits, with or without blanks between them");
        }
        if (digit < 0) {
            continue;
        }
        if (isHalf) {
            bytes.back() = static_cast<unsigned char>(bytes.back() * 16 + digit);
        } else {
            bytes.push_back(static_cast<unsigned char>(digit));
        }
        isHalf = !isHalf;
    }
    if (isHalf) {
        Refuse(inText, "the last byte has one digit");
    }
    return bytes;
}

UTF16String ReadText(const std::string& inText)
{
    const UTF16String text = ToUTF16(inText);
    if (ToUTF8(text) != inText) {
        Refuse(inText, "it is not UTF-8");
    }
    return text;
}

} // namespace

std::string ShowRegType(unsigned int inType)
{
    switch (inType) {
    case Types::kString: return "string";
    case Types::kExpandString: return "expand";
    case Types::kBinary: return "binary";
    case Types::kUInt32: return "u32";
    case Types::kMultiString: return "strings";
    case Types::kUInt64: return "u64";
    default: return "type " + Hex(inType);
    }
}

bool IsWellFormedRegValue(const RegistryValue& inValue)
{
    if (inValue.mType == Types::kUInt32 || inValue.mType == Types::kUInt64) {
        return inValue.mData.size() == (inValue.mType == Types::kUInt32 ? 4u : 8u);
    }
    if (!IsText(inValue.mType)) {
        return true;
    }
    const UTF16String units = UnitsOfRegData(inValue.mData);
    return inValue.mData.size() % 2 == 0 && !units.empty()
           && units.find(static_cast<unsigned short>(0)) == units.size() - 1;
}

UTF16String UnitsOfRegData(const std::vector<unsigned char>& inData)
{
    UTF16String units;
    units.reserve(inData.size() / 2);
    for (std::size_t at = 0; at + 1 < inData.size(); at += 2) {
        units.push_back(static_cast<unsigned short>(inData[at] | inData[at + 1] << 8));
    }
    return units;
}

std::vector<unsigned char> RegDataOfText(const UTF16String& inText)
{
    std::vector<unsigned char> data;
    data.reserve(2 * inText.size() + 2);
    for (const unsigned short unit : inText) {
        data.push_back(static_cast<unsigned char>(unit & 0xFF));
        data.push_back(static_cast<unsigned char>(unit >> 8));
    }
    data.insert(data.end(), 2, 0);
    return data;
}

unsigned long long NumberOfRegValue(const RegistryValue& inValue)
{
    unsigned long long number = 0;
    for (std::size_t at = inValue.mData.size(); at != 0; --at) {
        number = number << 8 | inValue.mData[at - 1];
    }
    return number;
}

std::string PlainRegValue(const RegistryValue& inValue)
{
    if (IsWellFormedRegValue(inValue)) {
        if (IsText(inValue.mType)) {
            return TextOf(inValue);
        }
        if (inValue.mType == Types::kUInt32 || inValue.mType == Types::kUInt64) {
            return std::to_string(NumberOfRegValue(inValue));
        }
    }
    return Hexadecimal(inValue.mData.data(), inValue.mData.size());
}

std::string ShowRegValue(const RegistryValue& inValue)
{
    constexpr std::size_t kMaxBytes = 24;
    const bool isWellFormed = IsWellFormedRegValue(inValue);
    if (isWellFormed && IsText(inValue.mType)) {
        return '"' + WithoutControlCharacters(TextOf(inValue)) + '"';
    }
    if (isWellFormed && (inValue.mType == Types::kUInt32 || inValue.mType == Types::kUInt64)) {
        const unsigned long long number = NumberOfRegValue(inValue);
        return std::to_string(number) + " (" + Hex(number) + ')';
    }
    const std::size_t count = inValue.mData.size();
    std::string shown = Hexadecimal(inValue.mData.data(), count < kMaxBytes ? count : kMaxBytes);
    if (count > kMaxBytes) {
        shown += "...";
    }
    return shown + (shown.empty() ? "(" : " (") + std::to_string(count) + (count == 1 ? " byte)" : " bytes)");
}

RegistryValue ReadRegValue(const std::string& inType, const std::string& inText)
{
    RegistryValue value;
    if (inType == "u32") {
        value.mType = Types::kUInt32;
        value.mData = BytesOfNumber(ReadNumber(inText, std::numeric_limits<std::uint32_t>::max()), 4);
    } else if (inType == "u64") {
        value.mType = Types::kUInt64;
        value.mData = BytesOfNumber(ReadNumber(inText, std::numeric_limits<std::uint64_t>::max()), 8);
    } else if (inType == "binary") {
        value.mType = Types::kBinary;
        value.mData = ReadBytes(inText);
    } else {
        value.mType = inType == "expand" ? Types::kExpandString : Types::kString;
        value.mData = RegDataOfText(ReadText(inText));
    }
    return value;
}

} // namespace orl
