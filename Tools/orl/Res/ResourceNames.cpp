#include "ResourceNames.h"

#include "Text.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <iterator>

namespace orl {

namespace {

struct Row
{
    const char* mName;
    unsigned short mNumber;
};

constexpr Row kTypes[] = {
    {"CURSOR", 1},        {"BITMAP", 2},        {"ICON", 3},        {"MENU", 4},        {"DIALOG", 5},
    {"STRING", 6},        {"FONTDIR", 7},       {"FONT", 8},        {"ACCELERATOR", 9}, {"RCDATA", 10},
    {"MESSAGETABLE", 11}, {"GROUP_CURSOR", 12}, {"GROUP_ICON", 14}, {"VERSION", 16},    {"MANIFEST", 24},
};

constexpr Row kLanguages[] = {
    {"neutral", 0},  {"en_US", 1033}, {"de_DE", 1031}, {"fr_FR", 1036}, {"it_IT", 1040}, {"ja_JP", 1041},
    {"es_ES", 1034}, {"nl_NL", 1043}, {"sv_SE", 1053}, {"cs_CZ", 1029}, {"ko_KR", 1042}, {"pl_PL", 1045},
    {"pt_BR", 1046}, {"ru_RU", 1049}, {"tr_TR", 1055}, {"zh_CN", 2052}, {"zh_TW", 1028},
};

std::string Upper(std::string inText)
{
    std::transform(inText.begin(), inText.end(), inText.begin(),
                   [](unsigned char inByte) { return static_cast<char>(std::toupper(inByte)); });
    return inText;
}

template <std::size_t Count>
const Row* FindByNumber(const Row (&inRows)[Count], unsigned short inNumber)
{
    const Row* const row =
        std::find_if(inRows, inRows + Count, [&](const Row& inRow) { return inRow.mNumber == inNumber; });
    return row != inRows + Count ? row : nullptr;
}

template <std::size_t Count>
const Row* FindByName(const Row (&inRows)[Count], const std::string& inName)
{
    const Row* const row =
        std::find_if(inRows, inRows + Count, [&](const Row& inRow) { return Upper(inRow.mName) == Upper(inName); });
    return row != inRows + Count ? row : nullptr;
}

bool IsNumber(const std::string& inText)
{
    return !inText.empty() && inText.find_first_not_of("0123456789") == std::string::npos;
}

} // namespace

std::string NameOfType(const ORL::Resources::FileName& inType)
{
    if (inType.mIsText) {
        const std::string text = ToUTF8(inType.mText);
        return FindByName(kTypes, text) != nullptr || IsNumber(text) ? '"' + text + '"' : text;
    }
    const Row* const row = FindByNumber(kTypes, inType.mID);
    return row != nullptr ? row->mName : "#" + std::to_string(inType.mID);
}

std::string NameOfResource(const ORL::Resources::FileName& inName)
{
    return inName.mIsText ? ToUTF8(inName.mText) : std::to_string(inName.mID);
}

std::string NameOfLanguage(unsigned short inLanguage)
{
    if (const Row* const row = FindByNumber(kLanguages, inLanguage)) {
        return row->mName;
    }
    const unsigned char bytes[] = {static_cast<unsigned char>(inLanguage >> 8), static_cast<unsigned char>(inLanguage)};
    return "0x" + Hexadecimal(bytes, 2);
}

unsigned short ReadLanguage(const std::string& inText)
{
    if (const Row* const row = FindByName(kLanguages, inText)) {
        return row->mNumber;
    }
    const bool isHexadecimal = inText.compare(0, 2, "0x") == 0;
    const std::string digits = isHexadecimal ? inText.substr(2) : inText;
    const char* const allowed = isHexadecimal ? "0123456789abcdefABCDEF" : "0123456789";
    if (!digits.empty() && digits.size() <= 5 && digits.find_first_not_of(allowed) == std::string::npos) {
        const unsigned long number = std::stoul(digits, nullptr, isHexadecimal ? 16 : 10);
        if (number <= 0xFFFF) {
            return static_cast<unsigned short>(number);
        }
    }
    throw CLI::ValidationError("--language",
                               "\"" + inText + "\" is not a language; use de_DE, neutral, 1031 or 0x0407");
}

UTF16String ReadName(const std::string& inText)
{
    return ToUTF16(IsNumber(inText) ? "#" + inText : inText);
}

UTF16String ReadType(const std::string& inText)
{
    if (inText.size() > 2 && inText.front() == '"' && inText.back() == '"') {
        return ToUTF16(inText.substr(1, inText.size() - 2));
    }
    const Row* const row = FindByName(kTypes, inText);
    return row != nullptr ? ToUTF16("#" + std::to_string(row->mNumber)) : ReadName(inText);
}

} // namespace orl
