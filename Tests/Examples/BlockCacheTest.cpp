// Runs the block cache example as a user does.
#include <ProcessRunner.h>
#include <TempFolder.h>

#include <gtest/gtest.h>
#include <string>

using namespace ORLTest;

namespace {

ProcessResult BlockCache(const TempFolder& inFolder, const std::string& inName, const std::string& inMegabytes)
{
    return RunBesideThisProgram("example_block_cache", {(inFolder.Host() / inName).u8string(), inMegabytes});
}

} // namespace

TEST(BlockCacheExample, AFileThatFits_IsKeptInWholeBlocks)
{
    const TempFolder folder;
    folder.MakeFile("clip", std::string(200000, '\1'));
    const ProcessResult result = BlockCache(folder, "clip", "1");
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    EXPECT_EQ("sum 200000, then 200000; 262144 bytes in the cache\n", result.mOutput);
}

TEST(BlockCacheExample, AFileThatDoesNotFit_IsReadAllTheSame)
{
    const TempFolder folder;
    folder.MakeFile("clip", std::string(3000000, '\2'));
    const ProcessResult result = BlockCache(folder, "clip", "1");
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    EXPECT_EQ("sum 6000000, then 6000000; 1048576 bytes in the cache\n", result.mOutput);
}

TEST(BlockCacheExample, AMissingFile_IsToldOf)
{
    const TempFolder folder;
    const ProcessResult result = BlockCache(folder, "none", "1");
    EXPECT_EQ(1, result.mExitCode);
    EXPECT_NE(std::string::npos, result.mErrors.find("cannot be opened")) << result.mErrors;
    EXPECT_EQ("", result.mOutput);
}
