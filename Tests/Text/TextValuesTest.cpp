#include <tvxcore/Guid.h>
#include <tvxcore/String.h>
#include <tvxcore/Text.h>

#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

using namespace tvxcore::literals;
using tvxcore::utility::AsciiToUTF16;
using tvxcore::utility::Guid;

namespace {

constexpr Guid kQueue = "{20974874-84a4-4245-9372-b24a16498199}"_guid;

template <class Value>
std::string Written(const Value& inValue)
{
    std::ostringstream stream;
    stream << inValue;
    return stream.str();
}

} // namespace

static_assert(kQueue == Guid(0x424584A420974874u, 0x998149164AB27293u), "the text of a known identifier");
static_assert("20974874-84A4-4245-9372-B24A16498199"_guid == kQueue, "without braces, in capitals");

TEST(GuidLiteral, TextOfAsString_IsTheSameIdentifier)
{
    for (int round = 0; round < 100; ++round) {
        const Guid guid = Guid::CreateUnique();
        const UTF16String wide = guid.AsString();
        const std::string text(wide.begin(), wide.end());
        EXPECT_EQ(guid, tvxcore::literals::operator""_guid(text.c_str(), text.size())) << text;
    }
}

TEST(GuidLiteral, MalformedText_ThrowsWhereItIsNotConstant)
{
    for (const std::string text :
         {"", "{}", "20974874-84a4-4245-9372-b24a1649819", "20974874-84a4-4245-9372-b24a164981990",
          "{20974874-84a4-4245-9372-b24a16498199", "20974874-84a4-4245-9372-b24a16498199}",
          "(20974874-84a4-4245-9372-b24a16498199)", "{20974874-84a4-4245-9372-b24a16498199)",
          "20974874x84a4-4245-9372-b24a16498199", "20974874-84a4-4245-9372xb24a16498199",
          "2097487g-84a4-4245-9372-b24a16498199", "20974874-84a4-4245-9372-b24a1649819/",
          "20974874-84a4-4245-9372-b24a1649819:", "@0974874-84a4-4245-9372-b24a16498199"}) {
        EXPECT_THROW(tvxcore::literals::operator""_guid(text.c_str(), text.size()), std::invalid_argument) << text;
    }
}

TEST(GuidStream, Guid_IsWrittenAsItsText)
{
    EXPECT_EQ("{20974874-84a4-4245-9372-b24a16498199}", Written(kQueue));
}

TEST(GuidHash, EqualIdentifiers_MeetInAnUnorderedMap)
{
    std::unordered_map<Guid, int> numbers;
    for (std::uint64_t i = 0; i < 1000; ++i) {
        numbers[Guid(i, 0)] += 1;
        numbers[Guid(0, i)] += 1;
        numbers[Guid(i << 32, 1)] += 1;
    }
    EXPECT_EQ(2998u, numbers.size());
    EXPECT_EQ(2, numbers[Guid()]);
    EXPECT_EQ(2, numbers[Guid(0, 1)]);
    EXPECT_EQ(1, numbers[Guid(7, 0)]);
}

TEST(GuidHash, SimilarIdentifiers_RarelyCollide)
{
    std::unordered_set<std::size_t> hashes;
    for (std::uint64_t i = 1; i <= 1000; ++i) {
        hashes.insert(std::hash<Guid>()(Guid(i, 0)));
        hashes.insert(std::hash<Guid>()(Guid(0, i)));
        hashes.insert(std::hash<Guid>()(Guid(i << 40, 0)));
        hashes.insert(std::hash<Guid>()(Guid(0, i << 40)));
    }
    EXPECT_LE(3990u, hashes.size());
}

TEST(UTF16Literal, Text_KeepsEveryUnit)
{
    EXPECT_EQ(AsciiToUTF16("text"), u"text"_utf16);
    EXPECT_TRUE(u""_utf16.empty());
    EXPECT_EQ(3u, u"a\0b"_utf16.size());
    const UTF16String smile = u"\U0001F600"_utf16;
    ASSERT_EQ(2u, smile.size());
    EXPECT_EQ(0xD83D, smile[0]);
    EXPECT_EQ(0xDE00, smile[1]);
}

TEST(UTF16Stream, Text_IsWrittenAsUTF8WithTheWidth)
{
    EXPECT_EQ("", Written(UTF16String()));
    EXPECT_EQ("a \xE5\xAD\x97 \xF0\x9F\x98\x80", Written(u"a \u5B57 \U0001F600"_utf16));
    EXPECT_EQ("\xEF\xBF\xBD", Written(UTF16String(1, 0xD800))) << "an unpaired surrogate is replaced";
    std::ostringstream stream;
    stream << std::setw(5) << std::setfill('.') << u"ab"_utf16 << '|' << u"c"_utf16;
    EXPECT_EQ("...ab|c", stream.str()) << "the width applies once";
}

TEST(UTF16Hash, Texts_AreKeysOfUnorderedContainers)
{
    std::unordered_map<UTF16String, int> numbers;
    numbers[u"one"_utf16] = 1;
    numbers[u"two"_utf16] = 2;
    EXPECT_EQ(1, numbers.at(AsciiToUTF16("one")));
    EXPECT_EQ(0u, numbers.count(u"on"_utf16));
    EXPECT_EQ(std::hash<UTF16String>()(u"\u5B57"_utf16), std::hash<UTF16String>()(UTF16String(1, 0x5B57)));
    EXPECT_NE(std::hash<UTF16String>()(u"\u5B57"_utf16), std::hash<UTF16String>()(UTF16String(1, 0x575B)));

    std::unordered_set<UTF8String> texts;
    texts.insert(UTF8String(reinterpret_cast<const unsigned char*>("one")));
    EXPECT_EQ(1u, texts.count(UTF8String(reinterpret_cast<const unsigned char*>("one"))));
}
