// Tests SetTime with a string.
#include "TimecodeParseSupport.h"

using namespace ORLTest;

TEST(TimecodeSetTime, OfATextWithPreviousFrame_SpeaksOfTheSameFrameAsGetString)
{
    Timecode code(kTime_Zero, kFrameRate_VideoPAL, kTimeDisplay_25Timecode, PreviousFrameStyle());
    code.SetTime(Text("01:02:03:04"));
    EXPECT_EQ("01:02:03:04", Narrow(code.GetString()));
    EXPECT_EQ(Frames(Pal(1, 2, 3, 5), kFrameRate_VideoPAL), code.GetTime());
}

TEST(TimecodeSetTime, OfAnEmptyText_IsZero)
{
    Timecode code(TickTime(5.0), kFrameRate_VideoPAL, kTimeDisplay_25Timecode);
    code.SetTime(UTF16String());
    EXPECT_EQ(kTime_Zero, code.GetTime());
    EXPECT_EQ("00:00:00:00", Narrow(code.GetString()));
}

TEST(TimecodeSetTime, OfAnEmptyTextWithPreviousFrame_StoresTheFrameBeforeZero)
{
    Timecode::PrivateImpl record(TickTime(5.0), kFrameRate_VideoPAL, kTimeDisplay_25Timecode, PreviousFrameStyle());
    record.SetTime(UTF16String());
    EXPECT_TRUE(record.mIsNegative);
    EXPECT_EQ(-Frames(1, kFrameRate_VideoPAL), record.mTime);
    EXPECT_EQ(kTime_Zero, record.GetTime());
}

TEST(TimecodeSetTime, OfAnUnreadableText_StoresTheInvalidTime)
{
    CheckRecorder recorder;
    Timecode code(TickTime(5.0), kFrameRate_VideoPAL, kTimeDisplay_25Timecode);
    code.SetTime(Text("12x"));
    EXPECT_EQ(kTime_Invalid, code.GetTime());
    EXPECT_TRUE(recorder.Reports().empty());
    code.SetTime(Text("12"));
    EXPECT_EQ("00:00:00:12", Narrow(code.GetString())) << "and the object lives on";
}

TEST(TimecodeSetTime, UsesTheRateFormatAndStyleOfTheObject)
{
    Timecode feet(kTime_Zero, kFrameRate_Film24, kTimeDisplay_35mmFeetFrames);
    feet.SetTime(Text("12+07"));
    EXPECT_EQ(Frames(199, kFrameRate_Film24), feet.GetTime());
    Timecode samples(kTime_Zero, kFrameRate_Audio48000, kTimeDisplay_AudioSamplesTimecode);
    samples.SetTime(Text("1234567"));
    EXPECT_EQ("00:00:12:34567", Narrow(samples.GetString()));
}

TEST(TimecodeSetTime, OfANegativeText_SetsTheSign)
{
    Timecode::PrivateImpl record(kTime_Zero, kFrameRate_VideoNTSC, kTimeDisplay_2997DropTimecode, Timecode::Style());
    record.SetTime(Text("-1:00;00"));
    EXPECT_EQ("-0 1 0 2", Fields(record));
    record.SetTime(Text("5"));
    EXPECT_EQ("0 0 0 5", Fields(record));
}
