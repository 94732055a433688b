// Tests which pairs of a rate and a format Timecode accepts, and its reports for the others.
#include "TimecodeTestSupport.h"

#include <ExpectReport.h>

using namespace ORLTest;

namespace {

constexpr char kConstructorContract[] =
    "((inFrameRate <= tvxmediatypes::kFrameRate_Video1000) && (inTimeDisplay >= "
    "tvxmediatypes::kTimeDisplay_24Timecode) && (inTimeDisplay <= tvxmediatypes::kTimeDisplay_35mmFeetFrames)) || "
    "((inFrameRate >= tvxmediatypes::FrameRate(1000.0)) && (inFrameRate <= tvxmediatypes::kFrameRate_Audio192000) )";
constexpr char kSetFormatContract[] =
    "((inFrameRate <= tvxmediatypes::kFrameRate_Video1000) && (inTimeDisplay >= "
    "tvxmediatypes::kTimeDisplay_24Timecode) && (inTimeDisplay <= tvxmediatypes::kTimeDisplay_35mmFeetFrames)) || "
    "((inFrameRate >= tvxmediatypes::FrameRate(1000.0)) && (inFrameRate <= tvxmediatypes::kFrameRate_Audio192000) && "
    "(inTimeDisplay >= tvxmediatypes::kTimeDisplay_AudioSamplesTimecode) && (inTimeDisplay <= "
    "tvxmediatypes::kTimeDisplay_AudioMsTimecode))";
constexpr char kZeroRateContract[] = "inFrameRate != tvxmediatypes::kFrameRate_Zero";

constexpr TimeDisplay kUnknownDisplay = static_cast<TimeDisplay>(300);

void ExpectOneContract(const CheckRecorder& inRecorder, const char* inExpression, int inLine)
{
    const auto contracts = inRecorder.Reports(CheckReport::kContract);
    ASSERT_EQ(1u, contracts.size()) << "row at line " << inLine;
    EXPECT_EQ(inExpression, contracts[0].mExpression) << "row at line " << inLine;
    EXPECT_EQ("Timecode", contracts[0].mFile) << "row at line " << inLine;
    const auto errors = inRecorder.Reports(CheckReport::kError);
    ASSERT_EQ(1u, errors.size()) << "row at line " << inLine;
    ExpectReport(errors[0])
        .Expression(
            "$$$/tvxcore/utility/Error/Contract/InputContractViolation=An input contract violation has occurred!")
        .Line(25)
        .Package(105u);
}

} // namespace

TEST(Timecode, Constructor_ChecksThatRateAndFormatBelongTogether)
{
    struct Row
    {
        int mLine;
        FrameRate mRate;
        TimeDisplay mDisplay;
        bool mHolds;
    };
    const Row rows[] = {
        {__LINE__, kFrameRate_VideoPAL, kTimeDisplay_24Timecode, true},
        {__LINE__, kFrameRate_VideoPAL, kTimeDisplay_35mmFeetFrames, true},
        {__LINE__, kFrameRate_Video1000, kTimeDisplay_24Timecode, true},
        {__LINE__, FrameRate(999.0), kTimeDisplay_AudioSamplesTimecode, false},
        {__LINE__, kFrameRate_VideoPAL, kTimeDisplay_AudioMsTimecode, false},
        {__LINE__, kFrameRate_VideoPAL, static_cast<TimeDisplay>(99), false},
        {__LINE__, kFrameRate_VideoPAL, static_cast<TimeDisplay>(113), false},
        // from a rate of 1000 on, every format is accepted
        {__LINE__, kFrameRate_Video1000, kTimeDisplay_AudioSamplesTimecode, true},
        {__LINE__, kFrameRate_Audio192000, kTimeDisplay_AudioMsTimecode, true},
        {__LINE__, kFrameRate_Audio48000, kTimeDisplay_25Timecode, true},
        {__LINE__, FrameRate(193000.0), kTimeDisplay_AudioSamplesTimecode, false},
        {__LINE__, FrameRate(193000.0), kTimeDisplay_25Timecode, false},
    };
    for (const Row& row : rows) {
        CheckRecorder recorder;
        recorder.mIgnoreForGood = false;
        const Timecode code(kTime_Zero, row.mRate, row.mDisplay);
        if (row.mHolds) {
            EXPECT_TRUE(recorder.Reports().empty()) << "row at line " << row.mLine;
        } else {
            ExpectOneContract(recorder, kConstructorContract, row.mLine);
        }
        EXPECT_EQ(row.mRate, code.GetFrameRate()) << "an error manager that comes back leaves a whole object";
        EXPECT_EQ(row.mDisplay, code.GetFormat());
    }
}

TEST(Timecode, ConstructorContract_ComesBeforeTheFrameAdjustment)
{
    // The check throws before the record is changed; the sanitizers detect leaks.
    CheckRecorder recorder;
    recorder.mThrow = true;
    EXPECT_THROW(Timecode(kTime_Zero, kFrameRate_VideoPAL, kTimeDisplay_AudioMsTimecode, PreviousFrameStyle()),
                 CheckRecorder::ContractError);
    EXPECT_EQ(0u, recorder.Reports(CheckReport::kAssert).size());
}

