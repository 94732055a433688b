#include "TimecodeTestSupport.h"

#include <Media/TimecodeStrings.h>

#include <limits>

using namespace ORLTest;

namespace {

std::string Show(const TickTime& inTime, const FrameRate& inRate, TimeDisplay inDisplay,
                 const Timecode::Style& inStyle = Timecode::Style())
{
    return Narrow(Timecode(inTime, inRate, inDisplay, inStyle).GetString());
}

TickTime Clock(int inHours, int inMinutes, int inSeconds)
{
    return TickTime((inHours * 60LL + inMinutes) * 60 + inSeconds, FrameRate(1.0));
}

// Returns the given time of day plus inFrames frames.
TickTime At(int inHours, int inMinutes, int inSeconds, long long inFrames, const FrameRate& inRate)
{
    TickTime time = Clock(inHours, inMinutes, inSeconds);
    time.AddFrames(inFrames, inRate);
    return time;
}

Timecode::Style NoZeros()
{
    Timecode::Style style;
    style.mNoLeadingZeros = true;
    return style;
}

Timecode::Style NoHours()
{
    Timecode::Style style;
    style.mHoursMode = 0;
    return style;
}

} // namespace

TEST(TimecodeGetString, ExampleOfEachShape)
{
    struct Row
    {
        int mLine;
        TickTime mTime;
        FrameRate mRate;
        TimeDisplay mDisplay;
        const char* mText;
    };
    const FrameRate pal = kFrameRate_VideoPAL;
    const FrameRate film = kFrameRate_Film24;
    const FrameRate audio = kFrameRate_Audio48000;
    const Row rows[] = {
        {__LINE__, At(1, 2, 3, 4, pal), pal, kTimeDisplay_25Timecode, "01:02:03:04"},
        {__LINE__, At(1, 2, 3, 4, film), film, kTimeDisplay_24Timecode, "01:02:03:04"},
        {__LINE__, Frames(111582, kFrameRate_VideoNTSC), kFrameRate_VideoNTSC, kTimeDisplay_2997DropTimecode,
         "01;02;03;04"},
        {__LINE__, Frames(3723 * 30 + 4, kFrameRate_VideoNTSC), kFrameRate_VideoNTSC, kTimeDisplay_2997NonDropTimecode,
         "01:02:03:04"},
        {__LINE__, Frames(3600, kFrameRate_VideoNTSC_HD), kFrameRate_VideoNTSC_HD, kTimeDisplay_5994DropTimecode,
         "00;01;00;04"},
        {__LINE__, Frames(3600, kFrameRate_VideoNTSC_HD), kFrameRate_VideoNTSC_HD, kTimeDisplay_5994NonDropTimecode,
         "00:01:00:00"},
        {__LINE__, Frames(24 * 60 + 5, kFrameRate_23976), kFrameRate_23976, kTimeDisplay_23976Timecode, "00:01:00:05"},
        {__LINE__, At(1, 2, 3, 45, FrameRate(1000.0)), audio, kTimeDisplay_AudioMsTimecode, "01:02:03.045"},
        {__LINE__, At(1, 2, 3, 450, audio), audio, kTimeDisplay_AudioSamplesTimecode, "01:02:03:00450"},
        {__LINE__, Frames(487, film), film, kTimeDisplay_16mmFeetFrames, "12+07"},
        {__LINE__, Frames(199, film), film, kTimeDisplay_35mmFeetFrames, "12+07"},
        {__LINE__, Frames(1234, pal), pal, kTimeDisplay_Frames, "1234"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.mText, Show(row.mTime, row.mRate, row.mDisplay)) << "row at line " << row.mLine;
    }
    EXPECT_EQ("+01:02:03:04", Show(At(1, 2, 3, 4, pal), pal, kTimeDisplay_25Timecode, SignedStyle()));
}

TEST(TimecodeGetString, Sign_IsWrittenOnlyWhenTheStyleAsksForIt)
{
    const FrameRate pal = kFrameRate_VideoPAL;
    EXPECT_EQ("+00:00:00:01", Show(Frames(1, pal), pal, kTimeDisplay_25Timecode, SignedStyle()));
    EXPECT_EQ("-00:00:00:01", Show(-Frames(1, pal), pal, kTimeDisplay_25Timecode, SignedStyle()));
    EXPECT_EQ("00:00:00:00", Show(kTime_Zero, pal, kTimeDisplay_25Timecode, SignedStyle())) << "zero has no sign";
    // The sign is that of the time, even if no whole frame shows it.
    EXPECT_EQ("+00:00:00:00", Show(TickTime::FromTicks(1), pal, kTimeDisplay_25Timecode, SignedStyle()));
    EXPECT_EQ("-00:00:00:00", Show(TickTime::FromTicks(-1), pal, kTimeDisplay_25Timecode, SignedStyle()));
}

