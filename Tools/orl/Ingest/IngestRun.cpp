#include "IngestRun.h"

#include "IngestSystem.h"
#include "Text.h"
#include "UnbufferedRead.h"

#include <ORLDirectory.h>
#include <ORLFile.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace orl {

namespace {

using Clock = std::chrono::steady_clock;

// A flush costs milliseconds, so files are acknowledged in groups.
constexpr std::chrono::milliseconds kTick(100);
constexpr std::chrono::seconds kGroupTime(10);
constexpr std::size_t kGroupSize = 1024;

class Run
{
public:
    Run(const IngestPlan& inPlan, const IngestRoots& inRoots, const IngestSettings& inSettings,
        IngestManifest& ioManifest, const IngestWatcher& inWatcher)
        : mPlan(inPlan), mSettings(inSettings), mManifest(ioManifest), mWatcher(inWatcher),
          mRoots(WithDestination(inRoots)),
          mContext{mRoots, ioManifest, inSettings.mReplaces, [this] { return IsStopped(); },
                   [this](std::uint64_t inBytes) { mPassed.fetch_add(inBytes, std::memory_order_relaxed); },
                   inWatcher.mOnStep},
          mDigests(inPlan.mItems.size())
    {
    }

    IngestOutcome Execute()
    {
        const Clock::time_point start = Clock::now();
        mOutcome.mTroubles = mPlan.mTroubles;
        try {
            Prepare();
            BringAll();
        } catch (const Failure& failure) {
            AddTrouble(failure, true);
        }
        Acknowledge();
        CollectRows();
        mOutcome.mHasNoAnswer = mHasNoAnswer;
        mOutcome.mIsStopped = mIsStoppedByUser;
        mOutcome.mSeconds = std::chrono::duration<double>(Clock::now() - start).count();
        return std::move(mOutcome);
    }

private:
    // A destination that was to be made has been made since.
    static IngestRoots WithDestination(IngestRoots inRoots)
    {
        FolderIdentity identity;
        if (!inRoots.mDestinationIdentity && IdentifyFolder(inRoots.mDestination, identity)) {
            inRoots.mDestinationIdentity = identity;
        }
        return inRoots;
    }

    void Prepare()
    {
        for (const UTF16String& leftover : mPlan.mLeftovers) {
            OnceItIsFree([&leftover] { return ORL::File::Delete(leftover); });
        }
        for (const UTF16String& folder : mPlan.mFolders) {
            const ORL::Result result = ORL::Directory::CreateOnDisk(folder, false);
            if (!ORL::ResultSucceeded(result)) {
                throw Failure("ingest: cannot make the folder \"" + HostTextOf(folder) + "\": " + Describe(result));
            }
        }
        // Lines of files that somebody has taken away. That of a file to be replaced is true until then.
        std::vector<std::string> names;
        for (const IngestItem& item : mPlan.mItems) {
            if (item.mState == IngestItem::kToCopy) {
                names.push_back(item.mName);
            }
        }
        mManifest.Drop(names);
    }

    void BringAll()
    {
        const unsigned count = std::max(1u, mSettings.mFilesAtOnce);
        mLeft = count;
        std::vector<std::thread> threads;
        for (unsigned i = 0; i < count; ++i) {
            threads.emplace_back([this] { Work(); });
        }
        try {
            Watch();
        } catch (...) {
            mEnds = true;
            Join(threads);
            throw;
        }
        Join(threads);
    }

    static void Join(std::vector<std::thread>& ioThreads)
    {
        for (std::thread& thread : ioThreads) {
            thread.join();
        }
    }

    // On the caller's thread: shows how far it is, listens for the user, acknowledges.
    void Watch()
    {
        Clock::time_point acknowledged = Clock::now();
        for (bool isOver = false; !isOver;) {
            std::size_t waiting = 0;
            {
                std::unique_lock<std::mutex> lock(mMutex);
                isOver = mChanged.wait_for(lock, kTick, [this] { return mLeft == 0; });
                waiting = mVerified.size();
            }
            if (!isOver) {
                IsStopped();
            }
            mWatcher.mShow(mPassed.load(std::memory_order_relaxed), mDone.load(std::memory_order_relaxed));
            if (waiting >= kGroupSize || (waiting != 0 && Clock::now() - acknowledged >= kGroupTime)) {
                Acknowledge();
                acknowledged = Clock::now();
            }
        }
    }

    bool IsStopped()
    {
        if (!mEnds.load(std::memory_order_relaxed) && mWatcher.mIsStopped()) {
            mIsStoppedByUser = true;
            mEnds = true;
        }
        return mEnds.load(std::memory_order_relaxed);
    }

    void Work()
    {
        std::vector<unsigned char> buffer;
        for (std::size_t i = mNext++; i < mPlan.mItems.size() && !IsStopped(); i = mNext++) {
            if (mPlan.mItems[i].mState != IngestItem::kVerifiedBefore) {
                Bring(i, buffer);
            }
            mDone.fetch_add(1, std::memory_order_relaxed);
        }
        const std::lock_guard<std::mutex> lock(mMutex);
        --mLeft;
        mChanged.notify_all();
    }

