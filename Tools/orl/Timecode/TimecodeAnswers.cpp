#include "TimecodeAnswers.h"

#include "Failure.h"
#include "Json.h"
#include "QuietOutput.h"
#include "Text.h"

#include <iostream>

namespace orl {

using namespace tvxmediatypes;

namespace {

ORL::Timecode::Style StyleFor(const TickTime& inTime, const TimecodeSettings& inSettings)
{
    ORL::Timecode::Style style = inSettings.mStyle;
    TickTime shown = inTime;
    if (style.mPreviousFrame) {
        shown.AddFrames(-1, inSettings.mRate);
    }
    style.mShowSign =
        inSettings.mSign == SignRule::kAlways || (inSettings.mSign == SignRule::kBelowZero && shown < kTime_Zero);
    return style;
}

std::string InText(const TimecodeAnswer& inAnswer, const TimecodeSettings& inSettings, bool inInFull)
{
    if (!inInFull) {
        return inAnswer.mLabel;
    }
    return inAnswer.mLabel + "  " + std::to_string(inAnswer.mCount) + ' ' + inSettings.mFormat->mUnit + "  "
           + InSeconds(inAnswer.mTime) + " s";
}

std::string InJson(const std::string& inValue, const TimecodeAnswer& inAnswer, const TimecodeSettings& inSettings)
{
    Json answer = {{"input", inValue},
                   {"label", inAnswer.mLabel},
                   {inSettings.mFormat->mUnit, inAnswer.mCount},
                   {"seconds", Json::Number(InSeconds(inAnswer.mTime))},
                   {"format", inSettings.mFormat->mName},
                   {"rate", RateInFull(inSettings.CountingRate())}};
    if (!inAnswer.mRemark.empty()) {
        answer.Set("remark", inAnswer.mRemark);
    }
    return answer.Line();
}

std::string InJson(const std::string& inValue, const Unreadable& inFault)
{
    const Json position = inFault.mStop == std::string::npos ? Json() : Json(inFault.mStop + 1);
    const Json fault = {{"input", inValue}, {"error", inFault.what()}, {"position", position}};
    return fault.Line();
}

/// Returns the values one by one, from the command line or from standard input.
class Values
{
public:
    explicit Values(const std::vector<std::string>& inValues) : mValues(inValues) {}

    bool Next(std::string& outValue)
    {
        if (!mValues.empty()) {
            const bool isThere = mNext < mValues.size();
            outValue = isThere ? mValues[mNext++] : std::string();
            return isThere;
        }
        while (std::getline(std::cin, outValue)) {
            ++mNext;
            if (!outValue.empty() && outValue.back() == '\r') {
                outValue.pop_back();
            }
            if (!outValue.empty()) {
                return true;
            }
        }
        return false;
    }

    /// Returns "line 3: " for a value from standard input.
    std::string Place() const { return mValues.empty() ? "line " + std::to_string(mNext) + ": " : std::string(); }

private:
    const std::vector<std::string>& mValues;
    std::size_t mNext = 0;
};

/// Writes answers as elements of a JSON array or as plain lines.
class Lines
{
public:
    explicit Lines(bool inAsJson) : mAsJson(inAsJson)
    {
        if (mAsJson) {
            std::cout << '[';
        }
    }

    void Write(const std::string& inLine)
    {
        std::cout << (mAsJson ? mSeparator : "") << inLine << (mAsJson ? "" : "\n");
        mSeparator = ",\n  ";
    }

    void End()
    {
        if (mAsJson) {
            std::cout << (mSeparator[0] == ',' ? "\n]\n" : "]\n");
        }
    }

private:
    const bool mAsJson;
    const char* mSeparator = "\n  ";
};

} // namespace

void PrintDiagnostic(const std::string& inText)
{
    std::cout.flush();
    std::cerr << "orl: " << inText << '\n';
}

TimecodeAnswer MakeAnswer(const Reading& inReading, const TimecodeSettings& inSettings)
{
    const ORL::Timecode code(inReading.mTime, inSettings.mRate, inSettings.mFormat->mDisplay,
                             StyleFor(inReading.mTime, inSettings));
    return TimecodeAnswer{ToUTF8(code.GetString()), inReading.mTime.ToFrame64(inSettings.CountingRate()),
                          inReading.mTime, inReading.mRemark};
}

std::string InSeconds(const TickTime& inTime)
{
    constexpr unsigned long long kPerSecond = kTicksPerSecond;
    constexpr unsigned long long kMillion = 1000000;
    const bool isNegative = inTime < kTime_Zero;
    const auto ticks = static_cast<unsigned long long>((isNegative ? -inTime : inTime).GetTicks());
    unsigned long long seconds = ticks / kPerSecond;
    unsigned long long micros = (ticks % kPerSecond * kMillion * 2 + kPerSecond) / (2 * kPerSecond);
    seconds += micros / kMillion;
    micros %= kMillion;
    std::string text = (isNegative ? "-" : "") + std::to_string(seconds);
    if (micros != 0) {
        const std::string fraction = std::to_string(kMillion + micros);
        text += '.' + fraction.substr(1, fraction.find_last_not_of('0'));
    }
    return text;
}

std::string Describe(const std::string& inText, const Unreadable& inFault)
{
    const std::string quoted = JsonQuoted(inText);
    const std::string line = "cannot read " + quoted + ": " + inFault.what();
    if (inFault.mStop == std::string::npos) {
        return line;
    }
    return line + ", at character " + std::to_string(inFault.mStop + 1) + "\n  " + quoted + "\n  "
           + std::string(inFault.mStop + 1, ' ') + '^';
}

void PrintAnswers(const AnswerPlan& inPlan, const TimecodeSettings& inSettings,
                  const std::function<Reading(const std::string&)>& inRead)
{
    Values values(inPlan.mValues);
    Lines lines(inPlan.mAsJson);
    bool hasFailed = false;
    for (std::string value; values.Next(value);) {
        const std::string place = inPlan.mCommand + ": " + values.Place();
        try {
            const TimecodeAnswer answer = MakeAnswer(inRead(value), inSettings);
            lines.Write(inPlan.mAsJson ? InJson(value, answer, inSettings)
                                       : InText(answer, inSettings, inPlan.mInFull));
            if (!inPlan.mAsJson && !IsOutputSilenced() && !answer.mRemark.empty()) {
                PrintDiagnostic(place + JsonQuoted(value) + " is read as " + answer.mLabel + ": " + answer.mRemark);
            }
        } catch (const Unreadable& fault) {
            hasFailed = true;
            if (inPlan.mAsJson) {
                lines.Write(InJson(value, fault));
            } else {
                PrintDiagnostic(place + Describe(value, fault));
            }
        }
    }
    lines.End();
    if (hasFailed) {
        throw PartialFailure();
    }
}

} // namespace orl
