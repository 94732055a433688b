// orl ingest SOURCE DEST...
#include "Commands.h"
#include "Console.h"
#include "Failure.h"
#include "IngestDestinations.h"
#include "IngestErase.h"
#include "IngestPreview.h"
#include "IngestProgress.h"
#include "IngestSummary.h"
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
    std::size_t mCopies = 0; // copies that make the source safe to erase; 0: one at each destination
    IngestSettings mSettings;
};

IngestedSource Ingest(const Options& inOptions, std::vector<IngestDestination>& ioDestinations)
{
    std::optional<IngestProgress> progress;
    IngestWatcher watcher;
    watcher.mIsStopped = &IsStopRequested;
    watcher.mOnPlanned = [&progress](std::uint64_t inBytesToRead, std::size_t inFiles) {
        progress.emplace(OutputIsTerminal(), inBytesToRead, inFiles);
    };
    watcher.mShow = [&progress](std::uint64_t inBytesRead, std::size_t inDone) { progress->Show(inBytesRead, inDone); };
    return Ingest(ioDestinations, inOptions.mManifest, inOptions.mSettings, watcher);
}

enum class RunEnd { kFinished, kStoppedByUser };

// Reports every failure on its own line; the last is thrown as the program's error. If the user stopped the run, the
// stop is the last failure and decides the exit code; otherwise the first failure does.
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

void Run(const Options& inOptions)
{
    if (inOptions.mCopies > inOptions.mDestinations.size()) {
        throw Failure("ingest: --copies " + std::to_string(inOptions.mCopies) + " needs as many destinations",
                      kExitUsage);
    }
    const NamedRate& rate = FindRate(inOptions.mRate);
    const StartedLibrary library;
    ListenForStop();
    std::vector<IngestDestination> destinations = MakeDestinations(inOptions.mSource, inOptions.mDestinations);
    if (inOptions.mIsDryRun) {
        PrintPreview(PreviewIngest(destinations, inOptions.mManifest, inOptions.mSettings, &IsStopRequested),
                     destinations);
        ReportAndThrow(TroublesOf(destinations), RunEnd::kFinished);
        return;
    }
    const IngestedSource source = Ingest(inOptions, destinations);
    PrintSummary(destinations, rate, inOptions.mManifest);
    const std::size_t copies = inOptions.mCopies != 0 ? inOptions.mCopies : destinations.size();
    std::cout << JudgeErasing(source.mListing, destinations, copies, &IsStopRequested).mLine << std::endl;
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
    command->callback([options] { Run(*options); });
}

} // namespace orl
