#include "Wrapped.h"

#include <BitmapPixels.h>

#include <ORLOSImageHandle.h>
#include <ORLResourceCollection.h>

#include <gtest/gtest.h>
#include <type_traits>

using namespace ORL;
using namespace ORLTest;

namespace {

class OSImageHandleOwner : public testing::Test
{
protected:
    OSImageHandleOwner() { Wrapped() = WrappedImages(); }
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
    first = first;
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
