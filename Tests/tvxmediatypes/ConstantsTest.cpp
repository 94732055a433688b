#include <tvxmediatypes/Constants.h>
#include <tvxmediatypes/TimeDisplay.h>

#include <gtest/gtest.h>

using namespace tvxmediatypes;

// The constants must be constant expressions, or this file does not compile.
static_assert(kTime_Max > kTime_Zero, "");
static_assert(kFrameRate_VideoNTSC.GetTicksPerFrame() == 23543520, "");
static_assert(kFrameRate_23976.GetTicksPerFrame() == 29429400, "");
static_assert(kFrameRate_VideoNTSC_HD.GetTicksPerFrame() == 11771760, "");

namespace {

// A static in another translation unit reads the constants before main: they must be initialised without running code.
const TickTime sDayAtLoad = [] {
    TickTime day = kTime_Zero;
    day.AddFrames(86400 * 25, kFrameRate_VideoPAL);
    return day;
}();

} // namespace

TEST(Constants, ReadByAStaticAtLoad_AlreadyHaveTheirValues)
{
    EXPECT_EQ(TickTime(86400.0), sDayAtLoad);
}

TEST(TimeDisplay, Values_AreFixed)
{
    EXPECT_EQ(100, kTimeDisplay_24Timecode);
    EXPECT_EQ(101, kTimeDisplay_25Timecode);
    EXPECT_EQ(102, kTimeDisplay_2997DropTimecode);
    EXPECT_EQ(103, kTimeDisplay_2997NonDropTimecode);
    EXPECT_EQ(104, kTimeDisplay_30Timecode);
    EXPECT_EQ(105, kTimeDisplay_50Timecode);
    EXPECT_EQ(106, kTimeDisplay_5994DropTimecode);
    EXPECT_EQ(107, kTimeDisplay_5994NonDropTimecode);
    EXPECT_EQ(108, kTimeDisplay_60Timecode);
    EXPECT_EQ(109, kTimeDisplay_Frames);
    EXPECT_EQ(110, kTimeDisplay_23976Timecode);
    EXPECT_EQ(111, kTimeDisplay_16mmFeetFrames);
    EXPECT_EQ(112, kTimeDisplay_35mmFeetFrames);
    EXPECT_EQ(200, kTimeDisplay_AudioSamplesTimecode);
    EXPECT_EQ(201, kTimeDisplay_AudioMsTimecode);
}
