// Compares splines with a long double solution of the same equations, and distances with exact ones in double.
#include <CheckRecorder.h>
#include <ORLGeometry.h>

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

using namespace ORL;
using namespace ORL::Geometry;

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

using Floats = std::vector<float>;
using Point = ParamPoint<CPoint>;

struct Spline
{
    Floats mX;
    Floats mY;
    Floats mBends;

    bool Solve()
    {
        mBends.assign(mX.size(), 99.0f);
        return SolveNaturalCubicSpline2D(mX.data(), mY.data(), mX.size(), mBends.data());
    }

    bool At(float inX, float& outY)
    {
        return InterpolateNaturalCubicSpline2D(mX.data(), mY.data(), mBends.data(), mX.size(), inX, &outY);
    }
};

// Computes the second derivatives with the Thomas algorithm from the textbook equations: h[i-1] m[i-1] + 2 (h[i-1] +
// h[i]) m[i] + h[i] m[i+1] = 6 (slope[i] - slope[i-1]), both ends 0.
std::vector<long double> ExactSecondDerivatives(const Floats& x, const Floats& y)
{
    const std::size_t n = x.size();
    std::vector<long double> bends(n, 0), upper(n, 0), right(n, 0);
    for (std::size_t i = 1; i + 1 < n; ++i) {
        const long double before = static_cast<long double>(x[i]) - x[i - 1];
        const long double after = static_cast<long double>(x[i + 1]) - x[i];
        const long double slopes =
            (static_cast<long double>(y[i + 1]) - y[i]) / after - (static_cast<long double>(y[i]) - y[i - 1]) / before;
        const long double pivot = 2 * (before + after) - before * upper[i - 1];
        upper[i] = after / pivot;
        right[i] = (6 * slopes - before * right[i - 1]) / pivot;
    }
    for (std::size_t i = n - 1; i-- > 1;) {
        bends[i] = right[i] - upper[i] * bends[i + 1];
    }
    return bends;
}

long double ExactValue(const Spline& inSpline, const std::vector<long double>& inBends, float inX)
{
    const Floats& x = inSpline.mX;
    std::size_t hi = 1;
    while (hi + 1 < x.size() && x[hi] <= inX) {
        ++hi;
    }
    const long double h = static_cast<long double>(x[hi]) - x[hi - 1];
    const long double a = (x[hi] - static_cast<long double>(inX)) / h;
    const long double b = 1 - a;
    return a * inSpline.mY[hi - 1] + b * inSpline.mY[hi]
           + ((a * a * a - a) * inBends[hi - 1] + (b * b * b - b) * inBends[hi]) * h * h / 6;
}

Spline RandomSpline(unsigned inSeed, std::size_t inCount)
{
    std::mt19937 random(inSeed);
    std::uniform_real_distribution<float> step(0.25f, 4.0f);
    std::uniform_real_distribution<float> height(-10.0f, 10.0f);
    Spline spline;
    float x = -50;
    for (std::size_t i = 0; i < inCount; ++i) {
        spline.mX.push_back(x);
        spline.mY.push_back(height(random));
        x += step(random);
    }
    return spline;
}

float Distance(Point inPoint, Point inStart, Point inEnd)
{
    return PointToLineSegmentDistance2D(inPoint, inStart, inEnd);
}

} // namespace

TEST(SolveNaturalCubicSpline2D, OnePoint_Gives0AndTrue)
{
    Spline spline{{3}, {4}, {}};
    EXPECT_TRUE(spline.Solve());
    EXPECT_EQ(Floats{0}, spline.mBends);
}

TEST(SolveNaturalCubicSpline2D, TwoPoints_GiveZerosAndTrue)
{
    Spline spline{{3, 5}, {4, -1}, {}};
    EXPECT_TRUE(spline.Solve());
    EXPECT_EQ((Floats{0, 0}), spline.mBends);
}

