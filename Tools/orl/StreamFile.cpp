#include "StreamFile.h"

#include "Text.h"

#include <ORLAsyncFileReader.h>
#include <ORLHostPath.h>
#include <ORLPathUtils.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <memory>
#include <mutex>
#include <new>
#include <vector>
#include <zlib.h>

namespace orl {

namespace {

using Clock = std::chrono::steady_clock;

std::filesystem::path HostPathOf(const std::string& inArgument)
{
    std::string hostPath;
    const ORL::Result result = ORL::PathUtils::ToHostPath(PathOfArgument(inArgument), hostPath);
    if (!ORL::ResultSucceeded(result)) {
        throw Failure("stream: cannot find \"" + inArgument + "\": " + Describe(result));
    }
    return std::filesystem::u8path(hostPath);
}

std::uint64_t SizeOf(const std::string& inArgument)
{
    std::error_code error;
    const std::uint64_t size = std::filesystem::file_size(HostPathOf(inArgument), error);
    if (error) {
        throw Failure("stream: cannot learn the size of \"" + inArgument + "\": " + error.message());
    }
    return size;
}

class AlignedMemory
{
public:
    AlignedMemory(std::size_t inSize, std::size_t inAlignment)
        : mAlignment(inAlignment),
          mBytes(static_cast<unsigned char*>(::operator new(inSize, std::align_val_t(inAlignment))))
    {
    }
    ~AlignedMemory() { ::operator delete(mBytes, std::align_val_t(mAlignment)); }
    AlignedMemory(const AlignedMemory&) = delete;
    AlignedMemory& operator=(const AlignedMemory&) = delete;

    unsigned char* At(std::size_t inOffset) const { return mBytes + inOffset; }

private:
    std::size_t mAlignment;
    unsigned char* mBytes;
};

/// Block i of the file travels in slot i modulo the depth, so blocks are taken up in their order, whatever the order in which
/// they come: the checksum wants them so.
class Stream
{
public:
    Stream(const std::string& inArgument, const StreamSettings& inSettings)
        : mArgument(inArgument), mPatience(inSettings.mPatience)
    {
        Open();
        mSize = SizeOf(inArgument);
        const std::size_t sector = std::max<std::size_t>(mReader.GetDiskSectorSize(), 512);
        mBlockSize = (std::max<std::size_t>(inSettings.mBlockSize, 1) + sector - 1) / sector * sector;
        mBlocks = (mSize + mBlockSize - 1) / mBlockSize;
        mSector = sector;
        mSlots = std::vector<Slot>(std::max<std::size_t>(1, std::min<std::uint64_t>(inSettings.mDepth, mBlocks)));
        mMemory = std::make_unique<AlignedMemory>(mSlots.size() * mBlockSize, std::max<std::size_t>(sector, 4096));
    }

    StreamFigures Run(const StreamProgress& inProgress)
    {
        const Clock::time_point start = Clock::now();
        StreamFigures figures;
        std::vector<double> latencies;
        latencies.reserve(mBlocks);
        for (std::uint64_t block = 0; block < mSlots.size() && block < mBlocks; ++block) {
            Queue(block);
        }
        for (std::uint64_t block = 0; block < mBlocks; ++block) {
            const Slot& slot = Await(block);
            latencies.push_back(slot.mLatency);
            TakeUp(block, slot, figures);
            if (!inProgress(figures.mBytes, mSize)) {
                throw Interrupted("stream: interrupted while reading \"" + mArgument + "\"");
            }
            if (block + mSlots.size() < mBlocks) {
                Queue(block + mSlots.size());
            }
        }
        figures.mSeconds = std::chrono::duration<double>(Clock::now() - start).count();
        figures.mReads = mBlocks;
        figures.mSectorSize = mReader.GetDiskSectorSize();
        SummariseLatencies(latencies, figures);
        return figures;
    }

private:
    struct Slot
    {
        Clock::time_point mQueued;
        double mLatency = 0;
        unsigned mBytesRead = 0;
        int mResult = ORL::kSuccess;
        bool mIsDone = false; // guarded by mMutex, as what a callback writes
    };

    void Open()
    {
        const UTF16String path = PathOfArgument(mArgument);
        if (ORL::AsyncFileReader::Open(path, mReader) == ORL::kSuccess) {
            return;
        }
        const char* reason = "it cannot be opened for reading";
        if (!ORL::PathUtils::ExistsOnDisk(path)) {
            reason = "there is no such file";
        } else if (ORL::PathUtils::IsDirectory(path)) {
            reason = "it is a directory";
        }
        throw Failure("stream: cannot open \"" + mArgument + "\": " + reason);
    }

    std::uint64_t PositionOf(std::uint64_t inBlock) const { return inBlock * mBlockSize; }
    std::size_t ExpectedBytes(std::uint64_t inBlock) const
    {
        return static_cast<std::size_t>(std::min<std::uint64_t>(mBlockSize, mSize - PositionOf(inBlock)));
    }
    unsigned char* BytesOf(std::uint64_t inBlock) const
    {
        return mMemory->At(static_cast<std::size_t>(inBlock % mSlots.size()) * mBlockSize);
    }

