// The angle of a vector, bit-identical on every platform. The arctangents of C runtimes differ in the last bits.
#pragma once

#include <cmath>

namespace ORL {

/// Returns the angle of (inX, inY) in radians, from -pi to pi, rounded to the nearest float. Zeros, infinities and
/// signs behave as in the standard's atan2. Returns NaN if either argument is NaN.
inline float Arctangent2(float inY, float inX)
{
    if (inX != inX || inY != inY) {
        return inX + inY;
    }
    constexpr double kPi = 3.14159265358979323846;
    const double across = std::fabs(static_cast<double>(inX));
    const double up = std::fabs(static_cast<double>(inY));
    const bool isSteep = up > across;
    const double larger = isSteep ? up : across;
    double ratio = (isSteep ? across : up) / larger;
    if (larger == 0) {
        ratio = 0;
    } else if (std::isinf(across) && std::isinf(up)) {
        ratio = 1;
    }
    // The series converges fast below tan(pi / 8). The formula for the tangent of a difference maps larger ratios to
    // that range.
    const bool isTurned = ratio > 0.41421356;
    const double tangent = isTurned ? (ratio - 1) / (ratio + 1) : ratio;
    const double square = tangent * tangent;
    double sum = 0;
    for (int odd = 39; odd > 0; odd -= 2) {
        sum = 1.0 / odd - square * sum;
    }
    double angle = tangent * sum;
    angle = isTurned ? kPi / 4 + angle : angle;
    angle = isSteep ? kPi / 2 - angle : angle;
    angle = std::signbit(inX) ? kPi - angle : angle;
    return static_cast<float>(std::signbit(inY) ? -angle : angle);
}

} // namespace ORL
