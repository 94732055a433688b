// One file on its way: copied to a temporary name, read back past the cache, compared, put in place.
#pragma once

#include "Failure.h"
#include "IngestManifest.h"
#include "IngestPlan.h"
#include "IngestRecord.h"
#include "IngestSharedSource.h"

#include <cstdint>
#include <functional>
#include <set>
#include <string>

namespace orl {

/// The steps of one file, each told when it is done.
enum class IngestStep {
    kOpened,      // the source is open
    kBlockCopied, // one block of many
    kCopied,      // the temporary file is whole and closed
    kVerified,    // it reads back as the source was read
    kInPlace,     // it has its final name
};

/// What all files of a run share. The functions are called from several threads.
struct IngestContext
{
    const IngestRoots& mRoots;
    const std::set<EntryIdentity>& mSourceFolders; // none of them is ever written to
    IngestManifest& mManifest;                     // the line of a file that is replaced goes before the file
    IngestRecord& mRecord;                         // knows of each unfinished file before it is made
    SharedSource& mSource;                         // shared with the other destinations
    std::size_t mDestination = 0;                  // index of this one
    bool mReplaces = false;
    std::function<bool()> mIsStopped;                                // asked between blocks
    std::function<void(std::uint64_t)> mPass;                        // told of bytes that were read, here or there
    std::function<void(IngestStep, const IngestItem&)> mOnStep = {}; // may be empty
};

/// One file could not be brought in. Nothing of it is left at the destination.
class IngestFailure : public Failure
{
public:
    IngestFailure(const std::string& inText, int inExitCode, bool inEndsRun)
        : Failure("ingest: " + inText, inExitCode), mEndsRun(inEndsRun)
    {
    }

    /// Whether the other files have no chance either: the disk is full, the card is gone.
    bool EndsRun() const noexcept { return mEndsRun; }

private:
    bool mEndsRun;
};

/// Thrown between two blocks when the run is stopped.
struct IngestStopped
{
};

struct IngestedFile
{
    std::string mDigest;      // SHA-256 in hexadecimal digits
    bool mWasPresent = false; // the same file had its name already, and was compared
};

/// Brings one file to the destination. At no moment does anything but the whole and verified file have the final name.
/// Throws IngestFailure, IngestStopped, NoAnswer, and Failure where manifest or record cannot be kept.
IngestedFile IngestFile(const IngestItem& inItem, const IngestContext& inContext);

} // namespace orl