TEST(TimecodeGetString, NegativeTimeWithoutSign_CountsBackFromMidnightOnTheHoursAlone)
{
    const FrameRate pal = kFrameRate_VideoPAL;
    EXPECT_EQ("22:30:00:00", Show(-Clock(1, 30, 0), pal, kTimeDisplay_25Timecode));
    EXPECT_EQ("-01:30:00:00", Show(-Clock(1, 30, 0), pal, kTimeDisplay_25Timecode, SignedStyle()));
    EXPECT_EQ("23:00:00:01", Show(-Frames(1, pal), pal, kTimeDisplay_25Timecode));
    EXPECT_EQ("00:59:59:24", Show(-At(23, 59, 59, 24, pal), pal, kTimeDisplay_25Timecode));
    EXPECT_EQ("23:00:00:00", Show(TickTime::FromTicks(-1), pal, kTimeDisplay_25Timecode));
    EXPECT_EQ("23:00:00:00", Show(-Clock(24, 0, 0), pal, kTimeDisplay_25Timecode));
    EXPECT_EQ("30:00:01", Show(-At(1, 30, 0, 1, pal), pal, kTimeDisplay_25Timecode, NoHours()));
}

TEST(TimecodeGetString, Hours_AreShownModulo24)
{
    const FrameRate pal = kFrameRate_VideoPAL;
    EXPECT_EQ("00:00:00:00", Show(Clock(24, 0, 0), pal, kTimeDisplay_25Timecode));
    EXPECT_EQ("23:59:59:24", Show(At(23, 59, 59, 24, pal), pal, kTimeDisplay_25Timecode));
    EXPECT_EQ("04:00:00:00", Show(Clock(100, 0, 0), pal, kTimeDisplay_25Timecode));
    Timecode clamped(Clock(23, 0, 0), pal, kTimeDisplay_25Timecode);
    clamped.IncrementHMSF(2, 0, 0, 0);
    EXPECT_EQ("00:00:00:00", Narrow(clamped.GetString()));
}

TEST(TimecodeGetString, HoursMode_OtherThanOneLeavesTheHoursOut)
{
    for (const int mode : {0, 2, -1, 1000}) {
        Timecode::Style style;
        style.mHoursMode = mode;
        EXPECT_EQ("02:03:04",
                  Show(At(1, 2, 3, 4, kFrameRate_VideoPAL), kFrameRate_VideoPAL, kTimeDisplay_25Timecode, style));
    }
}

TEST(TimecodeGetString, NoLeadingZeros_AppliesToEachClockField)
{
    const FrameRate pal = kFrameRate_VideoPAL;
    EXPECT_EQ("1:2:3:4", Show(At(1, 2, 3, 4, pal), pal, kTimeDisplay_25Timecode, NoZeros()));
    EXPECT_EQ("0:0:0:0", Show(kTime_Zero, pal, kTimeDisplay_25Timecode, NoZeros()));
    EXPECT_EQ("10:20:30:15", Show(At(10, 20, 30, 15, pal), pal, kTimeDisplay_25Timecode, NoZeros()));
    EXPECT_EQ("1:2:3.45",
              Show(At(1, 2, 3, 45, FrameRate(1000.0)), kFrameRate_Audio48000, kTimeDisplay_AudioMsTimecode, NoZeros()));
    EXPECT_EQ("0:0:0:450", Show(At(0, 0, 0, 450, kFrameRate_Audio48000), kFrameRate_Audio48000,
                                kTimeDisplay_AudioSamplesTimecode, NoZeros()));
}

