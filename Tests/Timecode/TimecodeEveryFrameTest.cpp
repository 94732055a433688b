// Converts every frame of 24 hours from the count to the label and back. A simple counter that only steps from one
// label to the next supplies the expected label. The test has its own rule for labels that do not convert back to their
// frame.
#include "TimecodeTestSupport.h"

#include <cstdlib>

using namespace ORLTest;
using ORL::TimecodeLocal::HMSFToTime;
using ORL::TimecodeLocal::IsDropFrame;

namespace {

// Steps through the labels. Drop-frame skips the first labels of each minute except every tenth.
class Odometer
{
public:
    Odometer(long long inLabelsPerSecond, long long inDropped)
        : mLabelsPerSecond(inLabelsPerSecond), mDropped(inDropped)
    {
    }

    void Step()
    {
        if (++mFrames < mLabelsPerSecond) {
            return;
        }
        mFrames = 0;
        if (++mSeconds < 60) {
            return;
        }
        mSeconds = 0;
        if (++mMinutes == 60) {
            mMinutes = 0;
            ++mHours;
        }
        if (mMinutes % 10 != 0) {
            mFrames = mDropped;
        }
    }

    bool Shows(const Timecode::PrivateImpl& inRecord) const
    {
        return mHours == inRecord.mHours && mMinutes == inRecord.mMinutes && mSeconds == inRecord.mSeconds
               && mFrames == inRecord.mFrames;
    }

    int mHours = 0;
    int mMinutes = 0;
    int mSeconds = 0;
    long long mFrames = 0;

private:
    const long long mLabelsPerSecond;
    const long long mDropped;
};

long long DroppedLabels(TimeDisplay inDisplay)
{
    return inDisplay == kTimeDisplay_2997DropTimecode ? 2 : inDisplay == kTimeDisplay_5994DropTimecode ? 4 : 0;
}

TickTime TimeOfFields(const Timecode::PrivateImpl& inRecord)
{
    return HMSFToTime(inRecord.mHours, inRecord.mMinutes, inRecord.mSeconds, inRecord.mFrames, inRecord.mIsNegative,
                      inRecord.mFrameRate, inRecord.mTimeDisplay);
}

// Returns the time that a label converts to. The returned time differs from inTime only for the last non-drop labels of
// a day at a 1001 rate, which lie beyond 86400 seconds. Positive times are reduced by one day; negative times are
// reduced by further days until the count wraps around.
TickTime Folded(TickTime inTime)
{
    const TickTime day(86400.0);
    if (inTime > day) {
        inTime -= day;
    }
    while (inTime < -day) {
        inTime -= day;
    }
    return inTime;
}

void AppendTwo(std::string& ioText, long long inValue)
{
    ioText += static_cast<char>('0' + inValue / 10);
    ioText += static_cast<char>('0' + inValue % 10);
}

class EveryFrame : public ::testing::TestWithParam<Format>
{
};

std::string FormatName(const ::testing::TestParamInfo<Format>& inInfo)
{
    return inInfo.param.mName;
}

} // namespace

