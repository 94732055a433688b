// Compares bitmaps loaded from the plug-in with the generated pixels.
#pragma once

#include "Data/Pixels.h"

#include <BitmapPixels.h>

#include <ORLModule.h>

#include <gtest/gtest.h>
#include <string>

namespace ORLTest {

/// Returns whether the bitmap is stored top-down. Wine's LoadBitmapW returns a black bitmap for such a resource.
inline bool IsTopDown(const BitmapRow& inRow)
{
    return std::string(inRow.mName).find("top_down") != std::string::npos;
}

/// Ignores alpha, because a system bitmap need not have it.
inline void ExpectPixels(ORL::Module& inModule, const BitmapRow& inRow)
{
    SCOPED_TRACE(inRow.mName);
    const ORL::OSImageHandle image(inModule.LoadBitmapW(inRow.mID, false));
    ASSERT_TRUE(image.IsValid());
    const BitmapPixels pixels = PixelsOf(image.GetHBITMAP());
    ASSERT_EQ(kBitmapWidth, pixels.mWidth);
    ASSERT_EQ(kBitmapHeight, pixels.mHeight);
    for (std::size_t i = 0; i < pixels.mPixels.size(); ++i) {
        EXPECT_EQ(inRow.mPixels[i] & 0xFFFFFF, pixels.mPixels[i] & 0xFFFFFF) << "pixel " << i;
    }
}

} // namespace ORLTest
