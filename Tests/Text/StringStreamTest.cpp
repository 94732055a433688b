#include <tvxcore/StringStream.h>

#include <TextHelpers.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <iomanip>
#include <limits>
#include <locale>
#include <string>

using ORLTest::Show;
using ORLTest::Units;
using tvxcore::iUTF16StringStream;
using tvxcore::oUTF16StringStream;

namespace {

// Returns what inFunction writes to a stream.
template <class Function>
std::string Written(Function inFunction)
{
    oUTF16StringStream stream;
    inFunction(stream);
    EXPECT_FALSE(stream.bad());
    return Show(stream.str());
}

template <class Number>
struct ReadBack
{
    Number mNumber;
    std::ios_base::iostate mState;
};

template <class Number>
ReadBack<Number> Read(const std::u16string& inText)
{
    iUTF16StringStream stream(Units(inText));
    ReadBack<Number> result{};
    stream >> result.mNumber;
    result.mState = stream.rdstate();
    return result;
}

// Number punctuation with a decimal comma, "." between groups of three, and other words for true and false.
class Comma : public std::numpunct<wchar_t>
{
    wchar_t do_decimal_point() const override { return L','; }
    wchar_t do_thousands_sep() const override { return L'.'; }
    std::string do_grouping() const override { return "\3"; }
    std::wstring do_truename() const override { return L"ja"; }
    std::wstring do_falsename() const override { return L"nein"; }
};

std::locale CommaLocale()
{
    return std::locale(std::locale::classic(), new Comma);
}

class GlobalLocale
{
public:
    explicit GlobalLocale(const std::locale& inLocale) : mOld(std::locale::global(inLocale)) {}
    ~GlobalLocale() { std::locale::global(mOld); }

private:
    std::locale mOld;
};

} // namespace

TEST(OutputStream, IntegersOfEveryType_AreWritten)
{
    EXPECT_EQ("-1 2 -3 4 -5 6", Written([](oUTF16StringStream& stream) {
                  stream << -1 << Units(u" ") << 2u << Units(u" ") << -3L << Units(u" ") << 4uL << Units(u" ") << -5LL
                         << Units(u" ") << 6uLL;
              }));
    EXPECT_EQ("-9223372036854775808",
              Written([](oUTF16StringStream& stream) { stream << std::numeric_limits<std::int64_t>::min(); }));
    EXPECT_EQ("18446744073709551615",
              Written([](oUTF16StringStream& stream) { stream << std::numeric_limits<std::uint64_t>::max(); }));
    EXPECT_EQ("-32768", Written([](oUTF16StringStream& stream) { stream << short{-32768}; }));
}

TEST(OutputStream, AUnitIsANumber_AndPutWritesTheCharacter)
{
    EXPECT_EQ("65A", Written([](oUTF16StringStream& stream) {
                  stream << static_cast<unsigned short>('A');
                  stream.put('A');
              }));
}

TEST(OutputStream, BasesWidthFillAndSign_AreHonoured)
{
    EXPECT_EQ("ff", Written([](oUTF16StringStream& stream) { stream << std::hex << 255; }));
    EXPECT_EQ("0XFF", Written([](oUTF16StringStream& stream) {
                  stream << std::hex << std::showbase << std::uppercase << 255;
              }));
    EXPECT_EQ("0377", Written([](oUTF16StringStream& stream) { stream << std::oct << std::showbase << 255; }));
    EXPECT_EQ("0000002a", Written([](oUTF16StringStream& stream) {
                  stream << std::hex << std::setw(8) << std::setfill(static_cast<unsigned short>('0')) << 42;
              }));
    EXPECT_EQ("42   |   42|-  42", Written([](oUTF16StringStream& stream) {
                  stream << std::left << std::setw(5) << 42 << Units(u"|") << std::right << std::setw(5) << 42
                         << Units(u"|") << std::internal << std::setw(5) << -42;
              }));
    EXPECT_EQ("+7", Written([](oUTF16StringStream& stream) { stream << std::showpos << 7; }));
}

