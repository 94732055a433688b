// Streams one file past the system's cache, many reads in flight, and measures it.
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
    std::size_t mBlockSize = 1 << 20; // bytes of one read, rounded up to whole sectors
    std::size_t mDepth = 32;          // reads in flight
    unsigned mPatience = 60;          // seconds without any answer of the disk
};

struct StreamFigures
{
    std::uint64_t mBytes = 0;
    double mSeconds = 0;
    std::uint64_t mReads = 0;
    unsigned mSectorSize = 0;
    double mMedianLatency = 0;     // seconds from queuing a read to its callback
    double mPercentile99Latency = 0;
    std::uint32_t mCRC = 0; // CRC-32 of the contents, as zlib computes it
};

/// Thrown when the progress function stops the stream.
class Interrupted : public Failure
{
public:
    using Failure::Failure;
};

/// Told the bytes that have passed and the bytes there are. False stops the stream.
using StreamProgress = std::function<bool(std::uint64_t inDone, std::uint64_t inSize)>;

/// inArgument is a host path or a library path. Needs a started library. Throws Failure, with no read left in flight unless it
/// is NoAnswer.
StreamFigures StreamFile(const std::string& inArgument, const StreamSettings& inSettings,
                         const StreamProgress& inProgress);

/// The CRC-32 of a plain read through the system's cache.
std::uint32_t PlainCRC(const std::string& inArgument);

} // namespace orl
