// Tests which strings are timecodes: signs, separators, runs of digits.
#include "TimecodeParseSupport.h"

#include <Media/TimecodeStrings.h>

using namespace ORLTest;

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
