#include "IngestSharedSource.h"

#include "Hash/Checksum.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <utility>

namespace orl {

namespace {

using Clock = std::chrono::steady_clock;
using Block = SharedReading::Block;

// Each file may keep this many blocks even beyond the limit. Otherwise two destinations reading different files could
// wait for each other.
constexpr std::size_t kMinBlocks = 4;

constexpr std::chrono::milliseconds kPollInterval(50);
constexpr std::chrono::seconds kMinWait(1);

/// A file being read. Each offset in bytes is the start of a block or the end of the file.
struct SharedFile
{
    explicit SharedFile(std::uint64_t inSize) : mSize(inSize) {}

    bool HasSlowerReader(std::size_t inReader) const
    {
        return std::any_of(mNextOffsets.begin(), mNextOffsets.end(), [&](const auto& inPlace) {
            // Readers before mKept do not count: they read from the source themselves.
            return inPlace.first != inReader && inPlace.second >= mKept;
        });
    }

    const std::uint64_t mSize;
    std::uint64_t mKept = 0; // start of the first block in memory
    std::uint64_t mRead = 0; // end of the last block read
    bool mIsReading = false; // a destination reads the block at mRead
    std::deque<Block> mBlocks;
    Checksum mSum{ChecksumKind::kSha256};
    std::string mDigest;                               // empty until the whole file has been read
    std::map<std::size_t, std::uint64_t> mNextOffsets; // next offset of each destination that needs the file
};

using Bytes = std::vector<unsigned char>;

/// Reuses the memory of blocks: fresh memory costs page faults and clearing.
struct BlockPool
{
    std::shared_ptr<Bytes> Take(const std::shared_ptr<BlockPool>& inSelf, std::size_t inSize)
    {
        Bytes bytes;
        {
            const std::lock_guard<std::mutex> lock(mMutex);
            if (!mFree.empty()) {
                bytes = std::move(mFree.back());
                mFree.pop_back();
            }
        }
        bytes.resize(inSize);
        return std::shared_ptr<Bytes>(new Bytes(std::move(bytes)), [inSelf](Bytes* inBytes) {
            const std::unique_ptr<Bytes> owned(inBytes);
            const std::lock_guard<std::mutex> lock(inSelf->mMutex);
            if (inSelf->mFree.size() < kMaxFree) {
                inSelf->mFree.push_back(std::move(*owned));
            }
        });
    }

    static constexpr std::size_t kMaxFree = 64;

    std::mutex mMutex;
    std::vector<Bytes> mFree = ReservedList(); // reserved, so that returning a block allocates nothing

    static std::vector<Bytes> ReservedList()
    {
        std::vector<Bytes> list;
        list.reserve(kMaxFree);
        return list;
    }
};

using FilePtr = std::shared_ptr<SharedFile>;

} // namespace

struct SharedSource::State
{
    explicit State(const SharingLimits& inLimits) : mLimits(inLimits) {}

    FilePtr Join(std::size_t inDestination, const std::string& inName, std::uint64_t inSize);
    void RemoveReader(std::size_t inDestination, const std::string& inName, SharedFile& ioFile);
    void Trim(SharedFile& ioFile);
    void DropFirst(SharedFile& ioFile);

