// Shared helpers for the asynchronous read tests: a clip whose bytes depend on their position, and a reader's
// callback.
#pragma once

#include <ORLAsyncFileReader.h>
#include <ORLResult.h>

#include <TempFolder.h>

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <vector>

namespace ORLTest {

inline constexpr std::size_t kReadAlignment = 4096; // sufficient for any sector size

/// A buffer that is aligned for unbuffered reads.
class AlignedBuffer
{
public:
    explicit AlignedBuffer(std::size_t inSize)
        : mBytes(static_cast<unsigned char*>(::operator new(inSize, std::align_val_t(kReadAlignment)))), mSize(inSize)
    {
        std::fill(mBytes.get(), mBytes.get() + inSize, static_cast<unsigned char>(0xEE));
    }

    unsigned char* Get() const { return mBytes.get(); }
    std::size_t Size() const { return mSize; }

private:
    struct Delete
    {
        void operator()(unsigned char* inBytes) const { ::operator delete(inBytes, std::align_val_t(kReadAlignment)); }
    };

    std::unique_ptr<unsigned char, Delete> mBytes;
    std::size_t mSize;
};

/// Returns the byte at inPosition, which is the same in every test clip.
inline unsigned char ByteAt(std::uint64_t inPosition)
{
    return static_cast<unsigned char>((inPosition * 2654435761u) >> 13);
}

inline std::string MakeContents(std::size_t inSize)
{
    std::string contents(inSize, '\0');
    for (std::size_t i = 0; i < inSize; ++i) {
        contents[i] = static_cast<char>(ByteAt(i));
    }
    return contents;
}

/// Returns the offset of the first wrong byte in a buffer, or inCount if all are correct.
inline std::size_t FirstWrongByte(const unsigned char* inBytes, std::size_t inCount, std::uint64_t inPosition)
{
    std::size_t i = 0;
    while (i < inCount && inBytes[i] == ByteAt(inPosition + i)) {
        ++i;
    }
    return i;
}

struct Delivered
{
    const ORL::AsyncFileReader* mReader;
    std::uint64_t mPosition;
    unsigned mSize;
    unsigned mBytesRead;
    void* mBuffer;
    void* mUserData2;
    void* mUserData3;
    int mResult;
};

/// Records the arguments of callbacks. Pass the object as the first user value of QueueReadRequest.
class Deliveries
{
public:
    static void OnRead(const ORL::AsyncFileReader* inReader, unsigned __int64 inPosition, unsigned int inSize,
                       unsigned int inBytesRead, void* inBuffer, void* inUserData1, void* inUserData2,
                       void* inUserData3, int inResult)
    {
        Deliveries& deliveries = *static_cast<Deliveries*>(inUserData1);
        const std::lock_guard<std::mutex> lock(deliveries.mMutex);
        deliveries.mDelivered.push_back(
            Delivered{inReader, inPosition, inSize, inBytesRead, inBuffer, inUserData2, inUserData3, inResult});
        deliveries.mCame.notify_all();
    }

    std::vector<Delivered> All() const
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        return mDelivered;
    }

    void WaitFor(std::size_t inCount) const
    {
        std::unique_lock<std::mutex> lock(mMutex);
        mCame.wait(lock, [&] { return mDelivered.size() >= inCount; });
    }

private:
    mutable std::mutex mMutex;
    mutable std::condition_variable mCame;
    std::vector<Delivered> mDelivered;
};

} // namespace ORLTest
