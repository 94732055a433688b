// Runs orl res picture as a user does. An independent library decodes the pictures that it writes.
#include "../Examples/PngReader.h"
#include "../Images/Data/Pixels.h"

#include <ProcessRunner.h>
#include <TempFolder.h>

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace ORLTest;

namespace {

class OrlResPicture : public testing::Test
{
protected:
    ProcessResult Run(const std::string& inID, const std::vector<std::string>& inMore = {})
    {
        std::vector<std::string> arguments = {
            "res", "picture", FolderOfThisProgram() + "images_pictures" ORL_PLUG_IN_SUFFIX, inID, "-o", Output()};
        arguments.insert(arguments.end(), inMore.begin(), inMore.end());
        return RunBesideThisProgram("orl", arguments);
    }

    std::vector<std::uint32_t> Pixels(const std::string& inID, const std::vector<std::string>& inMore = {})
    {
        const ProcessResult result = Run(inID, inMore);
        EXPECT_EQ(0, result.mExitCode) << result.mErrors;
        EXPECT_EQ("", result.mOutput + result.mErrors);
        const DecodedPicture picture = ReadPng(Output());
        std::vector<std::uint32_t> pixels;
        for (std::size_t i = 0; i + 2 < picture.mPixels.size(); i += 3) {
            pixels.push_back(static_cast<std::uint32_t>(picture.mPixels[i] << 16u | picture.mPixels[i + 1] << 8u
                                                        | picture.mPixels[i + 2]));
        }
        return pixels;
    }

    std::string Output() const { return (mFolder.Host() / "out.png").string(); }

private:
    const TempFolder mFolder;
};

} // namespace

TEST_F(OrlResPicture, EachBitmap_IsWritten)
{
    for (const BitmapRow& row : kBitmaps) {
        const std::vector<std::uint32_t> pixels = Pixels(std::to_string(row.mID));
        ASSERT_EQ(std::size(row.mPixels), pixels.size()) << row.mName;
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            EXPECT_EQ(row.mPixels[i] & 0xFFFFFF, pixels[i]) << row.mName << " " << i;
        }
    }
}

TEST_F(OrlResPicture, ALanguage_Answers)
{
    EXPECT_EQ(std::vector<std::uint32_t>{1}, Pixels("101"));
    EXPECT_EQ(std::vector<std::uint32_t>{2}, Pixels("101", {"--language", "de_DE"}));
    EXPECT_EQ(std::vector<std::uint32_t>{3}, Pixels("101", {"--language", "fr_FR"}));
}

TEST_F(OrlResPicture, WhatIsNoPicture_IsReported)
{
    for (const char* const id : {"9999", "104", "65537", "-1"}) {
        const ProcessResult result = Run(id);
        EXPECT_NE(0, result.mExitCode) << id;
        EXPECT_NE("", result.mErrors) << id;
        EXPECT_FALSE(std::filesystem::exists(Output())) << id;
    }
    EXPECT_NE(std::string::npos, Run("104").mErrors.find("has no picture 104 for en_US that can be decoded"));
}
