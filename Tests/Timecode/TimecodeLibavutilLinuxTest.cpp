// Compares labels with libavutil's timecode functions. The two implementations agree on every frame of a day. The
// strings and times on which they differ are listed with the reason.
#include "TimecodeTestSupport.h"

extern "C" {
#include <libavutil/log.h>
#include <libavutil/rational.h>
#include <libavutil/timecode.h>
}

#include <cstring>

using namespace ORLTest;

namespace {

struct PeerFormat
{
    const char* mName;
    TimeDisplay mDisplay;
    FrameRate mRate;
    AVRational mPeerRate;
    unsigned mPeerFlags;
};

const PeerFormat kPeerFormats[] = {
    {"2997Drop", kTimeDisplay_2997DropTimecode, kFrameRate_VideoNTSC, {30000, 1001}, AV_TIMECODE_FLAG_DROPFRAME},
    {"5994Drop", kTimeDisplay_5994DropTimecode, kFrameRate_VideoNTSC_HD, {60000, 1001}, AV_TIMECODE_FLAG_DROPFRAME},
    {"2997NonDrop", kTimeDisplay_2997NonDropTimecode, kFrameRate_VideoNTSC, {30000, 1001}, 0},
    {"5994NonDrop", kTimeDisplay_5994NonDropTimecode, kFrameRate_VideoNTSC_HD, {60000, 1001}, 0},
    {"23976", kTimeDisplay_23976Timecode, kFrameRate_23976, {24000, 1001}, 0},
    {"24", kTimeDisplay_24Timecode, kFrameRate_Film24, {24, 1}, 0},
    {"25", kTimeDisplay_25Timecode, kFrameRate_VideoPAL, {25, 1}, 0},
    {"30", kTimeDisplay_30Timecode, kFrameRate_Video30, {30, 1}, 0},
    {"50", kTimeDisplay_50Timecode, kFrameRate_VideoPAL_HD, {50, 1}, 0},
    {"60", kTimeDisplay_60Timecode, kFrameRate_Video60, {60, 1}, 0},
};

class Libavutil : public ::testing::TestWithParam<PeerFormat>
{
protected:
    static int FramesOfADay(const PeerFormat& inFormat)
    {
        switch (inFormat.mDisplay) {
        case kTimeDisplay_2997DropTimecode: return 2589408;
        case kTimeDisplay_5994DropTimecode: return 5178816;
        case kTimeDisplay_2997NonDropTimecode: return 86400 * 30;
        case kTimeDisplay_5994NonDropTimecode: return 86400 * 60;
        case kTimeDisplay_23976Timecode: return 86400 * 24;
        default: return 86400 * static_cast<int>(inFormat.mRate.GetTruncatedValue());
        }
    }
};

// libavutil writes ":" between the fields except before the frames of drop-frame; we use one separator everywhere.
bool SameText(const UTF16String& inOurs, const char* inPeers, char inSeparator)
{
    if (inOurs.size() != std::strlen(inPeers)) {
        return false;
    }
    for (std::size_t i = 0; i < inOurs.size(); ++i) {
        const bool isSeparator = inPeers[i] == ':' || inPeers[i] == ';';
        if (inOurs[i] != static_cast<unsigned short>(isSeparator ? inSeparator : inPeers[i])) {
            return false;
        }
    }
    return true;
}

int PeerStart(const char* inText, AVRational inRate)
{
    av_log_set_level(AV_LOG_QUIET);
    AVTimecode peer{};
    return av_timecode_init_from_string(&peer, inRate, inText, nullptr) == 0 ? peer.start : -1000000000;
}

long long OurCount(const char* inText, const FrameRate& inRate, TimeDisplay inDisplay)
{
    return Timecode::StringToTime(Text(inText), inRate, inDisplay, false).ToFrame64(inRate);
}

} // namespace

TEST_P(Libavutil, WritesTheSameLabelForEveryFrameOfADay)
{
    const PeerFormat& format = GetParam();
    const char separator = ORL::TimecodeLocal::IsDropFrame(format.mDisplay) ? ';' : ':';
    AVTimecode peer;
    ASSERT_EQ(0, av_timecode_init(&peer, format.mPeerRate, static_cast<int>(format.mPeerFlags), 0, nullptr));
    Timecode code(kTime_Zero, format.mRate, format.mDisplay);
    char text[AV_TIMECODE_STR_SIZE];
    for (int frame = 0; frame < FramesOfADay(format); ++frame) {
        code.SetTime(TickTime(frame, format.mRate));
        const UTF16String ours = code.GetString();
        ASSERT_TRUE(SameText(ours, av_timecode_make_string(&peer, text, frame), separator))
            << frame << ": " << Narrow(ours) << " and " << text;
    }
}

