#include "IngestDestinations.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace orl {

namespace {

constexpr std::chrono::milliseconds kTick(100);

/// The record and the manifest of one destination, and its progress.
struct DestinationFiles
{
    DestinationFiles(const IngestRoots& inRoots, const std::string& inManifestName)
        : mRecord(inRoots, inManifestName), mManifest(inRoots, inManifestName, mRecord)
    {
    }

    IngestRecord mRecord;
    IngestManifest mManifest;
    std::atomic<std::uint64_t> mBytesRead{0};
    std::atomic<std::size_t> mDone{0};
    bool mIsOver = false; // guarded by the ingest's mutex
};

class WholeIngest
{
public:
    WholeIngest(std::vector<IngestDestination>& ioDestinations, const std::string& inManifestName,
                const IngestSettings& inSettings, const IngestWatcher& inWatcher)
        : mDestinations(ioDestinations), mManifestName(inManifestName), mSettings(inSettings), mWatcher(inWatcher),
          mSource(inSettings.mSharing), mOpened(ioDestinations.size())
    {
    }

    IngestedSource Execute()
    {
        IngestListing listing = ListSource(mDestinations.front().mRoots, mWatcher.mIsStopped, mSettings.mExclusions);
        for (std::size_t i = 0; i < mDestinations.size(); ++i) {
            try {
                Begin(i, listing);
            } catch (const Failure& failure) {
                Refuse(i, failure);
            }
        }
        RegisterReads();
        if (mWatcher.mOnPlanned) {
            ReportPlan();
        }
        ServeAll();
        return {std::move(listing), mSource.BytesRead()};
    }

private:
    // First checks that the destination lies outside the source, so that not even the record is written inside the
    // source. Leftovers of earlier runs are deleted before the free space is checked. Until every check has passed,
    // only the record is written.
    void Begin(std::size_t inIndex, const IngestListing& inListing)
    {
        IngestDestination& destination = mDestinations[inIndex];
        IngestRoots& roots = destination.mRoots;
        const bool wasThere = roots.mHasDestination;
        if (wasThere && inListing.mIdentities.count(roots.mDestinationIdentity) != 0) {
            throw Failure("ingest: the destination \"" + roots.mShownDestination + "\" lies inside the source");
        }
        auto opened = std::make_unique<DestinationFiles>(roots, mManifestName);
        if (wasThere) {
            opened->mRecord.Open();
            opened->mManifest.Read();
        }
        opened->mRecord.RemoveLeftovers(inListing.mIdentities);
        destination.mPlan =
            MakePlan(inListing, {roots, mManifestName, opened->mManifest, wasThere ? &opened->mRecord : nullptr,
                                 mSettings.mReplaces, mSettings.mKeepsPermissions, mWatcher.mIsStopped});
        CheckFreeSpace(destination.mPlan, roots, mReserved);
        if (!wasThere) {
            MakeDestination(roots);
            opened->mRecord.Open();
            opened->mManifest.Read();
        }
        opened->mManifest.CutIncompleteLine();
        mOpened[inIndex] = std::move(opened);
    }

    // A failure that concerns all destinations, or the only destination, stops the ingest.
    void Refuse(std::size_t inIndex, const Failure& inFailure)
    {
        const bool isOfAll = inFailure.ExitCode() == kExitStopped || inFailure.ExitCode() == kExitEmpty;
        if (isOfAll || mDestinations.size() == 1) {
            throw inFailure;
        }
        mDestinations[inIndex].mPlan = IngestPlan();
        mDestinations[inIndex].mOutcome.mIsRefused = true;
        mDestinations[inIndex].mOutcome.mTroubles.push_back({inFailure.what(), inFailure.ExitCode()});
    }

    // Registers nothing for a single destination, because no block is shared.
    void RegisterReads()
    {
        for (std::size_t i = 0; i < mDestinations.size() && mDestinations.size() > 1; ++i) {
            for (const IngestItem& item : mDestinations[i].mPlan.mItems) {
                if (item.mState != IngestItem::kVerifiedBefore) {
                    mSource.RegisterReader(i, item.mName);
                }
            }
        }
    }

