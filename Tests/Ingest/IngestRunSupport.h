// Runs an ingest in this process, so that a test can act between two steps of a file.
#pragma once

#include "IngestTestSupport.h"

#include <Failure.h>
#include <IngestDestinations.h>
#include <IngestManifest.h>
#include <IngestPlan.h>
#include <IngestRun.h>
#include <ORLFoundation.h>
#include <Text.h>

#include <atomic>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace ORLTest {

struct IngestHereOptions
{
    bool mReplaces = false;
    std::string mManifest = kManifest;
    std::function<void(orl::IngestStep, const orl::IngestItem&)> mOnStep = {};
    std::function<bool()> mIsStopped = [] { return false; };
    unsigned mFilesAtOnce = 1;
};

/// Runs a complete ingest, one file at a time, in the order of names. The outcome's rows point into outPlan.
inline orl::IngestOutcome IngestHere(const std::filesystem::path& inCard, const std::filesystem::path& inDisk,
                                     const IngestHereOptions& inOptions, orl::IngestPlan& outPlan)
{
    std::vector<orl::IngestDestination> destinations = orl::MakeDestinations(inCard.u8string(), {inDisk.u8string()});
    orl::IngestWatcher watcher;
    watcher.mIsStopped = inOptions.mIsStopped;
    watcher.mShow = [](std::uint64_t, std::size_t) {};
    if (inOptions.mOnStep) {
        watcher.mOnStep = [&inOptions](std::size_t, orl::IngestStep inStep, const orl::IngestItem& inItem) {
            inOptions.mOnStep(inStep, inItem);
        };
    }
    orl::IngestSettings settings;
    settings.mFilesAtOnce = inOptions.mFilesAtOnce;
    settings.mReplaces = inOptions.mReplaces;
    orl::Ingest(destinations, inOptions.mManifest, settings, watcher);
    outPlan = std::move(destinations.front().mPlan);
    return std::move(destinations.front().mOutcome);
}

inline orl::IngestOutcome IngestHere(const std::filesystem::path& inCard, const std::filesystem::path& inDisk,
                                     const IngestHereOptions& inOptions = {})
{
    orl::IngestPlan plan;
    orl::IngestOutcome outcome = IngestHere(inCard, inDisk, inOptions, plan);
    outcome.mRows.clear(); // the rows point into the plan, which is destroyed on return
    return outcome;
}

class IngestRun : public testing::Test
{
protected:
    using OnStep = std::function<void(orl::IngestStep, const orl::IngestItem&)>;

    IngestRun()
    {
        ORL::Foundation::Initialize();
        mFolder.MakeFolder("card");
        for (const char* name : {"a", "b", "c"}) {
            mFolder.MakeFile(std::string("card/") + name, std::string(2500000, *name));
        }
        mCard = ReadTree(Card());
    }
    ~IngestRun() override { ORL::Foundation::Terminate(); }

    std::filesystem::path Card() const { return mFolder.Host() / "card"; }
    std::filesystem::path Disk() const { return mFolder.Host() / "disk"; }

    /// Runs one file at a time, in the order of names.
    orl::IngestOutcome Run(const OnStep& inOnStep, bool inReplaces = false)
    {
        std::filesystem::create_directories(Disk());
        IngestHereOptions options;
        options.mReplaces = inReplaces;
        options.mOnStep = inOnStep;
        options.mIsStopped = [this] { return mIsStopped.load(); };
        return IngestHere(Card(), Disk(), options, mPlan);
    }

    /// Also changes the time stamp, because the clock may not have advanced.
    void ChangeOnCard(const std::string& inName, const std::string& inContents)
    {
        const auto time = std::filesystem::last_write_time(Card() / inName);
        WriteFile(Card() / inName, inContents);
        std::filesystem::last_write_time(Card() / inName, time + std::chrono::seconds(10));
        mCard[inName] = inContents;
    }

    /// Returns the one unfinished file at the top of the destination.
    std::filesystem::path Unfinished() const
    {
        for (const auto& entry : std::filesystem::directory_iterator(Disk())) {
            if (entry.path().filename().u8string().compare(0, 5, ".orl-") == 0) {
                return entry.path();
            }
        }
        ADD_FAILURE() << "there is no unfinished file";
        return {};
    }

    /// Expects that exactly these files are complete and acknowledged.
    void ExpectInPlace(const std::string& inNames) const
    {
        FileTree expected;
        for (const char name : inNames) {
            expected[std::string(1, name)] = mCard.at(std::string(1, name));
        }
        ExpectIngested(expected, Disk());
    }

    void ExpectTrouble(const orl::IngestOutcome& inOutcome, int inExitCode, const std::string& inText) const
    {
        ASSERT_EQ(1u, inOutcome.mTroubles.size());
        EXPECT_EQ(inExitCode, inOutcome.mTroubles[0].mExitCode);
        EXPECT_NE(std::string::npos, inOutcome.mTroubles[0].mText.find(inText)) << inOutcome.mTroubles[0].mText;
    }

    /// Returns a callback that acts once, after the given step of that file.
    static OnStep Once(orl::IngestStep inStep, const std::string& inName, const std::function<void()>& inWork)
    {
        const auto isDone = std::make_shared<std::atomic<bool>>(false);
        return [=](orl::IngestStep inDone, const orl::IngestItem& inItem) {
            if (inDone == inStep && inItem.mName == inName && !isDone->exchange(true)) {
                inWork();
            }
        };
    }

    TempFolder mFolder;
    FileTree mCard;
    std::atomic<bool> mIsStopped{false};
    orl::IngestPlan mPlan;
};

} // namespace ORLTest
