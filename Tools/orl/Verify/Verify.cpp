// orl verify FOLDER... and orl verify --merge PART...
#include "Console.h"
#include "Failure.h"
#include "Ingest/Report/IngestProgress.h"
#include "StartedLibrary.h"
#include "StopRequest.h"
#include "Text.h"
#include "VerifyCommand.h"
#include "VerifyMerge.h"
#include "VerifyReport.h"

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
    std::vector<std::string> mFolders;
    bool mAsJson = false;
    bool mMerges = false;
    std::string mPart;
    VerifySettings mSettings;
};

// The progress line expects each byte twice: an ingest copies it and reads it back.
constexpr std::uint64_t kPasses = 2;

VerifyOutcome VerifyWithProgress(const std::string& inFolder, const Options& inOptions)
{
    std::optional<IngestProgress> progress;
    VerifyWatcher watcher;
    watcher.mIsStopped = &IsStopRequested;
    watcher.mOnPlanned = [&progress, isShown = OutputIsTerminal() && !inOptions.mAsJson](std::uint64_t inBytesToRead,
                                                                                         std::size_t inFiles) {
        progress.emplace(isShown, kPasses * inBytesToRead, inFiles);
    };
    watcher.mShow = [&progress](std::uint64_t inBytesRead, std::size_t inFilesDone) {
        progress->Show(kPasses * inBytesRead, inFilesDone);
    };
    return VerifyFolder(inFolder, inOptions.mSettings, watcher);
}

// Prints each failure on its own line; throws the last one as the program's error, with the worst failure's exit code.
void EndWith(std::vector<IngestTrouble> inTroubles, bool inIsStopped, bool inHasNoAnswer)
{
    const int worst = inIsStopped ? kExitStopped : WorstExitCode(inTroubles);
    if (inIsStopped) {
        inTroubles.push_back({"verify: stopped by the user; the files that are not counted were not checked", worst});
    }
    for (std::size_t i = 0; i + (inHasNoAnswer ? 0 : 1) < inTroubles.size(); ++i) {
        ReportError(inTroubles[i].mText);
    }
    if (inHasNoAnswer) {
        std::_Exit(kExitDisappeared); // stopping the library might wait for the disk
    }
    if (!inTroubles.empty()) {
        throw Failure(inTroubles.back().mText, worst);
    }
}

std::vector<VerifyOutcome> VerifyFolders(const Options& inOptions)
{
    std::vector<VerifyOutcome> outcomes;
    for (const std::string& folder : inOptions.mFolders) {
        outcomes.push_back(VerifyWithProgress(folder, inOptions));
        if (outcomes.back().mIsStopped || outcomes.back().mIsDiskUnresponsive) {
            break;
        }
    }
    return outcomes;
}

void Run(const Options& inOptions)
{
    const StartedLibrary library;
    ListenForStop();
    RaiseOpenFileLimit();
    const std::vector<VerifyOutcome> outcomes =
        inOptions.mMerges ? std::vector<VerifyOutcome>{MergeParts(inOptions.mFolders)} : VerifyFolders(inOptions);
    inOptions.mAsJson ? PrintJsonLines(std::cout, outcomes) : PrintTotals(std::cout, outcomes);
    EndWith(TroublesOf(outcomes), outcomes.back().mIsStopped, outcomes.back().mIsDiskUnresponsive);
}

void AddParts(CLI::App& ioCommand, const std::shared_ptr<Options>& inOptions)
{
    CLI::Option* const part =
        ioCommand
            .add_option("--part", inOptions->mPart,
                        "verify part K of N parts of the list with about equal numbers of bytes; with --json, for "
                        "--merge. The parts are the same on every computer that sees the same files")
            ->type_name("K/N");
    CLI::Option* const merge =
        ioCommand.add_flag("--merge", inOptions->mMerges,
                           "join the results of all parts: each FOLDER is a file with the output of --part --json");
    merge->excludes(part);
    for (const char* const option : {"--quick", "--manifest", "--files-at-once"}) {
        merge->excludes(ioCommand.get_option(option));
    }
}

void ReadPart(Options& ioOptions, bool inIsGiven)
{
    if (inIsGiven) { // an empty string is refused too: it must not mean the whole list
        ioOptions.mSettings.mPart = ParsePart(ioOptions.mPart);
        if (ioOptions.mFolders.size() != 1) {
            throw Failure("verify: --part verifies one folder", kExitUsage);
        }
    }
}

} // namespace

void AddVerify(CLI::App& ioProgram)
{
    const auto options = std::make_shared<Options>();
    CLI::App* command =
        ioProgram.add_subcommand("verify", "Read the files of a list of SHA-256 sums back past the cache, and compare");
    command->add_option("FOLDER", options->mFolders, "folders with a list: host paths or library paths")->required();
    command->add_flag(
        "--quick", options->mSettings.mIsQuick,
        "read no file: report missing and new files, files that became empty, and files written after the "
        "list");
    command
        ->add_option("--manifest", options->mSettings.mManifest, "name of the list in FOLDER (default ingest.sha256)")
        ->check([](const std::string& inName) {
            return ORL::PathUtils::IsValidFileName(ToUTF16(inName)) ? std::string()
                                                                    : "a file name is wanted, without a folder";
        });
    command->add_flag("--json", options->mAsJson,
                      "write one JSON object a line for each file, then one for each folder");
    command->add_option("--files-at-once", options->mSettings.mFilesAtOnce, "files read at once, 1 to 64 (default 4)")
        ->type_name("NUMBER")
        ->check(CLI::Range(1, 64).description(""));
    AddParts(*command, options);
    command->callback([options, command] {
        ReadPart(*options, command->count("--part") != 0);
        Run(*options);
    });
}

} // namespace orl