TEST(TimecodeGetString, FrameField_IsPaddedByTheDigitsOfTheRate)
{
    struct Row
    {
        int mLine;
        FrameRate mRate;
        TimeDisplay mDisplay;
        long long mFrames;
        const char* mText;
    };
    const TimeDisplay samples = kTimeDisplay_AudioSamplesTimecode;
    const Row rows[] = {
        {__LINE__, kFrameRate_Audio8000, samples, 7, "0007"},
        {__LINE__, kFrameRate_Audio8000, samples, 70, "0070"},
        {__LINE__, kFrameRate_Audio8000, samples, 700, "0700"},
        {__LINE__, kFrameRate_Audio8000, samples, 7000, "7000"},
        {__LINE__, kFrameRate_Audio44100, samples, 0, "00000"},
        {__LINE__, kFrameRate_Audio96000, samples, 9, "00009"},
        {__LINE__, kFrameRate_Audio96000, samples, 95999, "95999"},
        // six digits are not padded with zeros
        {__LINE__, kFrameRate_Audio192000, samples, 9, "9"},
        {__LINE__, kFrameRate_Audio192000, samples, 191999, "191999"},
        {__LINE__, kFrameRate_Video1000, samples, 5, "005"},
        {__LINE__, kFrameRate_Audio48000, kTimeDisplay_AudioMsTimecode, 5, "005"},
        {__LINE__, kFrameRate_Audio48000, kTimeDisplay_AudioMsTimecode, 50, "050"},
        {__LINE__, kFrameRate_Audio48000, kTimeDisplay_AudioMsTimecode, 500, "500"},
    };
    for (const Row& row : rows) {
        const FrameRate rate = row.mDisplay == samples ? row.mRate : FrameRate(1000.0);
        const std::string text = Show(At(1, 2, 3, row.mFrames, rate), row.mRate, row.mDisplay);
        const std::string head = row.mDisplay == samples ? "01:02:03:" : "01:02:03.";
        EXPECT_EQ(head + row.mText, text) << "row at line " << row.mLine;
    }
}

TEST(TimecodeGetString, PlainFrames_CarryTheirOwnMinus)
{
    const FrameRate pal = kFrameRate_VideoPAL;
    EXPECT_EQ("0", Show(kTime_Zero, pal, kTimeDisplay_Frames));
    EXPECT_EQ("-1234", Show(-Frames(1234, pal), pal, kTimeDisplay_Frames));
    EXPECT_EQ("+1234", Show(Frames(1234, pal), pal, kTimeDisplay_Frames, SignedStyle()));
    EXPECT_EQ("-1234", Show(-Frames(1234, pal), pal, kTimeDisplay_Frames, SignedStyle()));
    EXPECT_EQ("5", Show(Frames(5, pal), pal, kTimeDisplay_Frames, NoZeros()));
    EXPECT_EQ("+0", Show(TickTime::FromTicks(1), pal, kTimeDisplay_Frames, SignedStyle()));
    EXPECT_EQ("0", Show(TickTime::FromTicks(-1), pal, kTimeDisplay_Frames, SignedStyle()));
}

TEST(TimecodeGetString, FeetAndFrames_WriteTheirMinusWhateverTheStyleSays)
{
    struct Row
    {
        int mLine;
        TimeDisplay mDisplay;
        long long mCount;
        const char* mText;
        const char* mSigned;
    };
    const Row rows[] = {
        {__LINE__, kTimeDisplay_35mmFeetFrames, 0, "0+00", "0+00"},
        {__LINE__, kTimeDisplay_35mmFeetFrames, 9, "0+09", "+0+09"},
        {__LINE__, kTimeDisplay_35mmFeetFrames, 10, "0+10", "+0+10"},
        {__LINE__, kTimeDisplay_35mmFeetFrames, 17, "1+01", "+1+01"},
        {__LINE__, kTimeDisplay_35mmFeetFrames, -17, "-1+01", "-1+01"},
        {__LINE__, kTimeDisplay_35mmFeetFrames, -1, "-0+01", "-0+01"},
        {__LINE__, kTimeDisplay_16mmFeetFrames, 39, "0+39", "+0+39"},
        {__LINE__, kTimeDisplay_16mmFeetFrames, 40, "1+00", "+1+00"},
        {__LINE__, kTimeDisplay_16mmFeetFrames, -79, "-1+39", "-1+39"},
    };
    for (const Row& row : rows) {
        const TickTime time = Frames(row.mCount, kFrameRate_Film24);
        EXPECT_EQ(row.mText, Show(time, kFrameRate_Film24, row.mDisplay)) << "row at line " << row.mLine;
        EXPECT_EQ(row.mSigned, Show(time, kFrameRate_Film24, row.mDisplay, SignedStyle()))
            << "row at line " << row.mLine;
        // leading zeros of the frames stay
        EXPECT_EQ(row.mText, Show(time, kFrameRate_Film24, row.mDisplay, NoZeros())) << "row at line " << row.mLine;
    }
    EXPECT_EQ("-0+00", Show(TickTime::FromTicks(-1), kFrameRate_Film24, kTimeDisplay_35mmFeetFrames));
}

