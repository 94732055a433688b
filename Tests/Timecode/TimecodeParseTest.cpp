#include "TimecodeTestSupport.h"
#include <ExpectReport.h>

#include <Media/TimecodeStrings.h>

#include <limits>

using namespace ORLTest;

namespace {

TickTime Parse(const std::string& inText, const FrameRate& inRate, TimeDisplay inDisplay, bool inPreviousFrame = false)
{
    return Timecode::StringToTime(Text(inText), inRate, inDisplay, inPreviousFrame);
}

constexpr long long kUnreadable = std::numeric_limits<long long>::min();

// A text and the frame count that it means, or kUnreadable.
struct ParseRow
{
    int mLine;
    const char* mText;
    long long mFrames;
};

template <std::size_t N>
void ExpectRows(const ParseRow (&inRows)[N], const FrameRate& inRate, TimeDisplay inDisplay,
                const FrameRate& inCountRate)
{
    CheckRecorder recorder;
    for (const ParseRow& row : inRows) {
        const TickTime expected = row.mFrames == kUnreadable ? kTime_Invalid : TickTime(row.mFrames, inCountRate);
        EXPECT_EQ(expected, Parse(row.mText, inRate, inDisplay)) << "\"" << row.mText << "\" at line " << row.mLine;
        EXPECT_EQ(row.mFrames == kUnreadable, Timecode::FindUnreadable(Text(row.mText), inDisplay) != UTF16String::npos)
            << "\"" << row.mText << "\" at line " << row.mLine;
    }
    EXPECT_TRUE(recorder.Reports().empty());
}

template <std::size_t N>
void ExpectPalRows(const ParseRow (&inRows)[N])
{
    ExpectRows(inRows, kFrameRate_VideoPAL, kTimeDisplay_25Timecode, kFrameRate_VideoPAL);
}

constexpr long long Pal(long long inHours, long long inMinutes, long long inSeconds, long long inFrames)
{
    return ((inHours * 60 + inMinutes) * 60 + inSeconds) * 25 + inFrames;
}

} // namespace

TEST(TimecodeParse, EmptyText_IsZeroWithoutAFrameAdded)
{
    for (const bool previousFrame : {false, true}) {
        EXPECT_EQ(kTime_Zero, Parse("", kFrameRate_VideoPAL, kTimeDisplay_25Timecode, previousFrame));
        EXPECT_EQ(kTime_Zero, Parse("", kFrameRate_VideoPAL, kTimeDisplay_16mmFeetFrames, previousFrame));
        EXPECT_EQ(kTime_Zero, Parse("", kFrameRate_VideoPAL, kTimeDisplay_Frames, previousFrame));
    }
    EXPECT_EQ(kTime_Invalid, ORL::TimecodeLocal::SMPTEStringToTime(UTF16String(), kFrameRate_VideoPAL,
                                                                   kTimeDisplay_25Timecode, false));
}

TEST(TimecodeParse, SignOrSeparatorWithNothingBehind_IsUnreadable)
{
    const ParseRow rows[] = {
        {__LINE__, "-", kUnreadable},
        {__LINE__, "+", kUnreadable},
        {__LINE__, ":", kUnreadable},
        {__LINE__, ";", kUnreadable},
        {__LINE__, ".", kUnreadable},
        {__LINE__, "-:", kUnreadable},
        {__LINE__, "+;", kUnreadable},
        {__LINE__, "-.", kUnreadable},
        // a separator after the leading one makes an empty field
        {__LINE__, "::", 0},
        {__LINE__, "-::", 0},
        {__LINE__, ":::", kUnreadable},
    };
    ExpectPalRows(rows);
}

TEST(TimecodeParse, TrailingSeparator_IsAnEmptyFrameField)
{
    const ParseRow rows[] = {
        {__LINE__, "12:", Pal(0, 0, 12, 0)},  {__LINE__, "1:2:3:", Pal(1, 2, 3, 0)},
        {__LINE__, "1:2:3:4:", kUnreadable},  {__LINE__, "1:2:3:4:5", kUnreadable},
        {__LINE__, ":12:", Pal(0, 0, 12, 0)},
    };
    ExpectPalRows(rows);
}