// A skipped row keeps 0 for its factor and right side, so its second derivative is 0.
TEST(SolveNaturalCubicSpline2D, ARepeatedXInTheMiddle_Leaves0ThereAndReturnsTrue)
{
    Spline spline{{0, 1, 1, 2, 3}, {0, 5, 2, 7, 0}, {}};
    EXPECT_TRUE(spline.Solve());
    EXPECT_EQ(0, spline.mBends[1]);
    EXPECT_EQ(0, spline.mBends[2]);
    EXPECT_NE(0, spline.mBends[3]);
    for (const float bend : spline.mBends) {
        EXPECT_TRUE(std::isfinite(bend));
    }
}

TEST(SolveNaturalCubicSpline2D, DescendingX_LeavesEveryRowOut)
{
    Spline spline{{4, 3, 2, 1}, {0, 5, 2, 7}, {}};
    EXPECT_TRUE(spline.Solve());
    EXPECT_EQ((Floats{0, 0, 0, 0}), spline.mBends);
}

TEST(SolveNaturalCubicSpline2D, KnownParabola_HasItsSecondDerivatives)
{
    // Points 0, 1, 0 at distance 1: 4 m = 6 (-1 - 1).
    Spline spline{{0, 1, 2}, {0, 1, 0}, {}};
    EXPECT_TRUE(spline.Solve());
    EXPECT_EQ((Floats{0, -3, 0}), spline.mBends);
}

TEST(SolveNaturalCubicSpline2D, RandomPoints_AreNearTheLongDoubleSolution)
{
    for (unsigned seed = 0; seed < 300; ++seed) {
        Spline spline = RandomSpline(seed, 2 + seed % 60);
        ASSERT_TRUE(spline.Solve());
        const std::vector<long double> exact = ExactSecondDerivatives(spline.mX, spline.mY);
        long double largest = 0;
        for (const long double bend : exact) {
            largest = std::max(largest, std::fabs(bend));
        }
        for (std::size_t i = 0; i < exact.size(); ++i) {
            EXPECT_NEAR(static_cast<double>(exact[i]), spline.mBends[i], static_cast<double>(4e-5L * largest))
                << "seed " << seed << ", point " << i;
        }
    }
}

TEST(SolveNaturalCubicSpline2D, NaNsAndInfinities_EndAndStoreEveryEntry)
{
    for (const float odd : {kNan, kInfinity, -kInfinity}) {
        for (std::size_t at = 0; at < 5; ++at) {
            Spline inX{{0, 1, 2, 3, 4}, {1, 0, 1, 0, 1}, {}};
            inX.mX[at] = odd;
            EXPECT_TRUE(inX.Solve());
            EXPECT_EQ(0, std::count(inX.mBends.begin(), inX.mBends.end(), 99.0f));
            Spline inY{{0, 1, 2, 3, 4}, {1, 0, 1, 0, 1}, {}};
            inY.mY[at] = odd;
            EXPECT_TRUE(inY.Solve());
            EXPECT_EQ(0, std::count(inY.mBends.begin(), inY.mBends.end(), 99.0f));
            float y = 0;
            inX.At(2.5f, y);
            inY.At(odd, y);
        }
    }
}

// No array can hold that many floats. The function must not request one, because a sanitizer would end the process, and
// must neither read nor store any.
TEST(SolveNaturalCubicSpline2D, MoreKnotsThanAnyMemoryHolds_ReturnsFalse)
{
    constexpr std::size_t kMost = std::numeric_limits<std::size_t>::max();
    for (const std::size_t count : {kMost, kMost / 2, kMost / 4}) {
        float knot = 1;
        float bend = 99;
        bool isSolved = true;
        EXPECT_NO_THROW(isSolved = SolveNaturalCubicSpline2D(&knot, &knot, count, &bend)) << count;
        EXPECT_FALSE(isSolved) << count;
        EXPECT_EQ(99, bend) << count;
    }
}

