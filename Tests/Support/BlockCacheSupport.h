// A host's block caches: one records the calls that it receives, one refuses and loses blocks at random.
#pragma once

#include <FileSupport.h>

#include <Memory/MemoryRecyclerLifecycle.h>

#include <functional>
#include <map>
#include <random>
#include <utility>
#include <vector>

namespace ORLTest {

using Block = ORL::ObjectPtr<ORL::MemoryBufferWrapper>;
using BufferRef = ORL::InterfaceRef<ORL::IFileBuffer, ORL::IFileBuffer>;
using FactoryRef = ORL::InterfaceRef<ORL::IFileBufferFactory, ORL::IFileBufferFactory>;

/// The calls that a RecordingBuffer received.
struct BufferLog
{
    std::vector<std::int64_t> mGot;
    std::vector<std::pair<std::int64_t, std::size_t>> mAdded; // position and size of each block
    int mBuffers = 0;                                         // buffers created so far
    int mAlive = 0;
};

/// Keeps all blocks and records each call.
class RecordingBuffer : public ORL::UnknownImpl<ORL::IFileBuffer>
{
public:
    explicit RecordingBuffer(BufferLog& ioLog) : mLog(ioLog) { ++mLog.mAlive; }
    ~RecordingBuffer() override { --mLog.mAlive; }

    void AddBlock(Block inBlock, __int64 inPosition) override
    {
        mLog.mAdded.push_back({inPosition, inBlock->GetSize()});
        mBlocks[inPosition] = inBlock;
    }

    ORL::Result GetBlock(__int64 inPosition, Block& outBlock) override
    {
        mLog.mGot.push_back(inPosition);
        const auto found = mBlocks.find(inPosition);
        if (found == mBlocks.end()) {
            return ORL::kFileNotFound;
        }
        outBlock = found->second;
        return ORL::kSuccess;
    }

private:
    BufferLog& mLog;
    std::map<std::int64_t, Block> mBlocks;
};

/// Keeps blocks, but at random refuses to store one, drops one, or denies that it has one.
class FaultyBuffer : public ORL::UnknownImpl<ORL::IFileBuffer>
{
public:
    /// Rates in percent.
    struct FaultRates
    {
        unsigned mRefuses = 0;
        unsigned mForgets = 0;
        unsigned mDenies = 0;
    };

    FaultyBuffer(const FaultRates& inFaultRates, unsigned inSeed) : mFaultRates(inFaultRates), mRandom(inSeed) {}

    void AddBlock(Block inBlock, __int64 inPosition) override
    {
        if (!Chance(mFaultRates.mRefuses)) {
            mBlocks[inPosition] = inBlock;
        }
        if (!mBlocks.empty() && Chance(mFaultRates.mForgets)) {
            mBlocks.erase(std::next(mBlocks.begin(), static_cast<std::ptrdiff_t>(mRandom() % mBlocks.size())));
        }
    }

    ORL::Result GetBlock(__int64 inPosition, Block& outBlock) override
    {
        const auto found = mBlocks.find(inPosition);
        if (found == mBlocks.end() || Chance(mFaultRates.mDenies)) {
            return ORL::kGeneralFailure;
        }
        outBlock = found->second;
        return ORL::kSuccess;
    }

private:
    bool Chance(unsigned inOfHundred) { return mRandom() % 100 < inOfHundred; }

    const FaultRates mFaultRates;
    std::mt19937 mRandom;
    std::map<std::int64_t, Block> mBlocks;
};

class FactoryOf : public ORL::UnknownImpl<ORL::IFileBufferFactory>
{
public:
    explicit FactoryOf(std::function<BufferRef()> inMake) : mMake(std::move(inMake)) {}
    BufferRef CreateFileBuffer() override { return mMake(); }

private:
    const std::function<BufferRef()> mMake;
};

/// Creates the pool of blocks and sets the block cache factory; the destructor undoes both.
class ScopedBlockCache
{
public:
    explicit ScopedBlockCache(const FactoryRef& inFactory)
    {
        ORL::CreateMemoryRecycler();
        ORL::Foundation::SetFileBufferFactory(inFactory);
    }

    explicit ScopedBlockCache(std::function<BufferRef()> inMake) : ScopedBlockCache(new FactoryOf(std::move(inMake))) {}

    ~ScopedBlockCache()
    {
        ORL::Foundation::SetFileBufferFactory(FactoryRef());
        ORL::DropMemoryRecycler();
    }

    ScopedBlockCache(const ScopedBlockCache&) = delete;
    ScopedBlockCache& operator=(const ScopedBlockCache&) = delete;
};

} // namespace ORLTest
