#include <ORLAtomic.h>

#include <CheckRecorder.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <limits>
#include <thread>
#include <vector>

using namespace ORL;
using ORLTest::CheckRecorder;

TEST(Atomic, IncrementAndDecrement_GiveTheNewValue)
{
    std::int32_t value = -1;
    EXPECT_EQ(0, AtomicIncrement(value));
    EXPECT_EQ(1, AtomicIncrement(value));
    EXPECT_EQ(0, AtomicDecrement(value));
    EXPECT_EQ(-1, AtomicDecrement(value));
    EXPECT_EQ(-1, value);
}

TEST(Atomic, IncrementAndDecrementAtTheEnds_Wrap)
{
    std::int32_t value = std::numeric_limits<std::int32_t>::max();
    EXPECT_EQ(std::numeric_limits<std::int32_t>::min(), AtomicIncrement(value));
    EXPECT_EQ(std::numeric_limits<std::int32_t>::max(), AtomicDecrement(value));
    std::uint32_t number = 0;
    EXPECT_EQ(0xFFFFFFFFu, AtomicDecrement(number));
    EXPECT_EQ(0u, AtomicIncrement(number));
}

TEST(Atomic, ReadOfSeventeenAndOfAnyOtherValue_GivesItAndLeavesIt)
{
    for (const std::int32_t each : {17, 0, 1, 16, 18, -17, std::numeric_limits<std::int32_t>::min()}) {
        std::int32_t value = each;
        EXPECT_EQ(each, AtomicRead(value));
        EXPECT_EQ(each, value);
    }
}

TEST(Atomic, CompareAndSet_StoresOnlyWhereTheExpectedStands)
{
    std::int32_t value = 5;
    EXPECT_FALSE(AtomicCompareAndSet(value, 4, 9));
    EXPECT_EQ(5, value);
    EXPECT_TRUE(AtomicCompareAndSet(value, 5, 9));
    EXPECT_EQ(9, value);
}

TEST(Atomic, Exchange_GivesTheOldValue)
{
    std::int32_t value = 5;
    EXPECT_EQ(5, AtomicExchange(value, -1));
    EXPECT_EQ(-1, value);
}

TEST(Atomic, ReadPtrOfAnyPointer_GivesItAndLeavesIt)
{
    int object = 0;
    for (int* each : {&object, static_cast<int*>(nullptr), reinterpret_cast<int*>(std::uintptr_t{17})}) {
        int* pointer = each;
        EXPECT_EQ(each, AtomicReadPtr(pointer));
        EXPECT_EQ(each, pointer);
    }
}

TEST(Atomic, NullifyPtr_GivesTheOldPointerAndLeavesNull)
{
    int object = 0;
    int* pointer = &object;
    EXPECT_EQ(&object, AtomicNullifyPtr(pointer));
    EXPECT_EQ(nullptr, pointer);
    EXPECT_EQ(nullptr, AtomicNullifyPtr(pointer));
}

TEST(Atomic, SetPtrIfNull_StoresOnlyOnce)
{
    const char first = 'a';
    const char second = 'b';
    const char* pointer = nullptr;
    EXPECT_TRUE(AtomicSetPtrIfNull(pointer, &first));
    EXPECT_FALSE(AtomicSetPtrIfNull(pointer, &second));
    EXPECT_EQ(&first, pointer);
    AtomicNullifyPtr(pointer);
    EXPECT_TRUE(AtomicSetPtrIfNull(pointer, &second));
    EXPECT_EQ(&second, pointer);
}

TEST(Atomic, AlignedTargets_ReportNothing)
{
    CheckRecorder recorder;
    std::int32_t value = 0;
    void* pointer = nullptr;
    AtomicIncrement(value);
    AtomicRead(value);
    AtomicReadPtr(pointer);
    EXPECT_TRUE(recorder.Reports().empty());
}

namespace {

// Memory in which At returns an object at any offset, aligned or not.
struct Misaligned
{
    alignas(16) unsigned char mBytes[32] = {};

    template <class T>
    T& At(std::size_t inOffset)
    {
        return *reinterpret_cast<T*>(mBytes + inOffset);
    }
};

// Returns the number of reports that a call makes.
template <class Call>
std::size_t ReportsOf(const Call& inCall)
{
    CheckRecorder recorder;
    inCall();
    return recorder.Reports().size();
}

} // namespace

TEST(Atomic, PointersOffTheirOwnSize_AreReportedAtEveryPlace)
{
    Misaligned bytes;
    for (std::size_t offset = 0; offset <= 8; ++offset) {
        const std::size_t expected = offset % 8 == 0 ? 0 : 1;
        void*& target = bytes.At<void*>(offset);
        EXPECT_EQ(expected, ReportsOf([&] { AtomicReadPtr(target); })) << offset;
        EXPECT_EQ(expected, ReportsOf([&] { AtomicNullifyPtr(target); })) << offset;
        EXPECT_EQ(expected, ReportsOf([&] { AtomicSetPtrIfNull(target, nullptr); })) << offset;
    }
}