TEST(TimecodeParse, WhatIsNoDigitAndNoSeparator_IsUnreadable)
{
    const ParseRow rows[] = {
        {__LINE__, "1::2", kUnreadable},         {__LINE__, "1:;2", kUnreadable}, {__LINE__, "1 2", kUnreadable},
        {__LINE__, " 12", kUnreadable},          {__LINE__, "12 ", kUnreadable},  {__LINE__, "1a2", kUnreadable},
        {__LINE__, "1-2", kUnreadable},          {__LINE__, "1+2", kUnreadable},  {__LINE__, "--1", kUnreadable},
        {__LINE__, "+-1", kUnreadable},          {__LINE__, "-+1", kUnreadable},  {__LINE__, ":-1", kUnreadable},
        {__LINE__, "1,2", kUnreadable},          {__LINE__, "1/2", kUnreadable},  {__LINE__, "\x7f", kUnreadable},
        {__LINE__, "01:02:03:04x", kUnreadable},
    };
    ExpectPalRows(rows);
}

TEST(TimecodeParse, UnitsThatOnlyResembleDigits_AreUnreadable)
{
    // full-width digits, Arabic digits, a full-width colon, a lone surrogate, a zero unit
    const unsigned short units[] = {0xFF11, 0x0661, 0xFF1A, 0xD800, 0x0000, 0x0131};
    for (const unsigned short unit : units) {
        UTF16String text = Text("12");
        text += unit;
        EXPECT_EQ(kTime_Invalid, Timecode::StringToTime(text, kFrameRate_VideoPAL, kTimeDisplay_25Timecode, false));
        EXPECT_EQ(kTime_Invalid, Timecode::StringToTime(text, kFrameRate_VideoPAL, kTimeDisplay_16mmFeetFrames, false));
    }
}

TEST(TimecodeParse, Separators_AreInterchangeableInAnyMix)
{
    const ParseRow rows[] = {
        {__LINE__, "01:02:03:04", Pal(1, 2, 3, 4)}, {__LINE__, "01;02;03;04", Pal(1, 2, 3, 4)},
        {__LINE__, "01.02.03.04", Pal(1, 2, 3, 4)}, {__LINE__, "1;2.3:4", Pal(1, 2, 3, 4)},
        {__LINE__, "1:2", Pal(0, 0, 1, 2)},         {__LINE__, "1:2:3", Pal(0, 1, 2, 3)},
        {__LINE__, "+1:2:3:4", Pal(1, 2, 3, 4)},    {__LINE__, "-1:2:3:4", -Pal(1, 2, 3, 4)},
        {__LINE__, "0001:0002", Pal(0, 0, 1, 2)},
    };
    ExpectPalRows(rows);
}

TEST(TimecodeParse, LeadSeparator_MattersOnlyForALoneNumber)
{
    const ParseRow rows[] = {
        {__LINE__, ":5:6", Pal(0, 0, 5, 6)},
        {__LINE__, "::5", Pal(0, 0, 0, 5)},
        {__LINE__, ":1234", 1234},
        {__LINE__, ".1234", 1234},
        {__LINE__, "-;1234", -1234},
        // the digits are neither split into fields nor folded into the day
        {__LINE__, ":123456789", 123456789},
    };
    ExpectPalRows(rows);
    EXPECT_EQ("00:00:49:09", Narrow(Timecode(Parse(":1234", kFrameRate_VideoPAL, kTimeDisplay_25Timecode),
                                             kFrameRate_VideoPAL, kTimeDisplay_25Timecode)
                                        .GetString()));
}

TEST(TimecodeParse, RunOfDigits_IsSplitFromTheRight)
{
    const ParseRow rows[] = {
        {__LINE__, "4", 4},
        {__LINE__, "24", 24},
        {__LINE__, "99", Pal(0, 0, 3, 24)},
        {__LINE__, "100", Pal(0, 0, 1, 0)},
        {__LINE__, "1234", Pal(0, 0, 13, 9)}, // 12 seconds 34 frames
        {__LINE__, "9999", Pal(0, 0, 99 + 3, 24)},
        {__LINE__, "10000", Pal(0, 1, 0, 0)},
        {__LINE__, "12345", Pal(0, 1, 24, 20)},
        {__LINE__, "1000000", Pal(1, 0, 0, 0)},
        {__LINE__, "01020304", Pal(1, 2, 3, 4)},
        {__LINE__, "123456789", Pal(3, 46, 10, 14)},
        {__LINE__, "-1020304", -Pal(1, 2, 3, 4)},
        {__LINE__, "+1020304", Pal(1, 2, 3, 4)},
        {__LINE__, "24000000", 0},
    };
    ExpectPalRows(rows);
}

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
        {__LINE__, 1000.0, "12345", "12:345"},                                                 // above 100
        {__LINE__, 8000.0, "123456", "12:3456"},                                               // above 1000
        {__LINE__, 48000.0, "1234567", "12:34567"},                                            // above 10000
        {__LINE__, 192000.0, "1234567", "12:34567"}, {__LINE__, 10000.0, "123456", "12:3456"}, // not above 10000
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
    // The result is one second at both rates. The two rates differ in whether the field carries; the rows without a
    // report show that.
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
    // 2^63 frames. A frame has an even number of ticks, so their time is zero and only the frames remain.
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

