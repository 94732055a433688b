// orl ingest SOURCE DEST
#include "Commands.h"
#include "Console.h"
#include "Failure.h"
#include "IngestPlan.h"
#include "IngestProgress.h"
#include "IngestRoots.h"
#include "IngestRun.h"
#include "IngestSummary.h"
#include "StartedLibrary.h"
#include "Text.h"

#include <ORLPathUtils.h>

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

namespace orl {

namespace {

struct Options
{
    std::string mSource;
    std::string mDestination;
    std::string mManifest = "ingest.sha256";
    std::string mRate = "25";
    IngestSettings mSettings;
};

// Set on whatever thread the system calls the handler on, read by all that copy.
std::atomic<bool> sIsInterrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a handler of signals must not wait for a lock");

void OnInterrupt(int)
{
    sIsInterrupted = true;
}

void HearTheUser()
{
    std::signal(SIGINT, &OnInterrupt);
    std::signal(SIGTERM, &OnInterrupt);
#ifdef SIGHUP // the terminal has gone
    std::signal(SIGHUP, &OnInterrupt);
#endif
#ifdef SIGBREAK // Ctrl-Break, where there is one
    std::signal(SIGBREAK, &OnInterrupt);
#endif
}

// Every trouble has a line; the last is the program's. A stop is the last, and has the exit code.
[[noreturn]] void Fail(const IngestOutcome& inOutcome)
{
    const std::vector<IngestTrouble>& troubles = inOutcome.mTroubles;
    for (std::size_t i = 0; i + 1 < troubles.size(); ++i) {
        Complain(troubles[i].mText);
    }
    throw Failure(troubles.back().mText, (inOutcome.mIsStopped ? troubles.back() : troubles.front()).mExitCode);
}

IngestOutcome Ingest(const Options& inOptions, IngestRoots& ioRoots, IngestPlan& outPlan)
{
    std::optional<IngestProgress> progress;
    IngestWatcher watcher;
    watcher.mIsStopped = [] { return sIsInterrupted.load(); };
    watcher.mOnPlanned = [&progress](const IngestPlan& inPlan) {
        progress.emplace(OutputIsTerminal(), inPlan.mBytesToPass, inPlan.mItems.size());
    };
    watcher.mShow = [&progress](std::uint64_t inPassed, std::size_t inDone) { progress->Show(inPassed, inDone); };
    return Ingest(ioRoots, inOptions.mManifest, inOptions.mSettings, watcher, outPlan);
}

void Run(const Options& inOptions)
{
    const NamedRate& rate = FindRate(inOptions.mRate);
    const StartedLibrary library;
    HearTheUser();
    IngestRoots roots = MakeRoots(inOptions.mSource, inOptions.mDestination);
    IngestPlan plan;
    IngestOutcome outcome = Ingest(inOptions, roots, plan);
    PrintSummary(outcome, roots, plan.mItems.size() + plan.mTroubles.size(), rate,
                 JoinHostPath(inOptions.mDestination, inOptions.mManifest));
    if (outcome.mIsStopped) {
        outcome.mTroubles.push_back({"ingest: stopped by the user; what is in place is whole and stays", kExitStopped});
    }
    if (outcome.mHasNoAnswer) {
        for (const IngestTrouble& trouble : outcome.mTroubles) {
            Complain(trouble.mText);
        }
        std::_Exit(kExitGone);
    }
    if (!outcome.mTroubles.empty()) {
        Fail(outcome);
    }
}

} // namespace

void AddIngest(CLI::App& ioProgram)
{
    const auto options = std::make_shared<Options>();
    CLI::App* command = ioProgram.add_subcommand(
        "ingest", "Copy a card's files to a disk, read each back past the cache, compare, and keep a manifest");
    command->add_option("SOURCE", options->mSource, "the folder to bring in: a host path or library path")->required();
    command->add_option("DEST", options->mDestination, "the folder to bring it to; made where missing")->required();
    command->add_flag("--replace", options->mSettings.mReplaces,
                      "exchange other files that have the same names at the destination");
    command->add_option("--manifest", options->mManifest, "name of the manifest in DEST (default ingest.sha256)")
        ->check([](const std::string& inName) {
            return ORL::PathUtils::IsValidFileName(ToUTF16(inName)) ? std::string()
                                                                    : "a file name is wanted, without a folder";
        });
    command->add_option("--rate", options->mRate,
                        "frame rate of the lengths in the table (default 25): " + RateNames());
    command
        ->add_option("--files-at-once", options->mSettings.mFilesAtOnce,
                     "files on their way at once, 1 to 64 (default 4)")
        ->type_name("NUMBER")
        ->check(CLI::Range(1, 64).description(""));
    command->callback([options] { Run(*options); });
}

} // namespace orl
