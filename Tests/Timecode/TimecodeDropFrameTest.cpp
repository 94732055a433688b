#include "TimecodeTestSupport.h"
#include <ExpectReport.h>

#include <Media/TimecodeDropFrame.h>

using namespace ORLTest;
using ORL::TimecodeLocal::NTSCDropFrame_HMSFToTime;
using ORL::TimecodeLocal::NTSCDropFrame_TimeToHMSF;

namespace {

std::string LabelOf(const TickTime& inTime, bool inIsHD)
{
    int hours = -1;
    int minutes = -1;
    int seconds = -1;
    long long frames = -1;
    NTSCDropFrame_TimeToHMSF(inTime, hours, minutes, seconds, frames, inIsHD);
    char text[80];
    std::snprintf(text, sizeof(text), "%02d;%02d;%02d;%02lld", hours, minutes, seconds, frames);
    return text;
}

long long CountOf(int inHours, int inMinutes, int inSeconds, long long inFrames, bool inIsHD)
{
    const TickTime time = NTSCDropFrame_HMSFToTime(inHours, inMinutes, inSeconds, inFrames, inIsHD);
    const FrameRate rate = inIsHD ? kFrameRate_VideoNTSC_HD : kFrameRate_VideoNTSC;
    EXPECT_EQ(TickTime(time.ToFrame64(rate), rate), time) << "labels stand on whole frames";
    return time.ToFrame64(rate);
}

} // namespace

TEST(TimecodeDropFrame, LabelsAroundEachBoundary_FollowTheCount)
{
    struct Row
    {
        int mLine;
        long long mFrame;
        const char* mText;
    };
    const Row rows[] = {
        {__LINE__, 0, "00;00;00;00"},
        {__LINE__, 29, "00;00;00;29"},
        {__LINE__, 30, "00;00;01;00"},
        // start of a minute: two labels are skipped
        {__LINE__, 1799, "00;00;59;29"},
        {__LINE__, 1800, "00;01;00;02"},
        {__LINE__, 1827, "00;01;00;29"},
        {__LINE__, 1828, "00;01;01;00"},
        {__LINE__, 3597, "00;01;59;29"},
        {__LINE__, 3598, "00;02;00;02"},
        {__LINE__, 16183, "00;08;59;29"},
        {__LINE__, 16184, "00;09;00;02"},
        // tenth minute: no labels are skipped
        {__LINE__, 17981, "00;09;59;29"},
        {__LINE__, 17982, "00;10;00;00"},
        {__LINE__, 17983, "00;10;00;01"},
        {__LINE__, 19781, "00;10;59;29"},
        {__LINE__, 19782, "00;11;00;02"},
        // a whole hour, and a day
        {__LINE__, 107891, "00;59;59;29"},
        {__LINE__, 107892, "01;00;00;00"},
        {__LINE__, 2589407, "23;59;59;29"},
        {__LINE__, 2589408, "24;00;00;00"},
        {__LINE__, 2589408 * 5, "120;00;00;00"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.mText, LabelOf(Frames(row.mFrame, kFrameRate_VideoNTSC), false)) << "row at line " << row.mLine;
        EXPECT_EQ(row.mText, LabelOf(-Frames(row.mFrame, kFrameRate_VideoNTSC), false))
            << "magnitude only, row at line " << row.mLine;
    }
}

TEST(TimecodeDropFrame, LabelsAt5994_DropFourAtTheStartOfEachMinuteButTheTenth)
{
    struct Row
    {
        int mLine;
        long long mFrame;
        const char* mText;
    };
    const Row rows[] = {
        {__LINE__, 59, "00;00;00;59"},      {__LINE__, 60, "00;00;01;00"},      {__LINE__, 3599, "00;00;59;59"},
        {__LINE__, 3600, "00;01;00;04"},    {__LINE__, 3655, "00;01;00;59"},    {__LINE__, 3656, "00;01;01;00"},
        {__LINE__, 7195, "00;01;59;59"},    {__LINE__, 7196, "00;02;00;04"},    {__LINE__, 35963, "00;09;59;59"},
        {__LINE__, 35964, "00;10;00;00"},   {__LINE__, 215783, "00;59;59;59"},  {__LINE__, 215784, "01;00;00;00"},
        {__LINE__, 5178815, "23;59;59;59"}, {__LINE__, 5178816, "24;00;00;00"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.mText, LabelOf(Frames(row.mFrame, kFrameRate_VideoNTSC_HD), true)) << "row at line " << row.mLine;
    }
}

