// Floor: Media
// A position on a media timeline as people read and type it.
#pragma once

#include <ORLConfig.h>
#include <ORLImpl.h>

#include <tvxcore/String.h>
#include <tvxmediatypes/FrameRate.h>
#include <tvxmediatypes/TickTime.h>
#include <tvxmediatypes/TimeDisplay.h>

#include <cstddef>
#include <memory>

namespace ORL {

/// A time, bound to a rate, a format and a style: hours, minutes, seconds and frames; feet and frames; a plain frame
/// count; or audio samples or milliseconds.
///
/// Drop-frame formats leave labels out, never frames: 2 (at 29.97) or 4 (at 59.94) at the start of each minute, but of
/// every tenth. The format alone decides how labels are counted; the rate matters where the format names none
/// (kTimeDisplay_Frames, feet and frames, audio samples) and for single frames (mPreviousFrame).
/// Owner:    a plain value with one record of its own; copies share nothing. There is no moved-from state: moving
///           copies.
/// Threads:  an object is used by one thread at a time; different objects are independent.
/// Failure:  no error codes. A rate and format that do not belong together fire an input contract (error 25), and a
///           text that cannot be read gives kTime_Invalid. Memory that is out leaves as std::bad_alloc.
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
        /// The hours field is written only when this is 1. No other value has a meaning.
        int mHoursMode = 1;

        /// Fields are written without leading zeros.
        bool mNoLeadingZeros = false;

        /// A time above zero is written with "+" and one below with "-". Without it a negative time counts back from
        /// midnight, on the hours alone.
        bool mShowSign = false;

        /// The stored and shown time lies one frame before the public one, so that a position is shown by the last
        /// frame before it.
        bool mPreviousFrame = false;
    };

    class PrivateImpl;

    /// Zero in 29.97 drop-frame.
    ORL_API Timecode();

    /// inFrameRate is at most 1000 with the formats up to kTimeDisplay_35mmFeetFrames, or from 1000 to 192000; the
    /// zero rate is a broken contract as well.
    ORL_API Timecode(const tvxmediatypes::TickTime& inTime, const tvxmediatypes::FrameRate& inFrameRate,
                     tvxmediatypes::TimeDisplay inTimeDisplay);
    ORL_API Timecode(const tvxmediatypes::TickTime& inTime, const tvxmediatypes::FrameRate& inFrameRate,
                     tvxmediatypes::TimeDisplay inTimeDisplay, const Style& inStyle);

    /// A copy is built from the public time, so its fields agree with its time even where those of inOther are stale.
    ORL_API Timecode(const Timecode& inOther);
    ORL_API Timecode& operator=(const Timecode& inOther);

    /// The public time: the stored one, and one frame more with mPreviousFrame.
    ORL_API tvxmediatypes::TickTime GetTime() const;
    ORL_API void SetTime(const tvxmediatypes::TickTime& inTime);

    /// As SetTime of StringToTime with the rate, format and style of this object. An unreadable text stores
    /// kTime_Invalid and is not reported; the object has no flag for it.
    ORL_API void SetTime(const UTF16String& inText);

    /// The rate that was passed, also where the format fixes another.
    ORL_API tvxmediatypes::FrameRate GetFrameRate() const;

    ORL_API tvxmediatypes::TimeDisplay GetFormat() const;

    /// Keeps the public time. inFrameRate is at most 1000 with the formats up to kTimeDisplay_35mmFeetFrames, or from
    /// 1000 to 192000 with the two audio formats.
    ORL_API void SetFormat(tvxmediatypes::TimeDisplay inTimeDisplay, const tvxmediatypes::FrameRate& inFrameRate);

    ORL_API Style GetStyle() const;

    /// Leaves the stored time as it is: turning mPreviousFrame on or off moves the public time by one frame.
    ORL_API void SetStyle(const Style& inStyle);

    /// Adds to the label, field by field, with carries; labels that drop-frame leaves out are stepped over. The result
    /// is clamped to 24 hours on either side of zero. In kTimeDisplay_Frames only frames can be added.
    ORL_API void IncrementHMSF(int inHours, int inMinutes, int inSeconds, int inFrames);

    /// Moves the time by 16 (kTimeDisplay_35mmFeetFrames) or 40 frames a foot, and frames. The fields that
    /// IncrementHMSF adds to stay as they are until the next SetTime or SetFormat.
    ORL_API void IncrementFeetFrames(int inFeet, int inFrames);

    /// The text of the stored time.
    ORL_API UTF16String GetString() const;

    /// The time that a text says, or kTime_Invalid where it cannot be read. An empty text is kTime_Zero.
    ///
    /// A text is a sign, then up to four fields, separated by any of ":" ";" "." in any mix; the last is the frames.
    /// A lone number is split from the right, two digits a field (frames: as many as the rate needs); behind a lead
    /// separator it is a plain frame count. A field may overflow into the next one; hours are taken modulo 24. Feet and
    /// frames are two fields, and "+" separates too. With inPreviousFrame one frame is added to what was read.
    static ORL_API tvxmediatypes::TickTime StringToTime(const UTF16String& inText,
                                                        const tvxmediatypes::FrameRate& inFrameRate,
                                                        tvxmediatypes::TimeDisplay inTimeDisplay, bool inPreviousFrame);

    /// Where StringToTime stops reading a text of this format: the index of the unit that does not fit, the size of
    /// the text where it ends too early, or UTF16String::npos where it can be read.
    static ORL_API std::size_t FindUnreadable(const UTF16String& inText, tvxmediatypes::TimeDisplay inTimeDisplay);

private:
    PrivateImpl& GetImpl() const;

    std::unique_ptr<Impl> mPrivateImpl;
};

} // namespace ORL
