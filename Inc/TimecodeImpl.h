// Floor: Media
// The record behind a Timecode: its stored time, and the fields of the label that the time has.
#pragma once

#include <ORLAllocator.h>
#include <ORLTimecode.h>

#include <tvxmediatypes/Constants.h>

namespace ORL {

class Timecode::PrivateImpl : public Impl
{
public:
    /// Zero in 29.97 drop-frame; nothing is checked.
    PrivateImpl();

    PrivateImpl(const tvxmediatypes::TickTime& inTime, const tvxmediatypes::FrameRate& inFrameRate,
                tvxmediatypes::TimeDisplay inTimeDisplay, const Style& inStyle);

    static void* operator new(std::size_t inSize) { return Allocator::Allocate(inSize); }
    static void operator delete(void* inBlock, std::size_t inSize) { Allocator::Dispose(inBlock, inSize); }

    /// The public time: mTime, and one frame more with mPreviousFrame.
    tvxmediatypes::TickTime GetTime() const;

    void SetTime(const tvxmediatypes::TickTime& inTime);
    void SetTime(const UTF16String& inText);
    void SetFormat(tvxmediatypes::TimeDisplay inTimeDisplay, const tvxmediatypes::FrameRate& inFrameRate);

    /// Adds to the fields and makes the time from them; the fields are not made from the time again.
    void IncrementHMSF(int inHours, int inMinutes, int inSeconds, long long inFrames);

    /// Moves the time alone; the fields stay.
    void IncrementFeetFrames(int inFeet, int inFrames);

    UTF16String GetString() const;

    /// mFramesPerSecond and mFrameDigits from the format and the rate.
    void UpdateFrameFormat();

    /// The fields from mTime.
    void UpdateHMSF();

    tvxmediatypes::TickTime mTime;
    tvxmediatypes::FrameRate mFrameRate; // the caller's, also where the format fixes another
    tvxmediatypes::TimeDisplay mTimeDisplay;
    Style mStyle;
    int mHours = 0; // magnitudes, but for mFrames in kTimeDisplay_Frames, which is signed
    int mMinutes = 0;
    int mSeconds = 0;
    long long mFrames = 0;
    bool mIsNegative = false;
    long long mFramesPerSecond = 0; // where IncrementHMSF carries frames into seconds
    int mFrameDigits = 0;           // how many zeros the frame field may receive

private:
    void StorePublicTime(const tvxmediatypes::TickTime& inTime);
    void SplitCount(long long inCount, long long inFramesPerSecond);
    void IncrementFields(int inHours, int inMinutes, int inSeconds, long long inFrames);
    void CrossZero();
    void ClampToOneDay();
};

} // namespace ORL