TEST(TimecodeGetString, FeetBeyond32Bits_AreCutTo32Bits)
{
    // At one tick a frame, the largest times have more feet than an int can hold.
    const FrameRate rate = FrameRate::FromTicksPerFrame(705600); // 1000 per second
    const long long feet = 4294967296LL + 5;
    EXPECT_EQ("5+03", Show(Frames(feet * 16 + 3, rate), rate, kTimeDisplay_35mmFeetFrames));
    EXPECT_EQ("-5+03", Show(-Frames(feet * 16 + 3, rate), rate, kTimeDisplay_35mmFeetFrames));
    const long long least = 2147483648LL;
    EXPECT_EQ("-2147483648+00", Show(Frames(least * 16, rate), rate, kTimeDisplay_35mmFeetFrames));
    EXPECT_EQ("--2147483648+00", Show(-Frames(least * 16, rate), rate, kTimeDisplay_35mmFeetFrames));
}

// Formats by the rule: sign, feet, plus, a zero if the frames lie from -9 to 9, frames.
std::string FeetByTheRule(const TickTime& inTime, const FrameRate& inRate, int inFramesPerFoot, bool inShowSign)
{
    const long long count = inTime.ToFrame64(inRate);
    long long feet = count / inFramesPerFoot;
    long long frames = count % inFramesPerFoot;
    std::string text = inShowSign && inTime > kTime_Zero ? "+" : "";
    if (inTime < kTime_Zero) {
        text += '-';
        feet = -feet;
        frames = -frames;
    }
    return text + std::to_string(feet) + '+' + (frames > -10 && frames < 10 ? "0" : "") + std::to_string(frames);
}

TEST(TimecodeGetString, FeetOfEveryLengthAndSign_FollowTheRule)
{
    const FrameRate fast = FrameRate::FromTicksPerFrame(705600);
    const FrameRate rates[] = {kFrameRate_Film24, kFrameRate_23976, fast, FrameRate(-24.0)};
    for (const FrameRate& rate : rates) {
        for (long long power = 1; power <= 1000000000; power *= 10) {
            for (const long long feet : {power - 1, power, power + 1, 2 * power + 7}) {
                for (const long long frames : {0LL, 9LL, 10LL, 15LL}) {
                    const long long count = feet * 16 + frames;
                    for (const TickTime& time : {Frames(count, rate), Frames(-count, rate)}) {
                        EXPECT_EQ(FeetByTheRule(time, rate, 16, false), Show(time, rate, kTimeDisplay_35mmFeetFrames));
                        EXPECT_EQ(FeetByTheRule(time, rate, 40, true),
                                  Show(time, rate, kTimeDisplay_16mmFeetFrames, SignedStyle()));
                    }
                }
            }
        }
    }
}

TEST(TimecodeGetString, WithPreviousFrame_ShowsTheStoredTime)
{
    EXPECT_EQ("00:00:00:24", Show(TickTime(1.0), kFrameRate_VideoPAL, kTimeDisplay_25Timecode, PreviousFrameStyle()));
    EXPECT_EQ("24", Show(TickTime(1.0), kFrameRate_VideoPAL, kTimeDisplay_Frames, PreviousFrameStyle()));
}

TEST(TimecodeGetString, OfTheFarthestTimes_IsDefined)
{
    CheckRecorder recorder;
    for (const TickTime& time : {kTime_Max, kTime_Min, kTime_Invalid}) {
        for (const Format& format : kClockFormats) {
            EXPECT_FALSE(Show(time, format.mRate, format.mDisplay).empty());
            EXPECT_FALSE(Show(time, format.mRate, format.mDisplay, PreviousFrameStyle()).empty());
        }
        EXPECT_FALSE(Show(time, kFrameRate_Audio192000, kTimeDisplay_AudioSamplesTimecode).empty());
        EXPECT_FALSE(Show(time, kFrameRate_Film24, kTimeDisplay_16mmFeetFrames).empty());
    }
    EXPECT_EQ("9223372036854775807", Show(kTime_Max, FrameRate(705600000.0), kTimeDisplay_Frames).substr(0, 19))
        << "one tick a frame, though that rate is beyond the contract";
    EXPECT_FALSE(recorder.Reports().empty());
}

TEST(TimecodeGetString, NumbersAsText_AreThoseOfTheStandardLibrary)
{
    for (const long long value : {0LL, 1LL, -1LL, 9LL, 10LL, -10LL, 99LL, 100LL, 2147483647LL, -2147483648LL,
                                  std::numeric_limits<long long>::max(), std::numeric_limits<long long>::min()}) {
        EXPECT_EQ(std::to_string(value), Narrow(ORL::TimecodeLocal::Int64ToString(value)));
        const int narrow = static_cast<int>(value);
        EXPECT_EQ(std::to_string(narrow), Narrow(ORL::TimecodeLocal::IntToString(narrow)));
    }
}
