// The timecode formats under the names that a person types, and what else an answer depends on.
#pragma once

#include <ORLTimecode.h>

#include <string>
#include <tvxmediatypes/Constants.h>
#include <vector>

namespace orl {

struct TimecodeFormat
{
    const char* mName;
    tvxmediatypes::TimeDisplay mDisplay;
    tvxmediatypes::FrameRate mRate; // the format's own, or the one that is taken where nobody chooses
    bool mHasOwnRate;
    const char* mUnit; // what the last field counts
    const char* mAbout;
};

/// All formats, in the order of their values.
const std::vector<TimecodeFormat>& AllTimecodeFormats();

/// The format of that name, or null. Case, points, blanks and hyphens do not matter ("29.97 drop").
const TimecodeFormat* FindTimecodeFormat(const std::string& inName);

/// When a label gets a sign.
enum class SignRule { kBelowZero, kAlways, kNever };

/// How labels are read and written.
struct TimecodeSettings
{
    const TimecodeFormat* mFormat = FindTimecodeFormat("2997drop");
    tvxmediatypes::FrameRate mRate = mFormat->mRate; // the rate that the library is handed
    ORL::Timecode::Style mStyle;
    SignRule mSign = SignRule::kBelowZero;

    /// The rate that labels of the format count at.
    tvxmediatypes::FrameRate CountingRate() const { return mFormat->mHasOwnRate ? mFormat->mRate : mRate; }
};

/// Frames per second from "25", "29.97", "30000/1001"; the zero rate where the text is none. The three fractional
/// video rates are meant by their usual short forms.
tvxmediatypes::FrameRate ReadRate(const std::string& inText);

/// "29.97": as a person says it.
std::string RateInShort(const tvxmediatypes::FrameRate& inRate);

/// "30000/1001": exactly.
std::string RateInFull(const tvxmediatypes::FrameRate& inRate);

/// Why a rate does not go with a format; empty where it does.
std::string RateComplaint(const TimecodeFormat& inFormat, const tvxmediatypes::FrameRate& inRate);

} // namespace orl
