// Runs a verification in this process, so that a test can act between two blocks.
#pragma once

#include "../Tools/VerifyTestSupport.h"

#include <ORLFoundation.h>
#include <VerifyFolder.h>
#include <VerifyReport.h>

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace ORLTest {

inline constexpr int kVerifyGone = 6; // the exit code that Docs/ingest.md lists

class VerifyHere : public VerifiedTree
{
protected:
    VerifyHere() { ORL::Foundation::Initialize(); }
    ~VerifyHere() override { ORL::Foundation::Terminate(); }

    /// Verifies one file at a time, in the order of the list: CLIP/clip.mov, CLIP/deep/sector, a, none.
    orl::VerifyOutcome Run() const
    {
        orl::VerifySettings settings = mSettings;
        settings.mFilesAtOnce = 1;
        orl::VerifyWatcher watcher;
        watcher.mIsStopped = [this] {
            if (mOnFirstPoll) {
                mOnFirstPoll();
            }
            return false;
        };
        watcher.mOnPlanned = [this](std::uint64_t, std::size_t) {
            if (mOnListed) {
                mOnListed();
            }
        };
        watcher.mShow = [](std::uint64_t, std::size_t) {};
        watcher.mOnBlock = mOnBlock;
        return orl::VerifyFolder(Disk().u8string(), settings, watcher);
    }

    /// Returns a function that calls inWork once.
    static std::function<void()> Once(const std::function<void()>& inWork)
    {
        const auto isDone = std::make_shared<std::atomic<bool>>(false);
        return [=] {
            if (!isDone->exchange(true)) {
                inWork();
            }
        };
    }

    /// Calls inWork after the first block of that file.
    void AfterABlockOf(const std::string& inName, const std::function<void()>& inWork)
    {
        mOnBlock = [inName, once = Once(inWork)](const std::string& inOfFile) {
            if (inOfFile == inName) {
                once();
            }
        };
    }

    static const orl::VerifiedFile& Of(const orl::VerifyOutcome& inOutcome, const std::string& inName)
    {
        for (const orl::VerifiedFile& file : inOutcome.mFiles) {
            if (file.mName == inName) {
                return file;
            }
        }
        ADD_FAILURE() << "there is no file " << inName;
        static const orl::VerifiedFile none;
        return none;
    }

    static int ExitCodeOf(const orl::VerifyOutcome& inOutcome)
    {
        return orl::WorstExitCode(orl::TroublesOf({inOutcome}));
    }

    /// Expects one line, that the folder is gone, with exit code kVerifyGone; all but inVerified files are not checked.
    void ExpectGone(const orl::VerifyOutcome& inOutcome, std::size_t inVerified) const
    {
        const auto troubles = orl::TroublesOf({inOutcome});
        ASSERT_EQ(1u, troubles.size());
        EXPECT_EQ("verify: the folder \"" + Disk().u8string() + "\" is gone", troubles[0].mText);
        EXPECT_EQ(kVerifyGone, orl::WorstExitCode(troubles));
        EXPECT_EQ(inVerified, inOutcome.Count(orl::VerifiedFile::kVerified));
        EXPECT_EQ(inOutcome.mFiles.size() - inVerified, inOutcome.Count(orl::VerifiedFile::kNotChecked));
    }

    std::filesystem::path Away() const { return mFolder.Host() / "away"; }

    orl::VerifySettings mSettings;
    std::function<void()> mOnFirstPoll;
    std::function<void()> mOnListed;
    std::function<void(const std::string&)> mOnBlock;
};

} // namespace ORLTest
