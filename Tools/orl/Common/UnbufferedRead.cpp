#include "UnbufferedRead.h"

#include "Failure.h"
#include "Text.h"

#include <ORLAsyncFileReader.h>
#include <ORLFile.h>
#include <ORLPathUtils.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <memory>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>
#include <vector>

namespace orl {

namespace {

using Clock = std::chrono::steady_clock;

// After this time without a completed read, the size of the file is checked.
constexpr std::chrono::milliseconds kPollInterval(500);

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

std::size_t RoundUp(std::uint64_t inSize, std::size_t inUnit)
{
    return static_cast<std::size_t>((inSize + inUnit - 1) / inUnit * inUnit);
}

const char* ReasonForOpenFailure(const UTF16String& inPath)
{
    if (!ORL::PathUtils::ExistsOnDisk(inPath)) {
        return "there is no such file";
    }
    if (ORL::PathUtils::IsDirectory(inPath)) {
        return "it is a directory";
    }
    std::error_code ignored;
    const std::filesystem::file_status status =
        std::filesystem::status(std::filesystem::u8path(HostTextOf(inPath)), ignored);
    if (status.type() == std::filesystem::file_type::not_found) {
        return "it is a dangling link";
    }
    return std::filesystem::is_other(status) ? "it is a device or a pipe, not a file"
                                             : "it cannot be opened for reading";
}

/// Block i of the file uses slot i modulo the depth. Blocks are consumed in order, whatever the order of completion,
/// because a checksum needs that.
class Stream
{
public:
    explicit Stream(const UnbufferedRead& inRead) : mRead(inRead), mTimeoutSeconds(inRead.mTimeoutSeconds)
    {
        Open();
        mSize = inRead.mSize ? *inRead.mSize : QuerySize();
        mSector = std::max<std::size_t>(mReader.GetDiskSectorSize(), 512);
        mBlockSize = RoundUp(std::clamp<std::uint64_t>(mSize, 1, std::max<std::size_t>(inRead.mBlockSize, 1)), mSector);
        mBlocks = (mSize + mBlockSize - 1) / mBlockSize;
        mSlots = std::vector<Slot>(std::max<std::size_t>(1, std::min<std::uint64_t>(inRead.mDepth, mBlocks)));
        mMemory = std::make_unique<AlignedMemory>(mSlots.size() * mBlockSize, std::max<std::size_t>(mSector, 4096));
    }

    UnbufferedFigures Run(const UnbufferedSink& inSink)
    {
        for (std::uint64_t block = 0; block < mSlots.size() && block < mBlocks; ++block) {
            Queue(block);
        }
        for (std::uint64_t block = 0; block < mBlocks; ++block) {
            const Slot& slot = WaitForBlock(block);
            Check(block, slot);
            inSink(BytesOf(block), ExpectedBytes(block), slot.mLatency, mSize);
            if (block + mSlots.size() < mBlocks) {
                Queue(block + mSlots.size());
            }
        }
        return UnbufferedFigures{mSize, mBlocks, mReader.GetDiskSectorSize()};
    }

private:
    using QueriedSize = std::atomic<std::uint64_t>;
    static constexpr std::uint64_t kNotKnown = ~std::uint64_t{0};
    static constexpr std::uint64_t kWhole = kNotKnown - 1;

    struct Slot
    {
        Clock::time_point mQueued;
        double mLatency = 0;
        unsigned mBytesRead = 0;
        int mResult = ORL::kSuccess;
        bool mIsDone = false; // guarded by mMutex, like all members that a callback writes
    };

    void Open()
    {
        if (ORL::AsyncFileReader::Open(mRead.mPath, mReader) == ORL::kSuccess) {
            return;
        }
        throw Failure(mRead.mCommand + ": cannot open \"" + mRead.mDisplayName
                      + "\": " + ReasonForOpenFailure(mRead.mPath));
    }

    std::uint64_t QuerySize() const
    {
        unsigned __int64 size = 0;
        const ORL::Result result = ORL::File::SizeOnDisk(mRead.mPath, size);
        if (!ORL::ResultSucceeded(result)) {
            throw Failure(mRead.mCommand + ": cannot read the size of \"" + mRead.mDisplayName
                          + "\": " + Describe(result));
        }
        return size;
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
        // Requests whole sectors even for the last block; that read returns fewer bytes.
        const std::size_t size = RoundUp(ExpectedBytes(inBlock), mSector);
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
        stream.mCompleted.notify_one();
    }

