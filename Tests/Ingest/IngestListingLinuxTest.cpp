// Tests a source whose listing fails midway: entries that cannot be listed must be reported, never omitted silently.
#include "IngestTestSupport.h"

#include <Failure.h>
#include <IngestListing.h>
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

    orl::IngestListing List() const
    {
        const orl::IngestRoots roots = orl::MakeRoots(Card().string(), Disk().string());
        return orl::ListSource(roots, [] { return false; });
    }

    /// Creates a chain of folders with the same name, with a file "f" in the last, by entering each folder.
    void MakeDeep(const std::string& inName, int inDepth) const
    {
        const fs::path earlier = fs::current_path();
        fs::current_path(Card());
        for (int i = 0; i < inDepth; ++i) {
            fs::create_directory(inName);
            fs::current_path(inName);
        }
        WriteFile("f", "bottom");
        fs::current_path(earlier);
    }

    static std::string ReadDeep(const fs::path& inRoot, const std::string& inName, int inDepth)
    {
        const fs::path earlier = fs::current_path();
        fs::current_path(inRoot);
        for (int i = 0; i < inDepth; ++i) {
            fs::current_path(inName);
        }
        const std::string contents = ReadFile("f");
        fs::current_path(earlier);
        return contents;
    }

    TempFolder mFolder;
};

// Returns whether all files are listed, or the listing reports an unreadable entry.
bool IsCompleteOrReported(const orl::IngestListing& inListing, std::size_t inFiles)
{
    const bool isReported = !inListing.mTroubles.empty() && inListing.mTroubles[0].mExitCode == orl::kExitUnreadable;
    return isReported || inListing.mFiles.size() == inFiles;
}

// While an instance exists, the listing fails at call number inNumber.
class BrokenListing
{
public:
    explicit BrokenListing(unsigned inNumber)
    {
        sLeft = inNumber;
        sCount = 0;
        orl::sIngestCalls.mReadDir = [](DIR* inFolder) -> dirent* {
            ++sCount;
            if (--sLeft == 0) {
                errno = EIO;
                return nullptr;
            }
            return sSystem.mReadDir(inFolder);
        };
    }
    ~BrokenListing() { orl::sIngestCalls = sSystem; }
    BrokenListing(const BrokenListing&) = delete;
    BrokenListing& operator=(const BrokenListing&) = delete;

    unsigned Count() const { return sCount; }

private:
    static inline const orl::IngestCalls sSystem = orl::sIngestCalls;
    static inline unsigned sLeft = 0;
    static inline unsigned sCount = 0;
};

} // namespace

TEST_F(IngestListing, AListingThatBreaksOffAtAnyCall_IsTold)
{
    constexpr std::size_t kFiles = 50;
    mFolder.MakeFolder("card/d");
    for (std::size_t i = 0; i < kFiles; ++i) {
        WriteFile(Card() / "d" / ("file" + std::to_string(i)), "");
    }
    unsigned undisturbed = 0;
    {
        const BrokenListing listing(0);
        EXPECT_EQ(kFiles, List().mFiles.size());
        undisturbed = listing.Count();
    }
    EXPECT_LE(kFiles, undisturbed);
    for (unsigned number = 1; number <= undisturbed; ++number) {
        SCOPED_TRACE("number " + std::to_string(number) + " of " + std::to_string(undisturbed));
        const BrokenListing broken(number);
        const orl::IngestListing listing = List();
        EXPECT_TRUE(IsCompleteOrReported(listing, kFiles)) << listing.mFiles.size();
        EXPECT_EQ(1u, listing.mTroubles.size());
    }
}

TEST_F(IngestListing, ATreeDeeperThanDescriptorsReach_IsBroughtIn)
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
    EXPECT_EQ(0, WEXITSTATUS(status)) << ReadFile(errors);
    ExpectIngested(ReadTree(Card()), Disk());
}

// A link to an ancestor folder adds no files to the listing and is not reported.
TEST_F(IngestListing, LinksThatLeadBack_AreNoTrouble)
{
    mFolder.MakeFolder("card/d/e");
    WriteFile(Card() / "d/e/f", "F");
    fs::create_directory_symlink("../..", Card() / "d/e/loop");
    fs::create_directory_symlink("..", Card() / "d/up");
    const orl::IngestListing listing = List();
    EXPECT_TRUE(listing.mTroubles.empty()) << listing.mTroubles[0].mText;
    EXPECT_EQ(1u, listing.mFiles.size());
}

// A link to a folder elsewhere is not a loop, so the folder's contents belong to the card.
TEST_F(IngestListing, ALinkThatCannotBeListed_IsTold)
{
    mFolder.MakeFolder("elsewhere");
    WriteFile(mFolder.Host() / "elsewhere/f", "F");
    fs::create_directory_symlink("../elsewhere", Card() / "link");
    ASSERT_EQ(1u, List().mFiles.size());
    static const orl::IngestCalls system = orl::sIngestCalls;
    orl::sIngestCalls.mOpenAt = [](int inFolder, const char* inName, int inFlags) {
        if (std::string(inName) == "link") {
            errno = EACCES;
            return -1;
        }
        return system.mOpenAt(inFolder, inName, inFlags);
    };
    const orl::IngestListing listing = List();
    orl::sIngestCalls = system;
    ASSERT_EQ(1u, listing.mTroubles.size());
    EXPECT_EQ(orl::kExitUnreadable, listing.mTroubles[0].mExitCode);
    EXPECT_NE(std::string::npos, listing.mTroubles[0].mText.find("link\" completely: access denied"))
        << listing.mTroubles[0].mText;
}

// Lists a path that is longer than the 4095 bytes that one system call accepts.
TEST_F(IngestListing, APathLongerThanTheSystemTakes_IsBroughtIn)
{
    const std::string name(250, 'n');
    MakeDeep(name, 20);
    const ProcessResult result = RunBesideThisProgram("orl", {"ingest", Card().string(), Disk().string()});
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    const std::string manifest = ReadFile(Disk() / kManifest);
    EXPECT_EQ(64u + 2 + 20 * 251 + 1 + 1, manifest.size());
    EXPECT_EQ(ReferenceSha256("bottom"), manifest.substr(0, 64));
    EXPECT_EQ("bottom", ReadDeep(Disk(), name, 20));
}

TEST_F(IngestListing, ASubfolderThatVanishes_CostsItsOwnFilesAlone)
{
    WriteFile(Card() / "a", "A");
    mFolder.MakeFolder("card/d");
    static fs::path sFolder;
    sFolder = Card() / "d";
    static const orl::IngestCalls system = orl::sIngestCalls;
    orl::sIngestCalls.mOpenAt = [](int inFolder, const char* inName, int inFlags) {
        if (std::string(inName) == "d") {
            fs::remove_all(sFolder);
        }
        return system.mOpenAt(inFolder, inName, inFlags);
    };
    const orl::IngestListing listing = List();
    orl::sIngestCalls = system;
    ASSERT_EQ(1u, listing.mTroubles.size());
    EXPECT_EQ(orl::kExitUnreadable, listing.mTroubles[0].mExitCode);
    EXPECT_EQ(1u, listing.mFiles.size());
}
