#include "IngestRun.h"

#include "IngestFlush.h"
#include "Text.h"
#include "UnbufferedRead.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <set>
#include <thread>

namespace orl {

namespace {

using Clock = std::chrono::steady_clock;

// A flush costs milliseconds, so files are added to the manifest in groups.
constexpr std::chrono::milliseconds kTick(100);
constexpr std::chrono::seconds kGroupTime(10);
constexpr std::size_t kGroupSize = 1024;

class Run
{
public:
    Run(const IngestPlan& inPlan, const IngestRoots& inRoots, const IngestSettings& inSettings,
        IngestManifest& ioManifest, IngestRecord& ioRecord, const IngestShare& inShare,
        const IngestRunWatcher& inWatcher)
        : mPlan(inPlan), mSettings(inSettings), mManifest(ioManifest), mWatcher(inWatcher),
          mRoots(inRoots), mContext{inRoots,
                                    inPlan.mSourceFolders,
                                    ioManifest,
                                    ioRecord,
                                    inShare.mSource,
                                    inShare.mDestination,
                                    inSettings.mReplaces,
                                    inSettings.mKeepsPermissions,
                                    [this] { return IsStopped(); },
                                    [this](std::uint64_t inBytes) {
                                        mBytesRead.fetch_add(inBytes, std::memory_order_relaxed);
                                    },
                                    inWatcher.mOnStep},
          mFiles(inPlan.mItems.size())
    {
    }

    IngestOutcome Execute()
    {
        const Clock::time_point start = Clock::now();
        mOutcome.mTroubles = mPlan.mTroubles;
        try {
            Prepare();
            CopyAll();
        } catch (const Failure& failure) {
            AddTrouble(failure, FailureScope::kRun);
        }
        mContext.mSource.UnregisterDestination(mContext.mDestination);
        Acknowledge();
        FinishFolders();
        Compact();
        CollectRows();
        mOutcome.mIsDiskUnresponsive = mIsDiskUnresponsive;
        mOutcome.mIsStopped = mIsStoppedByUser;
        mOutcome.mSeconds = std::chrono::duration<double>(Clock::now() - start).count();
        return std::move(mOutcome);
    }

private:
    void Prepare()
    {
        for (const std::string& name : mPlan.mFolders) {
            HeldFolder above;
            ORL::Result result = mRoots.OpenDestination(FolderOf(name), above);
            if (ORL::ResultSucceeded(result)) {
                result = mPlan.mSourceFolders.count(above.Identity()) == 0 ? above.MakeFolder(LeafOf(name))
                                                                           : ORL::kAccessDenied;
            }
            if (!ORL::ResultSucceeded(result) && result != ORL::kAlreadyExists) {
                throw Failure("ingest: cannot create the folder \"" + JoinHostPath(mRoots.mShownDestination, name)
                                  + "\": " + Describe(result),
                              result == ORL::kDiskFull ? kExitNoSpace : kExitFailure);
            }
        }
        // Drops the lines of files that are missing at the destination. The line of a file to be replaced stays true
        // until the replacement.
        std::vector<std::string> names;
        for (const IngestItem& item : mPlan.mItems) {
            if (item.mState == IngestItem::kToCopy) {
                names.push_back(item.mName);
            }
        }
        mManifest.Drop(names);
    }

    void CopyAll()
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
            mIsEnding = true;
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

    // Runs on the caller's thread: shows the progress, polls for a stop, acknowledges groups of files.
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
            mWatcher.mShow(mBytesRead.load(std::memory_order_relaxed), mDone.load(std::memory_order_relaxed));
            if (waiting >= kGroupSize || (waiting != 0 && Clock::now() - acknowledged >= kGroupTime)) {
                Acknowledge();
                acknowledged = Clock::now();
            }
        }
    }

    bool IsStopped()
    {
        if (!mIsEnding.load(std::memory_order_relaxed) && mWatcher.mIsStopped()) {
            mIsStoppedByUser = true;
            mIsEnding = true;
        }
        return mIsEnding.load(std::memory_order_relaxed);
    }