TEST(InterpolateNaturalCubicSpline2D, OnePoint_ReturnsFalse)
{
    Spline spline{{3}, {4}, {}};
    ASSERT_TRUE(spline.Solve());
    float y = 77;
    EXPECT_FALSE(spline.At(3, y));
    EXPECT_EQ(77, y);
}

TEST(InterpolateNaturalCubicSpline2D, AtAKnot_GivesItsValue)
{
    Spline spline = RandomSpline(4, 40);
    ASSERT_TRUE(spline.Solve());
    for (std::size_t i = 0; i < spline.mX.size(); ++i) {
        float y = 0;
        EXPECT_TRUE(spline.At(spline.mX[i], y));
        EXPECT_EQ(spline.mY[i], y) << "knot " << i;
    }
}

TEST(InterpolateNaturalCubicSpline2D, AnIntervalWithoutWidth_ReturnsFalse)
{
    Spline spline{{1, 1}, {4, 5}, {}};
    ASSERT_TRUE(spline.Solve());
    float y = 77;
    EXPECT_FALSE(spline.At(1, y));
    EXPECT_EQ(77, y);
}

TEST(InterpolateNaturalCubicSpline2D, OutsideThePoints_Extrapolates)
{
    Spline line{{0, 1, 2}, {0, 10, 20}, {}};
    ASSERT_TRUE(line.Solve());
    float y = 0;
    EXPECT_TRUE(line.At(-3, y));
    EXPECT_EQ(-30, y);
    EXPECT_TRUE(line.At(5, y));
    EXPECT_EQ(50, y);
}

TEST(InterpolateNaturalCubicSpline2D, NoNumber_GivesNoNumberFromTheLastInterval)
{
    Spline spline = RandomSpline(5, 9);
    ASSERT_TRUE(spline.Solve());
    float y = 0;
    EXPECT_TRUE(spline.At(kNan, y));
    EXPECT_TRUE(std::isnan(y));
}

TEST(InterpolateNaturalCubicSpline2D, RandomPoints_AreNearTheLongDoubleSolution)
{
    for (unsigned seed = 0; seed < 100; ++seed) {
        Spline spline = RandomSpline(seed, 2 + seed);
        ASSERT_TRUE(spline.Solve());
        const std::vector<long double> bends = ExactSecondDerivatives(spline.mX, spline.mY);
        const float width = spline.mX.back() - spline.mX.front();
        for (int i = 0; i <= 200; ++i) {
            const float x = spline.mX.front() + width * static_cast<float>(i) / 200.0f;
            float y = 0;
            ASSERT_TRUE(spline.At(x, y));
            EXPECT_NEAR(static_cast<double>(ExactValue(spline, bends, x)), y, 2e-3) << "seed " << seed << ", x " << x;
        }
    }
}

TEST(NaturalCubicSpline, NullPointersAndNoPoints_AreReportedAndRefused)
{
    float numbers[] = {1, 2, 3};
    float y = 77;
    const ORLTest::CheckRecorder recorder;
    EXPECT_FALSE(SolveNaturalCubicSpline2D(nullptr, numbers, 3, numbers));
    EXPECT_FALSE(SolveNaturalCubicSpline2D(numbers, nullptr, 3, numbers));
    EXPECT_FALSE(SolveNaturalCubicSpline2D(numbers, numbers, 0, numbers));
    EXPECT_FALSE(SolveNaturalCubicSpline2D(numbers, numbers, 3, nullptr));
    EXPECT_EQ(4u, recorder.Reports().size());
    EXPECT_FALSE(InterpolateNaturalCubicSpline2D(nullptr, numbers, numbers, 3, 1, &y));
    EXPECT_FALSE(InterpolateNaturalCubicSpline2D(numbers, nullptr, numbers, 3, 1, &y));
    EXPECT_FALSE(InterpolateNaturalCubicSpline2D(numbers, numbers, nullptr, 3, 1, &y));
    EXPECT_FALSE(InterpolateNaturalCubicSpline2D(numbers, numbers, numbers, 0, 1, &y));
    EXPECT_FALSE(InterpolateNaturalCubicSpline2D(numbers, numbers, numbers, 3, 1, nullptr));
    EXPECT_EQ(9u, recorder.Reports().size());
    EXPECT_EQ(77, y);
}

