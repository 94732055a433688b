// A source whose listing breaks off: what is not listed is told, never left out in silence.
#include <IngestTestSupport.h>

#include <Failure.h>
#include <FaultySystemCallsLinux.h>
#include <IngestPlan.h>
#include <IngestSystem.h>
#include <LinuxIngestCalls.h>
#include <ORLFoundation.h>
#include <ProcessRunner.h>
#include <Text.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>

using namespace ORLTest;

namespace {

namespace fs = std::filesystem;

class IngestListing : public testing::Test
{
protected:
    IngestListing()
    {
        ORL::Foundation::Initialize();
        mFolder.MakeFolder("card");
    }
    ~IngestListing() override { ORL::Foundation::Terminate(); }

    fs::path Card() const { return mFolder.Host() / "card"; }
    fs::path Disk() const { return mFolder.Host() / "disk"; }

    orl::IngestPlan Plan() const
    {
        const orl::IngestRoots roots = orl::MakeRoots(Card().string(), Disk().string());
        const orl::IngestManifest manifest(roots.mDestination + orl::ToUTF16("\\ingest.sha256"));
        return orl::MakePlan(roots, kManifest, manifest, false);
    }

    TempFolder mFolder;
};

// All files have their place in the plan, or there is a line for the user.
bool IsWholeOrTold(const orl::IngestPlan& inPlan, std::size_t inFiles)
{
    const bool isTold = !inPlan.mTroubles.empty() && inPlan.mTroubles[0].mExitCode == orl::kExitUnreadable;
    return isTold || inPlan.mItems.size() == inFiles;
}

} // namespace

// More files than one answer of the system has room for.
TEST_F(IngestListing, AListingThatBreaksOffAtAnyCall_IsTold)
{
    constexpr std::size_t kFiles = 2000;
    mFolder.MakeFolder("card/d");
    for (std::size_t i = 0; i < kFiles; ++i) {
        WriteFile(Card() / "d" / ("file" + std::to_string(i)), "");
    }
    unsigned undisturbed = 0;
    {
        const FaultySystemCalls calls;
        EXPECT_EQ(kFiles, Plan().mItems.size());
        undisturbed = calls.Count(FaultySystemCalls::kGetDents);
    }
    unsigned told = 0;
    for (unsigned number = 1; number <= undisturbed; ++number) {
        SCOPED_TRACE("number " + std::to_string(number) + " of " + std::to_string(undisturbed));
        FaultySystemCalls calls;
        calls.Fail(FaultySystemCalls::kGetDents, number, EIO);
        const orl::IngestPlan plan = Plan();
        EXPECT_TRUE(IsWholeOrTold(plan, kFiles)) << plan.mItems.size();
        told += plan.mTroubles.empty() ? 0 : 1;
    }
    EXPECT_LT(3u, told);
}

TEST_F(IngestListing, ATreeDeeperThanDescriptorsReach_IsTold)
{
    fs::path folder = Card();
    for (int i = 0; i < 100; ++i) {
        folder /= "f";
    }
    fs::create_directories(folder);
    WriteFile(folder / "bottom", "B");
    const std::string errors = (mFolder.Host() / "errors").string();
    const int status = std::system(("ulimit -Sn 64; '" + FolderOfThisProgram() + "orl' ingest '" + Card().string()
                                    + "' '" + Disk().string() + "' >/dev/null 2>'" + errors + "'")
                                       .c_str());
    ASSERT_TRUE(WIFEXITED(status));
    const std::string said = ReadFile(errors);
    EXPECT_EQ(4, WEXITSTATUS(status)) << said;
    EXPECT_NE(std::string::npos, said.find("cannot list the folder")) << said;
    EXPECT_EQ(1, std::count(said.begin(), said.end(), '\n')) << said;
}

// A link back to a folder above it is walked once, also when it leads above the source.
TEST_F(IngestListing, LinksThatLeadBack_AreNoTrouble)
{
    mFolder.MakeFolder("card/d/e");
    WriteFile(Card() / "d/e/f", "F");
    fs::create_directory_symlink("../..", Card() / "d/e/loop");
    fs::create_directory_symlink("..", Card() / "d/up");
    const orl::IngestPlan plan = Plan();
    EXPECT_TRUE(plan.mTroubles.empty()) << plan.mTroubles[0].mText;
    EXPECT_EQ(1u, plan.mItems.size());
}

// A link to a folder elsewhere is no link back, and what it holds belongs to the card.
TEST_F(IngestListing, ALinkThatCannotBeListed_IsTold)
{
    mFolder.MakeFolder("elsewhere");
    WriteFile(mFolder.Host() / "elsewhere/f", "F");
    fs::create_directory_symlink("../elsewhere", Card() / "link");
    ASSERT_EQ(1u, Plan().mItems.size());
    FaultySystemCalls calls;
    calls.Underneath().mOpen = [](const char* inPath, int inFlags, mode_t inMode) {
        const std::string path(inPath);
        if (path.size() > 5 && path.compare(path.size() - 5, 5, "/link") == 0) {
            errno = EMFILE;
            return -1;
        }
        return ORL::Linux::kSystem.mOpen(inPath, inFlags, inMode);
    };
    const orl::IngestPlan plan = Plan();
    ASSERT_EQ(1u, plan.mTroubles.size());
    EXPECT_EQ(orl::kExitUnreadable, plan.mTroubles[0].mExitCode);
    EXPECT_NE(std::string::npos, plan.mTroubles[0].mText.find("link")) << plan.mTroubles[0].mText;
}

TEST_F(IngestListing, ASecondLookThatFails_IsTold)
{
    WriteFile(Card() / "a", "A");
    mFolder.MakeFolder("card/d");
    const orl::IngestCalls system = orl::sIngestCalls;
    orl::sIngestCalls.mReadDir = [](DIR*) -> dirent* {
        errno = EIO;
        return nullptr;
    };
    const orl::IngestPlan plan = Plan();
    orl::sIngestCalls = system;
    EXPECT_EQ(2u, plan.mTroubles.size());
    EXPECT_EQ(1u, plan.mItems.size()) << "what is listed is brought in all the same";
}
