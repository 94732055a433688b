// Tests the field values of timecode strings: their digits, and fields that overflow.
#include "TimecodeParseSupport.h"

#include <ExpectReport.h>

using namespace ORLTest;

TEST(TimecodeParse, FramesOfTheShorthand_HaveAsManyDigitsAsTheRateNeeds)
{
    struct Row
    {
        int mLine;
        double mRate;
        const char* mText;
        const char* mFullText;
    };
    const Row rows[] = {
        {__LINE__, 1000.0, "12345", "12:345"},                                                 // rate > 100
        {__LINE__, 8000.0, "123456", "12:3456"},                                               // rate > 1000
        {__LINE__, 48000.0, "1234567", "12:34567"},                                            // rate > 10000
        {__LINE__, 192000.0, "1234567", "12:34567"}, {__LINE__, 10000.0, "123456", "12:3456"}, // rate <= 10000
        {__LINE__, 48000.0, "34567", ":34567"},      {__LINE__, 48000.0, "123456789012", "123:45:67:89012"},
    };
    for (const Row& row : rows) {
        const FrameRate rate(row.mRate);
        EXPECT_EQ(Parse(row.mFullText, rate, kTimeDisplay_AudioSamplesTimecode),
                  Parse(row.mText, rate, kTimeDisplay_AudioSamplesTimecode))
            << "row at line " << row.mLine;
    }
    EXPECT_EQ(Frames(12 * 48000 + 34567, kFrameRate_Audio48000),
              Parse("1234567", kFrameRate_Audio48000, kTimeDisplay_AudioSamplesTimecode));
}

TEST(TimecodeParse, Milliseconds_AreReadAtTheirOwnRate)
{
    const ParseRow rows[] = {
        {__LINE__, "12345", 12345},  {__LINE__, "1:2:3.045", 3723045},
        {__LINE__, "1.1000", 2000}, // 1000 does not exceed the rate, but is still a second
        {__LINE__, "1.1001", 2001},  {__LINE__, "99999", 99999},
        {__LINE__, "100000", 60000}, // 1 minute 00 seconds 000
    };
    ExpectRows(rows, kFrameRate_Audio48000, kTimeDisplay_AudioMsTimecode, FrameRate(1000.0));
    // a bare count uses the given rate
    const ParseRow bare[] = {{__LINE__, ":48000", 48000}};
    ExpectRows(bare, kFrameRate_Audio48000, kTimeDisplay_AudioMsTimecode, kFrameRate_Audio48000);
}

TEST(TimecodeParse, FramesEqualToTheRate_StayInTheirField)
{
    // 30 frames are one second at both rates. At 30 frames a second they stay in their field; at 29.97 they carry, and
    // no carry is reported.
    const ParseRow at30[] = {
        {__LINE__, "30", 30},
        {__LINE__, "31", 31},
        {__LINE__, "59:30", 1800},
        {__LINE__, "1:59:30", 3600},
    };
    ExpectRows(at30, kFrameRate_Video30, kTimeDisplay_30Timecode, kFrameRate_Video30);
    // 30 exceeds 29.97, so it carries to 1 second 0 frames, counted in labels.
    const ParseRow atNTSC[] = {
        {__LINE__, "30", 30},
        {__LINE__, "59:30", 1800},
        {__LINE__, "1:30", 60},
    };
    ExpectRows(atNTSC, kFrameRate_VideoNTSC, kTimeDisplay_2997NonDropTimecode, kFrameRate_VideoNTSC);
    const ParseRow atDrop[] = {
        {__LINE__, "30", 30},
        {__LINE__, "59:30", 1800}, // carries to 00;01;00;00
        {__LINE__, "0:59:29", 1799},
    };
    ExpectRows(atDrop, kFrameRate_VideoNTSC, kTimeDisplay_2997DropTimecode, kFrameRate_VideoNTSC);
}

TEST(TimecodeParse, FrameOverflowAtAFractionalRate_CarriesAtTheNominalRate)
{
    const ParseRow rows[] = {
        {__LINE__, "0:60", 60},
        {__LINE__, "0:89", 89},
        {__LINE__, "0:1799", 1799},
        {__LINE__, "0:1800", 1800},
        {__LINE__, "0:107892", 107892 - 2 * 54}, // 00;59;56;12, after 54 minutes that skip labels
    };
    ExpectRows(rows, kFrameRate_VideoNTSC, kTimeDisplay_2997DropTimecode, kFrameRate_VideoNTSC);
    const ParseRow hd[] = {
        {__LINE__, "0:60", 60},
        {__LINE__, "0:119", 119},
    };
    ExpectRows(hd, kFrameRate_VideoNTSC_HD, kTimeDisplay_5994DropTimecode, kFrameRate_VideoNTSC_HD);
    const ParseRow film[] = {
        {__LINE__, "0:24", 24},
        {__LINE__, "0:47", 47},
        {__LINE__, "59:24", 60 * 24},
    };
    ExpectRows(film, kFrameRate_23976, kTimeDisplay_23976Timecode, kFrameRate_23976);
}

