// orl tc show | parse | add | convert | table
#include "Commands.h"
#include "Failure.h"
#include "TimecodeAnswers.h"
#include "TimecodeFormatNames.h"
#include "TimecodeReading.h"
#include "TimecodeTable.h"

#include <map>
#include <memory>

namespace orl {

namespace {

// A format and its rate, as named on the command line.
struct FormatChoice
{
    std::string mName = "2997drop";
    std::string mRate; // empty for the format's own rate
};

struct Options
{
    AnswerPlan mPlan;
    FormatChoice mFormat;
    FormatChoice mTarget; // for convert
    ORL::Timecode::Style mStyle;
    SignRule mSign = SignRule::kBelowZero;
    bool mHidesHours = false;
};

std::string FormatError(const std::string& inName)
{
    if (FindTimecodeFormat(inName) != nullptr) {
        return std::string();
    }
    std::string names;
    for (const TimecodeFormat& format : AllTimecodeFormats()) {
        names += std::string(names.empty() ? "" : ", ") + format.mName;
    }
    return "unknown format \"" + inName + "\"; choose one of " + names;
}

std::string RateSyntaxError(const std::string& inRate)
{
    return ReadRate(inRate) != tvxmediatypes::kFrameRate_Zero ? std::string() : "\"" + inRate + "\" is not a rate";
}

TimecodeSettings Settings(const Options& inOptions, const FormatChoice& inChoice)
{
    TimecodeSettings settings;
    settings.mFormat = FindTimecodeFormat(inChoice.mName);
    settings.mRate = inChoice.mRate.empty() ? settings.mFormat->mRate : ReadRate(inChoice.mRate);
    settings.mStyle = inOptions.mStyle;
    settings.mStyle.mHoursMode = inOptions.mHidesHours ? 0 : 1;
    settings.mSign = inOptions.mSign;
    const std::string error = RateError(*settings.mFormat, settings.mRate);
    if (!error.empty()) {
        throw CLI::ValidationError("--rate", error);
    }
    return settings;
}

void Show(const Options& inOptions)
{
    const TimecodeSettings settings = Settings(inOptions, inOptions.mFormat);
    PrintAnswers(inOptions.mPlan, settings, [&](const std::string& inText) { return ReadCount(inText, settings); });
}

void Parse(const Options& inOptions)
{
    const TimecodeSettings settings = Settings(inOptions, inOptions.mFormat);
    PrintAnswers(inOptions.mPlan, settings, [&](const std::string& inText) { return ReadLabel(inText, settings); });
}

// Checks for overflow: a wrapped sum would be a time at the other end of the range.
Reading Sum(Reading inReading, const tvxmediatypes::TickTime& inDistance)
{
    const tvxmediatypes::TickTime before = inReading.mTime;
    inReading.mTime += inDistance;
    if ((inReading.mTime < before) != (inDistance < tvxmediatypes::kTime_Zero)) {
        throw Unreadable("the sum is too large", std::string::npos);
    }
    return inReading;
}

void Add(const Options& inOptions)
{
    const TimecodeSettings settings = Settings(inOptions, inOptions.mFormat);
    AnswerPlan plan = inOptions.mPlan;
    const std::string distance = plan.mValues.back();
    plan.mValues.pop_back();
    // --previous-frame applies only to labels that denote times, not to distances.
    TimecodeSettings ofDistance = settings;
    ofDistance.mStyle.mPreviousFrame = false;
    Reading added;
    try {
        added = ReadDistance(distance, ofDistance);
    } catch (const Unreadable& fault) {
        PrintDiagnostic(plan.mCommand + ": " + Describe(distance, fault));
        throw PartialFailure();
    }
    PrintAnswers(plan, settings,
                 [&](const std::string& inText) { return Sum(ReadLabel(inText, settings), added.mTime); });
}

void Convert(const Options& inOptions)
{
    const TimecodeSettings source = Settings(inOptions, inOptions.mFormat);
    const TimecodeSettings target = Settings(inOptions, inOptions.mTarget);
    PrintAnswers(inOptions.mPlan, target, [&](const std::string& inText) { return ReadLabel(inText, source); });
}

void AddFormat(CLI::App& ioCommand, const std::string& inNames, const std::string& inRateNames, FormatChoice& ioChoice,
               const std::string& inWhat)
{
    ioCommand.add_option(inNames, ioChoice.mName, inWhat + "; see orl tc table")
        ->type_name("FORMAT")
        ->check(FormatError);
    ioCommand.add_option(inRateNames, ioChoice.mRate, "frames or samples per second, such as 25, 29.97 or 30000/1001")
        ->type_name("NUMBER")
        ->check(RateSyntaxError);
}

void AddStyle(CLI::App& ioCommand, Options& ioOptions)
{
    static const std::map<std::string, SignRule> kRules = {
        {"auto", SignRule::kBelowZero}, {"always", SignRule::kAlways}, {"never", SignRule::kNever}};
    ioCommand
        .add_option("--sign", ioOptions.mSign,
                    "auto: only below zero (default); always; never: labels below zero count back from midnight")
        ->type_name("WHEN")
        ->transform(CLI::Transformer(kRules).description(""));
    ioCommand.add_flag("--no-zeros", ioOptions.mStyle.mNoLeadingZeros, "write fields without leading zeros");
    ioCommand.add_flag("--no-hours", ioOptions.mHidesHours, "omit the hours");
    ioCommand.add_flag("--previous-frame", ioOptions.mStyle.mPreviousFrame,
                       "labels name the frame before the position, as an editor shows an out point");
    ioCommand.add_flag("--json", ioOptions.mPlan.mAsJson, "write one JSON array, an object for each value");
}

CLI::App* AddCommand(CLI::App& ioTimecode, const std::shared_ptr<Options>& inOptions, const std::string& inName,
                     const std::string& inWhat, void (*inRun)(const Options&))
{
    CLI::App* const command = ioTimecode.add_subcommand(inName, inWhat);
    inOptions->mPlan.mCommand = "tc " + inName;
    AddStyle(*command, *inOptions);
    command->callback([inOptions, inRun] { inRun(*inOptions); });
    return command;
}

void AddShow(CLI::App& ioTimecode)
{
    const auto options = std::make_shared<Options>();
    CLI::App* const command = AddCommand(ioTimecode, options, "show", "Show the label of each frame count", &Show);
    command->add_option("COUNT", options->mPlan.mValues,
                        "whole frames (samples, milliseconds); default: standard input, one per line");
    AddFormat(*command, "--format", "--rate", options->mFormat, "format of the labels (default 2997drop)");
}

void AddParse(CLI::App& ioTimecode)
{
    const auto options = std::make_shared<Options>();
    options->mPlan.mInFull = true;
    CLI::App* const command = AddCommand(ioTimecode, options, "parse",
                                         "Read each text as an entry field does: its label, count and seconds", &Parse);
    command->add_option("TEXT", options->mPlan.mValues,
                        "up to four fields between any of : ; and . (feet: +), digits only, or a count after a leading "
                        "separator; default: standard input, one per line");
    AddFormat(*command, "--format", "--rate", options->mFormat, "format of the labels (default 2997drop)");
}

void AddSumCommand(CLI::App& ioTimecode)
{
    const auto options = std::make_shared<Options>();
    CLI::App* const command =
        AddCommand(ioTimecode, options, "add", "Add a distance to each label, exact to the frame", &Add);
    command
        ->add_option("LABEL... DISTANCE", options->mPlan.mValues,
                     "labels (default: standard input, one per line), then the distance: a whole number of "
                     "frames, or a label")
        ->required();
    AddFormat(*command, "--format", "--rate", options->mFormat, "format of the labels (default 2997drop)");
}

void AddConvert(CLI::App& ioTimecode)
{
    const auto options = std::make_shared<Options>();
    CLI::App* const command =
        AddCommand(ioTimecode, options, "convert", "Show the label that another format has at the same time", &Convert);
    command->add_option("LABEL", options->mPlan.mValues, "labels; default: standard input, one per line");
    AddFormat(*command, "--from", "--from-rate", options->mFormat, "format of the labels (default 2997drop)");
    AddFormat(*command, "--to", "--to-rate", options->mTarget, "format of the results");
    command->get_option("--to")->required();
}

void AddTable(CLI::App& ioTimecode)
{
    const auto asJson = std::make_shared<bool>(false);
    CLI::App* const command = ioTimecode.add_subcommand(
        "table", "Show all formats: rate, digits of the last field, separators, frames per day, a sample label");
    command->add_flag("--json", *asJson, "write one JSON array");
    command->callback([asJson] { PrintTimecodeTable(*asJson); });
}

} // namespace

void AddTimecode(CLI::App& ioProgram)
{
    CLI::App* const timecode = ioProgram.add_subcommand("tc", "Read, write, add and convert timecode");
    timecode->require_subcommand(1);
    AddShow(*timecode);
    AddParse(*timecode);
    AddSumCommand(*timecode);
    AddConvert(*timecode);
    AddTable(*timecode);
}

} // namespace orl
