#include "TimecodeTestSupport.h"
#include <ExpectReport.h>

#include <Media/TimecodeDropFrame.h>

#include <limits>

using namespace ORLTest;

namespace {

constexpr int kIntMin = std::numeric_limits<int>::min();

struct IncrementRow
{
    int mLine;
    Timecode::PrivateImpl mStart;
    int mHours;
    int mMinutes;
    int mSeconds;
    long long mFrames;
    const char* mFields;
};

void ExpectRows(const std::vector<IncrementRow>& inRows)
{
    CheckRecorder recorder;
    for (IncrementRow row : inRows) {
        row.mStart.IncrementHMSF(row.mHours, row.mMinutes, row.mSeconds, row.mFrames);
        EXPECT_EQ(row.mFields, Fields(row.mStart)) << "row at line " << row.mLine;
    }
    EXPECT_TRUE(recorder.Reports().empty());
}

Timecode::PrivateImpl Pal(int inHours, int inMinutes, int inSeconds, long long inFrames, bool inIsNegative = false)
{
    return RecordOf(inHours, inMinutes, inSeconds, inFrames, kFrameRate_VideoPAL, kTimeDisplay_25Timecode,
                    inIsNegative);
}

Timecode::PrivateImpl Drop(int inHours, int inMinutes, int inSeconds, long long inFrames, bool inIsNegative = false)
{
    return RecordOf(inHours, inMinutes, inSeconds, inFrames, kFrameRate_VideoNTSC, kTimeDisplay_2997DropTimecode,
                    inIsNegative);
}

Timecode::PrivateImpl DropHD(int inHours, int inMinutes, int inSeconds, long long inFrames, bool inIsNegative = false)
{
    return RecordOf(inHours, inMinutes, inSeconds, inFrames, kFrameRate_VideoNTSC_HD, kTimeDisplay_5994DropTimecode,
                    inIsNegative);
}

Timecode::PrivateImpl PlainFrames(long long inFrames)
{
    return Timecode::PrivateImpl(Frames(inFrames, kFrameRate_VideoPAL), kFrameRate_VideoPAL, kTimeDisplay_Frames,
                                 Timecode::Style());
}

} // namespace

TEST(TimecodeIncrement, EachField_CarriesIntoTheNext)
{
    ExpectRows({
        {__LINE__, Pal(0, 0, 0, 0), 0, 0, 0, 1, "0 0 0 1"},
        {__LINE__, Pal(0, 0, 0, 24), 0, 0, 0, 1, "0 0 1 0"},
        {__LINE__, Pal(0, 59, 59, 24), 0, 0, 0, 1, "1 0 0 0"},
        {__LINE__, Pal(1, 0, 0, 0), 0, 0, 0, -1, "0 59 59 24"},
        {__LINE__, Pal(0, 0, 0, 0), 1, 2, 3, 4, "1 2 3 4"},
        {__LINE__, Pal(1, 2, 3, 4), -1, -2, -3, -4, "0 0 0 0"},
        {__LINE__, Pal(0, 0, 0, 0), 0, 0, 0, 25 * 3661, "1 1 1 0"},
        {__LINE__, Pal(0, 0, 0, 0), 0, 61, 61, 0, "1 2 1 0"},
        {__LINE__, Pal(2, 0, 0, 0), 0, -61, -61, -26, "0 57 57 24"},
        {__LINE__, Drop(0, 0, 0, 0), 1, 2, 3, 4, "1 2 3 4"},
        {__LINE__, Drop(0, 0, 0, 0), 0, 61, 61, 31, "1 2 2 1"},
        {__LINE__, Drop(2, 0, 0, 0), 0, -61, -61, -31, "0 57 57 29"},
    });
}

