// Compares UTF conversion and case folding with ICU, an independent implementation of the Unicode standard.
#include <tvxcore/Text.h>

#include <TextHelpers.h>

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <vector>

using namespace tvxcore::utility;

namespace {

UTF16String IcuToUTF16(const UTF8String& inText)
{
    std::vector<UChar> units(inText.size() + 1);
    UErrorCode error = U_ZERO_ERROR;
    std::int32_t length = 0;
    u_strFromUTF8WithSub(units.data(), static_cast<std::int32_t>(units.size()), &length,
                         reinterpret_cast<const char*>(inText.data()), static_cast<std::int32_t>(inText.size()), 0xFFFD,
                         nullptr, &error);
    EXPECT_TRUE(U_SUCCESS(error));
    return UTF16String(units.begin(), units.begin() + length);
}

UTF8String IcuToUTF8(const UTF16String& inText)
{
    std::vector<char> bytes(3 * inText.size() + 1);
    UErrorCode error = U_ZERO_ERROR;
    std::int32_t length = 0;
    u_strToUTF8WithSub(bytes.data(), static_cast<std::int32_t>(bytes.size()), &length,
                       reinterpret_cast<const UChar*>(inText.data()), static_cast<std::int32_t>(inText.size()), 0xFFFD,
                       nullptr, &error);
    EXPECT_TRUE(U_SUCCESS(error));
    return UTF8String(bytes.begin(), bytes.begin() + length);
}

UTF16String IcuFold(const UTF16String& inText)
{
    std::vector<UChar> units(3 * inText.size() + 1);
    UErrorCode error = U_ZERO_ERROR;
    const std::int32_t length = u_strFoldCase(units.data(), static_cast<std::int32_t>(units.size()),
                                              reinterpret_cast<const UChar*>(inText.data()),
                                              static_cast<std::int32_t>(inText.size()), U_FOLD_CASE_DEFAULT, &error);
    EXPECT_TRUE(U_SUCCESS(error));
    return UTF16String(units.begin(), units.begin() + length);
}

UTF16String UnitsOf(UChar32 inPoint)
{
    UTF16String units;
    if (inPoint > 0xFFFF) {
        units.push_back(U16_LEAD(inPoint));
        units.push_back(U16_TRAIL(inPoint));
    } else {
        units.push_back(static_cast<unsigned short>(inPoint));
    }
    return units;
}

} // namespace

TEST(Utf, EveryCodePointAndSurrogate_ConvertsAsICUDoes)
{
    for (UChar32 point = 0; point <= 0x10FFFF; ++point) {
        const UTF16String units = UnitsOf(point);
        const UTF8String bytes = IcuToUTF8(units);
        ASSERT_EQ(bytes, UTF16to8(units)) << point;
        ASSERT_EQ(IcuToUTF16(bytes), UTF8to16(bytes)) << point;
    }
}

TEST(Utf, EveryThreeBytesThatBeginWithALead_ConvertAsICUDoes)
{
    for (unsigned first = 0xC0; first <= 0xFF; ++first) {
        for (unsigned second = 0; second <= 0xFF; ++second) {
            UTF8String text;
            for (unsigned third = 0x7F; third <= 0xC2; ++third) {
                text += {static_cast<unsigned char>(first), static_cast<unsigned char>(second),
                         static_cast<unsigned char>(third)};
            }
            ASSERT_EQ(IcuToUTF16(text), UTF8to16(text)) << first << ' ' << second;
        }
    }
}

TEST(Utf, AMillionRandomByteStrings_ConvertAsICUDoes)
{
    std::mt19937 random(20);
    // About a third of the bytes are the first or last of a byte class.
    static constexpr unsigned char kBorders[] = {0x00, 0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC1, 0xC2, 0xDF,
                                                 0xE0, 0xE1, 0xEC, 0xED, 0xEE, 0xEF, 0xF0, 0xF1, 0xF3, 0xF4, 0xF5};
    for (int i = 0; i < 1000000; ++i) {
        UTF8String text;
        const std::size_t length = random() % 48;
        for (std::size_t k = 0; k < length; ++k) {
            const unsigned kind = static_cast<unsigned>(random() % 3);
            text.push_back(kind == 0   ? static_cast<unsigned char>(random())
                           : kind == 1 ? kBorders[random() % sizeof(kBorders)]
                                       : static_cast<unsigned char>(random() & 0x7F));
        }
        ASSERT_EQ(IcuToUTF16(text), UTF8to16(text)) << "string " << i;
    }
}

TEST(Utf, RandomUnitStrings_ConvertAsICUDoes)
{
    std::mt19937 random(21);
    for (int i = 0; i < 200000; ++i) {
        UTF16String text;
        const std::size_t length = random() % 64;
        for (std::size_t k = 0; k < length; ++k) {
            const unsigned value = static_cast<unsigned>(random());
            text.push_back(static_cast<unsigned short>(random() % 2 != 0 ? value : 0xD800 | (value & 0x7FF)));
        }
        ASSERT_EQ(IcuToUTF8(text), UTF16to8(text)) << "string " << i;
    }
}

TEST(FoldCase, EveryCodePointOfUnicode15_FoldsAsICUDoes)
{
    for (UChar32 point = 0; point <= 0x10FFFF; ++point) {
        UVersionInfo age;
        u_charAge(point, age);
        // Skips later code points: a newer ICU has letters that our table lacks.
        if (age[0] <= 15) {
            ASSERT_EQ(IcuFold(UnitsOf(point)), FoldCase(UnitsOf(point))) << point;
        }
    }
}

TEST(FoldCase, RandomText_FoldsAsICUDoes)
{
    std::mt19937 random(22);
    for (int i = 0; i < 50000; ++i) {
        UTF16String text;
        const std::size_t length = random() % 80;
        for (std::size_t k = 0; k < length; ++k) {
            const unsigned kind = static_cast<unsigned>(random() % 4);
            const unsigned value = static_cast<unsigned>(random());
            text.push_back(static_cast<unsigned short>(kind == 0   ? value & 0x7F
                                                       : kind == 1 ? value & 0x7FF
                                                       : kind == 2 ? 0x1E00 | (value & 0x1FF)
                                                                   : 0xD800 | (value & 0x7FF)));
        }
        ASSERT_EQ(IcuFold(text), FoldCase(text)) << "string " << i;
    }
}
