// Tests --keep-permissions with the only permission common to both platforms: whether a file is read-only.
#include "IngestTestSupport.h"

#include <ProcessRunner.h>

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace ORLTest;

namespace {

namespace fs = std::filesystem;

constexpr fs::perms kWriting = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;

class OrlIngestPermissions : public testing::Test
{
protected:
    OrlIngestPermissions()
    {
        mFolder.MakeFolder("card");
        mFolder.MakeFile("card/open", "may be written");
        mFolder.MakeFile("card/protected", "may not be written");
        mCard = ReadTree(Card());
        SetWritable(Card() / "protected", false);
    }
    ~OrlIngestPermissions() override // Windows does not delete a read-only file
    {
        for (const auto& entry : fs::recursive_directory_iterator(mFolder.Host())) {
            SetWritable(entry.path(), true);
        }
    }

    static void SetWritable(const fs::path& inPath, bool inIsWritable)
    {
        fs::permissions(inPath, inIsWritable ? fs::perms::owner_write : kWriting,
                        inIsWritable ? fs::perm_options::add : fs::perm_options::remove);
    }

    static bool IsWritable(const fs::path& inPath)
    {
        return (fs::status(inPath).permissions() & fs::perms::owner_write) != fs::perms::none;
    }

    fs::path Card() const { return mFolder.Host() / "card"; }
    fs::path Disk() const { return mFolder.Host() / "disk"; }

    ProcessResult Ingest(std::vector<std::string> inOptions) const
    {
        inOptions.insert(inOptions.begin(), {"ingest", Card().u8string(), Disk().u8string()});
        return RunBesideThisProgram("orl", inOptions);
    }

    void ExpectKept(const ProcessResult& inResult) const
    {
        EXPECT_EQ(0, inResult.mExitCode) << inResult.mErrors;
        EXPECT_TRUE(IsWritable(Disk() / "open"));
        EXPECT_FALSE(IsWritable(Disk() / "protected"));
        ExpectIngested(mCard, Disk());
    }

    TempFolder mFolder;
    FileTree mCard;
};

} // namespace

TEST_F(OrlIngestPermissions, WithoutTheOption_AreThoseOfANewFile)
{
    EXPECT_EQ(0, Ingest({}).mExitCode);
    EXPECT_TRUE(IsWritable(Disk() / "open"));
    EXPECT_TRUE(IsWritable(Disk() / "protected"));
}

TEST_F(OrlIngestPermissions, WithTheOption_AreThoseOfTheSource)
{
    ExpectKept(Ingest({"--keep-permissions"}));
}

// A file that an earlier run acknowledged is not skipped if its permissions differ.
TEST_F(OrlIngestPermissions, OfFilesAlreadyVerified_AreSetLater)
{
    ASSERT_EQ(0, Ingest({}).mExitCode);
    ExpectKept(Ingest({"--keep-permissions"}));
    const ProcessResult again = Ingest({"--keep-permissions"});
    ExpectKept(again);
    EXPECT_NE(std::string::npos, again.mOutput.find("2 verified before")) << again.mOutput;
    SetWritable(Card() / "open", false);
    SetWritable(Card() / "protected", true);
    EXPECT_EQ(0, Ingest({"--keep-permissions"}).mExitCode);
    EXPECT_FALSE(IsWritable(Disk() / "open"));
    EXPECT_TRUE(IsWritable(Disk() / "protected"));
}

TEST_F(OrlIngestPermissions, OfAnExistingFile_AreLeftAloneWithoutTheOption)
{
    ASSERT_EQ(0, Ingest({"--keep-permissions"}).mExitCode);
    SetWritable(Card() / "protected", true);
    EXPECT_EQ(0, Ingest({}).mExitCode);
    EXPECT_FALSE(IsWritable(Disk() / "protected"));
}
