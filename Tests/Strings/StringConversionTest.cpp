#include <ORLConstString.h>
#include <ORLString.h>

#include <gtest/gtest.h>

#include <string>

using namespace ORL;

TEST(MakeString, StdStringWithAZeroByte_EndsThere)
{
    EXPECT_EQ(UTF16String({'a'}), MakeString(std::string("a\0b", 3)));
}

TEST(MakeString, UTF8StringWithAZeroByte_IsDecodedWhole)
{
    const UTF8String text = {'a', 0, 'b'};
    EXPECT_EQ(UTF16String({'a', 0, 'b'}), MakeString(text));
}

TEST(MakeString, NarrowText_IsUTF8)
{
    const UTF16String expected = {'e', 0xE9, 0x20AC, 0xD83D, 0xDE00};
    EXPECT_EQ(expected, MakeString("e\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"));
    EXPECT_EQ(expected, MakeString(reinterpret_cast<const unsigned char*>("e\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80")));
    EXPECT_EQ(UTF16String({0xFFFD, '!'}), MakeString("\xE2\x82!"));
}

TEST(MakeString, SixteenBitText_IsCopiedUpToItsZeroUnit)
{
    const unsigned short text[] = {'a', 0xDC00, 0, 'b', 0};
    EXPECT_EQ(UTF16String({'a', 0xDC00}), MakeString(text));
    EXPECT_EQ(UTF16String({'a', 0xDC00}), MakeStringFromWchar(text));
    EXPECT_EQ(UTF16String({'a', 0xDC00}), tvxcore::utility::WcharToUTF16(text));
    EXPECT_EQ(UTF16String({'a', 0xDC00}), MakeString(CString(text)));
}

TEST(MakeStdString, ZeroUnits_AreKept)
{
    EXPECT_EQ(std::string("a\0\xC3\xA9", 4), MakeStdString(UTF16String({'a', 0, 0xE9})));
    EXPECT_EQ(std::string(), MakeStdString(UTF16String()));
}

TEST(MakeStdString, TextsOfEveryLength_ComeBackAsTheyWere)
{
    std::string text;
    for (int i = 0; i < 600; ++i) {
        EXPECT_EQ(text, MakeStdString(MakeString(text)));
        text += i % 3 == 0 ? "\xE2\x82\xAC" : i % 3 == 1 ? "x" : "\xF0\x9F\x98\x80";
    }
}

TEST(MakeCString, TextBehindAZeroUnit_IsDropped)
{
    const CString text = MakeCString(UTF16String({'a', 'b', 0, 'c'}));
    EXPECT_EQ(2u, text.GetLength());
    EXPECT_EQ(UTF16String({'a', 'b'}), UTF16String(text));
    EXPECT_FALSE(text.IsEmpty());
    EXPECT_TRUE(MakeCString(UTF16String()).IsEmpty());
}

TEST(UTF16ToWstring, AllUnits_AreCopied)
{
    const auto text = tvxcore::utility::UTF16ToWstring(UTF16String({'a', 0, 0xDC00}));
    ASSERT_EQ(3u, text.size());
    EXPECT_EQ(0, text[1]);
    EXPECT_EQ(0xDC00, text[2]);
    EXPECT_TRUE(tvxcore::utility::UTF16ToWstring(UTF16String()).empty());
}

// Converts units that become three bytes each, at lengths on both sides of every internal buffer size.
TEST(MakeStdString, TextOfThreeBytesAUnit_IsWhole)
{
    for (const std::size_t units : {std::size_t{1}, std::size_t{341}, std::size_t{342}, std::size_t{511},
                                    std::size_t{512}, std::size_t{513}, std::size_t{1024}, std::size_t{1025}}) {
        std::string expected;
        for (std::size_t i = 0; i < units; ++i) {
            expected += "\xE4\xB8\xAD";
        }
        EXPECT_EQ(expected, MakeStdString(UTF16String(units, 0x4E2D))) << units;
        EXPECT_EQ(expected, MakeStdString(ConstString(UTF16String(units, 0x4E2D)))) << units;
    }
}
