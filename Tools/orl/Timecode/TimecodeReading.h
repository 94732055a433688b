// Converts typed text to a time. Nothing is guessed: text that the library cannot read, and numbers beyond the range of
// times, throw Unreadable.
#pragma once

#include "TimecodeFormatNames.h"

#include <cstddef>
#include <stdexcept>
#include <string>

namespace orl {

/// Thrown for text that is not a time. The exception's message is the reason; mStop is the position where reading
/// stopped, in characters from 0, or npos if the text was read to its end.
class Unreadable : public std::runtime_error
{
public:
    Unreadable(const std::string& inReason, std::size_t inStop) : std::runtime_error(inReason), mStop(inStop) {}

    const std::size_t mStop;
};

/// A time that was read, and a warning about it, usually empty.
struct Reading
{
    tvxmediatypes::TickTime mTime;
    std::string mRemark;
};

/// Reads a whole number of frames (samples, milliseconds) of the format.
Reading ReadCount(const std::string& inText, const TimecodeSettings& inSettings);

/// Reads a label, like Timecode::SetTime.
Reading ReadLabel(const std::string& inText, const TimecodeSettings& inSettings);

/// Reads a distance: a whole number is a count, everything else a label.
Reading ReadDistance(const std::string& inText, const TimecodeSettings& inSettings);

} // namespace orl
