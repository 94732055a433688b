// Compares the UTF conversions with a second implementation, on both platforms.
#include <tvxcore/Text.h>

#include <UtfCheck.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

using namespace tvxcore::utility;
using namespace ORLTest;

TEST(UtfSweep, EveryCodePointAndSurrogate_ConvertsByTheTable)
{
    for (std::uint32_t point = 0; point <= 0x10FFFF; ++point) {
        UTF16String units;
        AppendPoint(units, point);
        const UTF8String bytes = ReferenceToUTF8(units);
        ASSERT_EQ(bytes, UTF16to8(units)) << point;
        ASSERT_EQ(ReferenceToUTF16(bytes), UTF8to16(bytes)) << point;
    }
}

TEST(UtfSweep, AMillionRandomByteStrings_ConvertByTheTable)
{
    std::mt19937 random(30);
    static constexpr unsigned char kBorders[] = {0x00, 0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC1, 0xC2, 0xDF,
                                                 0xE0, 0xE1, 0xEC, 0xED, 0xEE, 0xEF, 0xF0, 0xF1, 0xF3, 0xF4, 0xF5};
    for (int i = 0; i < 1000000; ++i) {
        UTF8String text;
        const std::size_t length = random() % 40;
        for (std::size_t k = 0; k < length; ++k) {
            text.push_back(random() % 2 != 0 ? static_cast<unsigned char>(random())
                                             : kBorders[random() % sizeof(kBorders)]);
        }
        ASSERT_EQ(ReferenceToUTF16(text), UTF8to16(text)) << "string " << i;
    }
}

TEST(UtfSweep, TheFuzzersCorpus_HoldsStill)
{
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(TVX_UTF_CORPUS)) {
        std::ifstream file(entry.path(), std::ios::binary);
        ASSERT_TRUE(file) << entry.path();
        const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        const char* const fault = CheckUtf(reinterpret_cast<const unsigned char*>(text.data()), text.size());
        EXPECT_EQ(nullptr, fault) << entry.path() << ": " << fault;
        ++files;
    }
    EXPECT_GE(files, 20u) << "the corpus is not where it should be";
}
