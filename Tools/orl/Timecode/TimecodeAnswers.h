// Answers about times: one line of text or one JSON object for each value, and what is said of values that are no times.
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
    long long mCount; // whole frames of the format, counted toward zero
    tvxmediatypes::TickTime mTime;
    std::string mRemark; // what should be said of the value; mostly empty
};

/// The label and count of a time.
TimecodeAnswer AnswerTo(const Reading& inReading, const TimecodeSettings& inSettings);

/// Seconds with up to six digits behind the point, rounded, halves away from zero.
std::string InSeconds(const tvxmediatypes::TickTime& inTime);

/// "cannot read ...": why, at which character, and below it the text with a mark where reading stopped.
std::string Describe(const std::string& inText, const Unreadable& inFault);

/// Writes a line to standard error, behind the answers that were given before.
void Tell(const std::string& inText);

/// How a command answers many values.
struct AnswerPlan
{
    std::string mCommand;             // "tc show", for what goes to standard error
    std::vector<std::string> mValues; // where there are none, the lines of standard input that are not empty
    bool mAsJson = false;
    bool mInFull = false; // count and seconds beside the label
};

/// Answers each value, one line each. A value that cannot be read gets no line among the answers, but a message on
/// standard error (in JSON, an object that says so); the others still get theirs. Then it throws PartialFailure.
void AnswerAll(const AnswerPlan& inPlan, const TimecodeSettings& inSettings,
               const std::function<Reading(const std::string&)>& inRead);

} // namespace orl
