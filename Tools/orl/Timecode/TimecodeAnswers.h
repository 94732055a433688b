// Output for times: one line of text or one JSON object per value, and the errors for values that are not times.
#pragma once

#include "TimecodeFormatNames.h"
#include "TimecodeReading.h"

#include <functional>
#include <string>
#include <vector>

namespace orl {

struct TimecodeAnswer
{
    std::string mLabel;
    long long mCount; // whole frames of the format, rounded toward zero
    tvxmediatypes::TickTime mTime;
    std::string mRemark; // a warning about the value; usually empty
};

/// Returns the label and count of a time.
TimecodeAnswer MakeAnswer(const Reading& inReading, const TimecodeSettings& inSettings);

/// Returns the seconds with up to six decimals; halves round away from zero.
std::string InSeconds(const tvxmediatypes::TickTime& inTime);

/// Returns "cannot read ...": the reason, the character, and below it the text with a mark where reading stopped.
std::string Describe(const std::string& inText, const Unreadable& inFault);

/// Writes a line to standard error, after flushing the answers so far.
void PrintDiagnostic(const std::string& inText);

/// How a command processes many values.
struct AnswerPlan
{
    std::string mCommand;             // "tc show", for messages on standard error
    std::vector<std::string> mValues; // if empty, the non-empty lines of standard input
    bool mAsJson = false;
    bool mInFull = false; // count and seconds in addition to the label
};

/// Answers each value on one line. For a value that cannot be read, writes a message to standard error (in JSON, an
/// object with the error) and continues. Throws PartialFailure at the end if any value could not be read.
void PrintAnswers(const AnswerPlan& inPlan, const TimecodeSettings& inSettings,
                  const std::function<Reading(const std::string&)>& inRead);

} // namespace orl