    void Work()
    {
        for (std::size_t i = mNext++; i < mPlan.mItems.size() && !IsStopped(); i = mNext++) {
            if (mPlan.mItems[i].mState != IngestItem::kVerifiedBefore) {
                CopyOne(i);
                mContext.mSource.UnregisterReader(mContext.mDestination, mPlan.mItems[i].mName);
            }
            mDone.fetch_add(1, std::memory_order_relaxed);
        }
        const std::lock_guard<std::mutex> lock(mMutex);
        --mLeft;
        mChanged.notify_all();
    }

    void CopyOne(std::size_t inIndex)
    {
        try {
            IngestedFile file = IngestFile(mPlan.mItems[inIndex], mContext);
            const std::lock_guard<std::mutex> lock(mMutex);
            mVerified.push_back(inIndex);
            mFiles[inIndex] = std::move(file);
        } catch (const IngestStopped&) { // the temporary file has been removed
        } catch (const IngestFailure& failure) {
            AddTrouble(failure, failure.Scope());
        } catch (const NoAnswer& failure) {
            AddTrouble(failure, FailureScope::kRun);
            mIsDiskUnresponsive = true;
        } catch (const Failure& failure) { // thrown by the manifest or the record
            AddTrouble(failure, FailureScope::kRun);
        } catch (const std::exception& failure) {
            AddTrouble(Failure("ingest: " + std::string(failure.what())), FailureScope::kRun);
        }
    }

