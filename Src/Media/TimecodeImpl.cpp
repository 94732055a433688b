#include <TimecodeImpl.h>

#include <ORLDebug.h>
#include <TimecodeCarry.h>
#include <TimecodeDropFrame.h>
#include <TimecodeFormats.h>
#include <Wrapping.h>

#include <limits>

namespace ORL {

using namespace TimecodeLocal;
using namespace tvxmediatypes;

namespace {

// Every displayed frame copies a timecode, so the compiler computes everything that depends only on the format.
FrameFormat FrameFormatOf(TimeDisplay inTimeDisplay, const FrameRate& inFrameRate)
{
    constexpr FrameFormat kPlainFrames = {std::numeric_limits<long long>::max(), 0};
    constexpr FrameFormat k24 = FrameFormatOfRate(kFrameRate_Film24);
    constexpr FrameFormat k25 = FrameFormatOfRate(kFrameRate_VideoPAL);
    constexpr FrameFormat kNTSC = FrameFormatOfRate(kFrameRate_VideoNTSC);
    constexpr FrameFormat k30 = FrameFormatOfRate(kFrameRate_Video30);
    constexpr FrameFormat k50 = FrameFormatOfRate(kFrameRate_VideoPAL_HD);
    constexpr FrameFormat kNTSC_HD = FrameFormatOfRate(kFrameRate_VideoNTSC_HD);
    constexpr FrameFormat k60 = FrameFormatOfRate(kFrameRate_Video60);
    constexpr FrameFormat k23976 = FrameFormatOfRate(kFrameRate_23976);
    constexpr FrameFormat kMilliseconds = FrameFormatOfRate(FrameRate(1000.0));
    switch (inTimeDisplay) {
    case kTimeDisplay_24Timecode: return k24;
    case kTimeDisplay_25Timecode: return k25;
    case kTimeDisplay_2997DropTimecode:
    case kTimeDisplay_2997NonDropTimecode: return kNTSC;
    case kTimeDisplay_30Timecode: return k30;
    case kTimeDisplay_50Timecode: return k50;
    case kTimeDisplay_5994DropTimecode:
    case kTimeDisplay_5994NonDropTimecode: return kNTSC_HD;
    case kTimeDisplay_60Timecode: return k60;
    case kTimeDisplay_Frames: return kPlainFrames;
    case kTimeDisplay_23976Timecode: return k23976;
    case kTimeDisplay_AudioMsTimecode: return kMilliseconds;
    default: return FrameFormatOfRate(GetFrameRateForDisplayMode(inTimeDisplay, inFrameRate));
    }
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

void Timecode::PrivateImpl::UpdateHMSF()
{
    // With a constant rate and count, the divisions compile to multiplications.
    switch (mTimeDisplay) {
    case kTimeDisplay_Frames:
        mHours = mMinutes = mSeconds = 0;
        mFrames = mTime.ToFrame64(mFrameRate);
        return;
    case kTimeDisplay_2997DropTimecode:
        NTSCDropFrame_TimeToHMSF(mTime, mHours, mMinutes, mSeconds, mFrames, false);
        return;
    case kTimeDisplay_5994DropTimecode:
        NTSCDropFrame_TimeToHMSF(mTime, mHours, mMinutes, mSeconds, mFrames, true);
        return;
    case kTimeDisplay_24Timecode:
        SplitCount(mTime.ToFrame64(kFrameRate_Film24), 24);
        return;
    case kTimeDisplay_25Timecode:
        SplitCount(mTime.ToFrame64(kFrameRate_VideoPAL), 25);
        return;
    case kTimeDisplay_2997NonDropTimecode:
        SplitCount(mTime.ToFrame64(kFrameRate_VideoNTSC), 30);
        return;
    case kTimeDisplay_30Timecode:
        SplitCount(mTime.ToFrame64(kFrameRate_Video30), 30);
        return;
    case kTimeDisplay_50Timecode:
        SplitCount(mTime.ToFrame64(kFrameRate_VideoPAL_HD), 50);
        return;
    case kTimeDisplay_5994NonDropTimecode:
        SplitCount(mTime.ToFrame64(kFrameRate_VideoNTSC_HD), 60);
        return;
    case kTimeDisplay_60Timecode:
        SplitCount(mTime.ToFrame64(kFrameRate_Video60), 60);
        return;
    case kTimeDisplay_23976Timecode:
        SplitCount(mTime.ToFrame64(kFrameRate_23976), 24);
        return;
    default:
        break;
    }
    const FrameRate rate = GetFrameRateForDisplayMode(mTimeDisplay, mFrameRate);
    SplitCount(mTime.ToFrame64(rate), rate.GetTruncatedValue());
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

void Timecode::PrivateImpl::IncrementHMSF(int inHours, int inMinutes, int inSeconds, long long inFrames)
{
    // clang-format off
    ORL_ASSERT_AT((mTimeDisplay != tvxmediatypes::kTimeDisplay_Frames) || ((inHours == 0) && (inMinutes == 0) && (inSeconds == 0)), "Timecode", __LINE__, "ORL::Timecode::PrivateImpl::IncrementHMSF");
    // clang-format on
    if (mIsNegative) {
        // The fields hold magnitudes.
        inHours = Wrapping::Negate(inHours);
        inMinutes = Wrapping::Negate(inMinutes);
        inSeconds = Wrapping::Negate(inSeconds);
        inFrames = Wrapping::Negate(inFrames);
    }
    if (IsDropFrame(mTimeDisplay)) {
        const bool isHD = mTimeDisplay == kTimeDisplay_5994DropTimecode;
        NTSCDropFrame_IncrementHMSF(inHours, inMinutes, inSeconds, inFrames, mHours, mMinutes, mSeconds, mFrames,
                                    mIsNegative, isHD ? 60 : 30, isHD ? 4 : 2);
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

// The frame field is mirrored unchanged: frame 0 becomes a full second, which carries later.
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
