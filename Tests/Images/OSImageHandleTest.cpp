#include "Wrapped.h"

#include <BitmapPixels.h>
#include <Stress.h>

#include <ORLOSImageHandle.h>
#include <ORLResourceCollection.h>

#include <atomic>
#include <gtest/gtest.h>
#include <memory>
#include <thread>
#include <type_traits>
#include <vector>

using namespace ORL;
using namespace ORLTest;

namespace {

class OSImageHandleOwner : public testing::Test
{
protected:
    OSImageHandleOwner() { ResetWrapped(); }
};

} // namespace

// The assignment operator takes a non-const reference.
static_assert(std::is_assignable<OSImageHandle&, OSImageHandle&>::value);
static_assert(!std::is_assignable<OSImageHandle&, const OSImageHandle&>::value);

TEST_F(OSImageHandleOwner, WithoutAnything_IsNotValid)
{
    const OSImageHandle image;
    EXPECT_FALSE(image.IsValid());
    const OSImageHandle copy(image);
    EXPECT_FALSE(copy.IsValid());
}

TEST_F(OSImageHandleOwner, OfANullBitmap_HoldsNullAndIsNotValid)
{
    {
        const OSImageHandle image(nullptr);
        EXPECT_FALSE(image.IsValid());
        EXPECT_EQ(nullptr, image.GetHBITMAP());
    }
    EXPECT_EQ(0, Wrapped().mDeletions);
}

TEST_F(OSImageHandleOwner, TheLastShare_DeletesTheBitmap)
{
    const HBITMAP bitmap = MakeBitmap();
    ASSERT_NE(nullptr, bitmap);
    {
        OSImageHandle first(bitmap);
        {
            const OSImageHandle second(first);
            EXPECT_TRUE(second.IsValid());
            EXPECT_EQ(bitmap, second.GetHBITMAP());
        }
        EXPECT_EQ(0, Wrapped().mDeletions);
        EXPECT_EQ(bitmap, first.GetHBITMAP());
    }
    EXPECT_EQ(1, Wrapped().mDeletions);
}

TEST_F(OSImageHandleOwner, Assignment_SharesAndDropsTheEarlierBitmap)
{
    OSImageHandle first(MakeBitmap());
    OSImageHandle second(MakeBitmap());
    OSImageHandle empty;
    second = first;
    EXPECT_EQ(1, Wrapped().mDeletions);
    EXPECT_EQ(first.GetHBITMAP(), second.GetHBITMAP());
    OSImageHandle& same = first;
    first = same;
    EXPECT_TRUE(first.IsValid());
    first = empty;
    EXPECT_FALSE(first.IsValid());
    EXPECT_EQ(1, Wrapped().mDeletions);
    second = empty;
    EXPECT_EQ(2, Wrapped().mDeletions);
}

TEST_F(OSImageHandleOwner, Steal_TakesTheBitmapFromEveryShare)
{
    const HBITMAP bitmap = MakeBitmap();
    {
        OSImageHandle first(bitmap);
        OSImageHandle second(first);
        EXPECT_EQ(bitmap, second.StealHBITMAP());
        EXPECT_FALSE(first.IsValid());
        EXPECT_FALSE(second.IsValid());
        EXPECT_EQ(nullptr, first.GetHBITMAP());
        EXPECT_EQ(nullptr, first.StealHBITMAP());
    }
    EXPECT_EQ(0, Wrapped().mDeletions);
    EXPECT_EQ(2, PixelsOf(bitmap).mWidth);
    DeleteBitmap(bitmap);
}

TEST_F(OSImageHandleOwner, Swap_ExchangesWhatTheyHold)
{
    const HBITMAP bitmap = MakeBitmap();
    OSImageHandle first(bitmap);
    OSImageHandle second;
    first.Swap(second);
    EXPECT_FALSE(first.IsValid());
    EXPECT_EQ(bitmap, second.GetHBITMAP());
    second.Swap(second);
    EXPECT_EQ(bitmap, second.GetHBITMAP());
}

namespace {

// The handles of one thread to the two bitmaps that all threads share.
struct Pair
{
    OSImageHandle mFirst;
    OSImageHandle mSecond;
};

// Returns the number of wrong handles that it found.
int CopyAssignAndSwap(Pair& ioPair, HBITMAP inFirst, HBITMAP inSecond)
{
    int wrong = 0;
    for (int step = 0; step < 100; ++step) {
        OSImageHandle copy(ioPair.mFirst);
        OSImageHandle other(ioPair.mSecond);
        copy.Swap(other);
        wrong += copy.GetHBITMAP() != inSecond || other.GetHBITMAP() != inFirst;
        other = copy;
        wrong += other.GetHBITMAP() != inSecond || !other.IsValid();
        OSImageHandle empty;
        copy = empty;
        wrong += copy.IsValid();
    }
    return wrong;
}

} // namespace

TEST_F(OSImageHandleOwner, EightThreadsCopyAssignSwapAndRelease_DeleteEachBitmapOnce)
{
    constexpr int kThreads = 8;
    for (int round = 0; round < Rounds(50); ++round) {
        Wrapped().mDeletions = 0;
        const HBITMAP first = MakeBitmap();
        const HBITMAP second = MakeBitmap();
        std::vector<std::unique_ptr<Pair>> pairs;
        {
            const OSImageHandle firstHandle(first);
            const OSImageHandle secondHandle(second);
            for (int i = 0; i < kThreads; ++i) {
                pairs.push_back(std::unique_ptr<Pair>(new Pair{firstHandle, secondHandle}));
            }
        }
        std::atomic<bool> mayStart{false};
        std::atomic<int> wrong{0};
        std::vector<std::thread> threads;
        for (std::unique_ptr<Pair>& pair : pairs) {
            threads.emplace_back([&, own = std::move(pair)]() mutable {
                while (!mayStart) {
                    std::this_thread::yield();
                }
                wrong += CopyAssignAndSwap(*own, first, second);
                own.reset();
            });
        }
        mayStart = true;
        for (std::thread& thread : threads) {
            thread.join();
        }
        ASSERT_EQ(0, wrong);
        ASSERT_EQ(2, Wrapped().mDeletions);
    }
}
