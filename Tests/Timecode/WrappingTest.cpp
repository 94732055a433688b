#include <Core/Wrapping.h>

#include <gtest/gtest.h>

#include <limits>

using namespace ORL;

namespace {

constexpr int kMost = std::numeric_limits<int>::max();
constexpr int kLeast = std::numeric_limits<int>::min();
constexpr long long kMost64 = std::numeric_limits<long long>::max();
constexpr long long kLeast64 = std::numeric_limits<long long>::min();

} // namespace

TEST(Wrapping, Sums_WrapAround)
{
    EXPECT_EQ(kLeast, Wrapping::Add(kMost, 1));
    EXPECT_EQ(kMost, Wrapping::Subtract(kLeast, 1));
    EXPECT_EQ(kLeast, Wrapping::Negate(kLeast));
    EXPECT_EQ(-5, Wrapping::Negate(5));
    EXPECT_EQ(1, Wrapping::Multiply(kMost, kMost));
    EXPECT_EQ(0, Wrapping::Multiply(1 << 30, 40));
    EXPECT_EQ(kLeast64, Wrapping::Add(kMost64, 1LL));
    EXPECT_EQ(kMost64, Wrapping::Subtract(kLeast64, 1LL));
    EXPECT_EQ(kLeast64, Wrapping::Negate(kLeast64));
    EXPECT_EQ(1, Wrapping::Multiply(kMost64, kMost64));
    EXPECT_EQ(-6, Wrapping::Multiply(2LL, -3LL));
}

TEST(Wrapping, TruncateToInt_GivesTheLeastIntForWhatDoesNotFit)
{
    struct Row
    {
        int mLine;
        double mValue;
        int mResult;
    };
    const Row rows[] = {
        {__LINE__, 0.0, 0},
        {__LINE__, 1.99, 1},
        {__LINE__, -1.99, -1},
        {__LINE__, 2147483647.0, kMost},
        {__LINE__, 2147483647.99, kMost},
        {__LINE__, 2147483648.0, kLeast},
        {__LINE__, -2147483648.0, kLeast},
        {__LINE__, -2147483648.99, kLeast},
        {__LINE__, -2147483649.0, kLeast},
        {__LINE__, 1e300, kLeast},
        {__LINE__, std::numeric_limits<double>::infinity(), kLeast},
        {__LINE__, std::numeric_limits<double>::quiet_NaN(), kLeast},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.mResult, Wrapping::TruncateToInt(row.mValue)) << "row at line " << row.mLine;
    }
}

TEST(Wrapping, TruncateToUnsigned64_Gives2To63ForWhatDoesNotFit)
{
    struct Row
    {
        int mLine;
        double mValue;
        unsigned long long mResult;
    };
    const unsigned long long half = 1ull << 63;
    const Row rows[] = {
        {__LINE__, 0.0, 0},
        {__LINE__, 24.99, 24},
        {__LINE__, -0.99, 0},
        {__LINE__, -1.0, ~0ull},
        {__LINE__, 9223372036854774784.0, 9223372036854774784ull},
        {__LINE__, 9223372036854775808.0, half},
        {__LINE__, 18446744073709549568.0, 18446744073709549568ull},
        {__LINE__, 18446744073709551616.0, half},
        {__LINE__, 1e300, half},
        {__LINE__, -9223372036854775808.0, half},
        {__LINE__, -1e300, half},
        {__LINE__, std::numeric_limits<double>::quiet_NaN(), half},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.mResult, Wrapping::TruncateToUnsigned64(row.mValue)) << "row at line " << row.mLine;
    }
}
