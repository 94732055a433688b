// Floor: Media
// A natural cubic spline through points, and the distance from a point to a line segment on the integer grid.
//
// Thread-safe for different arrays. Takes no lock. Never throws. Float and double operations run in the order of the
// formulas and are never fused, so results are bit-identical on every platform.
#pragma once

#include <ORLConfig.h>

#include <cstddef>
#include <cstdint>

class CPoint; // a point class of Windows hosts; used only as a tag

namespace ORL {

template <class T>
class ParamPoint;

/// A point on the integer grid. A value type.
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

    std::int32_t x = 0; ///< increases to the right
    std::int32_t y = 0; ///< increases downwards
};

namespace Geometry {

/// Solves the natural cubic spline through n points. Stores the second derivative at each point in y2, which has space
/// for n; those at the first and the last point are 0. x should be ascending; skips the equation of a point whose
/// x is not strictly between those of its neighbours. x and y are read-only.
///
/// Returns false, with y2 untouched, if a pointer is null or n is 0 (reported by an assertion), or if there is no
/// memory for n - 1 floats. The method is the usual forward elimination and back-substitution of the tridiagonal
/// system.
ORL_API bool SolveNaturalCubicSpline2D(float* x, float* y, std::size_t n, float* y2);

/// Evaluates the spline at x and stores the value in y. xa and ya hold the n points; y2a was stored by
/// SolveNaturalCubicSpline2D. For an x outside the points, extrapolates the first or the last interval. Allocates
/// nothing; finds the interval by bisection.
///
/// Returns false, with y untouched, if a pointer is null or n is 0 (reported by an assertion), or if the interval found
/// has no width, as with a single point.
ORL_API bool InterpolateNaturalCubicSpline2D(float* xa, float* ya, float* y2a, std::size_t n, float x, float* y);

/// Returns the distance from a point to the segment between inStart and inEnd, in grid units. The foot of the
/// perpendicular is truncated to the grid first, so the result may be off by up to the diagonal of a cell. If both ends
/// are equal, returns the distance to that point.
///
/// Differences, squares and sums are 32-bit integers, exact as long as no two coordinates differ by more than 32767.
/// Beyond that they wrap around in two's complement: a negative sum of squares makes the result NaN, and a foot that
/// does not fit is replaced by the smallest integer.
ORL_API float PointToLineSegmentDistance2D(ParamPoint<CPoint>& inPoint, ParamPoint<CPoint>& inStart,
                                           ParamPoint<CPoint>& inEnd);

} // namespace Geometry
} // namespace ORL