    void Queue(std::uint64_t inBlock)
    {
        Slot& slot = mSlots[inBlock % mSlots.size()];
        {
            const std::lock_guard<std::mutex> lock(mMutex);
            slot.mIsDone = false;
        }
        slot.mQueued = Clock::now();
        // Whole sectors, also for the last block, which comes back short.
        const std::size_t size = (ExpectedBytes(inBlock) + mSector - 1) / mSector * mSector;
        mReader.QueueReadRequest(PositionOf(inBlock), static_cast<unsigned>(size), BytesOf(inBlock), &OnRead, this,
                                 &slot, nullptr);
    }

    static void OnRead(const ORL::AsyncFileReader*, unsigned __int64, unsigned int, unsigned int inBytesRead, void*,
                       void* inStream, void* inSlot, void*, int inResult)
    {
        Stream& stream = *static_cast<Stream*>(inStream);
        Slot& slot = *static_cast<Slot*>(inSlot);
        const Clock::time_point now = Clock::now();
        const std::lock_guard<std::mutex> lock(stream.mMutex);
        slot.mLatency = std::chrono::duration<double>(now - slot.mQueued).count();
        slot.mBytesRead = inBytesRead;
        slot.mResult = inResult;
        slot.mIsDone = true;
        stream.mCame.notify_one();
    }

    const Slot& Await(std::uint64_t inBlock)
    {
        Slot& slot = mSlots[inBlock % mSlots.size()];
        std::unique_lock<std::mutex> lock(mMutex);
        if (!mCame.wait_for(lock, mPatience, [&slot] { return slot.mIsDone; })) {
            throw NoAnswer("stream: \"" + mArgument + "\" answers no more: a read failed or the disk is gone");
        }
        return slot;
    }

    void TakeUp(std::uint64_t inBlock, const Slot& inSlot, StreamFigures& ioFigures)
    {
        const std::size_t expected = ExpectedBytes(inBlock);
        const std::string where = "\"" + mArgument + "\" at byte " + std::to_string(PositionOf(inBlock));
        if (!ORL::ResultSucceeded(inSlot.mResult)) {
            throw Failure("stream: cannot read " + where + ": " + Describe(inSlot.mResult));
        }
        if (inSlot.mBytesRead < expected) {
            throw Failure("stream: " + where + " came short, " + std::to_string(inSlot.mBytesRead) + " of "
                          + std::to_string(expected) + " bytes: the file shrank while it was read");
        }
        ioFigures.mCRC =
            static_cast<std::uint32_t>(::crc32(ioFigures.mCRC, BytesOf(inBlock), static_cast<uInt>(expected)));
        ioFigures.mBytes += expected;
    }

    static void SummariseLatencies(std::vector<double>& ioLatencies, StreamFigures& outFigures)
    {
        if (ioLatencies.empty()) {
            return;
        }
        std::sort(ioLatencies.begin(), ioLatencies.end());
        const auto at = [&](double inShare) {
            return ioLatencies[static_cast<std::size_t>(inShare * static_cast<double>(ioLatencies.size() - 1) + 0.5)];
        };
        outFigures.mMedianLatency = at(0.5);
        outFigures.mPercentile99Latency = at(0.99);
    }

    const std::string mArgument;
    const std::chrono::seconds mPatience;
    std::uint64_t mSize = 0;
    std::size_t mBlockSize = 0;
    std::size_t mSector = 0;
    std::uint64_t mBlocks = 0;
    std::mutex mMutex;
    std::condition_variable mCame;
    std::vector<Slot> mSlots;
    std::unique_ptr<AlignedMemory> mMemory;
    ORL::AsyncFileReader mReader; // the last member: its end waits for the reads, which use all above
};

} // namespace

StreamFigures StreamFile(const std::string& inArgument, const StreamSettings& inSettings,
                         const StreamProgress& inProgress)
{
    auto stream = std::make_unique<Stream>(inArgument, inSettings);
    try {
        return stream->Run(inProgress);
    } catch (const NoAnswer&) {
        static_cast<void>(stream.release()); // its end would wait for its reads, which may still write into its memory
        throw;
    }
}

std::uint32_t PlainCRC(const std::string& inArgument)
{
    std::ifstream file(HostPathOf(inArgument), std::ios::binary);
    std::vector<char> block(1 << 20);
    uLong crc = 0;
    while (file) {
        file.read(block.data(), static_cast<std::streamsize>(block.size()));
        crc = ::crc32(crc, reinterpret_cast<const Bytef*>(block.data()), static_cast<uInt>(file.gcount()));
    }
    if (!file.eof()) {
        throw Failure("stream: cannot read \"" + inArgument + "\" through the cache");
    }
    return static_cast<std::uint32_t>(crc);
}

} // namespace orl
