#include <ORLMemoryRecycler.h>

#include <CheckRecorder.h>
#include <ExpectReport.h>
#include <Memory/MemoryRecyclerLifecycle.h>

#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <new>
#include <string>
#include <thread>
#include <vector>

using namespace ORL;

namespace {

constexpr std::size_t kLarge = 8192;

// Exposes the operations available to a buffer's owner.
class OwnBuffer : public MemoryBuffer
{
public:
    using MemoryBuffer::Allocate;
    using MemoryBuffer::Release;
};

void* AddressOf(MemoryRecycler& ioRecycler, std::size_t inSize)
{
    MemoryBuffer buffer = ioRecycler.AllocateBuffer(inSize);
    void* const address = buffer.GetBuffer();
    ioRecycler.RecycleBuffer(buffer);
    return address;
}

class CountingManager : public tvxcore::config::ErrorManager
{
public:
    CountingManager() : mOld(tvxcore::config::InstallErrorManager(this)) {}
    ~CountingManager() override { tvxcore::config::InstallErrorManager(mOld); }

    bool OnAllocationFailure(std::size_t inBytes) override
    {
        mSizes.push_back(inBytes);
        return mSizes.size() < mTries;
    }

    std::vector<std::size_t> mSizes;
    std::size_t mTries = 1;

private:
    tvxcore::config::ErrorManager* mOld;
};

// A size larger than the memory of any machine, and a multiple of every rounding step.
constexpr std::size_t kHopeless = std::size_t{1} << 60;

} // namespace

TEST(MemoryRecycler, EachWantedSize_IsRoundedByItsRange)
{
    struct Row
    {
        int mLine;
        std::size_t mWanted;
        std::size_t mGot;
        bool mIsLarge;
    };
    const Row rows[] = {
        {__LINE__, 0, 0, false},
        {__LINE__, 1, 1, false},
        {__LINE__, 8191, 8191, false},
        {__LINE__, 8192, 8192, true},
        {__LINE__, 8193, 12288, true},
        {__LINE__, 12288, 12288, true},
        {__LINE__, 1044480, 1044480, true},
        {__LINE__, 1044481, 1048576, true},
        {__LINE__, 1048575, 1048576, true},
        {__LINE__, 1048576, 1048576, true},
        {__LINE__, 1048577, 1064960, true},
        {__LINE__, 1064960, 1064960, true},
    };
    MemoryRecycler recycler;
    for (const Row& row : rows) {
        MemoryBuffer buffer = recycler.AllocateBuffer(row.mWanted);
        ASSERT_NE(nullptr, buffer.GetBuffer()) << "row at line " << row.mLine;
        EXPECT_EQ(row.mGot, buffer.GetSize()) << "row at line " << row.mLine;
        EXPECT_EQ(row.mIsLarge, buffer.IsVirtual()) << "row at line " << row.mLine;
        std::memset(buffer.GetBuffer(), 0xA5, buffer.GetSize());
        recycler.RecycleBuffer(buffer);
    }
}

TEST(MemoryRecycler, BufferBelowTheThreshold_NeverTouchesThePool)
{
    MemoryRecycler recycler;
    MemoryBuffer buffer = recycler.AllocateBuffer(8191);
    recycler.RecycleBuffer(buffer);
    EXPECT_EQ(0u, recycler.GetSize());
    EXPECT_EQ(nullptr, buffer.GetBuffer()) << "a small buffer is freed at once";
}

TEST(MemoryRecycler, EachBuffer_HasTheAlignmentOfItsSource)
{
    MemoryRecycler recycler;
    for (const std::size_t size : {1u, 8u, 16u, 100u, 4096u, 8191u, 8192u, 12288u, 1048576u, 5000000u}) {
        MemoryBuffer buffer = recycler.AllocateBuffer(size);
        const std::size_t alignment = buffer.IsVirtual() ? 4096 : 16;
        EXPECT_EQ(0u, reinterpret_cast<std::uintptr_t>(buffer.GetBuffer()) % alignment) << size << " bytes";
        recycler.RecycleBuffer(buffer);
    }
}

TEST(MemoryRecycler, EmptyBufferGivenBack_IsLeftAlone)
{
    MemoryRecycler recycler;
    MemoryBuffer buffer;
    recycler.RecycleBuffer(buffer);
    EXPECT_EQ(0u, recycler.GetSize());
}

