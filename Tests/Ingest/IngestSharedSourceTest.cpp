// Tests SharedSource: several destinations read its files, each block is read once if memory allows it, and all bytes
// are correct.
#include <IngestSharedSource.h>

#include "IngestTestSupport.h"

#include <atomic>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <mutex>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

using namespace ORLTest;
using orl::SharedReading;
using orl::SharedSource;
using orl::SharingLimits;

namespace {

constexpr std::size_t kBlock = SharedReading::kBlockSize;

std::string Contents(std::size_t inSize)
{
    std::mt19937_64 random(inSize);
    std::string bytes(inSize, '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(random() >> 32);
    }
    return bytes;
}

SharedReading::Read ReadOf(const std::string& inContents)
{
    return [&inContents](std::uint64_t inAt, unsigned char* outBytes, std::size_t inCount) {
        ASSERT_LE(inAt + inCount, inContents.size());
        std::memcpy(outBytes, inContents.data() + inAt, inCount);
    };
}

SharingLimits Limits(std::uint64_t inBytes, bool inWaits)
{
    SharingLimits limits;
    limits.mBytesKept = inBytes;
    limits.mWaits = inWaits;
    return limits;
}

/// Caches the reference digest by size, because it is slow under a sanitizer: a size determines the contents.
std::string SumOf(const std::string& inContents)
{
    static std::mutex sMutex;
    static std::map<std::size_t, std::string> sSums;
    const std::lock_guard<std::mutex> lock(sMutex);
    std::string& sum = sSums[inContents.size()];
    if (sum.empty()) {
        sum = ReferenceSha256(inContents);
    }
    return sum;
}

/// Reads a whole file, yielding at random. Returns an error message, empty on success.
std::string ReadWhole(SharedSource& ioSource, std::size_t inDestination, const std::string& inName,
                      const std::string& inContents, unsigned inSeed)
{
    SharedReading reading(ioSource, inDestination, inName, inContents.size(), ReadOf(inContents), [] {});
    std::mt19937 random(inSeed);
    std::string given;
    while (const SharedReading::Block block = reading.Next()) {
        given.append(reinterpret_cast<const char*>(block->data()), block->size());
        for (unsigned i = random() % 4; i > 0; --i) {
            std::this_thread::yield();
        }
    }
    return given != inContents ? "other bytes" : reading.Digest() != SumOf(inContents) ? "another sum" : "";
}

const std::string kSmall = Contents(10);
const std::string kLarge = Contents(7 * kBlock + 123);

} // namespace

TEST(SharedSource, FilesOfEverySize_AreReadAndSummed)
{
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, kBlock - 1, kBlock, kBlock + 1, 2 * kBlock}) {
        const std::string contents = Contents(size);
        SharedSource source(Limits(0, true));
        EXPECT_EQ("", ReadWhole(source, 0, "f", contents, 1)) << size;
        EXPECT_EQ(size, source.BytesRead());
    }
}

TEST(SharedSource, TwoThatComeOneAfterTheOther_ReadOnceBetweenThem)
{
    SharedSource source(Limits(1 << 30, true));
    source.RegisterReader(0, "f");
    source.RegisterReader(1, "f");
    EXPECT_EQ("", ReadWhole(source, 0, "f", kLarge, 1));
    EXPECT_EQ("", ReadWhole(source, 1, "f", kLarge, 2));
    EXPECT_EQ(kLarge.size(), source.BytesRead());
}

TEST(SharedSource, OneThatComesASecondTime_ReadsForItself)
{
    SharedSource source(Limits(1 << 30, true));
    source.RegisterReader(0, "f");
    source.RegisterReader(1, "f");
    EXPECT_EQ("", ReadWhole(source, 0, "f", kLarge, 1));
    EXPECT_EQ("", ReadWhole(source, 0, "f", kLarge, 1));
    EXPECT_EQ("", ReadWhole(source, 1, "f", kLarge, 2));
    EXPECT_EQ(2 * kLarge.size(), source.BytesRead());
}