TEST(OutputStream, FloatingPoint_FollowsPrecisionAndNotation)
{
    EXPECT_EQ("1.5", Written([](oUTF16StringStream& stream) { stream << 1.5; }));
    EXPECT_EQ("3.14",
              Written([](oUTF16StringStream& stream) { stream << std::fixed << std::setprecision(2) << 3.14159; }));
    EXPECT_EQ("1.500000e+10", Written([](oUTF16StringStream& stream) { stream << std::scientific << 1.5e10; }));
    EXPECT_EQ("-0.25", Written([](oUTF16StringStream& stream) { stream << -0.25f; }));
    EXPECT_EQ("2.5", Written([](oUTF16StringStream& stream) { stream << 2.5L; }));
    EXPECT_EQ("inf", Written([](oUTF16StringStream& stream) { stream << std::numeric_limits<double>::infinity(); }));
}

TEST(OutputStream, BoolsAndPointers_AreWritten)
{
    EXPECT_EQ("10", Written([](oUTF16StringStream& stream) { stream << true << false; }));
    EXPECT_EQ("true    false",
              Written([](oUTF16StringStream& stream) { stream << std::boolalpha << true << std::setw(9) << false; }));
    EXPECT_EQ("0x1a2b", Written([](oUTF16StringStream& stream) { stream << reinterpret_cast<void*>(0x1a2b); }));
}

TEST(OutputStream, TextOf16BitUnits_HonoursWidthAndFill)
{
    EXPECT_EQ("  ab|ab__|ab", Written([](oUTF16StringStream& stream) {
                  stream << std::setw(4) << Units(u"ab") << Units(u"|") << std::left << std::setw(4)
                         << std::setfill(static_cast<unsigned short>('_')) << Units(u"ab") << Units(u"|")
                         << TVX_UTF16("ab");
              }));
}

TEST(OutputStream, LongText_ComesBackWhole)
{
    oUTF16StringStream stream;
    UTF16String expected;
    for (int i = 0; i < 10000; ++i) {
        stream << i % 10;
        expected.push_back(static_cast<unsigned short>('0' + i % 10));
    }
    EXPECT_EQ(expected, stream.str());
}

TEST(InputStream, IntegersOfEveryType_AreRead)
{
    EXPECT_EQ(-12, Read<int>(u"-12").mNumber);
    EXPECT_EQ(4000000000u, Read<unsigned>(u"4000000000").mNumber);
    EXPECT_EQ(-30000, Read<short>(u"-30000").mNumber);
    EXPECT_EQ(77L, Read<long>(u"  \t\r\n77 ").mNumber);
    EXPECT_EQ(std::numeric_limits<std::int64_t>::min(), Read<std::int64_t>(u"-9223372036854775808").mNumber);
    EXPECT_EQ(std::numeric_limits<std::uint64_t>::max(), Read<std::uint64_t>(u"18446744073709551615").mNumber);
    EXPECT_EQ(std::ios_base::eofbit, Read<int>(u"-12").mState);
    EXPECT_EQ(std::ios_base::goodbit, Read<int>(u"12 ").mState);
}

TEST(InputStream, AUnit_IsReadAsANumber)
{
    EXPECT_EQ(513, Read<unsigned short>(u"513").mNumber);
}

TEST(InputStream, HexadecimalWords_AreReadOneByOne)
{
    iUTF16StringStream stream(Units(u"0123456789abcdef:FEDCBA9876543210"));
    std::uint64_t first = 0;
    std::uint64_t second = 0;
    stream >> std::hex >> first;
    EXPECT_EQ(':', stream.get());
    stream >> second;
    EXPECT_EQ(0x0123456789ABCDEFu, first);
    EXPECT_EQ(0xFEDCBA9876543210u, second);
    EXPECT_TRUE(stream.eof());
    EXPECT_FALSE(stream.fail());
}

TEST(InputStream, FloatingPoint_IsReadUpToTheFirstCharacterItDoesNotUnderstand)
{
    EXPECT_EQ(1.5, Read<double>(u"1.5").mNumber);
    EXPECT_EQ(1.0, Read<double>(u"1,5").mNumber);
    EXPECT_EQ(-2500.0, Read<double>(u"-2.5e3x").mNumber);
    EXPECT_EQ(0.5, Read<double>(u".5").mNumber);
    EXPECT_EQ(0.25f, Read<float>(u"0.25").mNumber);
}