TEST(MemoryRecycler, SameSizeAskedForAgain_GivesTheSameAddress)
{
    MemoryRecycler recycler;
    MemoryBuffer first = recycler.AllocateBuffer(100000);
    void* const address = first.GetBuffer();
    recycler.RecycleBuffer(first);
    EXPECT_EQ(102400u, recycler.GetSize());
    EXPECT_EQ(address, first.GetBuffer()) << "the fields stay, the memory is given away";
    MemoryBuffer second = recycler.AllocateBuffer(100001);
    EXPECT_EQ(address, second.GetBuffer());
    EXPECT_TRUE(second.IsVirtual());
    EXPECT_EQ(0u, recycler.GetSize());
    recycler.RecycleBuffer(second);
}

TEST(MemoryRecycler, SizeOneStepAway_LeavesThePoolAndMakesANewBuffer)
{
    MemoryRecycler recycler;
    void* const pooled = AddressOf(recycler, 2 * kLarge);
    MemoryBuffer other = recycler.AllocateBuffer(2 * kLarge - 4096);
    EXPECT_NE(pooled, other.GetBuffer());
    EXPECT_EQ(2 * kLarge, recycler.GetSize());
    recycler.RecycleBuffer(other);
}

TEST(MemoryRecycler, TwoOfOneSize_TheMostRecentComesFirst)
{
    MemoryRecycler recycler;
    MemoryBuffer first = recycler.AllocateBuffer(kLarge);
    MemoryBuffer second = recycler.AllocateBuffer(kLarge);
    recycler.RecycleBuffer(first);
    recycler.RecycleBuffer(second);
    MemoryBuffer again = recycler.AllocateBuffer(kLarge);
    EXPECT_EQ(second.GetBuffer(), again.GetBuffer());
    recycler.RecycleBuffer(again);
}

TEST(MemoryRecycler, SetSizeZero_EmptiesThePool)
{
    MemoryRecycler recycler;
    AddressOf(recycler, kLarge);
    AddressOf(recycler, 3 * kLarge);
    recycler.SetSize(0);
    EXPECT_EQ(0u, recycler.GetSize());
    AddressOf(recycler, kLarge);
    EXPECT_EQ(0u, recycler.GetSize()) << "what comes back is evicted at once";
}

TEST(MemoryRecycler, ReturnOverTheLimit_DropsTheOldestFirst)
{
    MemoryRecycler recycler;
    recycler.SetSize(3 * kLarge);
    MemoryBuffer buffers[4];
    for (MemoryBuffer& buffer : buffers) {
        buffer = recycler.AllocateBuffer(kLarge);
    }
    for (MemoryBuffer& buffer : buffers) {
        recycler.RecycleBuffer(buffer);
    }
    EXPECT_EQ(3 * kLarge, recycler.GetSize());
    // The three most recently returned buffers are still pooled, newest first.
    MemoryBuffer kept[3];
    for (int i = 0; i < 3; ++i) {
        kept[i] = recycler.AllocateBuffer(kLarge);
        EXPECT_EQ(buffers[3 - i].GetBuffer(), kept[i].GetBuffer());
    }
    for (MemoryBuffer& buffer : kept) {
        recycler.RecycleBuffer(buffer);
    }
}

TEST(MemoryRecycler, MissThatWouldExceedTheLimit_MakesRoomInThePool)
{
    MemoryRecycler recycler;
    recycler.SetSize(4 * kLarge);
    AddressOf(recycler, kLarge);
    AddressOf(recycler, 2 * kLarge);
    ASSERT_EQ(3 * kLarge, recycler.GetSize());
    MemoryBuffer big = recycler.AllocateBuffer(3 * kLarge);
    EXPECT_EQ(0u, recycler.GetSize()) << "the older of 8192 was not enough, so both went";
    MemoryBuffer small = recycler.AllocateBuffer(kLarge);
    recycler.RecycleBuffer(small);
    recycler.RecycleBuffer(big);
    EXPECT_EQ(4 * kLarge, recycler.GetSize());
}

TEST(MemoryRecycler, BufferLargerThanTheLimit_IsMadeAllTheSame)
{
    MemoryRecycler recycler;
    recycler.SetSize(kLarge);
    MemoryBuffer buffer = recycler.AllocateBuffer(10 * kLarge);
    EXPECT_NE(nullptr, buffer.GetBuffer());
    recycler.RecycleBuffer(buffer);
    EXPECT_EQ(0u, recycler.GetSize()) << "the last one left is evicted too";
}

