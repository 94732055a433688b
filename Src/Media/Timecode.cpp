#include <ORLTimecode.h>

#include <Media/TimecodeFormats.h>
#include <Media/TimecodeImpl.h>
#include <Media/TimecodeStrings.h>
#include <ORLDebug.h>

#include <tvxmediatypes/Constants.h>

namespace ORL {

using tvxmediatypes::FrameRate;
using tvxmediatypes::TickTime;
using tvxmediatypes::TimeDisplay;

Timecode::Timecode() : mPrivateImpl(new PrivateImpl())
{
}

Timecode::Timecode(const TickTime& inTime, const FrameRate& inFrameRate, TimeDisplay inTimeDisplay)
    : Timecode(inTime, inFrameRate, inTimeDisplay, Style())
{
}

Timecode::Timecode(const TickTime& inTime, const FrameRate& inFrameRate, TimeDisplay inTimeDisplay,
                   const Style& inStyle)
    : mPrivateImpl(new PrivateImpl(inTime, inFrameRate, inTimeDisplay, inStyle))
{
    ORL_INPUT_CONTRACT_AT(inFrameRate != tvxmediatypes::kFrameRate_Zero, "Timecode", __LINE__);
}

Timecode::Timecode(const Timecode& inOther)
    : mPrivateImpl(new PrivateImpl(inOther.GetTime(), inOther.GetImpl().mFrameRate, inOther.GetImpl().mTimeDisplay,
                                   inOther.GetImpl().mStyle))
{
}

Timecode& Timecode::operator=(const Timecode& inOther)
{
    // The new record is complete before the old one is destroyed, so self-assignment is safe.
    Timecode copy(inOther);
    mPrivateImpl.swap(copy.mPrivateImpl);
    return *this;
}

Timecode::PrivateImpl& Timecode::GetImpl() const
{
    return static_cast<PrivateImpl&>(*mPrivateImpl);
}

TickTime Timecode::GetTime() const
{
    return GetImpl().GetTime();
}

void Timecode::SetTime(const TickTime& inTime)
{
    GetImpl().SetTime(inTime);
}

void Timecode::SetTime(const UTF16String& inText)
{
    GetImpl().SetTime(inText);
}

FrameRate Timecode::GetFrameRate() const
{
    return GetImpl().mFrameRate;
}

TimeDisplay Timecode::GetFormat() const
{
    return GetImpl().mTimeDisplay;
}

void Timecode::SetFormat(TimeDisplay inTimeDisplay, const FrameRate& inFrameRate)
{
    GetImpl().SetFormat(inTimeDisplay, inFrameRate);
}

Timecode::Style Timecode::GetStyle() const
{
    return GetImpl().mStyle;
}

void Timecode::SetStyle(const Style& inStyle)
{
    GetImpl().mStyle = inStyle;
}

void Timecode::IncrementHMSF(int inHours, int inMinutes, int inSeconds, int inFrames)
{
    GetImpl().IncrementHMSF(inHours, inMinutes, inSeconds, inFrames);
}

void Timecode::IncrementFeetFrames(int inFeet, int inFrames)
{
    GetImpl().IncrementFeetFrames(inFeet, inFrames);
}

UTF16String Timecode::GetString() const
{
    return GetImpl().GetString();
}

TickTime Timecode::StringToTime(const UTF16String& inText, const FrameRate& inFrameRate, TimeDisplay inTimeDisplay,
                                bool inPreviousFrame)
{
    if (inText.empty()) {
        return tvxmediatypes::kTime_Zero;
    }
    return TimecodeLocal::IsFeetFrames(inTimeDisplay)
               ? TimecodeLocal::FeetFramesStringToTime(inText, inFrameRate, inTimeDisplay, inPreviousFrame)
               : TimecodeLocal::SMPTEStringToTime(inText, inFrameRate, inTimeDisplay, inPreviousFrame);
}

std::size_t Timecode::FindUnreadable(const UTF16String& inText, TimeDisplay inTimeDisplay)
{
    if (inText.empty()) {
        return UTF16String::npos;
    }
    return TimecodeLocal::IsFeetFrames(inTimeDisplay) ? TimecodeLocal::FindUnreadableInFeetFrames(inText)
                                                      : TimecodeLocal::FindUnreadableInSMPTE(inText, inTimeDisplay);
}

} // namespace ORL
