// The ingest of one file: copy it to a temporary name, read the copy back, bypassing the cache, compare, rename to the
// final name.
#pragma once

#include "Failure.h"
#include "IngestSharedSource.h"
#include "Plan/IngestPlan.h"
#include "Record/IngestManifest.h"
#include "Record/IngestRecord.h"

#include <cstdint>
#include <functional>
#include <set>
#include <string>

namespace orl {

/// The steps of one file, each reported once it is done.
enum class IngestStep {
    kOpened,      // the source is open
    kBlockCopied, // a block is copied
    kCopied,      // the temporary file is complete and closed
    kVerified,    // the copy reads back the same as the source
    kInPlace,     // the file has its final name
};

/// The objects that all files of a run share. The callbacks are called on several threads.
struct IngestContext
{
    const IngestRoots& mRoots;
    const std::set<EntryIdentity>& mSourceFolders; // folders that the ingest never writes to
    IngestManifest& mManifest;                     // the line of a file is withdrawn before that file is replaced
    IngestRecord& mRecord;                         // lists each unfinished file before it is created
    SharedSource& mSource;                         // shared with the other destinations
    std::size_t mDestination = 0;                  // index of this run's destination
    bool mReplaces = false;
    bool mKeepsPermissions = false;
    std::function<bool()> mIsStopped;                                // called between blocks
    std::function<void(std::uint64_t)> mOnBytesRead;                 // receives the number of bytes just read
    std::function<void(IngestStep, const IngestItem&)> mOnStep = {}; // may be empty
};

/// Whether a failure concerns one file or the whole run: a full disk or a missing card makes the other files fail too.
enum class FailureScope { kFile, kRun };

/// Thrown when a file cannot be ingested. The temporary file has been removed, or remains in the record for a later run
/// to remove.
class IngestFailure : public Failure
{
public:
    IngestFailure(const std::string& inText, int inExitCode, FailureScope inScope)
        : Failure("ingest: " + inText, inExitCode), mScope(inScope)
    {
    }

    FailureScope Scope() const noexcept { return mScope; }

private:
    FailureScope mScope;
};

/// Thrown between two blocks when the run is stopped.
struct IngestStopped
{
};

struct IngestedFile
{
    std::string mDigest;      // SHA-256 in hexadecimal digits
    bool mWasPresent = false; // an identical file with the same name existed already
};

/// Copies one file to the destination. The final name never refers to anything but the complete and verified file.
/// Throws IngestFailure, IngestStopped, NoAnswer, and Failure if the manifest or the record cannot be written.
IngestedFile IngestFile(const IngestItem& inItem, const IngestContext& inContext);

} // namespace orl