TEST(TimecodeIncrement, TimeFollowsTheFields)
{
    Timecode code(kTime_Zero, kFrameRate_VideoPAL, kTimeDisplay_25Timecode);
    code.IncrementHMSF(1, 2, 3, 4);
    EXPECT_EQ(Frames(((1 * 60 + 2) * 60 + 3) * 25 + 4, kFrameRate_VideoPAL), code.GetTime());
    EXPECT_EQ("01:02:03:04", Narrow(code.GetString()));
    Timecode drop;
    drop.IncrementHMSF(0, 1, 0, 2);
    EXPECT_EQ(Frames(1800, kFrameRate_VideoNTSC), drop.GetTime());
}

TEST(TimecodeIncrement, DropFrame_StepsOverTheLabelsThatDoNotExist)
{
    ExpectRows({
        {__LINE__, Drop(0, 0, 59, 29), 0, 0, 0, 1, "0 1 0 2"},
        {__LINE__, Drop(0, 1, 0, 2), 0, 0, 0, -1, "0 0 59 29"},
        {__LINE__, Drop(0, 9, 59, 29), 0, 0, 0, 1, "0 10 0 0"},
        {__LINE__, Drop(0, 10, 0, 0), 0, 0, 0, -1, "0 9 59 29"},
        {__LINE__, Drop(0, 0, 0, 0), 0, 1, 0, 0, "0 1 0 2"},     // whole minutes step forward
        {__LINE__, Drop(0, 2, 0, 2), 0, -1, 0, -2, "0 0 59 29"}, // a negative frame increment steps back
        {__LINE__, Drop(0, 2, 0, 2), 0, -1, 0, 0, "0 1 0 2"},
        {__LINE__, Drop(0, 0, 30, 1), 0, 0, 30, 0, "0 1 0 2"},
    });
}

TEST(TimecodeIncrement, DropCorrectionAt5994_KeepsTheLimitOfTwo)
{
    ExpectRows({
        {__LINE__, DropHD(0, 0, 59, 59), 0, 0, 0, 1, "0 1 0 4"},
        {__LINE__, DropHD(0, 0, 59, 59), 0, 0, 0, 2, "0 1 0 4"},
        // only steps onto frames 0 and 1 skip labels: frames 2 and 3 can be reached
        {__LINE__, DropHD(0, 0, 59, 59), 0, 0, 0, 3, "0 1 0 2"},
        {__LINE__, DropHD(0, 0, 59, 59), 0, 0, 0, 4, "0 1 0 3"},
        {__LINE__, DropHD(0, 1, 0, 4), 0, 0, 0, -1, "0 1 0 3"},
        {__LINE__, DropHD(0, 1, 0, 4), 0, 0, 0, -2, "0 1 0 2"},
        {__LINE__, DropHD(0, 1, 0, 4), 0, 0, 0, -3, "0 0 59 59"},
        {__LINE__, DropHD(0, 10, 0, 0), 0, 0, 0, -1, "0 9 59 59"},
    });
}