TEST(MemoryRecycler, LimitThatNobodyHasSet_Is50000000Bytes)
{
    // Sizes are multiples of 4096: kFits is the largest that fits the limit.
    constexpr std::size_t kFits = 50000000 / 4096 * 4096;
    constexpr std::size_t kMost = kFits / 16384 * 16384;
    MemoryRecycler recycler;
    AddressOf(recycler, kMost);
    MemoryBuffer rest = recycler.AllocateBuffer(kFits - kMost);
    MemoryBuffer more = recycler.AllocateBuffer(kFits - kMost);
    recycler.RecycleBuffer(rest);
    EXPECT_EQ(kFits, recycler.GetSize());
    ASSERT_EQ(kFits - kMost, recycler.Purge(0) - kMost);
    AddressOf(recycler, kMost);
    MemoryBuffer tooMuch = recycler.AllocateBuffer(kLarge);
    recycler.RecycleBuffer(more);
    EXPECT_EQ(kFits, recycler.GetSize());
    recycler.RecycleBuffer(tooMuch);
    EXPECT_EQ(kFits - kMost + kLarge, recycler.GetSize()) << "the oldest has gone";
}

TEST(MemoryRecycler, PurgeOfWhatTheOldestHas_StopsExactlyThere)
{
    MemoryRecycler recycler;
    MemoryBuffer buffers[3];
    for (MemoryBuffer& buffer : buffers) {
        buffer = recycler.AllocateBuffer(kLarge);
    }
    for (MemoryBuffer& buffer : buffers) {
        recycler.RecycleBuffer(buffer);
    }
    EXPECT_EQ(kLarge, recycler.Purge(kLarge));
    EXPECT_EQ(2 * kLarge, recycler.GetSize());
    EXPECT_EQ(2 * kLarge, recycler.Purge(kLarge + 1)) << "whole buffers go";
    EXPECT_EQ(0u, recycler.GetSize());
}

TEST(MemoryRecycler, PurgeOfOneByte_FreesExactlyTheOldest)
{
    MemoryRecycler recycler;
    AddressOf(recycler, kLarge);
    AddressOf(recycler, 2 * kLarge);
    EXPECT_EQ(kLarge, recycler.Purge(1));
    EXPECT_EQ(2 * kLarge, recycler.GetSize());
}

TEST(MemoryRecycler, PurgeOfZero_FreesAll)
{
    MemoryRecycler recycler;
    AddressOf(recycler, kLarge);
    AddressOf(recycler, 2 * kLarge);
    EXPECT_EQ(3 * kLarge, recycler.Purge(0));
    EXPECT_EQ(0u, recycler.GetSize());
    EXPECT_EQ(0u, recycler.Purge(0)) << "an empty pool has nothing to free";
}

TEST(MemoryRecycler, NoMemoryAndNoManager_ThrowsBadAllocation)
{
    MemoryRecycler recycler;
    try {
        recycler.AllocateBuffer(kHopeless);
        FAIL() << "nothing was thrown";
    } catch (const std::bad_alloc& error) {
        EXPECT_STREQ("bad allocation", error.what());
    }
    EXPECT_THROW(recycler.AllocateBuffer((std::numeric_limits<std::size_t>::max)()), std::bad_alloc)
        << "rounding must not turn the largest size into a small one";
}

TEST(MemoryRecycler, NoMemory_AsksTheManagerWithTheRoundedSizeUntilItGivesUp)
{
    CountingManager manager;
    manager.mTries = 3;
    MemoryRecycler recycler;
    EXPECT_THROW(recycler.AllocateBuffer(kHopeless - 1), std::bad_alloc);
    EXPECT_EQ(std::vector<std::size_t>(3, kHopeless), manager.mSizes);
}

TEST(MemoryBuffer, AllocatedWhileItHoldsMemory_FiresTheInputContract)
{
    ORLTest::CheckRecorder recorder;
    recorder.mThrow = true;
    OwnBuffer buffer;
    buffer.Allocate(16);
    EXPECT_THROW(buffer.Allocate(16), ORLTest::CheckRecorder::ContractError);
    const std::vector<ORLTest::CheckReport> reports = recorder.Reports();
    ASSERT_EQ(2u, reports.size());
    ORLTest::ExpectReport(reports[0]).Expression("mBuffer == NULL").File("MemoryRecycler").Line(147);
    ORLTest::ExpectReport(reports[1]).Line(25);
    buffer.Release();
}

