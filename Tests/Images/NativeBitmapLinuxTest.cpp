#include "../Resources/PlugIns.h"
#include "ExpectedBitmaps.h"

#include <ORLNativeBitmap.h>

#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>

using namespace ORL::Images::Linux;

TEST(NativeBitmap, ANewOne_IsTransparentAndItsPixelsStay)
{
    const HBITMAP bitmap = CreateBitmap(3, 2);
    BitmapInfo info{};
    ASSERT_TRUE(GetBitmapInfo(bitmap, info));
    EXPECT_EQ(3, info.mWidth);
    EXPECT_EQ(2, info.mHeight);
    ASSERT_GE(info.mStride, 12u);
    EXPECT_EQ(0u, reinterpret_cast<std::uintptr_t>(info.mPixels) % 16);
    for (std::size_t y = 0; y < 2; ++y) {
        for (std::size_t x = 0; x < 12; ++x) {
            EXPECT_EQ(0, info.mPixels[y * info.mStride + x]);
        }
    }
    const std::uint32_t red = 0xFFFF0000;
    std::memcpy(info.mPixels + info.mStride + 8, &red, 4);
    BitmapInfo again{};
    ASSERT_TRUE(GetBitmapInfo(bitmap, again));
    EXPECT_EQ(0, std::memcmp(again.mPixels + again.mStride + 8, &red, 4));
    DeleteBitmap(bitmap);
}

TEST(NativeBitmap, SidesThatCannotBe_GiveNull)
{
    constexpr int kMost = std::numeric_limits<int>::max();
    for (const auto& [width, height] :
         {std::pair(0, 1), std::pair(1, 0), std::pair(-1, 1), std::pair(1, -1), std::pair(kMost, kMost),
          std::pair(kMost, 1), std::pair(0x10000, 0x10000), std::pair(0x8000, 0x4000)}) {
        EXPECT_EQ(nullptr, CreateBitmap(width, height)) << width << " by " << height;
    }
}

TEST(NativeBitmap, Null_IsNoBitmap)
{
    BitmapInfo info{7, 7, 7, nullptr};
    EXPECT_FALSE(GetBitmapInfo(nullptr, info));
    EXPECT_EQ(7, info.mWidth);
    DeleteBitmap(nullptr);
}

TEST(NativeBitmap, OfEachForm_IsOpaque)
{
    const ORLTest::ModulePtr module = ORLTest::LoadPlugIn("images_pictures");
    for (const BitmapRow& row : kBitmaps) {
        ORLTest::ExpectPixels(*module, row);
        const ORL::OSImageHandle image(module->LoadBitmapWTL(row.mID, false));
        for (const std::uint32_t pixel : ORLTest::PixelsOf(image.GetHBITMAP()).mPixels) {
            EXPECT_EQ(0xFFu, pixel >> 24) << row.mName;
        }
    }
}