TEST(PointToLineSegmentDistance2D, ADegenerateSegment_GivesThePlainDistance)
{
    EXPECT_EQ(5, Distance({3, 4}, {0, 0}, {0, 0}));
    EXPECT_EQ(0, Distance({7, 7}, {7, 7}, {7, 7}));
}

TEST(PointToLineSegmentDistance2D, AFootBetweenGridPoints_IsTruncatedToTheGrid)
{
    // The exact foot of the perpendicular is (1.5, 1.5), the exact distance 2.1213; the truncated foot is (1, 1).
    EXPECT_FLOAT_EQ(std::sqrt(5.0f), Distance({3, 0}, {0, 0}, {10, 10}));
    // A negative foot is truncated toward zero: (-1, -1).
    EXPECT_FLOAT_EQ(std::sqrt(5.0f), Distance({-3, 0}, {0, 0}, {-10, -10}));
}

TEST(PointToLineSegmentDistance2D, BeyondAnEnd_IsMeasuredToThatEnd)
{
    EXPECT_EQ(5, Distance({-3, 4}, {0, 0}, {10, 0}));
    EXPECT_EQ(5, Distance({13, -4}, {0, 0}, {10, 0}));
    EXPECT_EQ(4, Distance({0, 4}, {0, 0}, {10, 0}));
    EXPECT_EQ(4, Distance({10, 4}, {0, 0}, {10, 0}));
    EXPECT_EQ(0, Distance({6, 0}, {0, 0}, {10, 0}));
}

// Compares distances with the exact ones, computed in double, for segments whose sums fit in 32 bits.
TEST(PointToLineSegmentDistance2D, RandomSegments_AreWithinACellOfTheTrueDistance)
{
    std::mt19937 random(12);
    std::uniform_int_distribution<int> coordinate(-8000, 8000);
    for (int i = 0; i < 200000; ++i) {
        const Point p(coordinate(random), coordinate(random));
        const Point a(coordinate(random), coordinate(random));
        const Point b(coordinate(random), coordinate(random));
        const double dx = b.x - a.x;
        const double dy = b.y - a.y;
        const double square = dx * dx + dy * dy;
        const double along = square == 0 ? 0 : ((p.x - a.x) * dx + (p.y - a.y) * dy) / square;
        const double share = std::min(1.0, std::max(0.0, along));
        const double exact = std::hypot(p.x - (a.x + share * dx), p.y - (a.y + share * dy));
        ASSERT_NEAR(exact, Distance(p, a, b), 1.4143 + 0.01)
            << p.x << ' ' << p.y << ' ' << a.x << ' ' << a.y << ' ' << b.x << ' ' << b.y;
    }
}

TEST(PointToLineSegmentDistance2D, SumsThatDoNotFit_WrapAround)
{
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
    constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
    EXPECT_TRUE(std::isnan(Distance({40000, 30000}, {0, 0}, {0, 0}))) << "2 500 000 000 wraps below 0";
    EXPECT_EQ(0, Distance({65536, 0}, {0, 0}, {0, 0})) << "2^32 wraps to 0";
    EXPECT_EQ(1, Distance({kLeast, 0}, {kMost, 0}, {kMost, 0})) << "the difference wraps to 1";
    EXPECT_EQ(46340, Distance({46340, 0}, {0, 0}, {0, 0})) << "the longest that fits";
    for (const std::int32_t far : {kMost, kLeast, 65536, -65536, 46341}) {
        for (const std::int32_t other : {kMost, kLeast, 0, 1}) {
            Distance({far, other}, {other, far}, {0, far});
            Distance({other, 0}, {far, 0}, {0, other});
        }
    }
}
