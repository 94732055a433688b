// How the threads of a test tell each other what has happened. Nothing here waits for time to pass.
#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace ORLTest {

/// Happens once, and then has happened.
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

/// A list that threads write and one waits for.
template <class T>
class Record
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

    /// The list once it has so many items or more.
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

/// Lets nobody on before so many have come. Can be used once.
class Meeting
{
public:
    explicit Meeting(std::size_t inCount) : mMissing(inCount) {}

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