    const SharingLimits mLimits;
    const std::shared_ptr<BlockPool> mPool = std::make_shared<BlockPool>();
    std::atomic<std::uint64_t> mBytesRead{0};
    std::mutex mMutex; // guards all members below, and the files
    std::condition_variable mChanged;
    std::uint64_t mBytesKept = 0;
    std::map<std::string, std::set<std::size_t>> mWanted; // per file, the destinations that have not begun to read it
    std::map<std::string, FilePtr> mFiles;                // being read
};

// A destination that did not register, or that reads a file again, reads it alone.
FilePtr SharedSource::State::Join(std::size_t inDestination, const std::string& inName, std::uint64_t inSize)
{
    const auto wanted = mWanted.find(inName);
    if (wanted == mWanted.end() || wanted->second.erase(inDestination) == 0) {
        const auto alone = std::make_shared<SharedFile>(inSize);
        alone->mNextOffsets[inDestination] = 0;
        return alone;
    }
    FilePtr& file = mFiles[inName];
    if (!file) {
        file = std::make_shared<SharedFile>(inSize);
        for (const std::size_t other : wanted->second) {
            file->mNextOffsets[other] = 0;
        }
    }
    file->mNextOffsets[inDestination] = 0;
    return file;
}

void SharedSource::State::RemoveReader(std::size_t inDestination, const std::string& inName, SharedFile& ioFile)
{
    ioFile.mNextOffsets.erase(inDestination);
    Trim(ioFile);
    const auto file = mFiles.find(inName);
    if (file != mFiles.end() && file->second.get() == &ioFile && ioFile.mNextOffsets.empty()) {
        mFiles.erase(file);
        mWanted.erase(inName);
    }
    mChanged.notify_all();
}

// Drops blocks until a reader needs the first one. Readers before mKept read the dropped blocks from the source.
void SharedSource::State::Trim(SharedFile& ioFile)
{
    while (!ioFile.mBlocks.empty()) {
        const auto wantsFirst = [&ioFile](const auto& inPlace) { return inPlace.second == ioFile.mKept; };
        if (std::any_of(ioFile.mNextOffsets.begin(), ioFile.mNextOffsets.end(), wantsFirst)) {
            return;
        }
        DropFirst(ioFile);
    }
}

void SharedSource::State::DropFirst(SharedFile& ioFile)
{
    const std::size_t size = ioFile.mBlocks.front()->size();
    ioFile.mBlocks.pop_front();
    ioFile.mKept += size;
    mBytesKept -= size;
}

SharedSource::SharedSource(const SharingLimits& inLimits) : mState(std::make_unique<State>(inLimits))
{
}

SharedSource::~SharedSource() = default;

void SharedSource::RegisterReader(std::size_t inDestination, const std::string& inName)
{
    const std::lock_guard<std::mutex> lock(mState->mMutex);
    mState->mWanted[inName].insert(inDestination);
}

void SharedSource::UnregisterReader(std::size_t inDestination, const std::string& inName)
{
    const std::lock_guard<std::mutex> lock(mState->mMutex);
    const auto wanted = mState->mWanted.find(inName);
    if (wanted == mState->mWanted.end() || wanted->second.erase(inDestination) == 0) {
        return;
    }
    const auto file = mState->mFiles.find(inName);
    if (file != mState->mFiles.end()) {
        const FilePtr held = file->second;
        mState->RemoveReader(inDestination, inName, *held);
    }
}

void SharedSource::UnregisterDestination(std::size_t inDestination)
{
    std::vector<std::string> names;
    {
        const std::lock_guard<std::mutex> lock(mState->mMutex);
        for (const auto& [name, destinations] : mState->mWanted) {
            if (destinations.count(inDestination) != 0) {
                names.push_back(name);
            }
        }
    }
    for (const std::string& name : names) {
        UnregisterReader(inDestination, name);
    }
}

std::uint64_t SharedSource::BytesRead() const
{
    return mState->mBytesRead.load();
}

struct SharedReading::Impl
{
    using Lock = std::unique_lock<std::mutex>;

    std::uint64_t& NextOffset() { return mFile->mNextOffsets[mDestination]; }

    std::size_t SizeAt(std::uint64_t inAt) const
    {
        return static_cast<std::size_t>(std::min<std::uint64_t>(kBlockSize, mFile->mSize - inAt));
    }

    Block ReadAt(std::uint64_t inAt)
    {
        const std::shared_ptr<Bytes> bytes = mSource.mPool->Take(mSource.mPool, SizeAt(inAt));
        mRead(inAt, bytes->data(), bytes->size());
        mSource.mBytesRead += bytes->size();
        return bytes;
    }

    /// Rereads a block that was dropped from memory.
    Block ReadAgain(std::uint64_t inAt, Lock& ioLock)
    {
        ioLock.unlock();
        Block block = ReadAt(inAt);
        ioLock.lock();
        NextOffset() += block->size();
        return block;
    }