    // Several files may hit the failure that stops the run; it is reported only once.
    void AddTrouble(const Failure& inFailure, FailureScope inScope)
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        if (inScope == FailureScope::kFile || !mHasEndedItself) {
            mOutcome.mTroubles.push_back({inFailure.what(), inFailure.ExitCode()});
        }
        if (inScope == FailureScope::kRun) {
            mHasEndedItself = true;
            mIsEnding = true;
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
            AcknowledgeGroup(group);
        } catch (const Failure& failure) {
            AddTroubleOfGroup(failure, group);
        }
    }

    // Reports only once that the destination has disappeared.
    void AddTroubleOfGroup(const Failure& inFailure, const std::vector<std::size_t>& inGroup)
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        const auto isOfGone = [](const IngestTrouble& inTrouble) { return inTrouble.mExitCode == kExitDisappeared; };
        if (inFailure.ExitCode() != kExitDisappeared
            || std::none_of(mOutcome.mTroubles.begin(), mOutcome.mTroubles.end(), isOfGone)) {
            mOutcome.mTroubles.push_back({inFailure.what(), inFailure.ExitCode()});
        }
        for (const std::size_t index : inGroup) {
            mFiles[index].mDigest.clear();
        }
        mHasEndedItself = true;
        mIsEnding = true;
    }

    void AcknowledgeGroup(const std::vector<std::size_t>& inGroup)
    {
        std::vector<IngestManifest::Line> lines;
        std::vector<std::string> names;
        for (const std::size_t index : inGroup) {
            lines.push_back({mPlan.mItems[index].mName, mFiles[index].mDigest});
            names.push_back(mPlan.mItems[index].mName);
        }
        if (IsDestinationGone(mRoots)) {
            throw Failure("ingest: the destination \"" + mRoots.mShownDestination + "\" is gone", kExitDisappeared);
        }
        if (!FlushGroup(mRoots, names)) {
            throw Failure("ingest: cannot flush \"" + mRoots.mShownDestination
                          + "\"; the last files are in place, but not in the manifest");
        }
        mManifest.Acknowledge(lines);
    }

    // Finishing a folder may make it read-only, so each folder is finished after everything in it.
    void FinishFolders()
    {
        std::set<std::string> incomplete = IncompleteFolders();
        for (auto folder = mPlan.mTree.rbegin(); folder != mPlan.mTree.rend() && !mIsDiskUnresponsive; ++folder) {
            FinishFolder(*folder, incomplete);
        }
    }

    bool IsInPlace(std::size_t inIndex) const
    {
        return mPlan.mItems[inIndex].mState == IngestItem::kVerifiedBefore || !mFiles[inIndex].mDigest.empty();
    }

    static void AddWithParents(const std::string& inFolder, std::set<std::string>& ioFolders)
    {
        if (ioFolders.count(inFolder) == 0) {
            const std::vector<std::string> folders = FoldersTo(inFolder);
            ioFolders.insert(folders.begin(), folders.end());
        }
    }

    // Returns the folders to which a later run will write, because something below them is missing.
    std::set<std::string> IncompleteFolders() const
    {
        std::set<std::string> incomplete;
        for (const std::string& folder : mPlan.mIncomplete) {
            AddWithParents(folder, incomplete);
        }
        for (std::size_t i = 0; i < mPlan.mItems.size(); ++i) {
            if (!IsInPlace(i)) {
                AddWithParents(FolderOf(mPlan.mItems[i].mName), incomplete);
            }
        }
        return incomplete;
    }

    // Each new entry of a folder changes the folder's time, so the time is set at the end. A folder whose
    // time cannot be set keeps its current time; this is not an error.
    void FinishFolder(const ListedFolder& inFolder, std::set<std::string>& ioIncomplete)
    {
        HeldFolder held;
        if (!ORL::ResultSucceeded(mRoots.OpenDestination(inFolder.mName, held))
            || mPlan.mSourceFolders.count(held.Identity()) != 0) {
            AddWithParents(FolderOf(inFolder.mName), ioIncomplete);
            return;
        }
        held.SetLastWriteTime(inFolder.mStatus.mTime);
        const bool isSet = mSettings.mKeepsPermissions && ioIncomplete.count(inFolder.mName) == 0;
        const ORL::Result result = isSet ? held.SetPermissions(inFolder.mStatus.mPermissions) : ORL::kSuccess;
        if (!ORL::ResultSucceeded(result)) {
            AddTrouble(Failure("ingest: cannot set the permissions of the folder \""
                               + JoinHostPath(mRoots.mShownDestination, inFolder.mName) + "\": " + Describe(result)),
                       FailureScope::kFile);
        }
    }

    void Compact()
    {
        try {
            if (!mIsDiskUnresponsive && !IsDestinationGone(mRoots)) {
                mManifest.Compact();
            }
        } catch (const Failure& failure) {
            AddTrouble(failure, FailureScope::kRun);
        }
    }

    void CollectRows()
    {
        for (std::size_t i = 0; i < mPlan.mItems.size(); ++i) {
            if (IsInPlace(i)) {
                mOutcome.mRows.push_back({&mPlan.mItems[i], mFiles[i].mDigest, mFiles[i].mWasPresent});
            }
        }
    }

    const IngestPlan& mPlan;
    const IngestSettings& mSettings;
    IngestManifest& mManifest;
    const IngestRunWatcher& mWatcher;
    const IngestRoots& mRoots;
    const IngestContext mContext;
    std::atomic<bool> mIsEnding{false};
    std::atomic<bool> mIsStoppedByUser{false};
    std::atomic<bool> mIsDiskUnresponsive{false};
    std::atomic<std::uint64_t> mBytesRead{0};
    std::atomic<std::size_t> mDone{0};
    std::atomic<std::size_t> mNext{0};
    std::mutex mMutex; // guards all members below while the threads run
    std::condition_variable mChanged;
    unsigned mLeft = 0;
    bool mHasEndedItself = false;
    std::vector<std::size_t> mVerified; // verified, but not yet in the manifest
    std::vector<IngestedFile> mFiles;
    IngestOutcome mOutcome;
};

} // namespace

IngestOutcome RunIngest(const IngestPlan& inPlan, const IngestRoots& inRoots, const IngestSettings& inSettings,
                        IngestManifest& ioManifest, IngestRecord& ioRecord, const IngestShare& inShare,
                        const IngestRunWatcher& inWatcher)
{
    return Run(inPlan, inRoots, inSettings, ioManifest, ioRecord, inShare, inWatcher).Execute();
}

} // namespace orl