TEST_P(Libavutil, ReadsTheSameFrameFromLabelsAllOverADay)
{
    // libavutil detects drop-frame by the last separator, which it writes accordingly; we use only the format.
    const PeerFormat& format = GetParam();
    AVTimecode peer;
    ASSERT_EQ(0, av_timecode_init(&peer, format.mPeerRate, static_cast<int>(format.mPeerFlags), 0, nullptr));
    char text[AV_TIMECODE_STR_SIZE];
    const TickTime day(86400.0);
    for (int frame = 0; frame < FramesOfADay(format); frame += 7) {
        av_timecode_make_string(&peer, text, frame);
        ASSERT_EQ(frame, PeerStart(text, format.mPeerRate)) << text;
        TickTime expected(frame, format.mRate);
        if (expected > day) {
            expected -= day; // labels of a non-drop day at a 1001 rate exceed 86400 seconds; we fold them
        }
        ASSERT_EQ(expected, Timecode::StringToTime(Text(text), format.mRate, format.mDisplay, false)) << text;
    }
}

INSTANTIATE_TEST_SUITE_P(Labels, Libavutil, ::testing::ValuesIn(kPeerFormats),
                         [](const ::testing::TestParamInfo<PeerFormat>& inInfo) {
                             return std::string(inInfo.param.mName);
                         });

TEST(LibavutilDisagreements, LabelsThatDropFrameLeavesOut_AreReadByDifferentRules)
{
    CheckRecorder recorder;
    const AVRational rate = {30000, 1001};
    // We treat frame 0 of a minute with skipped labels as its first existing label; libavutil subtracts the skipped
    // labels.
    EXPECT_EQ(1798, PeerStart("00:01:00;00", rate));
    EXPECT_EQ(1800, OurCount("00:01:00;00", kFrameRate_VideoNTSC, kTimeDisplay_2997DropTimecode));
    // For frame 1 we report an assertion and subtract the skipped labels, as libavutil does.
    EXPECT_EQ(1799, PeerStart("00:01:00;01", rate));
    EXPECT_EQ(1799, OurCount("00:01:00;01", kFrameRate_VideoNTSC, kTimeDisplay_2997DropTimecode));
    EXPECT_EQ(1u, recorder.Reports(CheckReport::kAssert).size());
}

TEST(LibavutilDisagreements, Separators_DecideNothingWithUs)
{
    const AVRational rate = {30000, 1001};
    // The last separator selects drop-frame in libavutil; we use only the format.
    EXPECT_EQ(1802, PeerStart("00:01:00:02", rate));
    EXPECT_EQ(1800, OurCount("00:01:00:02", kFrameRate_VideoNTSC, kTimeDisplay_2997DropTimecode));
    EXPECT_EQ(1800, PeerStart("00:01:00.02", rate));
    // libavutil cannot parse a ";" between the other fields.
    EXPECT_GT(0, PeerStart("00;01;00;02", rate));
    EXPECT_EQ(1800, OurCount("00;01;00;02", kFrameRate_VideoNTSC, kTimeDisplay_2997DropTimecode));
}

TEST(LibavutilDisagreements, NegativeTimes_CountBackFromMidnightWithUs)
{
    AVTimecode peer;
    ASSERT_EQ(0, av_timecode_init(&peer, AVRational{30000, 1001}, AV_TIMECODE_FLAG_DROPFRAME, 0, nullptr));
    char text[AV_TIMECODE_STR_SIZE];
    EXPECT_STREQ("00:00:00;01", av_timecode_make_string(&peer, text, -1)) << "the peer drops the sign";
    const Timecode code(TickTime(-1, kFrameRate_VideoNTSC), kFrameRate_VideoNTSC, kTimeDisplay_2997DropTimecode);
    EXPECT_EQ("23;00;00;01", Narrow(code.GetString()));
}

TEST(LibavutilDisagreements, HoursBeyondADay_AreTakenModulo24WithUs)
{
    AVTimecode peer;
    ASSERT_EQ(0, av_timecode_init(&peer, AVRational{30000, 1001}, AV_TIMECODE_FLAG_DROPFRAME, 0, nullptr));
    char text[AV_TIMECODE_STR_SIZE];
    EXPECT_STREQ("24:00:00;00", av_timecode_make_string(&peer, text, 2589408));
    const Timecode code(TickTime(2589408, kFrameRate_VideoNTSC), kFrameRate_VideoNTSC, kTimeDisplay_2997DropTimecode);
    EXPECT_EQ("00;00;00;00", Narrow(code.GetString()));
}