TEST(TimecodeParse, DropFrameText_IsReadByTheFormatWhateverItsSeparators)
{
    const ParseRow rows[] = {
        {__LINE__, "00:01:00;00", 1800},  {__LINE__, "00:01:00:00", 1800},   {__LINE__, "00;01;00;02", 1800},
        {__LINE__, "00.01.00.02", 1800},  {__LINE__, "01:00:00:00", 107892}, {__LINE__, "10000", 1800},
        {__LINE__, "1:00;00.00", 107892},
    };
    ExpectRows(rows, kFrameRate_VideoNTSC, kTimeDisplay_2997DropTimecode, kFrameRate_VideoNTSC);
    const ParseRow nonDrop[] = {
        {__LINE__, "00;01;00;00", 1800},
        {__LINE__, "01;00;00;00", 108000},
    };
    ExpectRows(nonDrop, kFrameRate_VideoNTSC, kTimeDisplay_2997NonDropTimecode, kFrameRate_VideoNTSC);
}

TEST(TimecodeParse, FrameOneOfADroppedMinute_Reports)
{
    CheckRecorder recorder;
    EXPECT_EQ(Frames(1799, kFrameRate_VideoNTSC),
              Parse("00;01;00;01", kFrameRate_VideoNTSC, kTimeDisplay_2997DropTimecode));
    ASSERT_EQ(1u, recorder.Reports().size());
    ExpectReport(recorder.Reports()[0]).Expression("inFrames != 1");
}

TEST(TimecodeParse, PlainFrames_TakeOneLeadSeparatorAndNoOther)
{
    const ParseRow rows[] = {
        {__LINE__, "120", 120},
        {__LINE__, ":120", 120},
        {__LINE__, "-:120", -120},
        {__LINE__, "1:20", kUnreadable},
        {__LINE__, "::20", kUnreadable},
        {__LINE__, "20:", kUnreadable},
        {__LINE__, ":", kUnreadable},
        {__LINE__, "12345678901", 12345678901LL}, // not folded
        {__LINE__, "18446744073709551615", -1},
    };
    ExpectRows(rows, kFrameRate_VideoPAL, kTimeDisplay_Frames, kFrameRate_VideoPAL);
}

TEST(TimecodeParse, SignAndAddedFrame_ComeInOppositeOrderForCountsAndLabels)
{
    // For a bare count the frame is added before the sign is applied, for a label after it.
    const FrameRate rate = kFrameRate_VideoPAL;
    EXPECT_EQ(Frames(-11, rate), Parse("-10", rate, kTimeDisplay_Frames, true));
    EXPECT_EQ(Frames(-11, rate), Parse("-:10", rate, kTimeDisplay_25Timecode, true));
    EXPECT_EQ(Frames(-11, rate), Parse("-10", rate, kTimeDisplay_16mmFeetFrames, true));
    EXPECT_EQ(Frames(-9, rate), Parse("-10", rate, kTimeDisplay_25Timecode, true));
    EXPECT_EQ(Frames(-9, rate), Parse("-0:10", rate, kTimeDisplay_25Timecode, true));
    EXPECT_EQ(Frames(11, rate), Parse("10", rate, kTimeDisplay_25Timecode, true));
    EXPECT_EQ(Frames(11, rate), Parse(":10", rate, kTimeDisplay_25Timecode, true));
}

TEST(TimecodeParse, AddedFrame_IsOneOfTheGivenRate)
{
    TickTime expected(10, kFrameRate_VideoNTSC);
    expected.AddFrames(1, kFrameRate_VideoPAL);
    EXPECT_EQ(expected, Parse("10", kFrameRate_VideoPAL, kTimeDisplay_2997DropTimecode, true));
}