    void Bring(std::size_t inIndex, std::vector<unsigned char>& ioBuffer)
    {
        try {
            std::string digest = IngestFile(mPlan.mItems[inIndex], mContext, ioBuffer);
            const std::lock_guard<std::mutex> lock(mMutex);
            mVerified.push_back(inIndex);
            mDigests[inIndex] = std::move(digest);
        } catch (const IngestStopped&) { // nothing of the file is left
        } catch (const IngestFailure& failure) {
            AddTrouble(failure, failure.EndsRun());
        } catch (const NoAnswer& failure) {
            AddTrouble(failure, true);
            mHasNoAnswer = true;
        } catch (const Failure& failure) { // of the manifest
            AddTrouble(failure, true);
        } catch (const std::exception& failure) {
            AddTrouble(Failure("ingest: " + std::string(failure.what())), true);
        }
    }

    // What ends the run is met by several files at once and told by the first.
    void AddTrouble(const Failure& inFailure, bool inEndsRun)
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        if (!inEndsRun || !mHasEndedItself) {
            mOutcome.mTroubles.push_back({inFailure.what(), inFailure.ExitCode()});
        }
        if (inEndsRun) {
            mHasEndedItself = true;
            mEnds = true;
        }
    }

    void Acknowledge()
    {
        std::vector<std::size_t> group;
        {
            const std::lock_guard<std::mutex> lock(mMutex);
            group.swap(mVerified);
        }
        if (group.empty()) {
            return;
        }
        try {
            Keep(group);
        } catch (const Failure& failure) {
            AddTroubleOfGroup(failure, group);
        }
    }

    // What went with the destination is told once.
    void AddTroubleOfGroup(const Failure& inFailure, const std::vector<std::size_t>& inGroup)
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        const auto isOfGone = [](const IngestTrouble& inTrouble) { return inTrouble.mExitCode == kExitGone; };
        if (inFailure.ExitCode() != kExitGone
            || std::none_of(mOutcome.mTroubles.begin(), mOutcome.mTroubles.end(), isOfGone)) {
            mOutcome.mTroubles.push_back({inFailure.what(), inFailure.ExitCode()});
        }
        for (const std::size_t index : inGroup) {
            mDigests[index].clear();
        }
        mHasEndedItself = true;
        mEnds = true;
    }

    void Keep(const std::vector<std::size_t>& inGroup)
    {
        std::vector<IngestManifest::Line> lines;
        std::vector<UTF16String> files;
        for (const std::size_t index : inGroup) {
            lines.push_back({mPlan.mItems[index].mName, mDigests[index]});
            files.push_back(mPlan.mItems[index].mTarget);
        }
        if (IsDestinationGone(mRoots)) {
            throw Failure("ingest: the destination \"" + mRoots.mShownDestination + "\" is gone", kExitGone);
        }
        if (!FlushGroup(mRoots.mDestination, files)) {
            throw Failure("ingest: \"" + mRoots.mShownDestination
                          + "\" cannot keep what was written; the last files are in place, but not in the manifest");
        }
        mManifest.Acknowledge(lines);
    }

    void CollectRows()
    {
        for (std::size_t i = 0; i < mPlan.mItems.size(); ++i) {
            const bool wasBefore = mPlan.mItems[i].mState == IngestItem::kVerifiedBefore;
            if (wasBefore || !mDigests[i].empty()) {
                mOutcome.mRows.push_back({&mPlan.mItems[i], mDigests[i]});
            }
        }
    }

    const IngestPlan& mPlan;
    const IngestSettings& mSettings;
    IngestManifest& mManifest;
    const IngestWatcher& mWatcher;
    const IngestRoots mRoots;
    const IngestContext mContext;
    std::atomic<bool> mEnds{false};
    std::atomic<bool> mIsStoppedByUser{false};
    std::atomic<bool> mHasNoAnswer{false};
    std::atomic<std::uint64_t> mPassed{0};
    std::atomic<std::size_t> mDone{0};
    std::atomic<std::size_t> mNext{0};
    std::mutex mMutex; // guards all below while the threads run
    std::condition_variable mChanged;
    unsigned mLeft = 0;
    bool mHasEndedItself = false;
    std::vector<std::size_t> mVerified; // and not yet acknowledged
    std::vector<std::string> mDigests;
    IngestOutcome mOutcome;
};

} // namespace

IngestOutcome RunIngest(const IngestPlan& inPlan, const IngestRoots& inRoots, const IngestSettings& inSettings,
                        IngestManifest& ioManifest, const IngestWatcher& inWatcher)
{
    return Run(inPlan, inRoots, inSettings, ioManifest, inWatcher).Execute();
}

} // namespace orl