TEST_P(EveryFrame, OfADay_HasItsLabelAndComesBackFromIt)
{
    CheckRecorder recorder;
    const Format& format = GetParam();
    Timecode::PrivateImpl record(kTime_Zero, format.mRate, format.mDisplay, Timecode::Style());
    Odometer odometer(format.mLabelsPerSecond, DroppedLabels(format.mDisplay));
    long long count = 0;
    for (; odometer.mHours < 24; ++count, odometer.Step()) {
        const TickTime time(count, format.mRate);
        record.SetTime(time);
        ASSERT_TRUE(odometer.Shows(record)) << count;
        ASSERT_FALSE(record.mIsNegative) << count;
        ASSERT_EQ(Folded(time), TimeOfFields(record)) << count;
        record.SetTime(-time);
        ASSERT_TRUE(odometer.Shows(record)) << count;
        ASSERT_EQ(count != 0, record.mIsNegative) << count;
        ASSERT_EQ(Folded(-time), TimeOfFields(record)) << count;
    }
    EXPECT_EQ(IsDropFrame(format.mDisplay) ? 24 * (format.mLabelsPerSecond * 3600 - DroppedLabels(format.mDisplay) * 54)
                                           : 86400 * format.mLabelsPerSecond,
              count)
        << "labels in a day";
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST_P(EveryFrame, OfADay_HasItsTextAndComesBackFromIt)
{
    CheckRecorder recorder;
    const Format& format = GetParam();
    Timecode::PrivateImpl record(kTime_Zero, format.mRate, format.mDisplay, Timecode::Style());
    Odometer odometer(format.mLabelsPerSecond, DroppedLabels(format.mDisplay));
    const char separator = IsDropFrame(format.mDisplay) ? ';' : ':';
    std::string expected;
    for (long long count = 0; odometer.mHours < 24; ++count, odometer.Step()) {
        const TickTime time(count, format.mRate);
        record.SetTime(time);
        const UTF16String text = record.GetString();
        expected.clear();
        AppendTwo(expected, odometer.mHours);
        expected += separator;
        AppendTwo(expected, odometer.mMinutes);
        expected += separator;
        AppendTwo(expected, odometer.mSeconds);
        expected += separator;
        AppendTwo(expected, odometer.mFrames);
        ASSERT_TRUE(std::equal(text.begin(), text.end(), expected.begin(), expected.end())) << count;
        ASSERT_EQ(Folded(time), Timecode::StringToTime(text, format.mRate, format.mDisplay, false)) << expected;
    }
    EXPECT_TRUE(recorder.Reports().empty());
}

INSTANTIATE_TEST_SUITE_P(Clock, EveryFrame, ::testing::ValuesIn(kClockFormats), FormatName);

namespace {

const Format kCountFormats[] = {
    {"Frames_25", kTimeDisplay_Frames, kFrameRate_VideoPAL, 0},
    {"Frames_5994", kTimeDisplay_Frames, kFrameRate_VideoNTSC_HD, 0},
    {"Feet16_24", kTimeDisplay_16mmFeetFrames, kFrameRate_Film24, 24},
    {"Feet16_25", kTimeDisplay_16mmFeetFrames, kFrameRate_VideoPAL, 25},
    {"Feet16_23976", kTimeDisplay_16mmFeetFrames, kFrameRate_23976, 23},
    {"Feet16_2997", kTimeDisplay_16mmFeetFrames, kFrameRate_VideoNTSC, 29},
    {"Feet35_24", kTimeDisplay_35mmFeetFrames, kFrameRate_Film24, 24},
    {"Feet35_25", kTimeDisplay_35mmFeetFrames, kFrameRate_VideoPAL, 25},
    {"Feet35_23976", kTimeDisplay_35mmFeetFrames, kFrameRate_23976, 23},
    {"Feet35_2997", kTimeDisplay_35mmFeetFrames, kFrameRate_VideoNTSC, 29},
};

class EveryCount : public ::testing::TestWithParam<Format>
{
};

std::string TextOfCount(long long inCount, TimeDisplay inDisplay)
{
    if (inDisplay == kTimeDisplay_Frames) {
        return std::to_string(inCount);
    }
    const long long perFoot = inDisplay == kTimeDisplay_35mmFeetFrames ? 16 : 40;
    std::string text = std::to_string(inCount / perFoot) + "+";
    AppendTwo(text, inCount % perFoot);
    return text;
}

} // namespace

TEST_P(EveryCount, OfADay_HasItsTextAndComesBackFromIt)
{
    // Plain counts and feet are not folded, so each label converts back to its frame.
    CheckRecorder recorder;
    const Format& format = GetParam();
    const long long day = TickTime(86400.0).ToFrame64(format.mRate);
    Timecode::PrivateImpl record(kTime_Zero, format.mRate, format.mDisplay, Timecode::Style());
    for (long long count = 0; count <= day; ++count) {
        const TickTime time(count, format.mRate);
        record.SetTime(time);
        const UTF16String text = record.GetString();
        const std::string expected = TextOfCount(count, format.mDisplay);
        ASSERT_TRUE(std::equal(text.begin(), text.end(), expected.begin(), expected.end())) << count;
        ASSERT_EQ(time, Timecode::StringToTime(text, format.mRate, format.mDisplay, false)) << expected;
        ASSERT_EQ(-time, Timecode::StringToTime(Text("-") + text, format.mRate, format.mDisplay, false)) << expected;
    }
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST_P(EveryCount, OfADay_ComesBackFromItsFields)
{
    CheckRecorder recorder;
    const Format& format = GetParam();
    const long long day = TickTime(86400.0).ToFrame64(format.mRate);
    Timecode::PrivateImpl record(kTime_Zero, format.mRate, format.mDisplay, Timecode::Style());
    for (long long count = 0; count <= day; ++count) {
        record.SetTime(TickTime(count, format.mRate));
        long long expected = count;
        if (format.mLabelsPerSecond != 0) {
            // In feet and frames the fields are split with the truncated rate but joined with the true rate. At a
            // fractional rate the seconds contribute only their whole frames.
            const long long seconds = count / format.mLabelsPerSecond;
            expected = static_cast<long long>(static_cast<double>(seconds) * format.mRate.GetValue())
                       + count % format.mLabelsPerSecond;
        }
        ASSERT_EQ(Folded(TickTime(expected, format.mRate)), TimeOfFields(record)) << count;
    }
    EXPECT_TRUE(recorder.Reports().empty());
}

INSTANTIATE_TEST_SUITE_P(Counts, EveryCount, ::testing::ValuesIn(kCountFormats), FormatName);

namespace {

const Format kSampleFormats[] = {
    {"1000", kTimeDisplay_AudioSamplesTimecode, kFrameRate_Video1000, 1000},
    {"8000", kTimeDisplay_AudioSamplesTimecode, kFrameRate_Audio8000, 8000},
    {"11025", kTimeDisplay_AudioSamplesTimecode, kFrameRate_Audio11025, 11025},
    {"22050", kTimeDisplay_AudioSamplesTimecode, kFrameRate_Audio22050, 22050},
    {"32000", kTimeDisplay_AudioSamplesTimecode, kFrameRate_Audio32000, 32000},
    {"44100", kTimeDisplay_AudioSamplesTimecode, kFrameRate_Audio44100, 44100},
    {"48000", kTimeDisplay_AudioSamplesTimecode, kFrameRate_Audio48000, 48000},
    {"88200", kTimeDisplay_AudioSamplesTimecode, kFrameRate_Audio88200, 88200},
    {"96000", kTimeDisplay_AudioSamplesTimecode, kFrameRate_Audio96000, 96000},
    {"192000", kTimeDisplay_AudioSamplesTimecode, kFrameRate_Audio192000, 192000},
};

class EverySample : public ::testing::TestWithParam<Format>
{
};

std::string TextOfSample(long long inSecond, long long inSample, const Format& inFormat)
{
    std::string text;
    AppendTwo(text, inSecond / 3600);
    text += ':';
    AppendTwo(text, inSecond / 60 % 60);
    text += ':';
    AppendTwo(text, inSecond % 60);
    text += inFormat.mDisplay == kTimeDisplay_AudioMsTimecode ? '.' : ':';
    std::string sample = std::to_string(inSample);
    // Samples are padded to the width of the largest one, except at rates whose largest sample has six digits.
    const std::size_t places = std::to_string(inFormat.mLabelsPerSecond - 1).size();
    if (places < 6) {
        sample.insert(0, places - sample.size(), '0');
    }
    return text + sample;
}

void ExpectSample(Timecode::PrivateImpl& ioRecord, long long inSecond, long long inSample, const Format& inFormat)
{
    const FrameRate rate = ORL::TimecodeLocal::GetFrameRateForDisplayMode(inFormat.mDisplay, inFormat.mRate);
    const TickTime time(inSecond * inFormat.mLabelsPerSecond + inSample, rate);
    ioRecord.SetTime(time);
    ASSERT_EQ(inSecond, (ioRecord.mHours * 60LL + ioRecord.mMinutes) * 60 + ioRecord.mSeconds);
    ASSERT_EQ(inSample, ioRecord.mFrames);
    ASSERT_EQ(time, TimeOfFields(ioRecord));
    const UTF16String text = ioRecord.GetString();
    const std::string expected = TextOfSample(inSecond, inSample, inFormat);
    ASSERT_TRUE(std::equal(text.begin(), text.end(), expected.begin(), expected.end())) << expected;
    ASSERT_EQ(time, Timecode::StringToTime(text, inFormat.mRate, inFormat.mDisplay, false)) << expected;
}

} // namespace

TEST_P(EverySample, AtTheEdgesOfEachSecondOfADay_HasItsTextAndComesBackFromIt)
{
    CheckRecorder recorder;
    const Format& format = GetParam();
    Timecode::PrivateImpl record(kTime_Zero, format.mRate, format.mDisplay, Timecode::Style());
    for (long long second = 0; second < 86400; ++second) {
        // The first two samples and the last one of each second, and one that varies from second to second.
        for (const long long sample :
             {0LL, 1LL, format.mLabelsPerSecond - 1, second * 7919 % format.mLabelsPerSecond}) {
            ExpectSample(record, second, sample, format);
            ASSERT_FALSE(HasFatalFailure());
        }
    }
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST_P(EverySample, OfSomeSeconds_HasItsTextAndComesBackFromIt)
{
    // Samples are counted in the same way in every second, so all samples of a few seconds represent the four billion
    // of a day. ORL_EVERY_SAMPLE=1 checks all of them, which takes minutes for each rate.
    CheckRecorder recorder;
    const Format& format = GetParam();
    const bool all = std::getenv("ORL_EVERY_SAMPLE") != nullptr;
    Timecode::PrivateImpl record(kTime_Zero, format.mRate, format.mDisplay, Timecode::Style());
    for (long long second = 0; second < 86400; second += all ? 1 : 86399 / 3) {
        for (long long sample = 0; sample < format.mLabelsPerSecond; ++sample) {
            ExpectSample(record, second, sample, format);
            ASSERT_FALSE(HasFatalFailure());
        }
    }
    EXPECT_TRUE(recorder.Reports().empty());
}

INSTANTIATE_TEST_SUITE_P(Samples, EverySample, ::testing::ValuesIn(kSampleFormats), FormatName);

TEST(EveryMillisecond, OfADay_HasItsFieldsAndComesBackFromThem)
{
    CheckRecorder recorder;
    Timecode::PrivateImpl record(kTime_Zero, kFrameRate_Audio48000, kTimeDisplay_AudioMsTimecode, Timecode::Style());
    Odometer odometer(1000, 0);
    for (long long count = 0; odometer.mHours < 24; ++count, odometer.Step()) {
        const TickTime time(count, FrameRate(1000.0));
        record.SetTime(time);
        ASSERT_TRUE(odometer.Shows(record)) << count;
        ASSERT_EQ(time, TimeOfFields(record)) << count;
    }
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST(EveryMillisecond, OfADaysHoursEnds_HasItsTextAndComesBackFromIt)
{
    CheckRecorder recorder;
    const Format format = {"Milliseconds", kTimeDisplay_AudioMsTimecode, kFrameRate_Audio48000, 1000};
    Timecode::PrivateImpl record(kTime_Zero, format.mRate, format.mDisplay, Timecode::Style());
    for (long long second = 0; second < 86400; ++second) {
        // Tests every millisecond around each whole hour, and 25 samples in each other second.
        const bool nearHour = second % 3600 < 10 || second % 3600 >= 3590;
        for (long long sample = 0; sample < 1000; sample += nearHour ? 1 : 40) {
            ExpectSample(record, second, sample, format);
            ASSERT_FALSE(HasFatalFailure());
        }
    }
    EXPECT_TRUE(recorder.Reports().empty());
}
