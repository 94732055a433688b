// Properties that must hold when an arbitrary string is parsed as timecode. The fuzzer and the plain test that replays
// its corpus check the same properties.
//
// Input: byte 0 selects the format, byte 1 the rate, byte 2 the style. Each further byte is a UTF-16 unit of the
// string; 0xFF introduces the two bytes, low byte first, of any other unit.
#pragma once

#include <ORLTimecode.h>

#include <tvxcore/Debug.h>
#include <tvxmediatypes/Constants.h>

#include <cstddef>
#include <cstdint>

namespace ORLFuzz {

struct TimecodeInput
{
    tvxmediatypes::TimeDisplay mDisplay;
    tvxmediatypes::FrameRate mRate;
    ORL::Timecode::Style mStyle;
    UTF16String mText;
};

inline bool IsCount(tvxmediatypes::TimeDisplay inDisplay)
{
    return inDisplay == tvxmediatypes::kTimeDisplay_Frames || inDisplay == tvxmediatypes::kTimeDisplay_16mmFeetFrames
           || inDisplay == tvxmediatypes::kTimeDisplay_35mmFeetFrames;
}

inline bool IsAudio(tvxmediatypes::TimeDisplay inDisplay)
{
    return inDisplay >= tvxmediatypes::kTimeDisplay_AudioSamplesTimecode;
}

/// Returns the fixed rate of a format, if it has one.
inline tvxmediatypes::FrameRate OwnRate(tvxmediatypes::TimeDisplay inDisplay)
{
    using namespace tvxmediatypes;
    switch (inDisplay) {
    case kTimeDisplay_24Timecode: return kFrameRate_Film24;
    case kTimeDisplay_25Timecode: return kFrameRate_VideoPAL;
    case kTimeDisplay_2997DropTimecode:
    case kTimeDisplay_2997NonDropTimecode: return kFrameRate_VideoNTSC;
    case kTimeDisplay_30Timecode: return kFrameRate_Video30;
    case kTimeDisplay_50Timecode: return kFrameRate_VideoPAL_HD;
    case kTimeDisplay_5994DropTimecode:
    case kTimeDisplay_5994NonDropTimecode: return kFrameRate_VideoNTSC_HD;
    case kTimeDisplay_60Timecode: return kFrameRate_Video60;
    case kTimeDisplay_23976Timecode: return kFrameRate_23976;
    default: return kFrameRate_Zero;
    }
}

inline TimecodeInput ReadInput(const std::uint8_t* inData, std::size_t inSize)
{
    using namespace tvxmediatypes;
    static constexpr int kDisplays[] = {100, 101, 102, 103, 104, 105, 106, 107, 108, 109, 110, 111, 112, 200, 201};
    static constexpr FrameRate kVideo[] = {kFrameRate_Film24, kFrameRate_VideoPAL,  kFrameRate_VideoNTSC,
                                           kFrameRate_23976,  kFrameRate_Video12_5, kFrameRate_Video1000,
                                           FrameRate(14.985), FrameRate(0.5)};
    static constexpr FrameRate kAudio[] = {kFrameRate_Audio48000,  kFrameRate_Audio44100, kFrameRate_Audio96000,
                                           kFrameRate_Audio192000, kFrameRate_Audio8000,  kFrameRate_Video1000,
                                           FrameRate(10000.0),     FrameRate(10001.0)};
    const std::uint8_t choices[3] = {inSize > 0 ? inData[0] : std::uint8_t{0}, inSize > 1 ? inData[1] : std::uint8_t{0},
                                     inSize > 2 ? inData[2] : std::uint8_t{0}};
    TimecodeInput input;
    input.mDisplay = static_cast<TimeDisplay>(kDisplays[choices[0] % 15]);
    input.mRate = IsAudio(input.mDisplay) ? kAudio[choices[1] % 8] : kVideo[choices[1] % 8];
    if ((choices[1] & 0x80) != 0 && OwnRate(input.mDisplay) != kFrameRate_Zero) {
        input.mRate = OwnRate(input.mDisplay);
    }
    input.mStyle.mShowSign = (choices[2] & 1) != 0;
    input.mStyle.mPreviousFrame = (choices[2] & 2) != 0;
    input.mStyle.mNoLeadingZeros = (choices[2] & 4) != 0;
    input.mStyle.mHoursMode = (choices[2] & 8) != 0 ? 0 : 1;
    for (std::size_t i = 3; i < inSize; ++i) {
        if (inData[i] == 0xFF && i + 2 < inSize) {
            input.mText += static_cast<unsigned short>(inData[i + 1] | inData[i + 2] << 8);
            i += 2;
        } else {
            input.mText += inData[i];
        }
    }
    return input;
}

/// Returns whether the library's string for a time, with sign and all fields, must parse to the same time: the time
/// must be whole frames at the format's rate, within a day. Labels must use their format's own rate, because frames
/// that overflow a slower rate would carry.
inline bool RoundTrips(const TimecodeInput& inInput, const tvxmediatypes::TickTime& inTime)
{
    using namespace tvxmediatypes;
    const TickTime day(86400.0);
    if (inTime >= day || inTime <= -day || inInput.mRate.GetValue() < 1.0) {
        return false;
    }
    FrameRate rate = inInput.mRate;
    if (inInput.mDisplay == kTimeDisplay_AudioMsTimecode) {
        rate = FrameRate(1000.0);
    } else if (!IsCount(inInput.mDisplay) && !IsAudio(inInput.mDisplay)) {
        rate = OwnRate(inInput.mDisplay);
        if (rate != inInput.mRate) {
            return false;
        }
    }
    return TickTime(inTime.ToFrame64(rate), rate) == inTime;
}

/// Returns null, or a description of the property that failed.
inline const char* CheckTimecodeInput(const std::uint8_t* inData, std::size_t inSize)
{
    using namespace tvxmediatypes;
    const TimecodeInput input = ReadInput(inData, inSize);
    const TickTime time = ORL::Timecode::StringToTime(input.mText, input.mRate, input.mDisplay, false);
    const std::size_t stop = ORL::Timecode::FindUnreadable(input.mText, input.mDisplay);
    if (stop != UTF16String::npos && (time != kTime_Invalid || stop > input.mText.size())) {
        return "an unreadable text has a time, or stops behind its end";
    }

    ORL::Timecode code(kTime_Zero, input.mRate, input.mDisplay, input.mStyle);
    code.SetTime(input.mText);
    if (code.GetString().empty()) {
        return "a time has no text";
    }
    code.IncrementHMSF(1, 2, 3, -4);
    code.GetString();
    if (code.GetTime() != ORL::Timecode(code).GetTime()) {
        return "a copy has another time";
    }

    ORL::Timecode::Style whole;
    whole.mShowSign = true;
    const ORL::Timecode shown(time, input.mRate, input.mDisplay, whole);
    if (RoundTrips(input, time)
        && ORL::Timecode::StringToTime(shown.GetString(), input.mRate, input.mDisplay, false) != time) {
        return "the text of a time reads as another time";
    }
    return nullptr;
}

/// Installs a handler that ignores each failed check for good and prints nothing, because checks are expected to fail.
inline void SilenceAssertions()
{
    tvxcore::debug::Dialogs dialogs;
    dialogs.mAssert = [](bool& ioIgnore, const char*, const unsigned char*, const char*, long, const char*) {
        ioIgnore = true;
        return false;
    };
    tvxcore::debug::InstallDialogs(dialogs);
}

} // namespace ORLFuzz
