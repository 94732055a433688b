// Reads a whole file unbuffered, with many reads in flight, and delivers it in order.
#pragma once

#include "Failure.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <tvxcore/String.h>

namespace orl {

/// Thrown when the disk stops responding. A started read whose callback never runs blocks all reads in the process and
/// keeps the file open. The process should end without stopping the library, because the stop might wait for the disk.
class NoAnswer : public Failure
{
public:
    using Failure::Failure;
};

struct UnbufferedRead
{
    std::string mCommand;               // the command, for its error messages
    std::string mDisplayName;           // the file name as the user typed it
    UTF16String mPath;                  // the file's library path
    std::optional<std::uint64_t> mSize; // bytes to read; if not set, the whole file
    std::size_t mBlockSize = 1 << 20;   // bytes per read, rounded up to whole sectors
    std::size_t mDepth = 32;            // reads in flight
    unsigned mTimeoutSeconds = 60;      // seconds to wait for each block before NoAnswer is thrown
};

struct UnbufferedFigures
{
    std::uint64_t mSize = 0;
    std::uint64_t mReads = 0;
    unsigned mSectorSize = 0;
};

/// Receives the blocks of a file in order: the bytes, and the seconds from queuing the read to its callback. The last
/// argument is the size of the file. If the function throws, the read ends.
using UnbufferedSink =
    std::function<void(const unsigned char* inBytes, std::size_t inCount, double inLatency, std::uint64_t inSize)>;

/// Requires a started library. Throws Failure on an error. No read is in flight when it throws, except for NoAnswer.
UnbufferedFigures ReadUnbuffered(const UnbufferedRead& inRead, const UnbufferedSink& inSink);

} // namespace orl
