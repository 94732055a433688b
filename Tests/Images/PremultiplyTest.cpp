#include <Images/Premultiply.h>

#include <gtest/gtest.h>
#include <vector>

using namespace ORL::Images;

namespace {

// Returns the exact quotient, rounded to nearest. The quotient is never a tie, since 255 is odd.
std::uint32_t Rounded(std::uint32_t inColour, std::uint32_t inAlpha)
{
    return (2 * inColour * inAlpha + 255) / (2 * 255);
}

using Pixels = std::vector<std::uint32_t>;

Pixels ByEachKernel(const PremultiplyKernel& inKernel, const Pixels& inPixels)
{
    Pixels result(inPixels.size(), 0xDEADBEEF);
    inKernel.mPremultiply(inPixels.data(), result.data(), inPixels.size());
    return result;
}

} // namespace

TEST(Premultiply, EachColourAndAlpha_IsRoundedExactlyByEachKernel)
{
    for (const PremultiplyKernel& kernel : kPremultiplyKernels) {
        if (!kernel.mIsSupported()) {
            continue;
        }
        SCOPED_TRACE(kernel.mName);
        Pixels pixels;
        Pixels expected;
        for (std::uint32_t alpha = 0; alpha < 256; ++alpha) {
            for (std::uint32_t colour = 0; colour < 256; ++colour) {
                const std::uint32_t other = 255 - colour;
                const std::uint32_t third = colour * 7 & 0xFF;
                pixels.push_back(alpha << 24 | colour << 16 | other << 8 | third);
                expected.push_back(alpha << 24 | Rounded(colour, alpha) << 16 | Rounded(other, alpha) << 8
                                   | Rounded(third, alpha));
            }
        }
        EXPECT_EQ(expected, ByEachKernel(kernel, pixels));
    }
}

TEST(Premultiply, HalfTransparentRed_Is0x80800000)
{
    const std::uint32_t pixel = 0x80FF0000;
    std::uint32_t result = 0;
    Premultiply(&pixel, &result, 1);
    EXPECT_EQ(0x80800000u, result);
}

TEST(Premultiply, ATransparentPixelOfAnyColour_Becomes0)
{
    const Pixels pixels = {0x00FFFFFF, 0x00123456, 0x000000FF, 0x00FF0000};
    Pixels result(4, 1);
    Premultiply(pixels.data(), result.data(), 4);
    EXPECT_EQ(Pixels(4, 0), result);
}

// Tests each count from 0 up at eight alignments, so that the kernels also process the pixels after the last whole
// vector.
TEST(Premultiply, EachCountAndAlignment_TouchesItsPixelsAlone)
{
    constexpr std::size_t kMost = 37;
    Pixels source;
    for (std::uint32_t i = 0; i < kMost + 8; ++i) {
        source.push_back(i * 0x01234567 + 0x80402010);
    }
    for (const PremultiplyKernel& kernel : kPremultiplyKernels) {
        if (!kernel.mIsSupported()) {
            continue;
        }
        for (std::size_t start = 0; start < 8; ++start) {
            for (std::size_t count = 0; count <= kMost; ++count) {
                Pixels result(source.size() + 1, 0xDEADBEEF);
                kernel.mPremultiply(source.data() + start, result.data() + start, count);
                Pixels expected(source.size() + 1, 0xDEADBEEF);
                kPremultiplyKernels[kPremultiplyKernelCount - 1].mPremultiply(source.data() + start,
                                                                              expected.data() + start, count);
                ASSERT_EQ(expected, result) << kernel.mName << ", " << count << " from " << start;
                ASSERT_EQ(0xDEADBEEFu, result[start + count]);
            }
        }
    }
}

TEST(Premultiply, InPlace_IsTheSame)
{
    Pixels pixels;
    for (std::uint32_t i = 0; i < 1000; ++i) {
        pixels.push_back(i * 0x9E3779B9);
    }
    Pixels apart(pixels.size());
    Premultiply(pixels.data(), apart.data(), pixels.size());
    Premultiply(pixels.data(), pixels.data(), pixels.size());
    EXPECT_EQ(apart, pixels);
}
