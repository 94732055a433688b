// A host's block cache: the most recently used blocks of all files, up to a limit in bytes.
//
//   auto cache = std::make_shared<BlockStore>(256 << 20);
//   ORL::Foundation::SetFileBufferFactory(new LruFileBufferFactory(cache));
//   ...
//   ORL::Foundation::SetFileBufferFactory({});
#pragma once

#include <ORLFile.h>

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <list>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <utility>

/// The blocks of all of a host's files, the most recently used first. Thread-safe. An evicted block stays alive as long
/// as a reader holds it.
class BlockStore
{
public:
    using Block = ORL::ObjectPtr<ORL::MemoryBufferWrapper>;

    explicit BlockStore(std::size_t inLimit) : mLimit(inLimit) {}

    void Add(const void* inOwner, std::int64_t inPosition, const Block& inBlock)
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        const Key key{inOwner, inPosition};
        Remove(key);
        mSize += inBlock->GetSize();
        mEntries.push_front({key, inBlock});
        mIndex[key] = mEntries.begin();
        while (mSize > mLimit) {
            Remove(mEntries.back().mKey);
        }
    }

    bool Get(const void* inOwner, std::int64_t inPosition, Block& outBlock)
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        const auto found = mIndex.find({inOwner, inPosition});
        if (found == mIndex.end()) {
            return false;
        }
        // Consecutive reads usually hit the same block, which is then already at the front of the list.
        if (found->second != mEntries.begin()) {
            mEntries.splice(mEntries.begin(), mEntries, found->second);
        }
        outBlock = found->second->mBlock;
        return true;
    }

    /// Releases all blocks of one file.
    void Forget(const void* inOwner)
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        for (auto entry = mEntries.begin(); entry != mEntries.end();) {
            const Key key = (entry++)->mKey;
            if (key.first == inOwner) {
                Remove(key);
            }
        }
    }

    /// Returns the bytes held now.
    std::size_t Size() const
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        return mSize;
    }

private:
    using Key = std::pair<const void*, std::int64_t>;
    struct Entry
    {
        Key mKey;
        Block mBlock;
    };
    struct HashOfKey
    {
        std::size_t operator()(const Key& inKey) const noexcept
        {
            const std::size_t owner = reinterpret_cast<std::uintptr_t>(inKey.first);
            return (owner ^ static_cast<std::size_t>(inKey.second)) * 0x9E3779B97F4A7C15u >> 16;
        }
    };

    void Remove(const Key& inKey)
    {
        const auto found = mIndex.find(inKey);
        if (found != mIndex.end()) {
            mSize -= found->second->mBlock->GetSize();
            mEntries.erase(found->second);
            mIndex.erase(found);
        }
    }

    mutable std::mutex mMutex; // guards everything below
    const std::size_t mLimit;
    std::size_t mSize = 0;
    std::list<Entry> mEntries;
    std::unordered_map<Key, std::list<Entry>::iterator, HashOfKey> mIndex;
};

/// The blocks of one file in the store, released when the file is closed.
class LruFileBuffer : public ORL::UnknownImpl<ORL::IFileBuffer>
{
public:
    explicit LruFileBuffer(std::shared_ptr<BlockStore> inStore) : mStore(std::move(inStore)) {}
    ~LruFileBuffer() override { mStore->Forget(this); }

    void AddBlock(BlockStore::Block inBlock, __int64 inPosition) override { mStore->Add(this, inPosition, inBlock); }

    ORL::Result GetBlock(__int64 inPosition, BlockStore::Block& outBlock) override
    {
        return mStore->Get(this, inPosition, outBlock) ? ORL::kSuccess : ORL::kFileNotFound;
    }

private:
    const std::shared_ptr<BlockStore> mStore;
};

class LruFileBufferFactory : public ORL::UnknownImpl<ORL::IFileBufferFactory>
{
public:
    explicit LruFileBufferFactory(std::shared_ptr<BlockStore> inStore) : mStore(std::move(inStore)) {}

    ORL::InterfaceRef<ORL::IFileBuffer, ORL::IFileBuffer> CreateFileBuffer() override
    {
        return new LruFileBuffer(mStore);
    }

private:
    const std::shared_ptr<BlockStore> mStore;
};
