// Tests MakeDiskSpaceString, which formats a size in bytes for display.
#include <ORLDiskUtils.h>

#include <TextHelpers.h>

#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <tvxcore/Localizer.h>
#include <tvxcore/Number.h>
#include <vector>

using namespace ORL::DiskUtils;
using ORLTest::Show;
using ORLTest::Units;

namespace {

/// Records the requested keys and returns its own translations.
class Words : public tvxcore::config::Localizer
{
public:
    Words() : mEarlier(tvxcore::config::InstallLocalizer(this)) {}
    ~Words() override { tvxcore::config::InstallLocalizer(mEarlier); }

    UTF16String Localize(const char* inZString) override
    {
        mAsked.push_back(inZString);
        return Units(u"Einheit");
    }

    std::vector<std::string> mAsked;

private:
    tvxcore::config::Localizer* mEarlier;
};

UTF16String Number(double inNumber, std::size_t inDigits)
{
    return tvxcore::utility::NumberToString(inNumber, 1, inDigits, tvxcore::utility::Flags<unsigned short>(), 31);
}

std::string DigitsOf(const UTF16String& inText)
{
    std::string digits;
    for (const unsigned short unit : inText) {
        if (unit >= '0' && unit <= '9') {
            digits += static_cast<char>(unit);
        }
    }
    return digits;
}

constexpr unsigned __int64 kLargest = (std::numeric_limits<unsigned __int64>::max)();

} // namespace

TEST(MakeDiskSpaceString, WholeRows_AreCutOffAndNotGrouped)
{
    struct Row
    {
        int mLine;
        unsigned __int64 mBytes;
        const char16_t* mText;
    };
    const Row rows[] = {
        {__LINE__, 0, u"0 B"},     {__LINE__, 1, u"1 B"},     {__LINE__, 1023, u"1023 B"},
        {__LINE__, 1024, u"1 KB"}, {__LINE__, 2047, u"1 KB"}, {__LINE__, 1048575, u"1023 KB"},
    };
    for (const Row& row : rows) {
        const UTF16String text = MakeDiskSpaceString(row.mBytes);
        EXPECT_EQ(Units(row.mText), text) << "row at line " << row.mLine << ": " << Show(text);
    }
}

TEST(MakeDiskSpaceString, FractionalRows_ShowTheUsersNumbers)
{
    struct Row
    {
        int mLine;
        unsigned __int64 mBytes;
        double mNumber;
        std::size_t mDigits;
        const char16_t* mUnit;
        const char* mDigitsShown;
    };
    const Row rows[] = {
        {__LINE__, 1048576, 1.0, 1, u" MB", "10"},
        {__LINE__, 1572864, 1.5, 1, u" MB", "15"},
        {__LINE__, 1073741823, 1073741823 / 1048576.0, 1, u" MB", "10240"},
        {__LINE__, 1073741824, 1.0, 1, u" GB", "10"},
        {__LINE__, 1099511627775, 1099511627775 / 1073741824.0, 1, u" GB", "10240"},
        {__LINE__, 1099511627776, 1.0, 2, u" TB", "100"},
        {__LINE__, 1374389534720, 1.25, 2, u" TB", "125"},
        // sizes with the highest bit set are not negative
        {__LINE__, kLargest, 16777216.0, 2, u" TB", "1677721600"},
        {__LINE__, 0x8000000000000000u, 8388608.0, 2, u" TB", "838860800"},
    };
    for (const Row& row : rows) {
        const UTF16String text = MakeDiskSpaceString(row.mBytes);
        EXPECT_EQ(Number(row.mNumber, row.mDigits) + Units(row.mUnit), text)
            << "row at line " << row.mLine << ": " << Show(text);
        EXPECT_EQ(row.mDigitsShown, DigitsOf(text)) << "row at line " << row.mLine;
        EXPECT_EQ(UTF16String::npos, text.find('-')) << "row at line " << row.mLine;
    }
}

TEST(MakeDiskSpaceString, TheUnit_ComesFromTheHostsCatalogue)
{
    Words words;
    EXPECT_EQ(Units(u"7 Einheit"), MakeDiskSpaceString(7));
    EXPECT_EQ(Units(u"7 Einheit"), MakeDiskSpaceString(7 * kSize_kiloByte));
    MakeDiskSpaceString(kSize_megaByte);
    MakeDiskSpaceString(kSize_gigaByte);
    MakeDiskSpaceString(kSize_teraByte);
    const std::vector<std::string> keys = {
        "$$$/Mirencore/ORL/Foundation/bytes=B",      "$$$/Mirencore/ORL/Foundation/kilobytes=KB",
        "$$$/Mirencore/ORL/Foundation/megabytes=MB", "$$$/Mirencore/ORL/Foundation/gigabytes=GB",
        "$$$/Mirencore/ORL/Foundation/terabytes=TB",
    };
    EXPECT_EQ(keys, words.mAsked);
}
