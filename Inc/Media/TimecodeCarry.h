// Carries from one field of a label into the next.
#pragma once

#include <Core/Wrapping.h>

namespace ORL {
namespace TimecodeLocal {

/// Reduces a field to 0 .. inLimit - 1 and carries the overflow to the next higher field, or borrows from it. Equals
/// repeated subtraction, even if the next field wraps around. Does nothing if the limit is not positive.
template <class Field>
constexpr void Carry(Field& ioField, int& ioNext, Field inLimit) noexcept
{
    if (inLimit <= 0) {
        return;
    }
    if (ioField >= inLimit) {
        ioNext = Wrapping::Add(ioNext, static_cast<int>(Wrapping::Bits(ioField / inLimit)));
        ioField %= inLimit;
    } else if (ioField < 0) {
        // The smallest count that raises the field to 0 or above.
        const Field count = (-1 - ioField) / inLimit + 1;
        ioNext = Wrapping::Subtract(ioNext, static_cast<int>(Wrapping::Bits(count)));
        ioField = Wrapping::Add(ioField, Wrapping::Multiply(count, inLimit));
    }
}

} // namespace TimecodeLocal
} // namespace ORL