    Block Take(std::uint64_t inAt)
    {
        Block block = mFile->mBlocks[static_cast<std::size_t>((inAt - mFile->mKept) / kBlockSize)];
        NextOffset() += block->size();
        mSource.Trim(*mFile);
        mSource.mChanged.notify_all();
        return block;
    }

    /// True while another destination is reading, or if the memory limit is reached and another destination is slower.
    bool MustWait()
    {
        return mFile->mIsReading
               || (mFile->mBlocks.size() >= kMinBlocks && mSource.mBytesKept >= mSource.mLimits.mBytesKept
                   && mFile->HasSlowerReader(mDestination));
    }

    void Wait(Lock& ioLock)
    {
        const Clock::time_point start = Clock::now();
        const bool isForOthers = !mFile->mIsReading;
        const bool mayWait = mSource.mLimits.mWaits && mWaited < kMinWait + (start - mStart - mWaited);
        if (isForOthers && !mayWait) {
            mSource.DropFirst(*mFile);
            return;
        }
        mSource.mChanged.wait_for(ioLock, kPollInterval);
        mWaited += isForOthers ? Clock::now() - start : Clock::duration::zero();
        ioLock.unlock();
        mCheck();
        ioLock.lock();
    }

    void ReadOn(Lock& ioLock)
    {
        mFile->mIsReading = true;
        const std::uint64_t at = mFile->mRead;
        ioLock.unlock();
        Block block;
        try {
            block = ReadAt(at);
            mFile->mSum.Add(block->data(), block->size()); // blocks arrive in order, on one thread at a time
        } catch (...) {
            ioLock.lock();
            mFile->mIsReading = false;
            mSource.mChanged.notify_all();
            throw;
        }
        ioLock.lock();
        mFile->mIsReading = false;
        mFile->mRead += block->size();
        mSource.mBytesKept += block->size();
        mFile->mBlocks.push_back(std::move(block));
        FinishSum();
        mSource.mChanged.notify_all();
    }

    void FinishSum()
    {
        if (mFile->mRead == mFile->mSize && mFile->mDigest.empty()) {
            mFile->mDigest = mFile->mSum.Finish();
        }
    }

    SharedSource::State& mSource;
    const std::size_t mDestination;
    const std::string mName;
    const Read mRead;
    const std::function<void()> mCheck;
    FilePtr mFile;
    const Clock::time_point mStart = Clock::now();
    Clock::duration mWaited = Clock::duration::zero(); // time spent waiting for slower destinations
};

SharedReading::SharedReading(SharedSource& ioSource, std::size_t inDestination, const std::string& inName,
                             std::uint64_t inSize, Read inRead, std::function<void()> inCheck)
    : mImpl(new Impl{*ioSource.mState, inDestination, inName, std::move(inRead), std::move(inCheck), nullptr})
{
    const std::lock_guard<std::mutex> lock(mImpl->mSource.mMutex);
    mImpl->mFile = mImpl->mSource.Join(inDestination, inName, inSize);
    mImpl->FinishSum(); // blocks finish the checksum, but an empty file has none
}

SharedReading::~SharedReading()
{
    const std::lock_guard<std::mutex> lock(mImpl->mSource.mMutex);
    mImpl->mSource.RemoveReader(mImpl->mDestination, mImpl->mName, *mImpl->mFile);
}

SharedReading::Block SharedReading::Next()
{
    SharedFile& file = *mImpl->mFile;
    Impl::Lock lock(mImpl->mSource.mMutex);
    for (;;) {
        const std::uint64_t at = mImpl->NextOffset();
        if (at == file.mSize) {
            return nullptr;
        }
        if (at < file.mKept) {
            return mImpl->ReadAgain(at, lock);
        }
        if (at < file.mRead) {
            return mImpl->Take(at);
        }
        if (mImpl->MustWait()) {
            mImpl->Wait(lock);
        } else {
            mImpl->ReadOn(lock);
        }
    }
}

std::string SharedReading::Digest() const
{
    const std::lock_guard<std::mutex> lock(mImpl->mSource.mMutex);
    return mImpl->mFile->mDigest;
}

} // namespace orl
