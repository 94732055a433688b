#include "RegFile.h"

#include "RegValueText.h"
#include "Text.h"

#include <algorithm>
#include <tvxcore/Text.h>

namespace orl {

namespace {

using ORL::RegistryValue;
using Types = ORL::RegistryValueTypes;

constexpr std::size_t kLineWidth = 76; // bytes wrap after this column

void Append(UTF16String& ioText, const char* inASCII)
{
    for (; *inASCII != '\0'; ++inASCII) {
        ioText.push_back(static_cast<unsigned char>(*inASCII));
    }
}

void AppendHex(UTF16String& ioText, unsigned inNumber, int inDigits)
{
    for (int shift = 4 * (inDigits - 1); shift >= 0; shift -= 4) {
        ioText.push_back(static_cast<unsigned char>("0123456789abcdef"[inNumber >> shift & 0xF]));
    }
}

void AppendQuoted(UTF16String& ioText, const UTF16String& inQuoted)
{
    ioText.push_back('"');
    for (const unsigned short unit : inQuoted) {
        if (unit == '"' || unit == '\\') {
            ioText.push_back('\\');
        }
        ioText.push_back(unit);
    }
    ioText.push_back('"');
}

int DigitsOf(unsigned inNumber)
{
    int digits = 1;
    while (digits < 8 && inNumber >> (4 * digits) != 0) {
        ++digits;
    }
    return digits;
}

void AppendBytes(UTF16String& ioText, std::size_t inBeginOfLine, const std::vector<unsigned char>& inData)
{
    for (std::size_t i = 0; i < inData.size(); ++i) {
        AppendHex(ioText, inData[i], 2);
        if (i + 1 == inData.size()) {
            break;
        }
        ioText.push_back(',');
        if (ioText.size() - inBeginOfLine >= kLineWidth) {
            Append(ioText, "\\\r\n");
            inBeginOfLine = ioText.size();
            Append(ioText, "  ");
        }
    }
}

// A reader may convert the line breaks in a quoted string, so a string with line breaks is written as bytes.
bool IsWrittenAsText(const RegistryValue& inValue)
{
    if (inValue.mType != Types::kString || !IsWellFormedRegValue(inValue)) {
        return false;
    }
    const UTF16String units = UnitsOfRegData(inValue.mData);
    return std::none_of(units.begin(), units.end(), [](unsigned short unit) { return unit == '\r' || unit == '\n'; });
}

void AppendData(UTF16String& ioText, std::size_t inBeginOfLine, const RegistryValue& inValue)
{
    if (IsWrittenAsText(inValue)) {
        UTF16String units = UnitsOfRegData(inValue.mData);
        units.pop_back();
        AppendQuoted(ioText, units);
        return;
    }
    if (inValue.mType == Types::kUInt32 && IsWellFormedRegValue(inValue)) {
        Append(ioText, "dword:");
        AppendHex(ioText, static_cast<unsigned>(NumberOfRegValue(inValue)), 8);
        return;
    }
    Append(ioText, "hex");
    if (inValue.mType != Types::kBinary) {
        ioText.push_back('(');
        AppendHex(ioText, inValue.mType, DigitsOf(inValue.mType));
        ioText.push_back(')');
    }
    ioText.push_back(':');
    AppendBytes(ioText, inBeginOfLine, inValue.mData);
}

void AppendValue(UTF16String& ioText, const RegistryValue& inValue)
{
    const std::size_t begin = ioText.size();
    if (inValue.mName.empty()) {
        ioText.push_back('@');
    } else {
        AppendQuoted(ioText, inValue.mName);
    }
    ioText.push_back('=');
    AppendData(ioText, begin, inValue);
    Append(ioText, "\r\n");
}

} // namespace

bool IsRegNameBefore(const UTF16String& inFirst, const UTF16String& inSecond)
{
    const UTF16String first = tvxcore::utility::FoldCase(inFirst);
    const UTF16String second = tvxcore::utility::FoldCase(inSecond);
    return first != second ? first < second : inFirst < inSecond;
}

bool CanWriteRegKey(const UTF16String& inName)
{
    return std::none_of(inName.begin(), inName.end(), [](unsigned short unit) { return unit == '\r' || unit == '\n'; });
}

UTF16String WriteRegFile(const std::vector<RegFileKey>& inKeys)
{
    UTF16String text;
    Append(text, "Windows Registry Editor Version 5.00\r\n");
    for (const RegFileKey& key : inKeys) {
        Append(text, "\r\n[");
        text += key.mName;
        Append(text, "]\r\n");
        std::vector<const RegistryValue*> values;
        for (const RegistryValue& value : key.mValues) {
            values.push_back(&value);
        }
        std::sort(values.begin(), values.end(), [](const RegistryValue* inFirst, const RegistryValue* inSecond) {
            return IsRegNameBefore(inFirst->mName, inSecond->mName);
        });
        for (const RegistryValue* const value : values) {
            AppendValue(text, *value);
        }
    }
    Append(text, "\r\n");
    return text;
}

} // namespace orl
