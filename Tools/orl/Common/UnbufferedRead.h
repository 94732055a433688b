// A whole file read past the system's cache, many reads in flight, taken up in order.
#pragma once

#include "Failure.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <tvxcore/String.h>

namespace orl {

/// Thrown when the disk answers no more. A read that was started and is never reported ends the reads of the whole process:
/// what is open stays open, and the process had better end without a stop of the library, which might wait for the disk.
class NoAnswer : public Failure
{
public:
    using Failure::Failure;
};

struct UnbufferedRead
{
    std::string mWho;                   // the command, for its failures
    std::string mShown;                 // the file as its user knows it
    UTF16String mPath;                  // the file's library path
    std::optional<std::uint64_t> mSize; // bytes to read; the file's size where it is left out
    std::size_t mBlockSize = 1 << 20;   // bytes of one read, rounded up to whole sectors
    std::size_t mDepth = 32;            // reads in flight
    unsigned mPatience = 60;            // seconds without any answer of the disk
};

struct UnbufferedFigures
{
    std::uint64_t mSize = 0;
    std::uint64_t mReads = 0;
    unsigned mSectorSize = 0;
};

/// Gets the blocks of a file in their order: the bytes, and the seconds from queuing the read to its callback. The last
/// argument is the size of the file. What it throws ends the read.
using UnbufferedSink =
    std::function<void(const unsigned char* inBytes, std::size_t inCount, double inLatency, std::uint64_t inSize)>;

/// Needs a started library. Throws Failure, with no read left in flight unless it is NoAnswer.
UnbufferedFigures ReadUnbuffered(const UnbufferedRead& inRead, const UnbufferedSink& inSink);

} // namespace orl