TEST(MemoryBuffer, ReleasedWhileEmpty_IsReportedAndCleared)
{
    ORLTest::CheckRecorder recorder;
    OwnBuffer buffer;
    buffer.Release();
    const std::vector<ORLTest::CheckReport> reports = recorder.Reports();
    ASSERT_EQ(1u, reports.size());
    ORLTest::ExpectReport(reports[0])
        .Kind(ORLTest::CheckReport::kAssert)
        .Expression("mBuffer != NULL")
        .File("MemoryRecycler")
        .Line(207)
        .Function("ORL::MemoryBuffer::Release");
    EXPECT_EQ(0u, buffer.GetSize());
}

TEST(MemoryBuffer, Released_KeepsTheMarkOfItsSource)
{
    OwnBuffer buffer;
    buffer.Allocate(kLarge);
    EXPECT_TRUE(buffer.IsVirtual());
    buffer.Release();
    EXPECT_EQ(nullptr, buffer.GetBuffer());
    EXPECT_EQ(0u, buffer.GetSize());
    EXPECT_TRUE(buffer.IsVirtual());
}

TEST(MemoryRecyclerInstance, CopyKeptAcrossTheDrop_StaysAlive)
{
    EXPECT_FALSE(MemoryRecycler::Instance());
    CreateMemoryRecycler();
    ObjectPtr<MemoryRecycler, AtomicValue> kept = MemoryRecycler::Instance();
    AddressOf(*kept, kLarge);
    DropMemoryRecycler();
    EXPECT_FALSE(MemoryRecycler::Instance());
    EXPECT_EQ(kLarge, kept->GetSize());
}

TEST(MemoryBufferWrapper, EndOfScope_GivesTheBufferToThePool)
{
    CreateMemoryRecycler();
    void* address = nullptr;
    {
        MemoryBufferWrapper buffer(kLarge);
        address = buffer.GetBuffer();
    }
    EXPECT_EQ(kLarge, MemoryRecycler::Instance()->GetSize());
    {
        MemoryBufferWrapper buffer(kLarge);
        EXPECT_EQ(address, buffer.GetBuffer());
    }
    DropMemoryRecycler();
}

// Without a pool the check reports; only a host with its own reporter continues after the report.
TEST(MemoryBufferWrapper, BeforeTheStart_IsReportedByThePointersPublishedCheck)
{
    ASSERT_FALSE(MemoryRecycler::Instance());
    ORLTest::CheckRecorder recorder;
    recorder.mThrowAssert = true;
    EXPECT_THROW(MemoryBufferWrapper buffer(kLarge), ORLTest::CheckRecorder::ContractError);
    const std::vector<ORLTest::CheckReport> reports = recorder.Reports();
    ASSERT_EQ(1u, reports.size());
    ORLTest::ExpectReport(reports[0])
        .Expression("IsValidAddress(mPtr)")
        .File("ORLObjectPtr")
        .Line(209)
        .Function("ORL::ObjectPtr::operator->");
}

TEST(MemoryRecycler, EightThreadsWithATinyLimit_NeverShareABuffer)
{
    MemoryRecycler recycler;
    recycler.SetSize(4 * kLarge);
    std::vector<std::thread> threads;
    for (unsigned char mark = 1; mark <= 8; ++mark) {
        threads.emplace_back([&recycler, mark] {
            for (int i = 0; i < 500; ++i) {
                MemoryBuffer buffer = recycler.AllocateBuffer(kLarge * (1 + static_cast<std::size_t>(i % 3)));
                unsigned char* const bytes = static_cast<unsigned char*>(buffer.GetBuffer());
                std::memset(bytes, mark, buffer.GetSize());
                EXPECT_EQ(mark, bytes[0]);
                EXPECT_EQ(mark, bytes[buffer.GetSize() - 1]);
                recycler.RecycleBuffer(buffer);
                if (i % 50 == 0) {
                    recycler.Purge(1);
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_LE(recycler.GetSize(), 4 * kLarge);
}