TEST(Timecode, AudioRateWithAnUnknownFormat_PassesTheContractAndReportsTheFormat)
{
    CheckRecorder recorder;
    const Timecode code(TickTime(1.0), kFrameRate_Audio48000, kUnknownDisplay);
    EXPECT_TRUE(recorder.Reports(CheckReport::kContract).empty());
    const auto asserts = recorder.Reports(CheckReport::kAssert);
    ASSERT_EQ(2u, asserts.size()) << "once for the frame format, once for the fields";
    for (const CheckReport& report : asserts) {
        ExpectReport(report).Expression("false").Function("ORL::`anonymous-namespace'::GetFrameRateForDisplayMode");
    }
    EXPECT_EQ(TickTime(1.0), code.GetTime());
    EXPECT_EQ("00:00:00:0", Narrow(code.GetString())) << "at the zero rate there are no frames";
}

TEST(Timecode, ZeroRate_IsCheckedAfterTheRecordIsBuilt)
{
    CheckRecorder recorder;
    const Timecode code(TickTime(1.0), kFrameRate_Zero, kTimeDisplay_25Timecode);
    ExpectOneContract(recorder, kZeroRateContract, __LINE__);
    EXPECT_EQ("00:00:01:00", Narrow(code.GetString()));

    recorder.Clear();
    const Timecode plain(TickTime(1.0), kFrameRate_Zero, kTimeDisplay_Frames, Timecode::Style());
    ExpectOneContract(recorder, kZeroRateContract, __LINE__);
    EXPECT_EQ("0", Narrow(plain.GetString()));

    recorder.Clear();
    recorder.mThrow = true;
    EXPECT_THROW(Timecode(TickTime(1.0), kFrameRate_Zero, kTimeDisplay_25Timecode), CheckRecorder::ContractError);
}

TEST(Timecode, CopyOfAZeroRate_MakesNoZeroRateCheck)
{
    CheckRecorder recorder;
    const Timecode code(TickTime(1.0), kFrameRate_Zero, kTimeDisplay_25Timecode);
    recorder.Clear();
    const Timecode copy(code);
    Timecode assigned;
    assigned = code;
    EXPECT_TRUE(recorder.Reports().empty());
    EXPECT_EQ(kFrameRate_Zero, copy.GetFrameRate());
}

TEST(Timecode, CopyOfAnObjectThatBrokeItsContract_IsCheckedAgain)
{
    CheckRecorder recorder;
    const Timecode code(kTime_Zero, kFrameRate_VideoPAL, kTimeDisplay_AudioMsTimecode);
    recorder.Clear();
    const Timecode copy(code);
    ExpectOneContract(recorder, kConstructorContract, __LINE__);
}

TEST(Timecode, SetFormat_ChecksRateAndFormatBeforeAnyChange)
{
    struct Row
    {
        int mLine;
        FrameRate mRate;
        TimeDisplay mDisplay;
        bool mHolds;
    };
    const Row rows[] = {
        {__LINE__, kFrameRate_VideoPAL, kTimeDisplay_24Timecode, true},
        {__LINE__, kFrameRate_Video1000, kTimeDisplay_35mmFeetFrames, true},
        {__LINE__, kFrameRate_Video1000, kTimeDisplay_AudioSamplesTimecode, true},
        {__LINE__, kFrameRate_Audio192000, kTimeDisplay_AudioMsTimecode, true},
        // the constructor accepts these two displays
        {__LINE__, kFrameRate_Audio48000, kTimeDisplay_25Timecode, false},
        {__LINE__, kFrameRate_Audio48000, kUnknownDisplay, false},
        // the remaining displays are rejected by every call
        {__LINE__, kFrameRate_VideoPAL, kTimeDisplay_AudioMsTimecode, false},
        {__LINE__, kFrameRate_VideoPAL, static_cast<TimeDisplay>(99), false},
        {__LINE__, kFrameRate_Audio48000, static_cast<TimeDisplay>(199), false},
        {__LINE__, kFrameRate_Audio48000, static_cast<TimeDisplay>(202), false},
        {__LINE__, FrameRate(193000.0), kTimeDisplay_AudioSamplesTimecode, false},
    };
    for (const Row& row : rows) {
        CheckRecorder recorder;
        recorder.mThrow = true;
        Timecode code(TickTime(1.0), kFrameRate_Film24, kTimeDisplay_24Timecode, PreviousFrameStyle());
        if (row.mHolds) {
            code.SetFormat(row.mDisplay, row.mRate);
            EXPECT_TRUE(recorder.Reports().empty()) << "row at line " << row.mLine;
            EXPECT_EQ(row.mDisplay, code.GetFormat());
            EXPECT_EQ(row.mRate, code.GetFrameRate());
        } else {
            EXPECT_THROW(code.SetFormat(row.mDisplay, row.mRate), CheckRecorder::ContractError)
                << "row at line " << row.mLine;
            ExpectOneContract(recorder, kSetFormatContract, row.mLine);
            EXPECT_EQ(kTimeDisplay_24Timecode, code.GetFormat()) << "row at line " << row.mLine;
            EXPECT_EQ(TickTime(1.0), code.GetTime()) << "row at line " << row.mLine;
            EXPECT_EQ("00:00:00:23", Narrow(code.GetString())) << "row at line " << row.mLine;
        }
    }
}

TEST(Timecode, SetFormatWhoseContractFallsThrough_StillTakesEffect)
{
    CheckRecorder recorder;
    Timecode code(TickTime(1.0), kFrameRate_Film24, kTimeDisplay_24Timecode);
    code.SetFormat(kTimeDisplay_25Timecode, kFrameRate_Audio48000);
    ExpectOneContract(recorder, kSetFormatContract, __LINE__);
    EXPECT_EQ(kTimeDisplay_25Timecode, code.GetFormat());
    EXPECT_EQ(kFrameRate_Audio48000, code.GetFrameRate());
}
