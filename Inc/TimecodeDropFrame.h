// Floor: Media
// NTSC drop-frame counting, at 29.97 and (inIsHD) at 59.94 frames per second.
#pragma once

#include <tvxmediatypes/TickTime.h>

namespace ORL {
namespace TimecodeLocal {

/// The time of a label. Frame 0 of a minute that drops labels means its first real label. Frame 1 of it fails an
/// assertion; it and, at 59.94, frames 2 and 3 fall below the start of the minute.
tvxmediatypes::TickTime NTSCDropFrame_HMSFToTime(int inHours, int inMinutes, int inSeconds, long long inFrames,
                                                 bool inIsHD);

/// The label of a time's magnitude; the sign is not reported.
void NTSCDropFrame_TimeToHMSF(const tvxmediatypes::TickTime& inTime, int& outHours, int& outMinutes, int& outSeconds,
                              long long& outFrames, bool inIsHD);

/// Adds to a label field by field, then steps off a label that is left out: backwards when inAddFrames is negative,
/// else forwards. ioIsNegative is set, never cleared.
void NTSCDropFrame_IncrementHMSF(int inAddHours, int inAddMinutes, int inAddSeconds, long long inAddFrames,
                                 int& ioHours, int& ioMinutes, int& ioSeconds, long long& ioFrames, bool& ioIsNegative,
                                 int inLabelsPerSecond, int inLabelsDropped);

} // namespace TimecodeLocal
} // namespace ORL
