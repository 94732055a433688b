// Streams one file unbuffered, with many reads in flight, and measures it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

#include "Failure.h"
#include "UnbufferedRead.h"

namespace orl {

struct StreamSettings
{
    std::size_t mBlockSize = 1 << 20; // bytes per read, rounded up to whole sectors
    std::size_t mDepth = 32;          // reads in flight
    unsigned mTimeoutSeconds = 60;    // seconds to wait for each block before NoAnswer is thrown
};

struct StreamFigures
{
    std::uint64_t mBytes = 0;
    double mSeconds = 0;
    std::uint64_t mReads = 0;
    unsigned mSectorSize = 0;
    double mMedianLatency = 0; // seconds from queuing a read to its callback
    double mPercentile99Latency = 0;
    std::uint32_t mCRC = 0; // CRC-32 of the contents, as computed by zlib
};

/// Thrown when the progress function stops the stream.
class Interrupted : public Failure
{
public:
    using Failure::Failure;
};

/// Receives the bytes done and the total. Returns false to stop the stream.
using StreamProgress = std::function<bool(std::uint64_t inDone, std::uint64_t inSize)>;

/// inArgument is a host path or a library path. Requires a started library. Throws Failure on an error. No read is in
/// flight when it throws, except for NoAnswer.
StreamFigures StreamFile(const std::string& inArgument, const StreamSettings& inSettings,
                         const StreamProgress& inProgress);

/// Returns the CRC-32 of the file, read through the system's cache.
std::uint32_t PlainCRC(const std::string& inArgument);

} // namespace orl
