// Signals between the threads of a test. Every wait is for an event, never for a fixed time.
#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace ORLTest {

/// A one-time event: once set, it stays set.
class Event
{
public:
    void Set()
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mIsSet = true;
        mChanged.notify_all();
    }

    void Wait()
    {
        std::unique_lock<std::mutex> lock(mMutex);
        mChanged.wait(lock, [this] { return mIsSet; });
    }

    bool IsSet() const
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        return mIsSet;
    }

private:
    mutable std::mutex mMutex;
    std::condition_variable mChanged;
    bool mIsSet = false;
};

/// A list that threads append to and one thread waits for.
template <class T>
class BlockingList
{
public:
    void Add(T inItem)
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mItems.push_back(std::move(inItem));
        mChanged.notify_all();
    }

    std::vector<T> Get() const
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        return mItems;
    }

    std::size_t Count() const { return Get().size(); }

    /// Waits until the list has at least inCount items, and returns it.
    std::vector<T> WaitFor(std::size_t inCount)
    {
        std::unique_lock<std::mutex> lock(mMutex);
        mChanged.wait(lock, [&] { return mItems.size() >= inCount; });
        return mItems;
    }

private:
    mutable std::mutex mMutex;
    std::condition_variable mChanged;
    std::vector<T> mItems;
};

/// A single-use barrier: blocks until inCount threads have arrived.
class Barrier
{
public:
    explicit Barrier(std::size_t inCount) : mMissing(inCount) {}

    void Join()
    {
        std::unique_lock<std::mutex> lock(mMutex);
        --mMissing;
        mChanged.notify_all();
        mChanged.wait(lock, [this] { return mMissing == 0; });
    }

private:
    std::mutex mMutex;
    std::condition_variable mChanged;
    std::size_t mMissing;
};

} // namespace ORLTest
