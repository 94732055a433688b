#include <Media/TimecodeImpl.h>

#include <Core/Wrapping.h>
#include <Media/TimecodeCarry.h>
#include <Media/TimecodeDropFrame.h>
#include <Media/TimecodeFormats.h>
#include <ORLDebug.h>

#include <limits>

namespace ORL {

using namespace TimecodeLocal;
using namespace tvxmediatypes;

namespace {

// Returns zero frames a second if the caller's rate determines the format.
constexpr FrameFormat OwnFrameFormat(const TimecodeFormat& inFormat)
{
    if (inFormat.mText == TimecodeText::kFrames) {
        return {std::numeric_limits<long long>::max(), 0};
    }
    return inFormat.HasOwnRate() ? FrameFormatOfRate(inFormat.mRate) : FrameFormat{0, 0};
}

// Hosts copy a timecode for every displayed frame, so what depends only on the format is computed at compile time.
FrameFormat FrameFormatOf(TimeDisplay inTimeDisplay, const FrameRate& inFrameRate)
{
    const FrameFormat own = VisitFormat(
        inTimeDisplay,
        [](auto inFormat) {
            constexpr FrameFormat format = OwnFrameFormat(decltype(inFormat)::kRow);
            return format;
        },
        [] {
            return FrameFormat{0, 0};
        });
    return own.mFramesPerSecond != 0 ? own : FrameFormatOfRate(GetFrameRateForDisplayMode(inTimeDisplay, inFrameRate));
}

} // namespace

Timecode::PrivateImpl::PrivateImpl() : mFrameRate(kFrameRate_VideoNTSC), mTimeDisplay(kTimeDisplay_2997DropTimecode)
{
    UpdateFrameFormat();
    UpdateHMSF();
}

Timecode::PrivateImpl::PrivateImpl(const TickTime& inTime, const FrameRate& inFrameRate, TimeDisplay inTimeDisplay,
                                   const Style& inStyle)
    : mTime(inTime), mFrameRate(inFrameRate), mTimeDisplay(inTimeDisplay), mStyle(inStyle)
{
    // Unlike the check in SetFormat, this one accepts any format with an audio rate.
    // clang-format off
    ORL_INPUT_CONTRACT_AT(((inFrameRate <= tvxmediatypes::kFrameRate_Video1000) && (inTimeDisplay >= tvxmediatypes::kTimeDisplay_24Timecode) && (inTimeDisplay <= tvxmediatypes::kTimeDisplay_35mmFeetFrames)) || ((inFrameRate >= tvxmediatypes::FrameRate(1000.0)) && (inFrameRate <= tvxmediatypes::kFrameRate_Audio192000) ), "Timecode", __LINE__);
    // clang-format on
    StorePublicTime(inTime);
    UpdateFrameFormat();
    UpdateHMSF();
}

TickTime Timecode::PrivateImpl::GetTime() const
{
    TickTime time = mTime;
    if (mStyle.mPreviousFrame) {
        time.AddFrames(1, mFrameRate);
    }
    return time;
}

void Timecode::PrivateImpl::StorePublicTime(const TickTime& inTime)
{
    mTime = inTime;
    if (mStyle.mPreviousFrame) {
        mTime.AddFrames(-1, mFrameRate);
    }
    mIsNegative = mTime < kTime_Zero;
}

void Timecode::PrivateImpl::SetTime(const TickTime& inTime)
{
    StorePublicTime(inTime);
    UpdateHMSF();
}

void Timecode::PrivateImpl::SetTime(const UTF16String& inText)
{
    SetTime(StringToTime(inText, mFrameRate, mTimeDisplay, mStyle.mPreviousFrame));
}

void Timecode::PrivateImpl::SetFormat(TimeDisplay inTimeDisplay, const FrameRate& inFrameRate)
{
    // clang-format off
    ORL_INPUT_CONTRACT_AT(((inFrameRate <= tvxmediatypes::kFrameRate_Video1000) && (inTimeDisplay >= tvxmediatypes::kTimeDisplay_24Timecode) && (inTimeDisplay <= tvxmediatypes::kTimeDisplay_35mmFeetFrames)) || ((inFrameRate >= tvxmediatypes::FrameRate(1000.0)) && (inFrameRate <= tvxmediatypes::kFrameRate_Audio192000) && (inTimeDisplay >= tvxmediatypes::kTimeDisplay_AudioSamplesTimecode) && (inTimeDisplay <= tvxmediatypes::kTimeDisplay_AudioMsTimecode)), "Timecode", __LINE__);
    // clang-format on
    if (mStyle.mPreviousFrame) {
        mTime.AddFrames(1, mFrameRate);
        mTime.AddFrames(-1, inFrameRate);
    }
    mTimeDisplay = inTimeDisplay;
    mFrameRate = inFrameRate;
    UpdateHMSF();
    UpdateFrameFormat();
}

void Timecode::PrivateImpl::UpdateFrameFormat()
{
    const FrameFormat format = FrameFormatOf(mTimeDisplay, mFrameRate);
    mFramesPerSecond = format.mFramesPerSecond;
    mFrameDigits = format.mFrameDigits;
}

// At a rate below one frame a second no count of frames fills a second, so all frames stay in the frame field.
inline __attribute__((always_inline)) void Timecode::PrivateImpl::SplitCount(long long inCount,
                                                                             long long inFramesPerSecond)
{
    mHours = mMinutes = mSeconds = 0;
    mIsNegative = inCount < 0;
    mFrames = mIsNegative ? Wrapping::Negate(inCount) : inCount;
    if (inFramesPerSecond <= 0 || mFrames < 0) {
        return;
    }
    const auto framesPerSecond = Wrapping::Bits(inFramesPerSecond);
    auto rest = Wrapping::Bits(mFrames);
    mHours = static_cast<int>(rest / (framesPerSecond * 3600));
    rest %= framesPerSecond * 3600;
    mMinutes = static_cast<int>(rest / (framesPerSecond * 60));
    rest %= framesPerSecond * 60;
    mSeconds = static_cast<int>(rest / framesPerSecond);
    mFrames = static_cast<long long>(rest % framesPerSecond);
}

void Timecode::PrivateImpl::UpdateHMSF()
{
    VisitFormat(
        mTimeDisplay,
        [this](auto inFormat) {
            constexpr const TimecodeFormat& row = decltype(inFormat)::kRow;
            if constexpr (row.mText == TimecodeText::kFrames) {
                mHours = mMinutes = mSeconds = 0;
                mFrames = mTime.ToFrame64(mFrameRate);
            } else if constexpr (row.mDroppedLabels != 0) {
                NTSCDropFrame_TimeToHMSF(mTime, mHours, mMinutes, mSeconds, mFrames, row.mLabelsPerSecond == 60);
            } else if constexpr (row.HasOwnRate()) {
                // With a constant rate and count, the divisions compile to multiplications.
                SplitCount(mTime.ToFrame64(row.mRate), row.mLabelsPerSecond);
            } else {
                SplitCountAt(mFrameRate);
            }
        },
        [this] { SplitCountAt(GetFrameRateForDisplayMode(mTimeDisplay, mFrameRate)); });
}

void Timecode::PrivateImpl::SplitCountAt(const FrameRate& inRate)
{
    SplitCount(mTime.ToFrame64(inRate), inRate.GetTruncatedValue());
}

void Timecode::PrivateImpl::IncrementHMSF(int inHours, int inMinutes, int inSeconds, long long inFrames)
{
    // clang-format off
    ORL_ASSERT_AT((mTimeDisplay != tvxmediatypes::kTimeDisplay_Frames) || ((inHours == 0) && (inMinutes == 0) && (inSeconds == 0)), "Timecode", __LINE__, "ORL::Timecode::PrivateImpl::IncrementHMSF");
    // clang-format on
    if (mIsNegative) {
        // The fields hold magnitudes, so negate the increments.
        inHours = Wrapping::Negate(inHours);
        inMinutes = Wrapping::Negate(inMinutes);
        inSeconds = Wrapping::Negate(inSeconds);
        inFrames = Wrapping::Negate(inFrames);
    }
    const int dropped = DroppedLabels(mTimeDisplay);
    if (dropped != 0) {
        NTSCDropFrame_IncrementHMSF(inHours, inMinutes, inSeconds, inFrames, mHours, mMinutes, mSeconds, mFrames,
                                    mIsNegative, static_cast<int>(mFramesPerSecond), dropped);
    } else {
        IncrementFields(inHours, inMinutes, inSeconds, inFrames);
    }
    mTime = HMSFToTime(mHours, mMinutes, mSeconds, mFrames, mIsNegative, mFrameRate, mTimeDisplay);
    mIsNegative = mTime < kTime_Zero;
}

void Timecode::PrivateImpl::IncrementFields(int inHours, int inMinutes, int inSeconds, long long inFrames)
{
    mFrames = Wrapping::Add(mFrames, inFrames);
    Carry(mFrames, mSeconds, mFramesPerSecond);
    mSeconds = Wrapping::Add(mSeconds, inSeconds);
    Carry(mSeconds, mMinutes, 60);
    mMinutes = Wrapping::Add(mMinutes, inMinutes);
    Carry(mMinutes, mHours, 60);
    mHours = Wrapping::Add(mHours, inHours);
    if (mHours < 0 && !mIsNegative) {
        CrossZero();
    }
    ClampToOneDay();
    if (mHours < 0) {
        mHours = -mHours;
        mIsNegative = true;
    }
}

// The frame field is mirrored without a carry: frame 0 becomes a full second, which the next increment carries.
void Timecode::PrivateImpl::CrossZero()
{
    mIsNegative = true;
    mFrames = Wrapping::Subtract(mFramesPerSecond, mFrames);
    mSeconds = 59 - mSeconds;
    mMinutes = 59 - mMinutes;
    mHours += 1;
}

void Timecode::PrivateImpl::ClampToOneDay()
{
    if (mHours <= 24 && mHours >= -24) {
        return;
    }
    mHours = mHours > 24 ? 24 : -24;
    mMinutes = mSeconds = 0;
    mFrames = 0;
}

void Timecode::PrivateImpl::IncrementFeetFrames(int inFeet, int inFrames)
{
    const int count = Wrapping::Add(Wrapping::Multiply(FramesPerFoot(mTimeDisplay), inFeet), inFrames);
    mTime.AddFrames(count, mFrameRate);
}

} // namespace ORL
