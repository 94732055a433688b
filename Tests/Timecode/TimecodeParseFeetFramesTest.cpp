#include "TimecodeParseSupport.h"

#include <Media/TimecodeStrings.h>

using namespace ORLTest;

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
        {__LINE__, "1+2+", 480}, // a separator at the end: all digits before it are feet
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
