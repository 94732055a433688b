// A number type whose operations each round exactly once, whatever the compiler settings.
#pragma once

#include <cmath>

namespace ORLTest {

__extension__ typedef __float128 Quad;

/// A number of type T. Each operation computes in Wide and rounds to T. Wide has more than twice the digits of T, so
/// rounding twice equals rounding once. The compiler cannot contract, reorder or widen these operations.
template <class T, class Wide>
class RoundedNumber
{
public:
    RoundedNumber(T inValue = 0) : mValue(inValue) {}
    template <class OtherT, class OtherWide>
    explicit RoundedNumber(const RoundedNumber<OtherT, OtherWide>& inOther) : mValue(static_cast<T>(inOther.Value()))
    {
    }

    T Value() const { return mValue; }

    friend RoundedNumber operator+(RoundedNumber l, RoundedNumber r) { return Wide(l.mValue) + Wide(r.mValue); }
    friend RoundedNumber operator-(RoundedNumber l, RoundedNumber r) { return Wide(l.mValue) - Wide(r.mValue); }
    friend RoundedNumber operator*(RoundedNumber l, RoundedNumber r) { return Wide(l.mValue) * Wide(r.mValue); }
    friend RoundedNumber operator/(RoundedNumber l, RoundedNumber r) { return Wide(l.mValue) / Wide(r.mValue); }
    friend bool operator<(RoundedNumber l, RoundedNumber r) { return l.mValue < r.mValue; }
    friend bool operator>(RoundedNumber l, RoundedNumber r) { return l.mValue > r.mValue; }
    friend bool operator>=(RoundedNumber l, RoundedNumber r) { return l.mValue >= r.mValue; }
    friend bool operator<=(RoundedNumber l, RoundedNumber r) { return l.mValue <= r.mValue; }
    friend bool operator==(RoundedNumber l, RoundedNumber r) { return l.mValue == r.mValue; }

private:
    RoundedNumber(Wide inValue) : mValue(static_cast<T>(inValue)) {}

    T mValue;
};

using ExactSingle = RoundedNumber<float, double>;
using ExactDouble = RoundedNumber<double, Quad>;

inline float Plain(float inValue)
{
    return inValue;
}
inline double Plain(double inValue)
{
    return inValue;
}
template <class T, class Wide>
T Plain(RoundedNumber<T, Wide> inValue)
{
    return inValue.Value();
}

} // namespace ORLTest
