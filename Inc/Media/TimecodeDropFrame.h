// NTSC drop-frame counting at 29.97 frames per second or, with inIsHD, at 59.94.
#pragma once

#include <tvxmediatypes/TickTime.h>

namespace ORL {
namespace TimecodeLocal {

/// Returns the time of a label. At the start of a minute that drops labels, frame 0 means the first label not dropped.
/// Frame 1 fails an assertion; it and, at 59.94, frames 2 and 3 result in times before the start of the minute.
tvxmediatypes::TickTime NTSCDropFrame_HMSFToTime(int inHours, int inMinutes, int inSeconds, long long inFrames,
                                                 bool inIsHD);

/// Stores the label of a time's magnitude; the sign is not reported.
void NTSCDropFrame_TimeToHMSF(const tvxmediatypes::TickTime& inTime, int& outHours, int& outMinutes, int& outSeconds,
                              long long& outFrames, bool inIsHD);

/// Adds to a label field by field, then skips a dropped label: backwards if inAddFrames is negative, else forwards. May
/// set ioIsNegative, never clears it.
void NTSCDropFrame_IncrementHMSF(int inAddHours, int inAddMinutes, int inAddSeconds, long long inAddFrames,
                                 int& ioHours, int& ioMinutes, int& ioSeconds, long long& ioFrames, bool& ioIsNegative,
                                 int inLabelsPerSecond, int inLabelsDropped);

} // namespace TimecodeLocal
} // namespace ORL