TEST(TimecodeDropFrame, FrameZeroOfADroppedMinute_MeansItsFirstRealLabel)
{
    CheckRecorder recorder;
    EXPECT_EQ(1800, CountOf(0, 1, 0, 0, false));
    EXPECT_EQ(1800, CountOf(0, 1, 0, 2, false));
    EXPECT_EQ(3600, CountOf(0, 1, 0, 0, true));
    EXPECT_EQ(3600, CountOf(0, 1, 0, 4, true));
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST(TimecodeDropFrame, FrameOneOfADroppedMinute_ReportsAndFallsBelowTheMinute)
{
    CheckRecorder recorder;
    EXPECT_EQ(1799, CountOf(0, 1, 0, 1, false));
    EXPECT_EQ(3597, CountOf(0, 1, 0, 1, true)) << "3 below the minute's first real label";
    const auto reports = recorder.Reports();
    ASSERT_EQ(2u, reports.size());
    for (const CheckReport& report : reports) {
        ExpectReport(report)
            .Kind(CheckReport::kAssert)
            .Expression("inFrames != 1")
            .Message("")
            .File("Timecode")
            .Function("ORL::`anonymous-namespace'::NTSCDropFrame_HMSFToTime");
    }
}

TEST(TimecodeDropFrame, FramesTwoAndThreeOfADroppedMinuteAt5994_FallBelowTheMinuteSilently)
{
    CheckRecorder recorder;
    EXPECT_EQ(3598, CountOf(0, 1, 0, 2, true));
    EXPECT_EQ(3599, CountOf(0, 1, 0, 3, true));
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST(TimecodeDropFrame, CountOfALabel_FollowsTheArithmeticAlsoOutsideTheClock)
{
    struct Row
    {
        int mLine;
        int mHours;
        int mMinutes;
        int mSeconds;
        long long mFrames;
        bool mIsHD;
        long long mCount;
    };
    const Row rows[] = {
        {__LINE__, 1, 0, 0, 0, false, 107892},
        {__LINE__, 0, 10, 0, 1, false, 17983}, // the tenth minute has a frame 1
        {__LINE__, 0, 1, 1, 0, false, 1828},
        {__LINE__, 0, 9, 59, 29, false, 17981},
        {__LINE__, 24, 0, 0, 0, false, 2589408},
        {__LINE__, 0, 0, 59, 30, false, 1800}, // fields may exceed their range
        {__LINE__, 0, 0, 0, -1, false, -1},
        {__LINE__, 0, 1, 0, -5, false, 1800}, // a negative frame in a second that skips labels adds nothing
        {__LINE__, 0, 1, 1, -5, false, 1823},
        {__LINE__, 0, -1, 0, 0, false, 1800 - 2 * 1798},
        {__LINE__, 0, -10, 0, 0, false, -17982},
        {__LINE__, -1, 0, 0, 0, true, -215784},
        {__LINE__, 0, 61, 0, 0, true, 6 * 35964 + 3600},
    };
    CheckRecorder recorder;
    for (const Row& row : rows) {
        EXPECT_EQ(row.mCount, CountOf(row.mHours, row.mMinutes, row.mSeconds, row.mFrames, row.mIsHD))
            << "row at line " << row.mLine;
    }
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST(TimecodeDropFrame, FarthestTimes_HaveALabelToo)
{
    for (const TickTime& time : {kTime_Max, kTime_Min, kTime_Invalid}) {
        for (const bool isHD : {false, true}) {
            const FrameRate rate = isHD ? kFrameRate_VideoNTSC_HD : kFrameRate_VideoNTSC;
            int hours = 0;
            int minutes = 0;
            int seconds = 0;
            long long frames = 0;
            NTSCDropFrame_TimeToHMSF(time, hours, minutes, seconds, frames, isHD);
            const TickTime back = NTSCDropFrame_HMSFToTime(hours, minutes, seconds, frames, isHD);
            const long long count = time.ToFrame64(rate);
            EXPECT_EQ(count < 0 ? -count : count, back.ToFrame64(rate));
        }
    }
}

TEST(TimecodeDropFrame, BetweenTwoFrames_TheLabelIsThatOfTheFrameBegun)
{
    TickTime time(1800, kFrameRate_VideoNTSC);
    time -= TickTime::FromTicks(1);
    EXPECT_EQ("00;00;59;29", LabelOf(time, false));
    time += TickTime::FromTicks(kFrameRate_VideoNTSC.GetTicksPerFrame());
    EXPECT_EQ("00;01;00;02", LabelOf(time, false));
}