TEST(Atomic, NumbersOffTheirOwnSize_AreReportedAtEveryPlace)
{
    Misaligned bytes;
    for (std::size_t offset = 0; offset <= 8; ++offset) {
        const std::size_t expected = offset % 4 == 0 ? 0 : 1;
        std::int32_t& target = bytes.At<std::int32_t>(offset);
        EXPECT_EQ(expected, ReportsOf([&] { AtomicIncrement(target); })) << offset;
        EXPECT_EQ(expected, ReportsOf([&] { AtomicDecrement(target); })) << offset;
        EXPECT_EQ(expected, ReportsOf([&] { AtomicRead(target); })) << offset;
        EXPECT_EQ(expected, ReportsOf([&] { AtomicCompareAndSet(target, 0, 0); })) << offset;
        EXPECT_EQ(expected, ReportsOf([&] { AtomicExchange(target, 0); })) << offset;
    }
}

namespace {

constexpr int kThreads = 4;
constexpr int kRounds = 20000;

template <class Body>
void OnAllThreads(Body inBody)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([inBody, i] { inBody(i); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

} // namespace

TEST(Atomic, ManyThreadsCountAndRead_LoseNothing)
{
    std::int32_t value = 0;
    OnAllThreads([&](int inThread) {
        for (int round = 0; round < kRounds; ++round) {
            if (inThread % 2 == 0) {
                AtomicIncrement(value);
            } else {
                AtomicRead(value); // the read's compare-exchange must not undo an increment, not even at 17
            }
        }
    });
    EXPECT_EQ(kThreads / 2 * kRounds, value);
}

TEST(Atomic, ManyThreadsRaceForAnEmptyPointer_OneWins)
{
    for (int round = 0; round < 50; ++round) {
        int objects[kThreads] = {};
        int* winner = nullptr;
        std::atomic<int> wins{0};
        OnAllThreads([&](int inThread) { wins.fetch_add(AtomicSetPtrIfNull(winner, &objects[inThread]) ? 1 : 0); });
        EXPECT_EQ(1, wins.load());
        EXPECT_NE(nullptr, winner);
    }
}

namespace {

// Two threads each write their own word and then read the other's. With a full barrier in the read, at least one of
// them sees the other's write. The threads run through many pairs of words so that some accesses nearly coincide.
template <class Word, class Read>
void ExpectAFullBarrier(Word inWritten, const Read& inRead)
{
    constexpr std::size_t kPairs = 200000;
    constexpr std::size_t kPairsBetweenMeetings = 100;
    std::vector<Word> words[2] = {std::vector<Word>(kPairs), std::vector<Word>(kPairs)};
    std::vector<char> seen[2] = {std::vector<char>(kPairs), std::vector<char>(kPairs)};
    std::atomic<std::size_t> arrived{0};
    const auto run = [&](std::size_t inSelf) {
        for (std::size_t pair = 0; pair < kPairs; ++pair) {
            if (pair % kPairsBetweenMeetings == 0) {
                arrived.fetch_add(1);
                for (int turn = 1; arrived.load() < 2 * (pair / kPairsBetweenMeetings + 1); ++turn) {
                    if (turn % 1000 == 0) { // let the other thread run on a busy machine
                        std::this_thread::yield();
                    }
                }
            }
            __atomic_store_n(&words[inSelf][pair], inWritten, __ATOMIC_RELAXED);
            seen[inSelf][pair] = inRead(words[1 - inSelf][pair]) == inWritten;
        }
    };
    std::thread other(run, 1);
    run(0);
    other.join();
    for (std::size_t pair = 0; pair < kPairs; ++pair) {
        EXPECT_TRUE(seen[0][pair] || seen[1][pair]) << "pair " << pair;
    }
}

} // namespace

TEST(Atomic, Read_CarriesAFullBarrier)
{
    ExpectAFullBarrier<std::int32_t>(1, [](std::int32_t& ioWord) { return AtomicRead(ioWord); });
}

TEST(Atomic, ReadPtr_CarriesAFullBarrier)
{
    static char sObject = 0;
    ExpectAFullBarrier<char*>(&sObject, [](char*& ioWord) { return AtomicReadPtr(ioWord); });
}

// AtomicRead and AtomicReadPtr are read-modify-write operations, so they fault on read-only memory.
TEST(AtomicDeathTest, ReadOfWhatMayNotBeWritten_EndsTheProcess)
{
    static const std::int32_t sNumber = 18;
    static int* const sPointer = nullptr;
    EXPECT_DEATH(AtomicRead(const_cast<std::int32_t&>(sNumber)), "");
    EXPECT_DEATH(AtomicReadPtr(const_cast<int*&>(sPointer)), "");
}
