// A slow, obvious conversion between UTF-8 and UTF-16, written from the Unicode standard's table of well-formed byte
// sequences. The fast conversion is compared with it when ICU is not available.
#pragma once

#include <tvxcore/String.h>

#include <cstddef>
#include <cstdint>

namespace ORLTest {

struct ByteRange
{
    unsigned char mFirst;
    unsigned char mLast;
};

/// A row of the table: the range of each byte. Unused ranges are {0, 0}.
struct WellFormedRow
{
    std::size_t mLength;
    ByteRange mBytes[4];
};

inline constexpr WellFormedRow kWellFormed[] = {
    {1, {{0x00, 0x7F}}},
    {2, {{0xC2, 0xDF}, {0x80, 0xBF}}},
    {3, {{0xE0, 0xE0}, {0xA0, 0xBF}, {0x80, 0xBF}}},
    {3, {{0xE1, 0xEC}, {0x80, 0xBF}, {0x80, 0xBF}}},
    {3, {{0xED, 0xED}, {0x80, 0x9F}, {0x80, 0xBF}}},
    {3, {{0xEE, 0xEF}, {0x80, 0xBF}, {0x80, 0xBF}}},
    {4, {{0xF0, 0xF0}, {0x90, 0xBF}, {0x80, 0xBF}, {0x80, 0xBF}}},
    {4, {{0xF1, 0xF3}, {0x80, 0xBF}, {0x80, 0xBF}, {0x80, 0xBF}}},
    {4, {{0xF4, 0xF4}, {0x80, 0x8F}, {0x80, 0xBF}, {0x80, 0xBF}}},
};

/// Returns the number of bytes at inPlace that match the beginning of the row.
inline std::size_t Matching(const WellFormedRow& inRow, const UTF8String& inText, std::size_t inPlace)
{
    std::size_t count = 0;
    while (count < inRow.mLength && inPlace + count < inText.size()
           && inText[inPlace + count] >= inRow.mBytes[count].mFirst
           && inText[inPlace + count] <= inRow.mBytes[count].mLast) {
        ++count;
    }
    return count;
}

inline std::uint32_t PointOf(const UTF8String& inText, std::size_t inPlace, std::size_t inLength)
{
    if (inLength == 1) {
        return inText[inPlace];
    }
    std::uint32_t point = inText[inPlace] & (0xFFu >> (inLength + 1));
    for (std::size_t i = 1; i < inLength; ++i) {
        point = point * 64 + inText[inPlace + i] % 64;
    }
    return point;
}

inline void AppendPoint(UTF16String& ioText, std::uint32_t inPoint)
{
    if (inPoint < 0x10000) {
        ioText.push_back(static_cast<unsigned short>(inPoint));
    } else {
        ioText.push_back(static_cast<unsigned short>(0xD800 + (inPoint - 0x10000) / 0x400));
        ioText.push_back(static_cast<unsigned short>(0xDC00 + (inPoint - 0x10000) % 0x400));
    }
}

inline void AppendPoint(UTF8String& ioText, std::uint32_t inPoint)
{
    const std::size_t length = inPoint < 0x80 ? 1 : inPoint < 0x800 ? 2 : inPoint < 0x10000 ? 3 : 4;
    static constexpr unsigned kTags[] = {0, 0x00, 0xC0, 0xE0, 0xF0};
    for (std::size_t i = length; i-- != 0;) {
        const unsigned tag = i + 1 == length ? kTags[length] : 0x80;
        ioText.push_back(static_cast<unsigned char>(tag | (inPoint >> (6 * i) & (tag == 0 ? 0x7F : 0x3F))));
    }
}

/// Converts the longest match of any row at each position: a complete row becomes its character, a partial one U+FFFD.
inline UTF16String ReferenceToUTF16(const UTF8String& inText)
{
    UTF16String units;
    for (std::size_t place = 0; place < inText.size();) {
        std::size_t longest = 0;
        bool isWhole = false;
        for (const WellFormedRow& row : kWellFormed) {
            const std::size_t count = Matching(row, inText, place);
            if (count > longest) {
                longest = count;
                isWhole = count == row.mLength;
            }
        }
        AppendPoint(units, isWhole ? PointOf(inText, place, longest) : 0xFFFD);
        place += longest != 0 ? longest : 1;
    }
    return units;
}

inline UTF8String ReferenceToUTF8(const UTF16String& inText)
{
    UTF8String bytes;
    for (std::size_t place = 0; place < inText.size(); ++place) {
        const std::uint32_t unit = inText[place];
        const std::uint32_t next = place + 1 < inText.size() ? inText[place + 1] : 0;
        if (unit >= 0xD800 && unit < 0xDC00 && next >= 0xDC00 && next < 0xE000) {
            AppendPoint(bytes, 0x10000 + (unit - 0xD800) * 0x400 + (next - 0xDC00));
            ++place;
        } else {
            AppendPoint(bytes, unit >= 0xD800 && unit < 0xE000 ? 0xFFFD : unit);
        }
    }
    return bytes;
}

} // namespace ORLTest