TEST(InputStream, WhatIsNoNumber_FailsAndGivesZero)
{
    for (const char16_t* text : {u"", u"abc", u",5", u"-", u"\u0661", u"\uFFFD"}) {
        EXPECT_TRUE(Read<double>(text).mState & std::ios_base::failbit) << Show(Units(text));
        EXPECT_EQ(0.0, Read<double>(text).mNumber);
        EXPECT_TRUE(Read<int>(text).mState & std::ios_base::failbit) << Show(Units(text));
        EXPECT_EQ(0, Read<int>(text).mNumber);
    }
    EXPECT_EQ(0, Read<int>(u"0x407").mNumber);
    EXPECT_EQ(std::ios_base::goodbit, Read<int>(u"0x407").mState);
}

TEST(InputStream, ANumberOutOfRange_FailsAtTheNearestValue)
{
    EXPECT_EQ(std::numeric_limits<int>::max(), Read<int>(u"2147483648").mNumber);
    EXPECT_TRUE(Read<int>(u"2147483648").mState & std::ios_base::failbit);
    EXPECT_EQ(std::numeric_limits<short>::min(), Read<short>(u"-32769").mNumber);
    EXPECT_EQ(std::numeric_limits<unsigned>::max(), Read<unsigned>(u"99999999999").mNumber);
}

TEST(InputStream, BoolsAndPointers_AreRead)
{
    EXPECT_TRUE(Read<bool>(u"1").mNumber);
    EXPECT_EQ(reinterpret_cast<void*>(0x1a2b), Read<void*>(u"0x1a2b").mNumber);
    iUTF16StringStream stream(Units(u"false true maybe"));
    bool first = true;
    bool second = false;
    bool third = true;
    stream >> std::boolalpha >> first >> second;
    EXPECT_FALSE(first);
    EXPECT_TRUE(second);
    stream >> third;
    EXPECT_TRUE(stream.fail());
}

TEST(InputStream, LinesAndWords_AreSplitAtWidenedCharacters)
{
    iUTF16StringStream stream(Units(u"one two\nthree\u00A0four\n\nlast"));
    UTF16String word;
    UTF16String line;
    stream >> word;
    EXPECT_EQ("one", Show(word));
    std::getline(stream, line, stream.widen('\n'));
    EXPECT_EQ(" two", Show(line));
    std::getline(stream, line);
    EXPECT_EQ("three<00a0>four", Show(line));
    std::getline(stream, line);
    EXPECT_EQ("", Show(line));
    std::getline(stream, line);
    EXPECT_EQ("last", Show(line));
    EXPECT_TRUE(stream.eof());
    EXPECT_FALSE(std::getline(stream, line));
}

TEST(StreamLocale, ProcessWideLocaleOfTheMoment_DecidesPunctuation)
{
    const GlobalLocale global(CommaLocale());
    EXPECT_EQ("1.234.567 2,5 ja", Written([](oUTF16StringStream& stream) {
                  stream << std::boolalpha << 1234567 << Units(u" ") << 2.5 << Units(u" ") << true;
              }));
    EXPECT_EQ(1234.5, Read<double>(u"1.234,5").mNumber);
}

TEST(StreamLocale, ChangeOfTheProcessWideLocale_LeavesStreamsThatExistAlone)
{
    oUTF16StringStream classic;
    {
        const GlobalLocale global(CommaLocale());
        oUTF16StringStream comma;
        classic << 1234.5;
        comma << 1234.5;
        EXPECT_EQ("1234.5", Show(classic.str()));
        EXPECT_EQ("1.234,5", Show(comma.str()));
    }
    classic << 1;
    EXPECT_EQ("1234.51", Show(classic.str()));
    EXPECT_TRUE(classic.good());
}