    void ReportPlan() const
    {
        std::uint64_t bytes = 0;
        std::size_t files = 0;
        for (const IngestDestination& destination : mDestinations) {
            bytes += destination.mPlan.mBytesToRead;
            files += destination.mPlan.mItems.size();
        }
        mWatcher.mOnPlanned(bytes, files);
    }

    void ServeAll()
    {
        std::vector<std::thread> threads;
        for (std::size_t i = 0; i < mDestinations.size(); ++i) {
            if (mOpened[i]) {
                threads.emplace_back([this, i] { Serve(i); });
            }
        }
        Watch();
        for (std::thread& thread : threads) {
            thread.join();
        }
        Show();
    }

    void Serve(std::size_t inIndex)
    {
        IngestDestination& destination = mDestinations[inIndex];
        DestinationFiles& opened = *mOpened[inIndex];
        try {
            destination.mOutcome = RunIngest(destination.mPlan, destination.mRoots, mSettings, opened.mManifest,
                                             opened.mRecord, {mSource, inIndex}, WatcherOf(inIndex));
        } catch (const std::exception& failure) {
            destination.mOutcome.mTroubles.push_back({"ingest: " + std::string(failure.what()), kExitFailure});
        }
        mSource.UnregisterDestination(inIndex);
        const std::lock_guard<std::mutex> lock(mMutex);
        opened.mIsOver = true;
        mChanged.notify_all();
    }

    IngestRunWatcher WatcherOf(std::size_t inIndex)
    {
        IngestRunWatcher watcher;
        watcher.mIsStopped = mWatcher.mIsStopped;
        watcher.mShow = [&opened = *mOpened[inIndex]](std::uint64_t inBytesRead, std::size_t inDone) {
            opened.mBytesRead.store(inBytesRead, std::memory_order_relaxed);
            opened.mDone.store(inDone, std::memory_order_relaxed);
        };
        if (mWatcher.mOnStep) {
            watcher.mOnStep = [this, inIndex](IngestStep inStep, const IngestItem& inItem) {
                mWatcher.mOnStep(inIndex, inStep, inItem);
            };
        }
        return watcher;
    }

    void Watch()
    {
        std::unique_lock<std::mutex> lock(mMutex);
        while (!mChanged.wait_for(lock, kTick, [this] { return AreAllOver(); })) {
            lock.unlock();
            Show();
            lock.lock();
        }
    }

    bool AreAllOver() const
    {
        for (const std::unique_ptr<DestinationFiles>& opened : mOpened) {
            if (opened && !opened->mIsOver) {
                return false;
            }
        }
        return true;
    }

    void Show() const
    {
        std::uint64_t bytesRead = 0;
        std::size_t done = 0;
        for (const std::unique_ptr<DestinationFiles>& opened : mOpened) {
            bytesRead += opened ? opened->mBytesRead.load(std::memory_order_relaxed) : 0;
            done += opened ? opened->mDone.load(std::memory_order_relaxed) : 0;
        }
        mWatcher.mShow(bytesRead, done);
    }

    std::vector<IngestDestination>& mDestinations;
    const std::string& mManifestName;
    const IngestSettings& mSettings;
    const IngestWatcher& mWatcher;
    SharedSource mSource;
    ReservedSpace mReserved;
    std::vector<std::unique_ptr<DestinationFiles>> mOpened; // null if the destination was rejected
    std::mutex mMutex;
    std::condition_variable mChanged;
};

} // namespace

std::vector<IngestDestination> MakeDestinations(const std::string& inSource,
                                                const std::vector<std::string>& inDestinations)
{
    std::vector<IngestDestination> destinations;
    for (const std::string& argument : inDestinations) {
        IngestDestination destination;
        destination.mRoots = MakeRoots(inSource, argument);
        for (const IngestDestination& earlier : destinations) {
            CheckApart(earlier.mRoots, destination.mRoots);
        }
        destinations.push_back(std::move(destination));
    }
    return destinations;
}

IngestedSource Ingest(std::vector<IngestDestination>& ioDestinations, const std::string& inManifestName,
                      const IngestSettings& inSettings, const IngestWatcher& inWatcher)
{
    return WholeIngest(ioDestinations, inManifestName, inSettings, inWatcher).Execute();
}

} // namespace orl
