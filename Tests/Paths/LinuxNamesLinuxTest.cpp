// Tests the one-to-one mapping between names on disk and units of a library path.
#include <Linux/Paths/LinuxNames.h>

#include <TextHelpers.h>

#include <gtest/gtest.h>
#include <random>
#include <string>

using namespace ORL;
using namespace ORL::Linux;
using ORLTest::Show;
using ORLTest::Units;

namespace {

UTF16String ToUnits(const std::string& inName)
{
    UTF16String units;
    AppendUnitsOfName(units, inName.data(), inName.size());
    return units;
}

std::string ToBytes(const UTF16String& inUnits)
{
    std::string bytes;
    AppendBytesOfName(bytes, inUnits.data(), inUnits.size());
    return bytes;
}

SystemError Check(const UTF16String& inUnits)
{
    return CheckName(inUnits.data(), inUnits.size());
}

} // namespace

TEST(LinuxNames, EachKindOfName_HasItsUnitsAndComesBack)
{
    struct Row
    {
        int mLine;
        std::string mName;
        UTF16String mUnits;
    };
    const Row rows[] = {
        {__LINE__, "plain.txt", Units(u"plain.txt")},
        {__LINE__, "\xC3\xA9t\xC3\xA9", Units(u"\u00E9t\u00E9")},
        {__LINE__, "\xF0\x9F\x98\x80", Units(u"\U0001F600")},
        // characters that a library path cannot contain in a name
        {__LINE__, "a:b*c?", Units(u"a\uF03Ab\uF02Ac\uF03F")},
        {__LINE__, "\"<>|\\", Units(u"\uF022\uF03C\uF03E\uF07C\uF05C")},
        {__LINE__, "\x01\x1F\x7F", Units(u"\uF001\uF01F\u007F")},
        // trailing characters that a plain path would drop, only at the end
        {__LINE__, "a. b. ", Units(u"a. b.\uF020")},
        {__LINE__, "...", Units(u"..\uF02E")},
        {__LINE__, " a", Units(u" a")},
        // invalid UTF-8: stray bytes, an overlong form, a code point beyond U+10FFFF, a truncated sequence
        {__LINE__, "caf\xE9", Units(u"caf\uF0E9")},
        {__LINE__, "\x80\xFF", Units(u"\uF080\uF0FF")},
        {__LINE__, "\xC0\xAF", Units(u"\uF0C0\uF0AF")},
        {__LINE__, "\xF4\x90\x80\x80", Units(u"\uF0F4\uF090\uF080\uF080")},
        {__LINE__, "\xE2\x82", Units(u"\uF0E2\uF082")},
        // private units on disk that look like mapped bytes
        {__LINE__, "\xEF\x80\xBA", Units(u"\uF0EF\uF080\uF0BA")},
        {__LINE__, "\xEF\x83\xA9", Units(u"\uF0EF\uF083\uF0A9")},
        // a private unit whose byte is never mapped
        {__LINE__, "\xEF\x81\x81", Units(u"\uF041")},
        // halves of a surrogate pair: alone they map to themselves; adjacent ones must not combine
        {__LINE__, "\xED\xA0\xBD!", UTF16String{0xD83D, '!'}},
        {__LINE__, "\xED\xB8\x80", UTF16String{0xDE00}},
        {__LINE__, "\xED\xA0\xBD\xED\xB8\x80", UTF16String{0xD83D, 0xF0ED, 0xF0B8, 0xF080}},
    };
    for (const Row& row : rows) {
        const UTF16String units = ToUnits(row.mName);
        EXPECT_EQ(row.mUnits, units) << "row at line " << row.mLine << ": " << Show(units);
        EXPECT_EQ(row.mName, ToBytes(units)) << "row at line " << row.mLine;
        EXPECT_EQ(SystemErrors::kNoError, Check(units)) << "row at line " << row.mLine;
    }
}

TEST(LinuxNames, RandomBytes_ComeBackAndAreLegal)
{
    std::mt19937 random(20240603);
    // Pieces that often form valid sequences, almost valid sequences, and bytes that must be mapped.
    const std::string pieces[] = {"a",    ".",    " ",    ":",    "\\",   "\x01", "\xC3", "\xA9", "\xED", "\xA0",
                                  "\xB0", "\xEF", "\x80", "\x82", "\xBA", "\xF0", "\x9F", "\x98", "\xFF", "\xEF\x83"};
    for (int i = 0; i < 100000; ++i) {
        std::string name;
        for (auto count = 1 + random() % 8; count != 0; --count) {
            name += pieces[random() % std::size(pieces)];
        }
        const UTF16String units = ToUnits(name);
        ASSERT_EQ(name, ToBytes(units)) << Show(units);
        ASSERT_EQ(SystemErrors::kNoError, Check(units)) << Show(units);
        ASSERT_LE(units.size(), name.size());
        ASSERT_TRUE(units.back() != ' ' && units.back() != '.') << Show(units);
    }
}

TEST(LinuxNames, EveryUnitAlone_ComesBackAsItselfOrIsABytesUnit)
{
    for (unsigned unit = 0x20; unit <= 0xFFFF; ++unit) {
        const UTF16String text{'x', static_cast<unsigned short>(unit), 'x'};
        const UTF16String back = ToUnits(ToBytes(text));
        const bool isBytesUnit = unit > 0xF000 && unit <= 0xF0FF;
        if (Check(text) == SystemErrors::kNoError && (!isBytesUnit || unit >= 0xF080)) {
            ASSERT_EQ(text, back) << std::hex << unit;
        }
    }
}

TEST(LinuxNames, CheckName_RefusesWhatNoPathMayHold)
{
    EXPECT_EQ(123u, Check(UTF16String()));
    EXPECT_EQ(0u, Check(UTF16String(255, 'n')));
    EXPECT_EQ(123u, Check(UTF16String(256, 'n')));
    for (const char illegal : std::string("\"*/<>?\\|\x01\x1F")) {
        EXPECT_EQ(123u, Check(UTF16String{'a', static_cast<unsigned short>(illegal), 'b'})) << illegal;
    }
    EXPECT_EQ(123u, Check(UTF16String{'a', 0}));
    EXPECT_EQ(2u, Check(Units(u"file:stream")));
    EXPECT_EQ(123u, Check(Units(u"file:str*eam")));
    EXPECT_EQ(0u, Check(Units(u"a\u007F\u0080 .b")));
}
