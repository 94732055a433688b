// Finds timecode formats by their command-line names, and declares the settings for reading and writing labels.
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
    tvxmediatypes::FrameRate mRate; // the format's own rate, or the default if it has none
    bool mHasOwnRate;
    const char* mUnit; // what the last field counts
    const char* mAbout;
};

/// Returns all formats in the order of their values.
const std::vector<TimecodeFormat>& AllTimecodeFormats();

/// Returns the format with that name, or null. Case, periods, blanks and hyphens are ignored ("29.97 drop").
const TimecodeFormat* FindTimecodeFormat(const std::string& inName);

/// Selects when a label has a sign.
enum class SignRule { kBelowZero, kAlways, kNever };

/// How labels are read and written.
struct TimecodeSettings
{
    const TimecodeFormat* mFormat = FindTimecodeFormat("2997drop");
    tvxmediatypes::FrameRate mRate = mFormat->mRate; // the rate passed to the library
    ORL::Timecode::Style mStyle;
    SignRule mSign = SignRule::kBelowZero;

    /// Returns the rate at which labels of the format count.
    tvxmediatypes::FrameRate CountingRate() const { return mFormat->mHasOwnRate ? mFormat->mRate : mRate; }
};

/// Parses frames per second: "25", "29.97", "30000/1001". Returns the zero rate if the text is not a rate. The usual
/// short forms select the three fractional video rates.
tvxmediatypes::FrameRate ReadRate(const std::string& inText);

/// Returns the usual short form: "29.97".
std::string RateInShort(const tvxmediatypes::FrameRate& inRate);

/// Returns the exact form: "30000/1001".
std::string RateInFull(const tvxmediatypes::FrameRate& inRate);

/// Returns why a rate does not fit a format, or an empty string if it does.
std::string RateError(const TimecodeFormat& inFormat, const tvxmediatypes::FrameRate& inRate);

} // namespace orl
