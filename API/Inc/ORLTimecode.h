// Floor: Media
// A position on a media timeline, with conversion to and from timecode strings.
#pragma once

#include <ORLConfig.h>
#include <ORLImpl.h>

#include <tvxcore/String.h>
#include <tvxcore/Text.h>
#include <tvxmediatypes/FrameRate.h>
#include <tvxmediatypes/TickTime.h>
#include <tvxmediatypes/TimeDisplay.h>

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <memory>
#include <type_traits>

namespace ORL {

/// A time with a rate, a format and a style. Formats: hours, minutes, seconds and frames; feet and frames; a plain
/// frame count; audio samples; or milliseconds.
///
/// Drop-frame formats skip labels, never frames: 2 (at 29.97) or 4 (at 59.94) at the start of each minute, except every
/// tenth. Only the format determines how labels are counted. The rate matters if the format implies none
/// (kTimeDisplay_Frames, feet and frames, audio samples) and for single frames (mPreviousFrame).
/// Owner:    a plain value; copies share nothing. A move is a copy, so there is no moved-from state.
/// Threads:  not thread-safe: one thread at a time per object.
/// Failure:  no error codes. A rate that does not match the format fires an input contract (error 25), and a string
///           that cannot be parsed becomes kTime_Invalid. Throws std::bad_alloc.
/// Example:
///   const tvxmediatypes::TickTime time(1800, ORL::kFrameRate_VideoNTSC);
///   const ORL::Timecode code(time, ORL::kFrameRate_VideoNTSC, tvxmediatypes::kTimeDisplay_2997DropTimecode);
///   std::cout << ORL::MakeStdString(code.GetString()); // 00;01;00;02
class Timecode
{
public:
    /// How a time is written.
    struct Style
    {
        /// 1 writes the hours field. Any other value omits this field.
        int mHoursMode = 1;

        /// Writes fields without leading zeros.
        bool mNoLeadingZeros = false;

        /// Writes a positive time with "+" and a negative one with "-". Without this flag a negative time has no sign,
        /// and its hours field is 23 minus the hours.
        bool mShowSign = false;

        /// The stored and displayed time is one frame before the public time (SetTime and GetTime), so that a position
        /// is displayed as the last frame before it.
        bool mPreviousFrame = false;
    };

    class PrivateImpl;

    /// Constructs time zero, in 29.97 drop-frame format.
    ORL_API Timecode();

    /// inFrameRate must be at most 1000 for the formats up to kTimeDisplay_35mmFeetFrames, and from 1000 to 192000 for
    /// the two audio formats. A wrong or zero rate fires an input contract.
    ORL_API Timecode(const tvxmediatypes::TickTime& inTime, const tvxmediatypes::FrameRate& inFrameRate,
                     tvxmediatypes::TimeDisplay inTimeDisplay);
    ORL_API Timecode(const tvxmediatypes::TickTime& inTime, const tvxmediatypes::FrameRate& inFrameRate,
                     tvxmediatypes::TimeDisplay inTimeDisplay, const Style& inStyle);

    /// Copies the public time, so the copy's fields match it even if those of inOther are stale (IncrementFeetFrames).
    ORL_API Timecode(const Timecode& inOther);
    ORL_API Timecode& operator=(const Timecode& inOther);

    /// Returns the public time: the stored time, plus one frame if mPreviousFrame is set.
    ORL_API tvxmediatypes::TickTime GetTime() const;
    ORL_API void SetTime(const tvxmediatypes::TickTime& inTime);

    /// Same as SetTime(StringToTime(...)) with the rate, format and style of this object. If inText cannot be parsed,
    /// stores kTime_Invalid and reports nothing.
    ORL_API void SetTime(const UTF16String& inText);

    /// Returns the rate that was passed, even if the format implies another.
    ORL_API tvxmediatypes::FrameRate GetFrameRate() const;

    ORL_API tvxmediatypes::TimeDisplay GetFormat() const; ///< returns the format of the label

    /// Changes format and rate. Keeps the public time. inFrameRate must be in the range that the constructor documents.
    ORL_API void SetFormat(tvxmediatypes::TimeDisplay inTimeDisplay, const tvxmediatypes::FrameRate& inFrameRate);

    ORL_API Style GetStyle() const; ///< returns the style of the label

    /// Changes the style. Keeps the stored time: switching mPreviousFrame moves the public time by one frame.
    ORL_API void SetStyle(const Style& inStyle);