TEST(StreamLocale, ImbuedLocaleWithoutOurFacets_StillWritesNumbers)
{
    oUTF16StringStream output;
    output.imbue(CommaLocale());
    output << 1234567;
    EXPECT_EQ("1.234.567", Show(output.str()));
    iUTF16StringStream input(Units(u"7,25"));
    input.imbue(CommaLocale());
    double number = 0;
    input >> number;
    EXPECT_EQ(7.25, number);
}

TEST(StreamLocale, APunctuationFacetOfTheHost_IsKept)
{
    class Apostrophe : public std::numpunct<unsigned short>
    {
        unsigned short do_thousands_sep() const override { return 0x2019; }
        std::string do_grouping() const override { return "\3"; }
    };
    oUTF16StringStream stream;
    stream.imbue(std::locale(std::locale::classic(), new Apostrophe));
    stream << 1000;
    EXPECT_EQ("1<2019>000", Show(stream.str()));
}

TEST(StreamLocale, PlainStandardStream_WritesNumbersOnceImbued)
{
    std::basic_ostringstream<unsigned short> stream;
    stream.imbue(tvxcore::utility::UTF16Locale());
    stream << 12 << stream.widen(' ') << std::hex << 255u;
    const auto text = stream.str();
    EXPECT_EQ("1232ff", Show(UTF16String(text.begin(), text.end())));
}

TEST(CharacterType, ClassesAndCase_AreThoseOfASCII)
{
    using Type = std::ctype<unsigned short>;
    const std::locale locale = tvxcore::utility::UTF16Locale();
    const Type& type = std::use_facet<Type>(locale);
    const std::ctype<char>& narrow = std::use_facet<std::ctype<char>>(std::locale::classic());
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
        const auto wide = static_cast<unsigned short>(unit);
        for (const std::ctype_base::mask mask :
             {Type::space, Type::print, Type::cntrl, Type::upper, Type::lower, Type::alpha, Type::digit, Type::punct,
              Type::xdigit, Type::blank, Type::alnum, Type::graph}) {
            const bool expected = unit < 0x80 && narrow.is(mask, static_cast<char>(unit));
            EXPECT_EQ(expected, type.is(mask, wide)) << unit;
        }
        EXPECT_EQ(unit < 0x80 ? narrow.toupper(static_cast<char>(unit)) : static_cast<int>(unit), type.toupper(wide));
        EXPECT_EQ(unit < 0x80 ? narrow.tolower(static_cast<char>(unit)) : static_cast<int>(unit), type.tolower(wide));
        EXPECT_EQ(static_cast<char>(unit <= 0xFF ? unit : '?'), type.narrow(wide, '?'));
    }
}

TEST(CharacterType, Ranges_AreTreatedUnitByUnit)
{
    using Type = std::ctype<unsigned short>;
    const std::locale locale = tvxcore::utility::UTF16Locale();
    const Type& type = std::use_facet<Type>(locale);
    unsigned short text[] = {' ', '\t', 'a', 'Z', 0x100, '1'};
    const unsigned short* const end = text + 6;
    EXPECT_EQ(text + 2, type.scan_not(Type::space, text, end));
    EXPECT_EQ(text + 5, type.scan_is(Type::digit, text, end));
    EXPECT_EQ(end, type.scan_is(Type::punct, text, end));
    Type::mask masks[6];
    EXPECT_EQ(end, type.is(text, end, masks));
    EXPECT_TRUE(masks[2] & Type::lower);
    EXPECT_FALSE(masks[4]);
    char narrowed[6];
    EXPECT_EQ(end, type.narrow(text, end, '?', narrowed));
    EXPECT_EQ(" \taZ?1", std::string(narrowed, 6));
    EXPECT_EQ(end, type.toupper(text, end));
    EXPECT_EQ('A', text[2]);
    EXPECT_EQ(end, type.tolower(text, end));
    EXPECT_EQ('z', text[3]);
    const char source[] = "a\xE9";
    unsigned short widened[2];
    EXPECT_EQ(source + 2, type.widen(source, source + 2, widened));
    EXPECT_EQ('a', widened[0]);
    EXPECT_EQ(0xE9, widened[1]);
}
