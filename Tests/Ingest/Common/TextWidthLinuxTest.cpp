// Compares character widths with the C library, which has its own table.
#include <TextWidth.h>

#include <clocale>
#include <cwchar>
#include <gtest/gtest.h>
#include <locale.h>
#include <string>
#include <tvxcore/Text.h>

TEST(TextWidth, NearlyEachCharacter_IsAsWideAsTheCLibrarySays)
{
    const locale_t utf8 = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    ASSERT_NE(nullptr, utf8);
    const locale_t earlier = ::uselocale(utf8);
    int compared = 0;
    int different = 0;
    for (wchar_t point = 0xA0; point <= 0x1FFFF; ++point) {
        const int expected = ::wcwidth(point); // returns -1 for unassigned and nonprintable characters
        if (expected < 0 || (point >= 0xD800 && point < 0xE000)) {
            continue;
        }
        const UTF16String units = point > 0xFFFF ? UTF16String({static_cast<unsigned short>(0xD7C0 + (point >> 10)),
                                                                static_cast<unsigned short>(0xDC00 + (point & 0x3FF))})
                                                 : UTF16String(1, static_cast<unsigned short>(point));
        const UTF8String bytes = tvxcore::utility::UTF16to8(units);
        ++compared;
        different +=
            orl::ColumnsOf(std::string(bytes.begin(), bytes.end())) != static_cast<std::size_t>(expected) ? 1 : 0;
    }
    ::uselocale(earlier);
    ::freelocale(utf8);
    EXPECT_LT(80000, compared);
    EXPECT_GT(compared / 500, different) << "two tables of the same Unicode differ in a few marks of format";
}