TEST(TimecodeParseFeetFrames, SixteenMillimetres_Have40FramesAFoot)
{
    const ParseRow rows[] = {
        {__LINE__, "123", 40 + 23},
        {__LINE__, "12", 12},
        {__LINE__, "1", 1},
        {__LINE__, "12345678", 123456 * 40 + 78},
        {__LINE__, "123456789", kUnreadable},
        {__LINE__, "12+", 480},
        {__LINE__, "12+07", 487},
        {__LINE__, "++5", 5},
        {__LINE__, "+5", 5},
        {__LINE__, "1;2", 42},
        {__LINE__, "1:2", 42},
        {__LINE__, "1.2", 42},
        {__LINE__, "1+99", 139}, // the frames have no upper limit
        {__LINE__, "1+2+", 480}, // all digits before the end, without the separator
        {__LINE__, "12+34:", 1234 * 40},
        {__LINE__, "1+2+3", kUnreadable},
        {__LINE__, "1++2", kUnreadable},
        {__LINE__, "1+:2", kUnreadable},
        {__LINE__, "-1+2", -42},
        {__LINE__, "1-2", kUnreadable},
        {__LINE__, "--1", kUnreadable},
        {__LINE__, "+-1", kUnreadable},
        {__LINE__, " 1", kUnreadable},
        {__LINE__, "1 ", kUnreadable},
        {__LINE__, "1x", kUnreadable},
        {__LINE__, ":5", 5}, // a leading separator makes the feet empty
        {__LINE__, "123456789+1", 123456789LL * 40 + 1},
        // in feet and frames, a lone sign or a lone separator is zero
        {__LINE__, "-", 0},
        {__LINE__, "+", 0},
        {__LINE__, ":", 0},
        {__LINE__, "++", 0},
        {__LINE__, "-:", 0},
        {__LINE__, "::", kUnreadable},
        {__LINE__, "+++", kUnreadable},
        // not folded into the day
        {__LINE__, "99999999", 999999LL * 40 + 99},
    };
    ExpectRows(rows, kFrameRate_Film24, kTimeDisplay_16mmFeetFrames, kFrameRate_Film24);
}

TEST(TimecodeParseFeetFrames, ThirtyFiveMillimetres_Have16FramesAFoot)
{
    const ParseRow rows[] = {
        {__LINE__, "123", 16 + 23},
        {__LINE__, "12+07", 199},
        {__LINE__, "-12+07", -199},
    };
    ExpectRows(rows, kFrameRate_Film24, kTimeDisplay_35mmFeetFrames, kFrameRate_Film24);
}

TEST(TimecodeParseFeetFrames, OtherFormatsThatArrive_Have40FramesAFoot)
{
    EXPECT_EQ(Frames(487, kFrameRate_Film24), ORL::TimecodeLocal::FeetFramesStringToTime(
                                                  Text("12+07"), kFrameRate_Film24, kTimeDisplay_25Timecode, false));
}

TEST(TimecodeParse, ParseDigits_SkipsEverythingElseAndWraps)
{
    struct Row
    {
        int mLine;
        const char* mText;
        unsigned long long mValue;
    };
    const Row rows[] = {
        {__LINE__, "", 0},
        {__LINE__, "0", 0},
        {__LINE__, "007", 7},
        {__LINE__, "1+2x3", 123},
        {__LINE__, "abc", 0},
        {__LINE__, "/09:", 9},
        {__LINE__, "18446744073709551615", 18446744073709551615ull},
        {__LINE__, "18446744073709551616", 0},
        {__LINE__, "99999999999999999999", 7766279631452241919ull},
    };
    for (const Row& row : rows) {
        const UTF16String text = Text(row.mText);
        EXPECT_EQ(row.mValue, ORL::TimecodeLocal::ParseDigits(text.data(), text.size())) << "row at line " << row.mLine;
    }
}

TEST(TimecodeParse, FindUnreadable_ShowsWhereReadingStops)
{
    struct Row
    {
        int mLine;
        const char* mText;
        TimeDisplay mDisplay;
        std::size_t mStop;
    };
    const std::size_t none = UTF16String::npos;
    const Row rows[] = {
        {__LINE__, "", kTimeDisplay_25Timecode, none},
        {__LINE__, "01:02:03:04", kTimeDisplay_25Timecode, none},
        {__LINE__, "-", kTimeDisplay_25Timecode, 1},
        {__LINE__, ":", kTimeDisplay_25Timecode, 1},
        {__LINE__, "-:", kTimeDisplay_25Timecode, 2},
        {__LINE__, "1::2", kTimeDisplay_25Timecode, 2},
        {__LINE__, "12x4", kTimeDisplay_25Timecode, 2},
        {__LINE__, "1:2:3:4:5", kTimeDisplay_25Timecode, 8},
        {__LINE__, "1:2:3:4:", kTimeDisplay_25Timecode, 7},
        {__LINE__, "1:2", kTimeDisplay_Frames, 1},
        {__LINE__, "1+2+3", kTimeDisplay_16mmFeetFrames, 4},
        {__LINE__, "123456789", kTimeDisplay_16mmFeetFrames, 8},
        {__LINE__, "-123456789", kTimeDisplay_16mmFeetFrames, 9},
        {__LINE__, "1+2", kTimeDisplay_25Timecode, 1},
        {__LINE__, "", kTimeDisplay_16mmFeetFrames, none},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.mStop, Timecode::FindUnreadable(Text(row.mText), row.mDisplay)) << "row at line " << row.mLine;
    }
}

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
