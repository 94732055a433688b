// Compares Arctangent2 with std::atan2 in long double.
#include <Media/Arctangent.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <random>

using ORL::Arctangent2;

namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();

bool IsNearest(float inY, float inX)
{
    const long double exact = std::atan2(static_cast<long double>(inY), static_cast<long double>(inX));
    const float given = Arctangent2(inY, inX);
    const float nearest = static_cast<float>(exact);
    if (given == nearest && std::signbit(given) == std::signbit(nearest)) {
        return true;
    }
    // Accepts a near tie, which only the last bits of the long double result decide.
    const float other = std::nextafter(nearest, given);
    return given == other
           && std::fabs(std::fabs(given - exact) - std::fabs(nearest - exact)) < 1e-6L * std::fabs(given - nearest);
}

} // namespace

TEST(Arctangent2, AnyVector_IsTheNearestFloat)
{
    std::mt19937 random(8);
    std::uniform_real_distribution<float> part(-1, 1);
    int misses = 0;
    for (int i = 0; i < 400000; ++i) {
        const float y = part(random);
        const float x = part(random);
        misses += IsNearest(y, x) ? 0 : 1;
    }
    EXPECT_EQ(0, misses);
}

TEST(Arctangent2, VectorsOfAnyBits_AreTheNearestFloat)
{
    std::mt19937 random(9);
    int misses = 0;
    for (int i = 0; i < 200000; ++i) {
        const std::uint32_t bits[] = {static_cast<std::uint32_t>(random()), static_cast<std::uint32_t>(random())};
        float vector[2];
        std::memcpy(vector, bits, sizeof(vector));
        if (std::isfinite(vector[0]) && std::isfinite(vector[1])) {
            misses += IsNearest(vector[0], vector[1]) ? 0 : 1;
        }
    }
    EXPECT_EQ(0, misses);
}

TEST(Arctangent2, ZerosAndInfinities_AreThoseOfTheStandard)
{
    for (const float y : {0.0f, -0.0f, 1.0f, -1.0f, kInfinity, -kInfinity}) {
        for (const float x : {0.0f, -0.0f, 1.0f, -1.0f, kInfinity, -kInfinity}) {
            EXPECT_TRUE(IsNearest(y, x)) << y << ' ' << x << ": " << Arctangent2(y, x);
        }
    }
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_TRUE(std::isnan(Arctangent2(nan, 1)));
    EXPECT_TRUE(std::isnan(Arctangent2(1, nan)));
    EXPECT_TRUE(std::isnan(Arctangent2(nan, kInfinity)));
}