TEST(TimecodeIncrement, BackFromTheFirstLabelOfAMinuteAt5994_LandsOnFrameThreeBelowTheMinute)
{
    CheckRecorder recorder;
    Timecode code(Frames(3600, kFrameRate_VideoNTSC_HD), kFrameRate_VideoNTSC_HD, kTimeDisplay_5994DropTimecode);
    code.IncrementHMSF(0, 0, 0, -1);
    EXPECT_EQ("00;01;00;03", Narrow(code.GetString()));
    EXPECT_EQ(Frames(3599, kFrameRate_VideoNTSC_HD), code.GetTime());
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST(TimecodeIncrement, Past24Hours_ClampsToExactly24Hours)
{
    ExpectRows({
        {__LINE__, Pal(24, 0, 0, 0), 1, 0, 0, 0, "24 0 0 0"},
        {__LINE__, Pal(23, 59, 59, 24), 1, 0, 0, 1, "24 0 0 0"}, // reaches 25:00:00:00
        {__LINE__, Pal(0, 0, 0, 0), 1000000, 59, 59, 24, "24 0 0 0"},
        {__LINE__, Pal(1, 0, 0, 0, true), -24, 0, 0, 0, "-24 0 0 0"},
        {__LINE__, Pal(1, 0, 0, 0, true), -2000000, 0, 0, 0, "-24 0 0 0"},
        {__LINE__, Drop(24, 0, 0, 0), 1, 0, 0, 0, "24 0 0 0"},
        {__LINE__, Drop(12, 0, 0, 0), 1000000, 59, 59, 24, "24 0 0 0"},
        {__LINE__, Drop(1, 0, 0, 0, true), -24, 0, 0, 0, "-24 0 0 0"},
        {__LINE__, DropHD(1, 0, 0, 0), 24, 0, 0, 0, "24 0 0 0"},
    });
}

TEST(TimecodeIncrement, FarBelowMinus24Hours_EndsOnTheClampedFieldsWithTheSign)
{
    // Less than -24 hours, even after the hour that crossing zero adds back.
    ExpectRows({
        {__LINE__, Pal(0, 0, 0, 0), -26, 0, 0, 0, "-24 0 0 0"},
        {__LINE__, Pal(0, 0, 0, 0), -1000000, 0, 0, 0, "-24 0 0 0"},
        {__LINE__, Drop(0, 0, 0, 0), -26, 0, 0, 0, "-24 0 0 0"},
        {__LINE__, DropHD(5, 0, 0, 0), -31, 0, 0, 0, "-24 0 0 0"},
    });
}

TEST(TimecodeIncrement, Between24And25Hours_StaysBehind24Hours)
{
    // Only hours above 24 are clamped, but the time is still folded into the day.
    Timecode::PrivateImpl record = Pal(23, 59, 59, 24);
    record.IncrementHMSF(1, 0, 0, 0);
    EXPECT_EQ("24 59 59 24", Fields(record));
    EXPECT_EQ(Frames(3600 * 25 - 1, kFrameRate_VideoPAL), record.mTime);
}

TEST(TimecodeIncrement, FromZeroDownwards_CrossesIntoNegativeTimes)
{
    ExpectRows({
        {__LINE__, Pal(0, 0, 0, 5), 0, 0, 0, -7, "-0 0 0 2"},
        {__LINE__, Pal(0, 0, 1, 0), 0, 0, -2, -5, "-0 0 1 5"},
        {__LINE__, Pal(0, 0, 0, 1), -1, 0, 0, 0, "-0 59 59 24"},
        {__LINE__, Drop(0, 0, 0, 5), 0, 0, 0, -7, "-0 0 0 2"},
        {__LINE__, DropHD(0, 0, 0, 5), 0, 0, 0, -7, "-0 0 0 2"},
    });
}

TEST(TimecodeIncrement, BelowZeroFromFrameZero_LeavesAFullFrameField)
{
    // The frame field is mirrored (frames per second minus the field), so 0 becomes a full second of frames and the
    // seconds field stays one too small. The time itself is correct.
    Timecode::PrivateImpl record = Pal(0, 0, 0, 0);
    record.IncrementHMSF(0, 0, -1, 0);
    EXPECT_EQ("-0 0 0 25", Fields(record));
    EXPECT_EQ(-TickTime(1.0), record.mTime);
    record = Pal(0, 0, 0, 0);
    record.IncrementHMSF(-1, 0, 0, 0);
    EXPECT_EQ("-0 59 59 25", Fields(record));
    EXPECT_EQ(-TickTime(3600.0), record.mTime);
    record = Drop(0, 0, 0, 0);
    record.IncrementHMSF(0, 0, -1, 0);
    EXPECT_EQ("-0 0 0 30", Fields(record));
    EXPECT_EQ(-Frames(30, kFrameRate_VideoNTSC), record.mTime);
    EXPECT_EQ("23;00;00;30", Narrow(record.GetString()));
}

TEST(TimecodeIncrement, FromZeroToMinus25Hours_ClampsNothingAndFoldsToTheEndOfTheCount)
{
    // Crossing zero adds one hour back, so -25 becomes -24, which is not clamped. The mirrored fields are added to
    // these -24 hours: the time is -25 hours. The fold of such a time subtracts days until the count wraps around.
    CheckRecorder recorder;
    for (const bool drop : {false, true}) {
        Timecode::PrivateImpl record = drop ? Drop(0, 0, 0, 0) : Pal(0, 0, 0, 0);
        record.IncrementHMSF(-25, 0, 0, 0);
        EXPECT_EQ(drop ? "24 59 59 30" : "24 59 59 25", Fields(record)) << "the sign is that of the folded time";
        const TickTime unfolded = drop ? -Frames(25 * 107892, kFrameRate_VideoNTSC) : -TickTime(90000.0);
        const auto steps = static_cast<unsigned long long>(unfolded.GetTicks())
                           - static_cast<unsigned long long>(record.mTime.GetTicks());
        const auto day = static_cast<unsigned long long>(TickTime(86400.0).GetTicks());
        EXPECT_EQ(0u, steps % day);
        EXPECT_GT(record.mTime.GetTicks(), kTime_Max.GetTicks() - TickTime(86400.0).GetTicks());
    }
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST(TimecodeIncrement, OfANegativeTime_ActsOnTheMagnitude)
{
    ExpectRows({
        {__LINE__, Pal(0, 0, 1, 0, true), 0, 0, 0, 1, "-0 0 0 24"},
        {__LINE__, Pal(0, 0, 1, 0, true), 0, 0, 0, -1, "-0 0 1 1"},
        {__LINE__, Pal(1, 2, 3, 4, true), -1, -2, -3, -4, "-2 4 6 8"},
        {__LINE__, Drop(0, 1, 0, 2, true), 0, 0, 0, 1, "-0 0 59 29"},
        {__LINE__, Drop(0, 0, 59, 29, true), 0, 0, 0, -1, "-0 1 0 2"},
    });
}

TEST(TimecodeIncrement, NegativeUpThroughZero_LooksAtTheHoursInDropFrameAndAtTheSignElsewhere)
{
    // Both times end an hour below zero instead of above: the first because its sign was already set, the second
    // because its hours were not negative before.
    Timecode::PrivateImpl record = Pal(1, 0, 0, 0, true);
    record.IncrementHMSF(2, 0, 0, 0);
    EXPECT_EQ("-1 0 0 0", Fields(record)) << "not mirrored: the time was negative on entry";
    EXPECT_EQ(-TickTime(3600.0), record.mTime);

    record = Drop(1, 0, 0, 0, true);
    record.IncrementHMSF(2, 0, 0, 0);
    EXPECT_EQ("-0 59 59 30", Fields(record)) << "mirrored: the hours were not";
    EXPECT_EQ(-Frames(107892, kFrameRate_VideoNTSC), record.mTime);

    // A magnitude that becomes exactly zero loses its sign, because the time is not negative.
    record = Pal(1, 0, 0, 0, true);
    record.IncrementHMSF(1, 0, 0, 0);
    EXPECT_EQ("0 0 0 0", Fields(record));
}

TEST(TimecodeIncrement, OfFrames_NeverCarries)
{
    CheckRecorder recorder;
    Timecode::PrivateImpl record = PlainFrames(1000000);
    record.IncrementHMSF(0, 0, 0, 3000000000LL);
    EXPECT_EQ("0 0 0 3001000000", Fields(record));
    record = PlainFrames(10);
    record.IncrementHMSF(0, 0, 0, -10);
    EXPECT_EQ("0 0 0 0", Fields(record));
    EXPECT_EQ(kTime_Zero, record.mTime);
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST(TimecodeIncrement, OfFrames_FoldsIntoTheDay)
{
    Timecode::PrivateImpl record = PlainFrames(86400 * 25);
    record.IncrementHMSF(0, 0, 0, 1);
    EXPECT_EQ(Frames(1, kFrameRate_VideoPAL), record.mTime);
    EXPECT_EQ("0 0 0 2160001", Fields(record)) << "the field keeps what was computed";
}

TEST(TimecodeIncrement, OfFramesByHoursMinutesOrSeconds_Reports)
{
    const int increments[][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    for (const auto& increment : increments) {
        CheckRecorder recorder;
        Timecode code(Frames(100, kFrameRate_VideoPAL), kFrameRate_VideoPAL, kTimeDisplay_Frames);
        code.IncrementHMSF(increment[0], increment[1], increment[2], 0);
        const auto reports = recorder.Reports();
        ASSERT_EQ(2u, reports.size());
        ExpectReport(reports[0])
            .Expression(
                "(mTimeDisplay != tvxmediatypes::kTimeDisplay_Frames) || ((inHours == 0) && (inMinutes == 0) && "
                "(inSeconds == 0))")
            .File("Timecode")
            .Function("ORL::Timecode::PrivateImpl::IncrementHMSF");
        ExpectReport(reports[1])
            .Expression("(inHours == 0) && (inMinutes == 0) && (inSeconds == 0)")
            .File("Timecode")
            .Function("ORL::`anonymous-namespace'::HMSFToTime");
        EXPECT_EQ(Frames(100, kFrameRate_VideoPAL), code.GetTime()) << "the frames alone make the time";
    }
}

TEST(TimecodeIncrement, OfFramesDownThroughZero_IsMirroredLikeEveryOtherFormat)
{
    CheckRecorder recorder;
    // A frame field below zero borrows the largest number from the clock fields; crossing zero mirrors the field back.
    Timecode::PrivateImpl record = PlainFrames(0);
    record.IncrementHMSF(0, 0, 0, -1);
    EXPECT_EQ("-0 0 0 1", Fields(record)) << "a magnitude, where SetTime would hold -1";
    EXPECT_EQ(-Frames(1, kFrameRate_VideoPAL), record.mTime);
    record.IncrementHMSF(0, 0, 0, -1);
    EXPECT_EQ("-0 0 0 2", Fields(record));
    EXPECT_EQ(-Frames(2, kFrameRate_VideoPAL), record.mTime);
    record.IncrementHMSF(0, 0, 0, 2);
    EXPECT_EQ("0 0 0 0", Fields(record));
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST(TimecodeIncrement, OfNegativeFramesAsSetTimeStoresThem_RunsIntoTheClockFields)
{
    // SetTime stores a signed count in addition to the sign, so the increment is negated and moves the wrong way. The
    // field then falls below zero and borrows from the clock fields, which is reported.
    CheckRecorder recorder;
    Timecode::PrivateImpl record = PlainFrames(-5);
    EXPECT_EQ("--5", Fields(record).substr(0, 1) + Fields(record).substr(7)) << "sign and signed count";
    record.IncrementHMSF(0, 0, 0, 1);
    EXPECT_EQ(1, record.mHours);
    EXPECT_EQ(59, record.mMinutes);
    EXPECT_EQ(59, record.mSeconds);
    EXPECT_EQ(std::numeric_limits<long long>::max() - 6, record.mFrames);
    const auto reports = recorder.Reports();
    ASSERT_EQ(1u, reports.size());
    ExpectReport(reports[0]).Expression("(inHours == 0) && (inMinutes == 0) && (inSeconds == 0)");
}

TEST(TimecodeIncrement, ExtremeIncrements_WrapAndEnd)
{
    // Only checks that the calls return and that the sanitizers report nothing.
    CheckRecorder recorder;
    const int ints[] = {0, 1, -1, 59, 60, std::numeric_limits<int>::max(), kIntMin};
    const long long frames[] = {0, 1, -1, std::numeric_limits<long long>::max(), std::numeric_limits<long long>::min()};
    for (const Format& format : kClockFormats) {
        for (const bool negative : {false, true}) {
            for (const int hours : ints) {
                for (const int minutes : ints) {
                    for (const long long frame : frames) {
                        Timecode::PrivateImpl record = RecordOf(1, 2, 3, 4, format.mRate, format.mDisplay, negative);
                        record.IncrementHMSF(hours, minutes, hours, frame);
                        ASSERT_LE(record.mHours, 24) << format.mName;
                        ASSERT_GE(record.mHours, 0) << format.mName;
                        ASSERT_LE(record.mMinutes, 59) << format.mName;
                        ASSERT_GE(record.mMinutes, 0) << format.mName;
                    }
                }
            }
        }
    }
}

TEST(TimecodeIncrement, OfAMinimalInt_NegatesToItself)
{
    // For a negative time the increments are negated, and the smallest int is its own negation: the time moves down by
    // 2^31 hours.
    ExpectRows({
        {__LINE__, Pal(1, 0, 0, 0, true), kIntMin, 0, 0, 0, "-24 0 0 0"},
    });
}

TEST(TimecodeIncrementFeetFrames, MovesTheTimeAndLeavesTheFields)
{
    struct Row
    {
        int mLine;
        TimeDisplay mDisplay;
        int mFeet;
        int mFrames;
        long long mCount;
    };
    const Row rows[] = {
        {__LINE__, kTimeDisplay_35mmFeetFrames, 10, 3, 163},
        {__LINE__, kTimeDisplay_16mmFeetFrames, 10, 3, 403},
        {__LINE__, kTimeDisplay_25Timecode, 10, 3, 403},
        {__LINE__, kTimeDisplay_35mmFeetFrames, -1, 0, -16},
        {__LINE__, kTimeDisplay_16mmFeetFrames, 0, -41, -41},
        // 32-bit arithmetic: 40 * 2^30 is a multiple of 2^32
        {__LINE__, kTimeDisplay_16mmFeetFrames, 1 << 30, 7, 7},
        {__LINE__, kTimeDisplay_35mmFeetFrames, kIntMin, -1, -1},
        {__LINE__, kTimeDisplay_35mmFeetFrames, (1 << 27) - 1, 15, 2147483647},
        {__LINE__, kTimeDisplay_35mmFeetFrames, 1 << 27, 0, kIntMin},
    };
    for (const Row& row : rows) {
        Timecode::PrivateImpl record(Frames(1000, kFrameRate_Film24), kFrameRate_Film24, row.mDisplay,
                                     Timecode::Style());
        const std::string fields = Fields(record);
        record.IncrementFeetFrames(row.mFeet, row.mFrames);
        EXPECT_EQ(Frames(1000 + row.mCount, kFrameRate_Film24), record.mTime) << "row at line " << row.mLine;
        EXPECT_EQ(fields, Fields(record)) << "row at line " << row.mLine;
    }
}

TEST(TimecodeIncrementFeetFrames, LeavesStaleFieldsUntilTheNextSetTime)
{
    Timecode code(kTime_Zero, kFrameRate_Film24, kTimeDisplay_35mmFeetFrames);
    code.IncrementFeetFrames(2, 0);
    EXPECT_EQ("2+00", Narrow(code.GetString())) << "the text is made from the time";
    code.IncrementHMSF(0, 0, 0, 5);
    EXPECT_EQ("0+05", Narrow(code.GetString())) << "the increment starts from the stale fields";
    code.IncrementFeetFrames(2, 0);
    code.SetTime(code.GetTime());
    code.IncrementHMSF(0, 0, 0, 5);
    EXPECT_EQ("2+10", Narrow(code.GetString()));
}

TEST(TimecodeIncrementFeetFrames, BelowZero_LeavesTheSignAlone)
{
    Timecode::PrivateImpl record(kTime_Zero, kFrameRate_Film24, kTimeDisplay_35mmFeetFrames, Timecode::Style());
    record.IncrementFeetFrames(-1, 0);
    EXPECT_FALSE(record.mIsNegative);
    EXPECT_EQ("-1+00", Narrow(record.GetString()));
}
