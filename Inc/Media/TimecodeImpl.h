// The implementation of Timecode: its stored time, and the fields of that time's label.
#pragma once

#include <ORLAllocator.h>
#include <ORLTimecode.h>

#include <tvxmediatypes/Constants.h>

namespace ORL {

class Timecode::PrivateImpl : public Impl
{
public:
    /// Constructs zero in 29.97 drop-frame format, without checks.
    PrivateImpl();

    PrivateImpl(const tvxmediatypes::TickTime& inTime, const tvxmediatypes::FrameRate& inFrameRate,
                tvxmediatypes::TimeDisplay inTimeDisplay, const Style& inStyle);

    static void* operator new(std::size_t inSize) { return Allocator::Allocate(inSize); }
    static void operator delete(void* inBlock, std::size_t inSize) { Allocator::Dispose(inBlock, inSize); }

    /// Returns the public time: mTime, plus one frame if mPreviousFrame is set.
    tvxmediatypes::TickTime GetTime() const;

    void SetTime(const tvxmediatypes::TickTime& inTime);
    void SetTime(const UTF16String& inText);
    void SetFormat(tvxmediatypes::TimeDisplay inTimeDisplay, const tvxmediatypes::FrameRate& inFrameRate);

    /// Adds to the fields and computes the time from them. Does not recompute the fields from the time.
    void IncrementHMSF(int inHours, int inMinutes, int inSeconds, long long inFrames);

    /// Changes only the time, not the fields.
    void IncrementFeetFrames(int inFeet, int inFrames);

    UTF16String GetString() const;

    /// Computes mFramesPerSecond and mFrameDigits from the format and the rate.
    void UpdateFrameFormat();

    /// Computes the fields from mTime.
    void UpdateHMSF();

    tvxmediatypes::TickTime mTime;
    tvxmediatypes::FrameRate mFrameRate; // the caller's rate, even if the format implies another
    tvxmediatypes::TimeDisplay mTimeDisplay;
    Style mStyle;
    int mHours = 0; // magnitudes; only mFrames is signed, in kTimeDisplay_Frames
    int mMinutes = 0;
    int mSeconds = 0;
    long long mFrames = 0;
    bool mIsNegative = false;
    long long mFramesPerSecond = 0; // limit at which IncrementHMSF carries frames to seconds
    int mFrameDigits = 0;           // maximum number of leading zeros of the frame field

private:
    void StorePublicTime(const tvxmediatypes::TickTime& inTime);
    void SplitCount(long long inCount, long long inFramesPerSecond);
    void SplitCountAt(const tvxmediatypes::FrameRate& inRate);
    void IncrementFields(int inHours, int inMinutes, int inSeconds, long long inFrames);
    void CrossZero();
    void ClampToOneDay();
};

} // namespace ORL
