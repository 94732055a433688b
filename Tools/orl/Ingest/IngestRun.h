// The ingest of all files to one destination: copies several files at once and adds them to the manifest.
#pragma once

#include "IngestFile.h"
#include "Plan/IngestPlan.h"
#include "Record/IngestManifest.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace orl {

struct IngestSettings
{
    unsigned mFilesAtOnce = 4; // per destination
    bool mReplaces = false;
    bool mKeepsPermissions = false;
    IngestExclusions mExclusions;
    SharingLimits mSharing;
};

/// The callbacks of a run to one destination.
struct IngestRunWatcher
{
    std::function<bool()> mIsStopped; // polled on any thread, between two blocks
    std::function<void(std::uint64_t inBytesPassed, std::size_t inFilesDone)>
        mShow;                                                       // on the caller's thread, ten times a second
    std::function<void(IngestStep, const IngestItem&)> mOnStep = {}; // called on any thread; may be empty
};

/// The source that all runs share, and the index of this run's destination.
struct IngestShare
{
    SharedSource& mSource;
    std::size_t mDestination;
};

struct IngestOutcome
{
    struct Row
    {
        const IngestItem* mItem;
        std::string mDigest;      // empty if an earlier run verified the file
        bool mWasPresent = false; // true: the file was compared, not copied
    };

    std::vector<Row> mRows; // files at the destination that are verified and in the manifest, in the plan's order
    std::vector<IngestTrouble> mTroubles;
    bool mIsRefused = false; // the destination was rejected before any work began
    bool mIsStopped = false;
    bool mIsDiskUnresponsive = false; // the disk stopped responding: exit without stopping the library
    double mSeconds = 0;
};

/// Creates the folders, copies the files, and adds them to the manifest in groups, each file after it is on disk under
/// its final name. When this returns, every verified file is in the manifest, unless a failure reports that the disk or
/// the manifest could not be written.
IngestOutcome RunIngest(const IngestPlan& inPlan, const IngestRoots& inRoots, const IngestSettings& inSettings,
                        IngestManifest& ioManifest, IngestRecord& ioRecord, const IngestShare& inShare,
                        const IngestRunWatcher& inWatcher);

} // namespace orl
