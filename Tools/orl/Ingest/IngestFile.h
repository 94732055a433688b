// One file on its way: copied to a temporary name, read back past the cache, compared, put in place.
#pragma once

#include "Failure.h"
#include "IngestManifest.h"
#include "IngestPlan.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

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
    IngestManifest& mManifest; // the line of a file that is replaced goes before the file
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

/// Does something with an unfinished file. A run that was killed may hold it for a moment longer, until the system has ended
/// its reads, so kSharingViolation is answered by another try, for some seconds.
ORL::Result OnceItIsFree(const std::function<ORL::Result()>& inWork);

/// Brings one file to the destination and gives its SHA-256 in hexadecimal digits. At no moment does anything but the
/// whole and verified file have the final name. ioBuffer is memory to work with. Throws IngestFailure, IngestStopped and NoAnswer.
std::string IngestFile(const IngestItem& inItem, const IngestContext& inContext, std::vector<unsigned char>& ioBuffer);

} // namespace orl