    /// Adds to the label, field by field, with carries; skips the labels that drop-frame omits. The result is
    /// clamped to 24 hours on either side of zero. In kTimeDisplay_Frames only frames can be added.
    ORL_API void IncrementHMSF(int inHours, int inMinutes, int inSeconds, int inFrames);

    /// Adds feet and frames. A foot has 16 frames in kTimeDisplay_35mmFeetFrames, else 40. Does not update the fields
    /// that IncrementHMSF uses; the next SetTime or SetFormat does.
    ORL_API void IncrementFeetFrames(int inFeet, int inFrames);

    /// Returns the stored time as a string.
    ORL_API UTF16String GetString() const;

    /// Parses a string. Returns kTime_Invalid if inText cannot be parsed, kTime_Zero if it is empty.
    ///
    /// A string consists of an optional sign, then up to four fields, separated by any mix of ":" ";" "."; the last
    /// field is the frames. A single number is split from the right, two digits per field (frames: as many as the rate
    /// needs); after a leading separator it is a plain frame count. A field may overflow into the next one; hours are
    /// taken modulo 24. Feet and frames are two fields, and "+" is also a separator. If inPreviousFrame is true, adds
    /// one frame to the result.
    static ORL_API tvxmediatypes::TickTime StringToTime(const UTF16String& inText,
                                                        const tvxmediatypes::FrameRate& inFrameRate,
                                                        tvxmediatypes::TimeDisplay inTimeDisplay, bool inPreviousFrame);

    /// Returns the index of the unit at which StringToTime stops parsing inText in this format, the size of inText if
    /// it ends too early, or UTF16String::npos if it can be parsed.
    static ORL_API std::size_t FindUnreadable(const UTF16String& inText, tvxmediatypes::TimeDisplay inTimeDisplay);

private:
    PrivateImpl& GetImpl() const;

    std::unique_ptr<Impl> mPrivateImpl;
};

namespace Internal {

template <class Code>
using IfTimecode = std::enable_if_t<std::is_same_v<Code, Timecode>, int>;

inline bool IsSameStyle(const Timecode::Style& inLeft, const Timecode::Style& inRight) noexcept
{
    return inLeft.mHoursMode == inRight.mHoursMode && inLeft.mNoLeadingZeros == inRight.mNoLeadingZeros
           && inLeft.mShowSign == inRight.mShowSign && inLeft.mPreviousFrame == inRight.mPreviousFrame;
}

} // namespace Internal

// The operators are templates because overload resolution prefers non-template functions: a host's own operator for
// Timecode stays in use instead of becoming ambiguous.

/// Two timecodes are equal if their public time, rate, format and style are: they then have the same string, even after
/// the same changes to both. To compare only positions, compare GetTime.
template <class Code, Internal::IfTimecode<Code> = 0>
bool operator==(const Code& inLeft, const Code& inRight)
{
    return inLeft.GetTime() == inRight.GetTime() && inLeft.GetFrameRate() == inRight.GetFrameRate()
           && inLeft.GetFormat() == inRight.GetFormat() && Internal::IsSameStyle(inLeft.GetStyle(), inRight.GetStyle());
}
template <class Code, Internal::IfTimecode<Code> = 0>
bool operator!=(const Code& inLeft, const Code& inRight)
{
    return !(inLeft == inRight);
}

/// Writes the result of GetString as UTF-8, with the stream's width.
template <class Traits, class Code, Internal::IfTimecode<Code> = 0>
std::basic_ostream<char, Traits>& operator<<(std::basic_ostream<char, Traits>& ioStream, const Code& inCode)
{
    return ioStream << inCode.GetString();
}

} // namespace ORL

/// The hash of a timecode, for unordered containers. Equal timecodes have equal hashes.
template <>
struct std::hash<ORL::Timecode>
{
    std::size_t operator()(const ORL::Timecode& inCode) const
    {
        // Odd factors spread neighbouring times, and keep rates and formats apart.
        const auto ticks = static_cast<unsigned long long>(inCode.GetTime().GetTicks());
        const auto rate = static_cast<unsigned long long>(inCode.GetFrameRate().GetTicksPerFrame());
        const auto format = static_cast<unsigned long long>(inCode.GetFormat());
        return static_cast<std::size_t>((ticks ^ ticks >> 32) * 0x9E3779B97F4A7C15u + rate * 0xC2B2AE3D27D4EB4Fu
                                        + format);
    }
};
