#include "TimecodeTestSupport.h"
#include <ExpectReport.h>

#include <Media/TimecodeFormats.h>

#include <limits>
#include <type_traits>

using namespace ORLTest;
using ORL::TimecodeLocal::GetFrameRateForDisplayMode;

static_assert(std::is_same<decltype(Timecode::Style::mHoursMode), int>::value, "the hours mode has 32 bits");

TEST(TimecodeStyle, Default_WritesHoursWithZerosAndNoSign)
{
    const Timecode::Style style;
    EXPECT_EQ(1, style.mHoursMode);
    EXPECT_FALSE(style.mNoLeadingZeros);
    EXPECT_FALSE(style.mShowSign);
    EXPECT_FALSE(style.mPreviousFrame);
}

TEST(Timecode, Default_IsZeroInNTSCDropFrame)
{
    CheckRecorder recorder;
    const Timecode code;
    EXPECT_EQ(kTime_Zero, code.GetTime());
    EXPECT_EQ(kFrameRate_VideoNTSC, code.GetFrameRate());
    EXPECT_EQ(kTimeDisplay_2997DropTimecode, code.GetFormat());
    EXPECT_EQ(1, code.GetStyle().mHoursMode);
    EXPECT_EQ("00;00;00;00", Narrow(code.GetString()));
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST(Timecode, FromThreeArguments_HasTheDefaultStyle)
{
    const Timecode code(TickTime(1.0), kFrameRate_VideoPAL, kTimeDisplay_25Timecode);
    EXPECT_EQ(1, code.GetStyle().mHoursMode);
    EXPECT_FALSE(code.GetStyle().mShowSign);
    EXPECT_EQ("00:00:01:00", Narrow(code.GetString()));
}

TEST(Timecode, GetFrameRate_AnswersTheRateThatWasPassedAlsoWhereTheFormatFixesAnother)
{
    const Timecode code(Frames(1800, kFrameRate_VideoNTSC), kFrameRate_VideoPAL, kTimeDisplay_2997DropTimecode);
    EXPECT_EQ(kFrameRate_VideoPAL, code.GetFrameRate());
    EXPECT_EQ("00;01;00;02", Narrow(code.GetString())) << "computed at the NTSC rate";
}

TEST(Timecode, GetFrameRateForDisplayMode_FollowsTheTableOfFormats)
{
    struct Row
    {
        int mLine;
        TimeDisplay mDisplay;
        FrameRate mRate;
    };
    const FrameRate own(44100.0);
    const Row rows[] = {
        {__LINE__, kTimeDisplay_24Timecode, kFrameRate_Film24},
        {__LINE__, kTimeDisplay_25Timecode, kFrameRate_VideoPAL},
        {__LINE__, kTimeDisplay_2997DropTimecode, kFrameRate_VideoNTSC},
        {__LINE__, kTimeDisplay_2997NonDropTimecode, kFrameRate_VideoNTSC},
        {__LINE__, kTimeDisplay_30Timecode, kFrameRate_Video30},
        {__LINE__, kTimeDisplay_50Timecode, kFrameRate_VideoPAL_HD},
        {__LINE__, kTimeDisplay_5994DropTimecode, kFrameRate_VideoNTSC_HD},
        {__LINE__, kTimeDisplay_5994NonDropTimecode, kFrameRate_VideoNTSC_HD},
        {__LINE__, kTimeDisplay_60Timecode, kFrameRate_Video60},
        {__LINE__, kTimeDisplay_Frames, own},
        {__LINE__, kTimeDisplay_23976Timecode, kFrameRate_23976},
        {__LINE__, kTimeDisplay_16mmFeetFrames, own},
        {__LINE__, kTimeDisplay_35mmFeetFrames, own},
        {__LINE__, kTimeDisplay_AudioSamplesTimecode, own},
        {__LINE__, kTimeDisplay_AudioMsTimecode, FrameRate(1000.0)},
    };
    CheckRecorder recorder;
    for (const Row& row : rows) {
        EXPECT_EQ(row.mRate, GetFrameRateForDisplayMode(row.mDisplay, own)) << "row at line " << row.mLine;
    }
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST(Timecode, GetFrameRateForDisplayMode_OfAnUnknownFormat_ReportsAndGivesTheZeroRate)
{
    for (const int display : {99, 113, 150, 199, 202, 300, 0, -1}) {
        CheckRecorder recorder;
        EXPECT_EQ(FrameRate(), GetFrameRateForDisplayMode(static_cast<TimeDisplay>(display), kFrameRate_VideoPAL));
        const auto reports = recorder.Reports();
        ASSERT_EQ(1u, reports.size()) << display;
        ExpectReport(reports[0])
            .Kind(CheckReport::kAssert)
            .Expression("false")
            .Message("")
            .File("Timecode")
            .Function("ORL::`anonymous-namespace'::GetFrameRateForDisplayMode");
    }
}

TEST(Timecode, FrameFormat_CountsTheDigitsThatTheFieldMayBePaddedTo)
{
    struct Row
    {
        int mLine;
        TimeDisplay mDisplay;
        FrameRate mRate;
        long long mFramesPerSecond;
        int mDigits;
    };
    const Row rows[] = {
        {__LINE__, kTimeDisplay_24Timecode, kFrameRate_VideoPAL, 24, 1},
        {__LINE__, kTimeDisplay_25Timecode, kFrameRate_VideoPAL, 25, 1},
        {__LINE__, kTimeDisplay_2997DropTimecode, kFrameRate_VideoPAL, 30, 1},
        {__LINE__, kTimeDisplay_2997NonDropTimecode, kFrameRate_VideoPAL, 30, 1},
        {__LINE__, kTimeDisplay_30Timecode, kFrameRate_VideoPAL, 30, 1},
        {__LINE__, kTimeDisplay_50Timecode, kFrameRate_VideoPAL, 50, 1},
        {__LINE__, kTimeDisplay_5994DropTimecode, kFrameRate_VideoPAL, 60, 1},
        {__LINE__, kTimeDisplay_5994NonDropTimecode, kFrameRate_VideoPAL, 60, 1},
        {__LINE__, kTimeDisplay_60Timecode, kFrameRate_VideoPAL, 60, 1},
        {__LINE__, kTimeDisplay_Frames, kFrameRate_VideoPAL, std::numeric_limits<long long>::max(), 0},
        {__LINE__, kTimeDisplay_23976Timecode, kFrameRate_VideoPAL, 24, 1},
        {__LINE__, kTimeDisplay_16mmFeetFrames, kFrameRate_VideoPAL, 25, 1},
        // feet and frames depend on the object's rate: 1001 rates use the nominal count, others are truncated
        {__LINE__, kTimeDisplay_35mmFeetFrames, kFrameRate_23976, 24, 1},
        {__LINE__, kTimeDisplay_35mmFeetFrames, kFrameRate_VideoNTSC, 30, 1},
        {__LINE__, kTimeDisplay_35mmFeetFrames, kFrameRate_VideoNTSC_HD, 60, 1},
        {__LINE__, kTimeDisplay_35mmFeetFrames, FrameRate(14.985), 14, 1},
        {__LINE__, kTimeDisplay_35mmFeetFrames, kFrameRate_Video12_5, 12, 1},
        {__LINE__, kTimeDisplay_16mmFeetFrames, kFrameRate_Video10, 10, 0},
        {__LINE__, kTimeDisplay_16mmFeetFrames, FrameRate(11.0), 11, 1},
        {__LINE__, kTimeDisplay_16mmFeetFrames, kFrameRate_Video100, 100, 1},
        {__LINE__, kTimeDisplay_16mmFeetFrames, FrameRate(110.0), 110, 2},
        {__LINE__, kTimeDisplay_16mmFeetFrames, kFrameRate_Video1000, 1000, 2},
        {__LINE__, kTimeDisplay_16mmFeetFrames, FrameRate(0.5), 0, 0},
        {__LINE__, kTimeDisplay_AudioSamplesTimecode, kFrameRate_Audio8000, 8000, 3},
        {__LINE__, kTimeDisplay_AudioSamplesTimecode, kFrameRate_Audio11025, 11025, 4},
        {__LINE__, kTimeDisplay_AudioSamplesTimecode, kFrameRate_Audio44100, 44100, 4},
        {__LINE__, kTimeDisplay_AudioSamplesTimecode, kFrameRate_Audio48000, 48000, 4},
        {__LINE__, kTimeDisplay_AudioSamplesTimecode, kFrameRate_Audio96000, 96000, 4},
        {__LINE__, kTimeDisplay_AudioSamplesTimecode, FrameRate(100000.0), 100000, 4},
        {__LINE__, kTimeDisplay_AudioSamplesTimecode, kFrameRate_Audio192000, 192000, 5},
        {__LINE__, kTimeDisplay_AudioMsTimecode, kFrameRate_Audio48000, 1000, 2},
    };
    CheckRecorder recorder;
    for (const Row& row : rows) {
        const Timecode::PrivateImpl record(kTime_Zero, row.mRate, row.mDisplay, Timecode::Style());
        EXPECT_EQ(row.mFramesPerSecond, record.mFramesPerSecond) << "row at line " << row.mLine;
        EXPECT_EQ(row.mDigits, record.mFrameDigits) << "row at line " << row.mLine;
    }
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST(Timecode, RateBelowOneFrameASecond_KeepsItsCountInTheFrameField)
{
    CheckRecorder recorder;
    for (const double rate : {0.5, 0.001, -25.0, -0.5}) {
        const FrameRate own(rate);
        Timecode::PrivateImpl record(kTime_Zero, own, kTimeDisplay_16mmFeetFrames, Timecode::Style());
        record.SetTime(Frames(1234567, own));
        EXPECT_EQ("0 0 0 1234567", Fields(record)) << rate;
        record.IncrementHMSF(0, 0, 0, 1);
        EXPECT_EQ(1234568, record.mFrames) << rate;
        EXPECT_EQ(0, record.mHours + record.mMinutes + record.mSeconds) << rate;
    }
}

TEST(Timecode, Copy_IsDeep)
{
    Timecode code(TickTime(3600.0), kFrameRate_VideoPAL, kTimeDisplay_25Timecode, SignedStyle());
    const Timecode copy(code);
    code.SetTime(TickTime(1.0));
    code.SetFormat(kTimeDisplay_30Timecode, kFrameRate_Video30);
    code.SetStyle(Timecode::Style());
    EXPECT_EQ("+01:00:00:00", Narrow(copy.GetString()));
    EXPECT_EQ(kFrameRate_VideoPAL, copy.GetFrameRate());
    EXPECT_EQ(kTimeDisplay_25Timecode, copy.GetFormat());
}

TEST(Timecode, Assignment_CopiesEverythingAndGivesTheObject)
{
    Timecode::Style style;
    style.mHoursMode = 0;
    style.mNoLeadingZeros = true;
    style.mShowSign = true;
    style.mPreviousFrame = true;
    const Timecode code(TickTime(-5.0), kFrameRate_Audio48000, kTimeDisplay_AudioSamplesTimecode, style);
    Timecode other;
    EXPECT_EQ(&other, &(other = code));
    EXPECT_EQ(code.GetTime(), other.GetTime());
    EXPECT_EQ(code.GetFrameRate(), other.GetFrameRate());
    EXPECT_EQ(code.GetFormat(), other.GetFormat());
    EXPECT_EQ(0, other.GetStyle().mHoursMode);
    EXPECT_TRUE(other.GetStyle().mNoLeadingZeros);
    EXPECT_TRUE(other.GetStyle().mShowSign);
    EXPECT_TRUE(other.GetStyle().mPreviousFrame);
    EXPECT_EQ(Narrow(code.GetString()), Narrow(other.GetString()));
}

TEST(Timecode, AssignedToItself_KeepsItsValue)
{
    Timecode code(TickTime(60.0), kFrameRate_VideoPAL, kTimeDisplay_25Timecode);
    Timecode& same = code;
    code = same;
    EXPECT_EQ("00:01:00:00", Narrow(code.GetString()));
}

TEST(Timecode, MovedFrom_IsStillWhole)
{
    Timecode code(TickTime(60.0), kFrameRate_VideoPAL, kTimeDisplay_25Timecode);
    const Timecode moved(std::move(code));
    EXPECT_EQ("00:01:00:00", Narrow(moved.GetString()));
    EXPECT_EQ("00:01:00:00", Narrow(code.GetString()));
}

TEST(Timecode, CopyOfAnObjectWithStaleFields_HasFreshOnes)
{
    Timecode code(kTime_Zero, kFrameRate_Film24, kTimeDisplay_35mmFeetFrames);
    code.IncrementFeetFrames(10, 0);
    Timecode copy(code);
    copy.IncrementHMSF(0, 0, 1, 0);
    EXPECT_EQ(Frames(184, kFrameRate_Film24), copy.GetTime());
    code.IncrementHMSF(0, 0, 1, 0);
    EXPECT_EQ(Frames(24, kFrameRate_Film24), code.GetTime()) << "the original starts from its stale fields";
}

TEST(Timecode, PreviousFrame_StoresOneFrameBeforeThePublicTime)
{
    Timecode code(Frames(25, kFrameRate_VideoPAL), kFrameRate_VideoPAL, kTimeDisplay_25Timecode, PreviousFrameStyle());
    EXPECT_EQ(Frames(25, kFrameRate_VideoPAL), code.GetTime());
    EXPECT_EQ("00:00:00:24", Narrow(code.GetString()));
    code.SetTime(Frames(50, kFrameRate_VideoPAL));
    EXPECT_EQ(Frames(50, kFrameRate_VideoPAL), code.GetTime());
    EXPECT_EQ("00:00:01:24", Narrow(code.GetString()));
    const Timecode copy(code);
    EXPECT_EQ(code.GetTime(), copy.GetTime());
    EXPECT_EQ("00:00:01:24", Narrow(copy.GetString()));
}

TEST(Timecode, PreviousFrameOfZero_IsNegative)
{
    const Timecode::PrivateImpl record(kTime_Zero, kFrameRate_VideoPAL, kTimeDisplay_25Timecode, PreviousFrameStyle());
    EXPECT_TRUE(record.mIsNegative);
    EXPECT_EQ("-0 0 0 1", Fields(record));
    EXPECT_EQ(kTime_Zero, record.GetTime());
}

TEST(Timecode, TogglingPreviousFrame_MovesThePublicTimeByOneFrameAndLeavesTheText)
{
    Timecode code(Frames(100, kFrameRate_VideoPAL), kFrameRate_VideoPAL, kTimeDisplay_25Timecode);
    const std::string text = Narrow(code.GetString());
    code.SetStyle(PreviousFrameStyle());
    EXPECT_EQ(Frames(101, kFrameRate_VideoPAL), code.GetTime());
    EXPECT_EQ(text, Narrow(code.GetString()));
    code.SetStyle(Timecode::Style());
    EXPECT_EQ(Frames(100, kFrameRate_VideoPAL), code.GetTime());
    EXPECT_EQ(text, Narrow(code.GetString()));
}

TEST(Timecode, SetFormatWithPreviousFrame_KeepsThePublicTimeAndMovesTheStoredOne)
{
    Timecode code(TickTime(10.0), kFrameRate_VideoPAL, kTimeDisplay_25Timecode, PreviousFrameStyle());
    EXPECT_EQ("00:00:09:24", Narrow(code.GetString()));
    code.SetFormat(kTimeDisplay_50Timecode, kFrameRate_VideoPAL_HD);
    EXPECT_EQ(TickTime(10.0), code.GetTime());
    EXPECT_EQ("00:00:09:49", Narrow(code.GetString()));
    code.SetFormat(kTimeDisplay_AudioSamplesTimecode, kFrameRate_Audio48000);
    EXPECT_EQ(TickTime(10.0), code.GetTime());
    EXPECT_EQ("00:00:09:47999", Narrow(code.GetString()));
}

TEST(Timecode, SetFormat_MakesFieldsAndFrameFormatAgreeWithTheNewFormat)
{
    Timecode::PrivateImpl record(Frames(1800, kFrameRate_VideoNTSC), kFrameRate_VideoNTSC,
                                 kTimeDisplay_2997DropTimecode, Timecode::Style());
    EXPECT_EQ("0 1 0 2", Fields(record));
    record.SetFormat(kTimeDisplay_2997NonDropTimecode, kFrameRate_VideoNTSC);
    EXPECT_EQ("0 1 0 0", Fields(record));
    record.SetFormat(kTimeDisplay_Frames, kFrameRate_VideoNTSC);
    EXPECT_EQ("0 0 0 1800", Fields(record));
    EXPECT_EQ(std::numeric_limits<long long>::max(), record.mFramesPerSecond);
    record.SetFormat(kTimeDisplay_AudioMsTimecode, kFrameRate_Audio44100);
    EXPECT_EQ("0 1 0 60", Fields(record));
    EXPECT_EQ(1000, record.mFramesPerSecond);
    EXPECT_EQ(2, record.mFrameDigits);
}

TEST(Timecode, SetFormat_LeavesTheSignWhereTheFieldsDoNotTellIt)
{
    // -100 ticks, less than one frame, are negative in the drop format but unsigned zero in the non-drop format.
    Timecode::PrivateImpl record(TickTime::FromTicks(-100), kFrameRate_VideoNTSC, kTimeDisplay_2997DropTimecode,
                                 Timecode::Style());
    EXPECT_TRUE(record.mIsNegative);
    record.SetFormat(kTimeDisplay_2997NonDropTimecode, kFrameRate_VideoNTSC);
    EXPECT_FALSE(record.mIsNegative);
    record.SetFormat(kTimeDisplay_2997DropTimecode, kFrameRate_VideoNTSC);
    EXPECT_FALSE(record.mIsNegative) << "the sign is not made from the time again";
}

TEST(Timecode, NegativeTime_KeepsItsSignBesideTheMagnitudes)
{
    for (const Format& format : kClockFormats) {
        const Timecode::PrivateImpl record(-Frames(90 * 60 * format.mLabelsPerSecond, format.mRate), format.mRate,
                                           format.mDisplay, Timecode::Style());
        EXPECT_TRUE(record.mIsNegative) << format.mName;
        const bool drop = ORL::TimecodeLocal::IsDropFrame(format.mDisplay);
        EXPECT_EQ(drop ? "-1 30 5 " + std::to_string(format.mLabelsPerSecond / 5 * 2) : "-1 30 0 0", Fields(record))
            << format.mName;
    }
}

TEST(Timecode, FractionalRateInFeetAndFrames_Splits23AndCarriesAt24)
{
    // The fields use the truncated rate, the carry limit uses the nominal one.
    for (const TimeDisplay display : {kTimeDisplay_16mmFeetFrames, kTimeDisplay_35mmFeetFrames}) {
        Timecode::PrivateImpl record(Frames(100, kFrameRate_23976), kFrameRate_23976, display, Timecode::Style());
        EXPECT_EQ("0 0 4 8", Fields(record)) << "100 = 4 * 23 + 8";
        EXPECT_EQ(24, record.mFramesPerSecond);
        record.IncrementHMSF(0, 0, 0, 15);
        EXPECT_EQ("0 0 4 23", Fields(record)) << "23 frames stay below the limit";
        EXPECT_EQ(Frames(95 + 23, kFrameRate_23976), record.mTime) << "4 seconds are 95.9 frames";
        record.IncrementHMSF(0, 0, 0, 1);
        EXPECT_EQ("0 0 5 0", Fields(record));
        EXPECT_EQ(Frames(119, kFrameRate_23976), record.mTime) << "5 seconds are 119.88 frames";
    }
}
