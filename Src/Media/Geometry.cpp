#include <ORLGeometry.h>

#include <Core/Wrapping.h>
#include <ORLDebug.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <new>

namespace ORL {
namespace Geometry {

namespace {

// Eliminates one row of the tridiagonal system. Sets y2[i] to its factor and u[i] to its right-hand side, or both to 0.
void EliminateRow(const float* x, const float* y, std::size_t i, float* y2, float* u)
{
    u[i] = y2[i] = 0;
    if (!(x[i] > x[i - 1] && x[i + 1] > x[i])) {
        return;
    }
    const float width = x[i + 1] - x[i - 1];
    const float sig = (x[i] - x[i - 1]) / width;
    const float p = static_cast<float>(sig * y2[i - 1] + 2.0);
    if (p == 0) {
        return;
    }
    y2[i] = static_cast<float>((sig - 1.0) / p);
    u[i] = (y[i + 1] - y[i]) / (x[i + 1] - x[i]) - (y[i] - y[i - 1]) / (x[i] - x[i - 1]);
    u[i] = static_cast<float>((6.0 * u[i] / width - sig * u[i - 1]) / p);
}

// Returns null if memory is exhausted. Even new (std::nothrow) throws for an array size above the limit, so such sizes
// are rejected here.
std::unique_ptr<float[]> AllocateFloats(std::size_t inCount)
{
    constexpr std::size_t kMax = std::numeric_limits<std::ptrdiff_t>::max() / sizeof(float);
    return std::unique_ptr<float[]>(inCount <= kMax ? new (std::nothrow) float[inCount] : nullptr);
}

} // namespace

bool SolveNaturalCubicSpline2D(float* x, float* y, std::size_t n, float* y2)
{
    if (!(x && y && n && y2)) {
        ORL_ASSERT_AT(x && y && n && y2, "Geometry", 111, "ORL::Geometry::SolveNaturalCubicSpline2D");
        return false;
    }
    // A single point needs no workspace, but the code below always writes u[0].
    const std::unique_ptr<float[]> work = AllocateFloats(std::max<std::size_t>(n - 1, 1));
    float* const u = work.get();
    if (u == nullptr) {
        return false;
    }
    u[0] = y2[0] = 0;
    for (std::size_t i = 1; i + 1 < n; ++i) {
        EliminateRow(x, y, i, y2, u);
    }
    y2[n - 1] = 0;
    for (std::size_t k = n - 1; k-- > 0;) {
        y2[k] = y2[k] * y2[k + 1] + u[k];
    }
    return true;
}

bool InterpolateNaturalCubicSpline2D(float* xa, float* ya, float* y2a, std::size_t n, float x, float* y)
{
    if (!(xa && ya && y2a && n && y)) {
        ORL_ASSERT_AT(xa && ya && y2a && n && y, "Geometry", 182, "ORL::Geometry::InterpolateNaturalCubicSpline2D");
        return false;
    }
    std::size_t lo = 0;
    std::size_t hi = n - 1;
    while (hi - lo > 1) {
        const std::size_t mid = (hi + lo) / 2;
        const bool isBelow = xa[mid] > x;
        hi = isBelow ? mid : hi;
        lo = isBelow ? lo : mid;
    }
    const float h = xa[hi] - xa[lo];
    if (h == 0) {
        return false;
    }
    const float a = (xa[hi] - x) / h;
    const float b = (x - xa[lo]) / h;
    const float bend = ((a * a * a - a) * y2a[lo] + (b * b * b - b) * y2a[hi]) * (h * h);
    *y = static_cast<float>(a * ya[lo] + b * ya[hi] + bend / 6.0);
    return true;
}

namespace {

using Point = ParamPoint<CPoint>;

std::int32_t Dot(const Point& inLeft, const Point& inRight)
{
    return Wrapping::Add(Wrapping::Multiply(inLeft.x, inRight.x), Wrapping::Multiply(inLeft.y, inRight.y));
}

Point Difference(const Point& inTo, const Point& inFrom)
{
    return {Wrapping::Subtract(inTo.x, inFrom.x), Wrapping::Subtract(inTo.y, inFrom.y)};
}

// Returns NaN for a negative square without calling std::sqrt, because C runtimes differ in the sign of its NaN.
float Length(const Point& inVector)
{
    const std::int32_t square = Dot(inVector, inVector);
    return square < 0 ? std::numeric_limits<float>::quiet_NaN() : std::sqrt(static_cast<float>(square));
}

std::int32_t PointOnGrid(std::int32_t inStep, float inShare, std::int32_t inStart)
{
    return Wrapping::TruncateToInt(static_cast<float>(inStep) * inShare + static_cast<float>(inStart));
}

} // namespace

float PointToLineSegmentDistance2D(ParamPoint<CPoint>& inPoint, ParamPoint<CPoint>& inStart, ParamPoint<CPoint>& inEnd)
{
    const Point toPoint = Difference(inPoint, inStart);
    if (inStart == inEnd) {
        return Length(toPoint);
    }
    const Point segment = Difference(inEnd, inStart);
    const float length = Length(segment);
    const float share = static_cast<float>(Dot(toPoint, segment)) / (length * length);
    if (share < 0) {
        return Length(toPoint);
    }
    if (share > 1) {
        return Length(Difference(inPoint, inEnd));
    }
    const Point nearest{PointOnGrid(segment.x, share, inStart.x), PointOnGrid(segment.y, share, inStart.y)};
    return Length(Difference(inPoint, nearest));
}

} // namespace Geometry
} // namespace ORL