TEST(TimecodeParse, FrameOverflowAtARateWithoutANominalOne_MayReport)
{
    // 14.985 truncates to 14: of 29 frames, 14 become one second; the remaining 15 still exceed the rate.
    CheckRecorder recorder;
    Parse("0:29", FrameRate(14.985), kTimeDisplay_35mmFeetFrames); // feet do not carry
    EXPECT_TRUE(recorder.Reports().empty());
    Parse("0:29", FrameRate(14.985), kTimeDisplay_25Timecode);
    const auto reports = recorder.Reports();
    ASSERT_EQ(1u, reports.size());
    ExpectReport(reports[0])
        .Kind(CheckReport::kAssert)
        .Expression("!(frames > frameRate.GetValue() && frameRate.GetValue() >= 1)")
        .Message("")
        .File("Timecode")
        .Function("ORL::`anonymous-namespace'::SMPTEStringToTime");
}

TEST(TimecodeParse, RateBelowOne_DoesNotCarryFrames)
{
    CheckRecorder recorder;
    EXPECT_EQ(Frames(500, kFrameRate_VideoPAL), Parse("0:500", FrameRate(0.5), kTimeDisplay_25Timecode));
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST(TimecodeParse, OverflowingFields_CarryAndHoursAreTakenModulo24)
{
    const ParseRow rows[] = {
        {__LINE__, "0:0:60:0", Pal(0, 1, 0, 0)},
        {__LINE__, "0:0:3599:0", Pal(0, 59, 59, 0)},
        {__LINE__, "0:60:0:0", Pal(1, 0, 0, 0)},
        {__LINE__, "0:1439:59:24", Pal(23, 59, 59, 24)},
        {__LINE__, "0:1440:0:0", 0},
        {__LINE__, "24:0:0:0", 0},
        {__LINE__, "25:00:00:00", Pal(1, 0, 0, 0)},
        {__LINE__, "-25:00:00:00", -Pal(1, 0, 0, 0)},
        {__LINE__, "999:59:59:24", Pal(999 % 24, 59, 59, 24)},
        {__LINE__, "1:2:3:0000000000000000000000000004", Pal(1, 2, 3, 4)},
    };
    ExpectPalRows(rows);
}

TEST(TimecodeParse, FieldsOfMoreThan32Bits_AreTakenModulo32Bits)
{
    const ParseRow rows[] = {
        {__LINE__, "4294967296:0:0:4", 4},
        {__LINE__, "4294967297:0:0:4", Pal(1, 0, 0, 4)},
        {__LINE__, "0:4294967297:0:4", Pal(0, 1, 0, 4)},
        {__LINE__, "0:0:4294967297:4", Pal(0, 0, 1, 4)},
        // frames have 64 bits
        {__LINE__, "0:18446744073709551620", 4},
        // the smallest frame count, whose time wraps to zero
        {__LINE__, "0:9223372036854775808", 0},
    };
    ExpectPalRows(rows);
}

TEST(TimecodeParse, NegativeFieldsFromOverflow_AreDefined)
{
    // 4294967295 is -1 in 32 bits. The negative seconds become a huge unsigned count, which does not fit and becomes
    // 2^63 frames. A frame has an even number of ticks, so the time of 2^63 frames is zero and only the 4 remain.
    const ParseRow rows[] = {
        {__LINE__, "0:0:4294967295:4", 4},
        {__LINE__, "4294967295:0:0:4", 4},
    };
    ExpectPalRows(rows);
    // These formats count labels in integers, so the result is negative.
    EXPECT_EQ(Frames(-26, kFrameRate_VideoNTSC),
              Parse("0:0:4294967295:4", kFrameRate_VideoNTSC, kTimeDisplay_2997NonDropTimecode));
    EXPECT_EQ(Frames(-26, kFrameRate_VideoNTSC),
              Parse("0:0:4294967295:4", kFrameRate_VideoNTSC, kTimeDisplay_2997DropTimecode));
}

TEST(TimecodeParse, FrameOneOfADroppedMinute_Reports)
{
    CheckRecorder recorder;
    EXPECT_EQ(Frames(1799, kFrameRate_VideoNTSC),
              Parse("00;01;00;01", kFrameRate_VideoNTSC, kTimeDisplay_2997DropTimecode));
    ASSERT_EQ(1u, recorder.Reports().size());
    ExpectReport(recorder.Reports()[0]).Expression("inFrames != 1");
}
