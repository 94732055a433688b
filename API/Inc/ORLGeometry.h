// Floor: Media
// A natural cubic spline through points, and the distance of a point from a line segment on the integer grid.
//
// Takes no lock; thread-safe for different arrays. Never throws. The float and double operations are done in the order
// of the formulas and never fused, so results are equal to the last bit on every platform.
#pragma once

#include <ORLConfig.h>

#include <cstddef>
#include <cstdint>

class CPoint; // the home platform's point class; it only names the point type here

namespace ORL {

template <class T>
class ParamPoint;

/// A point on the integer grid.
template <>
class ParamPoint<CPoint>
{
public:
    constexpr ParamPoint() noexcept = default;
    constexpr ParamPoint(std::int32_t inX, std::int32_t inY) noexcept : x(inX), y(inY) {}

    friend constexpr bool operator==(const ParamPoint& inLeft, const ParamPoint& inRight) noexcept
    {
        return inLeft.x == inRight.x && inLeft.y == inRight.y;
    }
    friend constexpr bool operator!=(const ParamPoint& inLeft, const ParamPoint& inRight) noexcept
    {
        return !(inLeft == inRight);
    }

    std::int32_t x = 0;
    std::int32_t y = 0;
};

namespace Geometry {

/// Solves the natural cubic spline through n points: stores the second derivative at each of them in y2, which has
/// room for n. Those at the first and the last point are 0. x is expected to ascend; at a point whose x does not lie
/// strictly between its neighbours' the equation is left out. x and y are only read.
///
/// Returns false if a pointer is null or n is 0, after a failed assertion, and if there is no memory for n - 1 floats;
/// y2 is untouched then. The method is the usual forward elimination and back-substitution of the tridiagonal system.
ORL_API bool SolveNaturalCubicSpline2D(float* x, float* y, std::size_t n, float* y2);

/// Evaluates the spline at x and stores the value in y. xa and ya are the n points, y2a is what
/// SolveNaturalCubicSpline2D stored. An x outside the points extrapolates the first or the last interval. Allocates
/// nothing; finds the interval by bisection.
///
/// Returns false, with y untouched, if a pointer is null or n is 0, after a failed assertion, and if the interval found
/// has no width, as with one point.
ORL_API bool InterpolateNaturalCubicSpline2D(float* xa, float* ya, float* y2a, std::size_t n, float x, float* y);

/// The distance of a point from the segment between inStart and inEnd, in units of the grid. The foot of the
/// perpendicular is truncated to the grid before its distance is taken, so the result may differ from the true one by
/// up to the diagonal of a cell. A segment of one point gives the distance from that point.
///
/// Differences, squares and sums are 32-bit integers, exact while no coordinate differs from another by more than
/// 32767. Beyond that they wrap around in two's complement; a negative sum of squares makes the result NaN, and a
/// foot that does not fit is taken as the least integer.
ORL_API float PointToLineSegmentDistance2D(ParamPoint<CPoint>& inPoint, ParamPoint<CPoint>& inStart,
                                           ParamPoint<CPoint>& inEnd);

} // namespace Geometry
} // namespace ORL