    const Slot& WaitForBlock(std::uint64_t inBlock)
    {
        Slot& slot = mSlots[inBlock % mSlots.size()];
        const Clock::time_point end = Clock::now() + mTimeoutSeconds;
        while (!CompletesWithin(slot, std::min<Clock::duration>(kPollInterval, end - Clock::now()))) {
            CheckNotTruncated();
            if (Clock::now() >= end) {
                throw NoAnswer(mRead.mCommand + ": \"" + mRead.mDisplayName
                               + "\" stopped responding: a read failed or the disk is gone");
            }
        }
        return slot;
    }

    bool CompletesWithin(const Slot& inSlot, Clock::duration inTime)
    {
        std::unique_lock<std::mutex> lock(mMutex);
        return mCompleted.wait_for(lock, inTime, [&inSlot] { return inSlot.mIsDone; });
    }

    // If the OS accepts a read past the end of the file, the read fails later and its callback never runs. Checking the
    // size avoids waiting for the whole timeout. The query runs on its own thread, because a disconnected disk may not
    // answer it either.
    void CheckNotTruncated()
    {
        const std::uint64_t size = mQueriedSize != nullptr ? mQueriedSize->load() : kWhole;
        if (size == kNotKnown) {
            return;
        }
        if (size < mSize) {
            throw NoAnswer(mRead.mCommand + ": \"" + mRead.mDisplayName + "\" has " + std::to_string(size) + " of "
                           + std::to_string(mSize)
                           + " bytes left and stopped responding: the file shrank while it was read");
        }
        mQueriedSize = std::make_shared<QueriedSize>(kNotKnown);
        try {
            std::thread(&RefreshSize, mQueriedSize, mRead.mPath).detach();
        } catch (const std::system_error&) {
            *mQueriedSize = kWhole; // if no thread can be started, assume that the file is complete
        }
    }

    static void RefreshSize(std::shared_ptr<QueriedSize> outSize, UTF16String inPath)
    {
        unsigned __int64 size = 0;
        *outSize = ORL::ResultSucceeded(ORL::File::SizeOnDisk(inPath, size)) ? std::uint64_t{size} : kWhole;
    }

    void Check(std::uint64_t inBlock, const Slot& inSlot) const
    {
        const std::size_t expected = ExpectedBytes(inBlock);
        const std::string where = "\"" + mRead.mDisplayName + "\" at byte " + std::to_string(PositionOf(inBlock));
        if (!ORL::ResultSucceeded(inSlot.mResult)) {
            throw Failure(mRead.mCommand + ": cannot read " + where + ": " + Describe(inSlot.mResult));
        }
        if (inSlot.mBytesRead < expected) {
            throw Failure(mRead.mCommand + ": " + where + ": short read, " + std::to_string(inSlot.mBytesRead) + " of "
                          + std::to_string(expected) + " bytes (the file shrank while it was read)");
        }
    }

    const UnbufferedRead mRead;
    const std::chrono::seconds mTimeoutSeconds;
    std::uint64_t mSize = 0;
    std::size_t mSector = 0;
    std::size_t mBlockSize = 0;
    std::uint64_t mBlocks = 0;
    std::shared_ptr<QueriedSize> mQueriedSize; // null before the first query
    std::mutex mMutex;
    std::condition_variable mCompleted;
    std::vector<Slot> mSlots;
    std::unique_ptr<AlignedMemory> mMemory;
    ORL::AsyncFileReader mReader; // the last member: its destructor waits for the reads, which use everything above
};

} // namespace

UnbufferedFigures ReadUnbuffered(const UnbufferedRead& inRead, const UnbufferedSink& inSink)
{
    auto stream = std::make_unique<Stream>(inRead);
    try {
        return stream->Run(inSink);
    } catch (const NoAnswer&) {
        static_cast<void>(stream.release()); // leaked, because the destructor would wait for the reads in flight
        throw;
    }
}

} // namespace orl
