// The drive table and the names of the disk.
#include <ORLHostPath.h>
#include <ORLPathUtils.h>

#include <FaultySystemCallsLinux.h>
#include <Linux/LinuxErrors.h>
#include <Linux/LinuxHostPath.h>
#include <Linux/LinuxNames.h>
#include <Platform/SystemErrors.h>

#include <cerrno>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <tvxcore/Text.h>

using namespace ORL;
using namespace ORL::Linux;
using ORLTest::FaultySystemCalls;

namespace {

UTF16String NameToUnits(const std::string& inName)
{
    UTF16String units;
    AppendUnitsOfName(units, inName.data(), inName.size());
    return units;
}

std::string NameToBytes(const UTF16String& inUnits)
{
    std::string bytes;
    AppendBytesOfName(bytes, inUnits.data(), inUnits.size());
    return bytes;
}

} // namespace

TEST(LinuxNames, EachKindOfName_HasItsUnitsAndComesBack)
{
    struct Row
    {
        int mLine;
        std::string mName;
        const char16_t* mUnits;
    };
    const Row rows[] = {
        {__LINE__, "plain.txt", u"plain.txt"},
        {__LINE__, "\xC3\xA9t\xC3\xA9", u"\u00E9t\u00E9"},
        {__LINE__, "\xF0\x9F\x98\x80", u"\U0001F600"},
        // what a library path cannot hold in a name
        {__LINE__, "a:b*c?", u"a\uF03Ab\uF02Ac\uF03F"},
        {__LINE__, "\"<>|\\", u"\uF022\uF03C\uF03E\uF07C\uF05C"},
        {__LINE__, "\x01\x1F\x7F", u"\uF001\uF01F\u007F"},
        // what a plain path would lose at the end, and nowhere else
        {__LINE__, "a. b. ", u"a. b.\uF020"},
        {__LINE__, "...", u"..\uF02E"},
        {__LINE__, " a", u" a"},
        // no UTF-8
        {__LINE__, "caf\xE9", u"caf\uF0E9"},
        {__LINE__, "\x80\xFF", u"\uF080\uF0FF"},
        {__LINE__, "\xC0\xAF", u"\uF0C0\uF0AF"},
        {__LINE__, "\xF4\x90\x80\x80", u"\uF0F4\uF090\uF080\uF080"},
        {__LINE__, "\xE2\x82", u"\uF0E2\uF082"},
        // characters that look like travelling bytes
        {__LINE__, "\xEF\x80\xBA", u"\uF0EF\uF080\uF0BA"},
        {__LINE__, "\xEF\x83\xA9", u"\uF0EF\uF083\uF0A9"},
        // one that does not: its byte never travels
        {__LINE__, "\xEF\x81\x81", u"\uF041"},
    };
    for (const Row& row : rows) {
        const UTF16String units = NameToUnits(row.mName);
        const std::u16string expected(row.mUnits);
        EXPECT_EQ(UTF16String(expected.begin(), expected.end()), units) << "row at line " << row.mLine;
        EXPECT_EQ(row.mName, NameToBytes(units)) << "row at line " << row.mLine;
    }
}
