// orl ingest SOURCE DEST...
#include "Commands.h"
#include "Console.h"
#include "Failure.h"
#include "IngestDestinations.h"
#include "Report/IngestErase.h"
#include "Report/IngestJson.h"
#include "Report/IngestPreview.h"
#include "Report/IngestProgress.h"
#include "Report/IngestSummary.h"
#include "StartedLibrary.h"
#include "StopRequest.h"
#include "Text.h"

#include <ORLPathUtils.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orl {

namespace {

struct Options
{
    std::string mSource;
    std::vector<std::string> mDestinations;
    std::string mManifest = "ingest.sha256";
    std::string mRate = "25";
    bool mIsDryRun = false;
    bool mAsJson = false;
    std::vector<std::string> mExcluded;
    bool mHasNoDefaultExcludes = false;
    std::size_t mCopies = 0; // copies needed to erase the source safely; 0: one at each destination
    IngestSettings mSettings;
};

IngestedSource Ingest(const Options& inOptions, std::vector<IngestDestination>& ioDestinations)
{
    std::optional<IngestProgress> progress;
    IngestWatcher watcher;
    watcher.mIsStopped = &IsStopRequested;
    watcher.mOnPlanned = [&progress, isShown = OutputIsTerminal() && !inOptions.mAsJson](std::uint64_t inBytesToRead,
                                                                                         std::size_t inFiles) {
        progress.emplace(isShown, inBytesToRead, inFiles);
    };
    watcher.mShow = [&progress](std::uint64_t inBytesRead, std::size_t inDone) { progress->Show(inBytesRead, inDone); };
    return Ingest(ioDestinations, inOptions.mManifest, inOptions.mSettings, watcher);
}

enum class RunEnd { kFinished, kStoppedByUser };

// Prints each failure but the last on its own line, and throws the last as the program's error. If the user stopped the
// run, the stop is the last failure and determines the exit code; otherwise the first failure determines it.
void ReportAndThrow(const std::vector<IngestTrouble>& inTroubles, RunEnd inEnd)
{
    if (inTroubles.empty()) {
        return;
    }
    for (std::size_t i = 0; i + 1 < inTroubles.size(); ++i) {
        ReportError(inTroubles[i].mText);
    }
    throw Failure(inTroubles.back().mText,
                  (inEnd == RunEnd::kStoppedByUser ? inTroubles.back() : inTroubles.front()).mExitCode);
}

IngestExclusions ExclusionsOf(const Options& inOptions)
{
    IngestExclusions exclusions;
    for (const std::string& pattern : inOptions.mExcluded) {
        exclusions.Add(pattern);
    }
    if (!inOptions.mHasNoDefaultExcludes) {
        exclusions.AddSystemFolders();
    }
    return exclusions;
}

void ShowPlan(const Options& inOptions, std::vector<IngestDestination>& ioDestinations)
{
    const IngestPreview preview =
        PreviewIngest(ioDestinations, inOptions.mManifest, inOptions.mSettings, &IsStopRequested);
    if (inOptions.mAsJson) {
        PrintPreviewJson(std::cout, preview, ioDestinations);
    } else {
        PrintExcluded(preview.mExcluded, inOptions.mSettings.mExclusions);
        PrintPreview(preview, ioDestinations);
    }
    ReportAndThrow(TroublesOf(ioDestinations), RunEnd::kFinished);
}

void PrintResult(const Options& inOptions, const NamedRate& inRate, const IngestedSource& inSource,
                 const std::vector<IngestDestination>& inDestinations)
{
    const std::size_t copies = inOptions.mCopies != 0 ? inOptions.mCopies : inDestinations.size();
    const IngestExclusions& exclusions = inOptions.mSettings.mExclusions;
    const auto judge = [&] {
        return JudgeErasing(inSource.mListing, inDestinations, copies, &IsStopRequested, exclusions);
    };
    if (inOptions.mAsJson) {
        PrintIngestJson(std::cout, inDestinations, inSource.mListing, judge());
        return;
    }
    PrintSummary(inDestinations, inRate, inOptions.mManifest);
    PrintExcluded(inSource.mListing.mExcluded, exclusions);
    std::cout << judge().mLine << std::endl;
}

void Run(const Options& inOptions)
{
    if (inOptions.mCopies > inOptions.mDestinations.size()) {
        throw Failure("ingest: --copies " + std::to_string(inOptions.mCopies) + " needs as many destinations",
                      kExitUsage);
    }
    const NamedRate& rate = FindRate(inOptions.mRate);
    const StartedLibrary library;
    ListenForStop();
    RaiseOpenFileLimit();
    std::vector<IngestDestination> destinations = MakeDestinations(inOptions.mSource, inOptions.mDestinations);
    if (inOptions.mIsDryRun) {
        ShowPlan(inOptions, destinations);
        return;
    }
    PrintResult(inOptions, rate, Ingest(inOptions, destinations), destinations);
    std::vector<IngestTrouble> troubles = TroublesOf(destinations);
    const auto is = [&destinations](bool IngestOutcome::*inWhat) {
        return std::any_of(destinations.begin(), destinations.end(),
                           [inWhat](const IngestDestination& inDestination) { return inDestination.mOutcome.*inWhat; });
    };
    const bool isStopped = is(&IngestOutcome::mIsStopped);
    if (isStopped) {
        troubles.push_back({"ingest: stopped by the user; files in place are complete and are kept", kExitStopped});
    }
    if (is(&IngestOutcome::mIsDiskUnresponsive)) {
        for (const IngestTrouble& trouble : troubles) {
            ReportError(trouble.mText);
        }
        std::_Exit(kExitDisappeared);
    }
    ReportAndThrow(troubles, isStopped ? RunEnd::kStoppedByUser : RunEnd::kFinished);
}

void AddExclusions(CLI::App& ioCommand, const std::shared_ptr<Options>& inOptions)
{
    ioCommand
        .add_option(
            "--exclude", inOptions->mExcluded,
            "leave out entries of this name, and everything below them; repeatable. \"*\" matches any characters "
            "and \"?\" one character, but not \"/\". With a \"/\", the pattern is a path below SOURCE. Upper "
            "and lower case differ. The rule is the same on every system")
        ->type_name("PATTERN")
        ->allow_extra_args(false);
    ioCommand.add_flag("--no-default-excludes", inOptions->mHasNoDefaultExcludes,
                       "copy the system folders at the top of SOURCE too: " + IngestExclusions::SystemFolders());
}

} // namespace

