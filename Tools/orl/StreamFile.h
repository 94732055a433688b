// Streams one file past the system's cache, many reads in flight, and measures it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace orl {

struct StreamSettings
{
    std::size_t mBlockSize = 1 << 20; // bytes of one read, rounded up to whole sectors
    std::size_t mDepth = 32;          // reads in flight
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

/// Told the bytes that have passed and the bytes there are. False stops the stream.
using StreamProgress = std::function<bool(std::uint64_t inDone, std::uint64_t inSize)>;

/// inArgument is a host path or a library path. Needs a started library. Throws Failure, with no read left in flight; ends
/// the process when the disk answers no more, since a reader cannot be closed under its reads.
StreamFigures StreamFile(const std::string& inArgument, const StreamSettings& inSettings,
                         const StreamProgress& inProgress);

/// The CRC-32 of a plain read through the system's cache.
std::uint32_t PlainCRC(const std::string& inArgument);

} // namespace orl
