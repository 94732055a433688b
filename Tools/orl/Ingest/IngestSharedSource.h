// The files of the source, each read and hashed once for all destinations that need it.
//
// The first destination that needs a block reads it; the block stays in memory for the others, up to a limit. At the
// limit the destination that is ahead waits for the others, but for each file at most as long as it has worked on that
// file, plus one second. Then the oldest blocks are dropped, and a slower destination reads them from the source again.
// A slow destination therefore slows a fast one down to no less than half of its speed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace orl {

struct SharingLimits
{
    std::uint64_t mBytesKept = std::uint64_t{256} << 20; // memory limit for the blocks of all files together
    bool mWaits = true;                                  // false: at the limit, drops blocks without waiting
};

/// Thread-safe. Must outlive every SharedReading of it.
class SharedSource
{
public:
    explicit SharedSource(const SharingLimits& inLimits);
    ~SharedSource();
    SharedSource(const SharedSource&) = delete;
    SharedSource& operator=(const SharedSource&) = delete;

    /// Registers that a destination will read a file. Call before the first reading begins.
    void RegisterReader(std::size_t inDestination, const std::string& inName);

    /// Cancels the registration for one file, or for all files: no more blocks are kept for the destination.
    void UnregisterReader(std::size_t inDestination, const std::string& inName);
    void UnregisterDestination(std::size_t inDestination);

    /// Bytes read from the source so far.
    std::uint64_t BytesRead() const;

    struct State;

private:
    friend class SharedReading;

    std::unique_ptr<State> mState;
};

/// Reads one file for one destination, block by block. Not thread-safe.
class SharedReading
{
public:
    static constexpr std::size_t kBlockSize = 1 << 20;

    /// Reads exactly inCount bytes at offset inAt, or throws.
    using Read = std::function<void(std::uint64_t inAt, unsigned char* outBytes, std::size_t inCount)>;
    using Block = std::shared_ptr<const std::vector<unsigned char>>;

    /// inCheck is called while a read waits; an exception from it ends the wait.
    SharedReading(SharedSource& ioSource, std::size_t inDestination, const std::string& inName, std::uint64_t inSize,
                  Read inRead, std::function<void()> inCheck);

    /// Releases the blocks kept for this destination.
    ~SharedReading();
    SharedReading(const SharedReading&) = delete;
    SharedReading& operator=(const SharedReading&) = delete;

    /// Returns the next block, or null after the last one.
    Block Next();

    /// The SHA-256 of the file. Valid after Next has returned null.
    std::string Digest() const;

private:
    struct Impl;

    std::unique_ptr<Impl> mImpl;
};

} // namespace orl