// The source does not wait for a destination that has released the file.
TEST(SharedSource, OneThatGivesUp_IsNotWaitedFor)
{
    for (const bool isAll : {false, true}) {
        SharedSource source(Limits(0, true));
        source.RegisterReader(0, "f");
        source.RegisterReader(1, "f");
        std::thread other([&] {
            if (isAll) {
                source.UnregisterDestination(1);
            } else {
                source.UnregisterReader(1, "f");
            }
        });
        EXPECT_EQ("", ReadWhole(source, 0, "f", kLarge, 1));
        other.join();
        EXPECT_EQ(kLarge.size(), source.BytesRead());
    }
}

// The other destination starts after this one has finished, and reads the dropped blocks again.
TEST(SharedSource, OneThatStands_HoldsNoOther)
{
    for (const bool waits : {false, true}) {
        SharedSource source(Limits(0, waits));
        source.RegisterReader(0, "f");
        source.RegisterReader(1, "f");
        SharedReading late(source, 1, "f", kLarge.size(), ReadOf(kLarge), [] {});
        EXPECT_EQ("", ReadWhole(source, 0, "f", kLarge, 1));
        std::string given;
        while (const SharedReading::Block block = late.Next()) {
            given.append(reinterpret_cast<const char*>(block->data()), block->size());
        }
        EXPECT_EQ(kLarge, given);
        EXPECT_EQ(SumOf(kLarge), late.Digest());
        EXPECT_GT(source.BytesRead(), kLarge.size());
    }
}

TEST(SharedSource, OneWhoseReadFails_LeavesTheOthersTheirs)
{
    SharedSource source(Limits(0, true));
    source.RegisterReader(0, "f");
    source.RegisterReader(1, "f");
    {
        SharedReading failing(
            source, 0, "f", kLarge.size(),
            [](std::uint64_t inAt, unsigned char* outBytes, std::size_t inCount) {
                if (inAt >= 2 * kBlock) {
                    throw std::runtime_error("no read");
                }
                ReadOf(kLarge)(inAt, outBytes, inCount);
            },
            [] {});
        EXPECT_NE(nullptr, failing.Next());
        EXPECT_NE(nullptr, failing.Next());
        EXPECT_THROW(failing.Next(), std::runtime_error);
    }
    EXPECT_EQ("", ReadWhole(source, 1, "f", kLarge, 2));
}

TEST(SharedSource, AWaitThatIsStopped_Ends)
{
    struct Stop
    {
    };
    SharedSource source(Limits(0, true));
    source.RegisterReader(0, "f");
    source.RegisterReader(1, "f");
    SharedReading reading(source, 0, "f", kLarge.size(), ReadOf(kLarge), [] { throw Stop(); });
    EXPECT_THROW(
        {
            while (reading.Next() != nullptr) {
            }
        },
        Stop);
}

// Every destination reads all files in the same order, as an ingest does, with memory for all, some or no blocks.
TEST(SharedSource, ThreeDestinationsOnThreadsOfTheirOwn_GetEveryByteInAnyOrderOfEvents)
{
    constexpr std::size_t kDestinations = 3;
    const std::string contents[] = {kLarge, kSmall, Contents(3 * kBlock), kSmall, Contents(5 * kBlock + 1)};
    std::uint64_t total = 0;
    for (const std::string& file : contents) {
        total += file.size();
    }
    for (unsigned round = 0; round < 24; ++round) {
        const std::uint64_t kept = round % 3 == 0 ? 1 << 30 : round % 3 == 1 ? 3 * kBlock : 0;
        SharedSource source(Limits(kept, round % 2 == 0));
        for (std::size_t destination = 0; destination < kDestinations; ++destination) {
            for (std::size_t file = 0; file < std::size(contents); ++file) {
                source.RegisterReader(destination, std::to_string(file));
            }
        }
        std::atomic<int> wrong{0};
        std::vector<std::thread> threads;
        for (std::size_t destination = 0; destination < kDestinations; ++destination) {
            threads.emplace_back([&, destination] {
                for (std::size_t file = 0; file < std::size(contents); ++file) {
                    if (destination == 2 && file == round % std::size(contents)) {
                        source.UnregisterDestination(destination);
                        return;
                    }
                    const unsigned seed = round * 100 + static_cast<unsigned>(destination);
                    wrong += ReadWhole(source, destination, std::to_string(file), contents[file], seed) == "" ? 0 : 1;
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        EXPECT_EQ(0, wrong) << "round " << round;
        if (round % 3 == 0) {
            EXPECT_EQ(total, source.BytesRead()) << "round " << round;
        }
    }
}
