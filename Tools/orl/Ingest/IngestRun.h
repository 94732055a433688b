// All files of an ingest: several at once, and the manifest kept behind them.
#pragma once

#include "IngestFile.h"
#include "IngestManifest.h"
#include "IngestPlan.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace orl {

struct IngestSettings
{
    unsigned mFilesAtOnce = 4; // of each destination
    bool mReplaces = false;
    SharingLimits mSharing;
};

/// The callbacks of a run to one destination.
struct IngestRunWatcher
{
    std::function<bool()> mIsStopped; // called on any thread, between two blocks
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
        std::string mDigest;      // empty for one that was verified before
        bool mWasPresent = false; // compared, not copied
    };

    std::vector<Row> mRows; // what is at the destination, verified, and in the manifest: in the plan's order
    std::vector<IngestTrouble> mTroubles;
    bool mIsRefused = false; // nothing was begun
    bool mIsStopped = false;
    bool mHasNoAnswer = false; // of the destination: the process had better end without a stop of the library
    double mSeconds = 0;
};

/// Makes the folders, brings the files, and acknowledges them in groups: a file's line is written when the file is on
/// disk under its final name. When this returns, everything that was verified is acknowledged, unless a trouble says
/// that the disk or the manifest cannot be kept.
IngestOutcome RunIngest(const IngestPlan& inPlan, const IngestRoots& inRoots, const IngestSettings& inSettings,
                        IngestManifest& ioManifest, IngestRecord& ioRecord, const IngestShare& inShare,
                        const IngestRunWatcher& inWatcher);

} // namespace orl
