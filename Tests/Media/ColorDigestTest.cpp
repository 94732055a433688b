// Compares the digest of each colour sweep with a constant. Digests are the same on every platform, so two builds that
// pass agree in every bit of every value. A digest changes only if the arithmetic of its function or its sweep changes.
#include "ColorSweeps.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

using namespace ORLTest;

namespace {

struct Known
{
    const char* mName;
    std::uint64_t mDigest;
};

constexpr Known kKnown[] = {
    {"ColorRGBtoYUV", 0xe432e6b4eac27fd5},      {"ColorYUVtoRGB", 0xb6b5ef5337d58625},
    {"ColorYUVtoRGBf", 0xa2da01a11965c507},     {"ColorRGBToYPbPr", 0x4bb5125f9a639138},
    {"ColorYPbPrToRGB", 0x7b973762686a3d0e},    {"ColorYPbPrToYIQ", 0xff12727d628dafb3},
    {"ColorPbPrToHue", 0x5b8eb29be59f5736},     {"ColorYPbPrToHSL", 0x07c047864c3491f9},
    {"ColorRGBToIRE", 0x9fcd7b0fcc498ffe},      {"ColorRGBToMV", 0x3468c039ba756e27},
    {"ColorYPbPrToIRE", 0xfa5a40578c35a6bb},    {"ColorYPbPrToMV", 0x38f3748a4c2244b4},
    {"NormalizedRGBtoHSV", 0x9d613829c29b98f3}, {"NormalizedRGBtoHSL", 0xf02b13546b396249},
    {"NormalizedHSVtoRGB", 0xc19e7391cf76bab7}, {"NormalizedHSLtoRGB", 0xbc2e7dd0c99e9249},
    {"ColorRGBtoHSV", 0x1405f80f8f49927e},      {"ColorRGBtoHSL", 0xdb407bf57dd7727e},
    {"ColorHSVtoRGB", 0x8937dafaf972c86d},      {"ColorHSLtoRGB", 0xbf8e15e9f574bf8d},
    {"ColorHSLtoHSV", 0x790654ab7ef216a5},      {"ColorHSVtoHSL", 0xf6544f16caba7aa5},
    {"ColorHSLtoYUV", 0x9684a43982ab5871},      {"ColorHSVtoYUV", 0x4e1c50cb8ebb7d59},
    {"ColorYUVtoHSL", 0x82bb13861ddfe42d},      {"ColorYUVtoHSV", 0xf4869ea19a59f42d},
};

} // namespace

// One test per sweep keeps every test short.
class ColorDigestOf : public testing::TestWithParam<std::size_t>
{
};

TEST_P(ColorDigestOf, TheWholeSweep_IsThatOfEveryPlatform)
{
    const Sweep& sweep = kSweeps[GetParam()];
    ASSERT_STREQ(kKnown[GetParam()].mName, sweep.mName);
    EXPECT_EQ(kKnown[GetParam()].mDigest, sweep.mRun(1));
}

static_assert(std::size(kKnown) == std::size(kSweeps));

INSTANTIATE_TEST_SUITE_P(ColorDigests, ColorDigestOf, testing::Range(std::size_t{0}, std::size(kSweeps)),
                         [](const auto& inInfo) { return std::string(kSweeps[inInfo.param].mName); });

TEST(ColorDigests, OfASweepWithOneBitElsewhere_Differ)
{
    Digest left;
    Digest right;
    left.AddFloat(1.0f);
    right.AddFloat(1.00000012f);
    EXPECT_NE(left.Value(), right.Value());
}
