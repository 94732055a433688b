#include "TextWidth.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace orl {

namespace {

struct WidthRun
{
    std::uint32_t mFirst;
    std::uint32_t mLast;
    std::size_t mWidth;
};

#include "CharacterWidthTable.inc"

struct Character
{
    std::uint32_t mPoint;
    std::size_t mSize; // bytes
};

// A byte that does not start a complete character counts as a character that no table contains.
Character CharacterAt(const std::string& inText, std::size_t inAt)
{
    const auto first = static_cast<unsigned char>(inText[inAt]);
    const std::size_t size = first < 0xC2 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF5 ? 4 : 1;
    if (size == 1 || inAt + size > inText.size()) {
        return {first < 0x80 ? first : 0xFFFDu, 1};
    }
    std::uint32_t point = first & (0xFFu >> (size + 1));
    for (std::size_t i = 1; i < size; ++i) {
        const auto byte = static_cast<unsigned char>(inText[inAt + i]);
        if ((byte & 0xC0) != 0x80) {
            return {0xFFFD, 1};
        }
        point = point << 6 | (byte & 0x3Fu);
    }
    return {point, size};
}

std::size_t WidthOf(std::uint32_t inPoint)
{
    const auto isBefore = [](const WidthRun& inRun, std::uint32_t inWanted) { return inRun.mLast < inWanted; };
    const auto run = std::lower_bound(std::begin(kWidthRuns), std::end(kWidthRuns), inPoint, isBefore);
    return run != std::end(kWidthRuns) && run->mFirst <= inPoint ? run->mWidth : 1;
}

} // namespace

std::size_t ColumnsOf(const std::string& inText)
{
    std::size_t columns = 0;
    for (std::size_t at = 0; at < inText.size();) {
        const Character character = CharacterAt(inText, at);
        columns += WidthOf(character.mPoint);
        at += character.mSize;
    }
    return columns;
}

std::string PrefixOfWidth(const std::string& inText, std::size_t inColumns)
{
    std::size_t columns = 0;
    for (std::size_t at = 0; at < inText.size();) {
        const Character character = CharacterAt(inText, at);
        columns += WidthOf(character.mPoint);
        if (columns > inColumns) {
            return inText.substr(0, at);
        }
        at += character.mSize;
    }
    return inText;
}

std::string SuffixOfWidth(const std::string& inText, std::size_t inColumns)
{
    std::size_t left = ColumnsOf(inText);
    for (std::size_t at = 0; at < inText.size();) {
        const Character character = CharacterAt(inText, at);
        const std::size_t width = WidthOf(character.mPoint);
        if (left <= inColumns && width != 0) {
            return inText.substr(at);
        }
        left -= width;
        at += character.mSize;
    }
    return std::string();
}

} // namespace orl