void AddIngest(CLI::App& ioProgram)
{
    const auto options = std::make_shared<Options>();
    CLI::App* command = ioProgram.add_subcommand(
        "ingest", "Copy a card's files to disks, read each back past the cache, compare, and write a manifest");
    command->add_option("SOURCE", options->mSource, "the folder to copy: a host path or library path")->required();
    command
        ->add_option("DEST", options->mDestinations,
                     "destination folders; created if missing; the source is read once for all")
        ->required();
    command->add_flag("--dry-run", options->mIsDryRun, "show what would be done, and change nothing");
    command->add_flag("--replace", options->mSettings.mReplaces,
                      "replace different files of the same name at the destination");
    command->add_flag("--keep-permissions", options->mSettings.mKeepsPermissions,
                      "give the copies the permissions of the source (on Windows: read-only or not)");
    command->add_option("--manifest", options->mManifest, "file name of the manifest in DEST (default ingest.sha256)")
        ->check([](const std::string& inName) {
            return ORL::PathUtils::IsValidFileName(ToUTF16(inName)) ? std::string()
                                                                    : "must be a file name without a folder";
        });
    command->add_option("--rate", options->mRate,
                        "frame rate for the lengths in the table (default 25): " + RateNames());
    command
        ->add_option("--files-at-once", options->mSettings.mFilesAtOnce,
                     "files copied at the same time, 1 to 64 (default 4)")
        ->type_name("NUMBER")
        ->check(CLI::Range(1, 64).description(""));
    command
        ->add_option("--copies", options->mCopies,
                     "copies of each file that make the source safe to erase (default: one at each destination)")
        ->type_name("NUMBER")
        ->check(CLI::PositiveNumber.description(""));
    command->add_flag("--json", options->mAsJson, "write one JSON object a line for each file, then a summary");
    AddExclusions(*command, options);
    command->callback([options] {
        options->mSettings.mExclusions = ExclusionsOf(*options);
        Run(*options);
    });
}

} // namespace orl
