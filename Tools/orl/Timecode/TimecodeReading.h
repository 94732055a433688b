// From what a person types to a time. Nothing is guessed: a text that the library cannot read, and a number that is
// larger than times can hold, is an Unreadable.
#pragma once

#include "TimecodeFormatNames.h"

#include <cstddef>
#include <stdexcept>
#include <string>

namespace orl {

/// Thrown for a text that is no time. The text of the exception says why; mStop is the place where reading stopped,
/// counted in characters from 0, or npos where the text was read to its end.
class Unreadable : public std::runtime_error
{
public:
    Unreadable(const std::string& inReason, std::size_t inStop) : std::runtime_error(inReason), mStop(inStop) {}

    const std::size_t mStop;
};

/// A time that was read, and what should be said of it although it was: mostly nothing.
struct Reading
{
    tvxmediatypes::TickTime mTime;
    std::string mRemark;
};

/// A whole number of frames (samples, milliseconds) of the format.
Reading ReadCount(const std::string& inText, const TimecodeSettings& inSettings);

/// A label, as Timecode::SetTime reads it.
Reading ReadLabel(const std::string& inText, const TimecodeSettings& inSettings);

/// A distance: a whole number is a count, everything else a label.
Reading ReadDistance(const std::string& inText, const TimecodeSettings& inSettings);

} // namespace orl
