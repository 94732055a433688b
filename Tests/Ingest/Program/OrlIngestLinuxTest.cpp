// Runs orl ingest in conditions that only Linux has: unusual names, permissions, failing calls, and coreutils as the
// verifier.
#include "IngestRunSupport.h"

#include <FaultySystemCallsLinux.h>
#include <ProcessRunner.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using namespace ORLTest;

namespace {

namespace fs = std::filesystem;

class OrlIngestOnLinux : public testing::Test
{
protected:
    OrlIngestOnLinux() { mFolder.MakeFolder("card"); }

    fs::path Card() const { return mFolder.Host() / "card"; }
    fs::path Disk() const { return mFolder.Host() / "disk"; }
    ProcessResult Ingest() const { return RunBesideThisProgram("orl", {"ingest", Card().string(), Disk().string()}); }

    orl::IngestOutcome RunHere() const { return IngestHere(Card(), Disk()); }

    /// Expects that the check for free space refuses the destination with this message.
    void ExpectNoRoom(const char* inText) const
    {
        try {
            RunHere();
            ADD_FAILURE() << "the destination has no room";
        } catch (const orl::Failure& failure) {
            EXPECT_EQ(orl::kExitNoSpace, failure.ExitCode());
            EXPECT_NE(std::string::npos, std::string(failure.what()).find(inText)) << failure.what();
        }
    }

    TempFolder mFolder;
};

bool IsOneLineWith(const std::string& inErrors, const std::string& inText)
{
    return inErrors.find('\n') == inErrors.size() - 1 && inErrors.find(inText) != std::string::npos;
}

} // namespace

// Ingests names with every byte that a name may contain; coreutils verify the manifest.
TEST_F(OrlIngestOnLinux, AwkwardNames_AreVerifiedByCoreutils)
{
    for (int byte = 1; byte < 256; ++byte) {
        if (byte != '/') {
            WriteFile(Card().string() + "/n" + static_cast<char>(byte), std::string(1, static_cast<char>(byte)));
        }
    }
    const ProcessResult result = Ingest();
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    const std::string check =
        "cd '" + Disk().string() + "' && test $(sha256sum -c ingest.sha256 | grep -c ': OK$') = 254";
    EXPECT_EQ(0, std::system(check.c_str()));
    FileTree disk = ReadTree(Disk());
    disk.erase(kManifest);
    EXPECT_EQ(ReadTree(Card()), disk);
    const ProcessResult again = Ingest();
    EXPECT_NE(std::string::npos, again.mOutput.find("254 verified before")) << again.mOutput;
}

// On Linux a backslash is part of a name, even at its start.
TEST_F(OrlIngestOnLinux, ANameThatBeginsWithABackslash_IsKept)
{
    WriteFile(Card() / "x", "X");
    WriteFile(Card() / "\\x", "other");
    const ProcessResult result = Ingest();
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    const std::string check =
        "cd '" + Disk().string() + "' && test $(sha256sum -c ingest.sha256 | grep -c ': OK$') = 2";
    EXPECT_EQ(0, std::system(check.c_str()));
    EXPECT_EQ("X", ReadFile(Disk() / "x"));
    EXPECT_EQ("other", ReadFile(Disk() / "\\x"));
}

TEST_F(OrlIngestOnLinux, APipe_IsToldAndNotWaitedFor)
{
    WriteFile(Card() / "a", "A");
    ASSERT_EQ(0, ::mkfifo((Card() / "pipe").c_str(), 0600));
    const ProcessResult result = Ingest();
    EXPECT_EQ(4, result.mExitCode);
    EXPECT_TRUE(IsOneLineWith(result.mErrors, "\"pipe\": it is not a regular file")) << result.mErrors;
    EXPECT_EQ("A", ReadFile(Disk() / "a"));
}

TEST_F(OrlIngestOnLinux, ABrokenLinkAndALoop_AreToldAndWalkedOnce)
{
    WriteFile(Card() / "a", "A");
    fs::create_symlink("nowhere", Card() / "broken");
    fs::create_directory_symlink(".", Card() / "loop");
    const ProcessResult result = Ingest();
    EXPECT_EQ(4, result.mExitCode);
    EXPECT_TRUE(IsOneLineWith(result.mErrors, "\"broken\"")) << result.mErrors;
    EXPECT_EQ("A", ReadFile(Disk() / "a"));
    EXPECT_TRUE(fs::is_empty(Disk() / "loop"));
}

TEST_F(OrlIngestOnLinux, UnreadableFilesAndFolders_HaveALineEach)
{
    WriteFile(Card() / "a", "A");
    WriteFile(Card() / "shut", "S");
    mFolder.MakeFolder("card/closed");
    WriteFile(Card() / "closed/f", "F");
    ::chmod((Card() / "shut").c_str(), 0);
    ::chmod((Card() / "closed").c_str(), 0);
    ::chmod(mFolder.Host().c_str(), 0777);
    const std::string as = ::geteuid() == 0 ? "setpriv --reuid=65534 --regid=65534 --clear-groups " : "";
    const std::string errors = (mFolder.Host() / "errors").string();
    const int status = std::system((as + "'" + FolderOfThisProgram() + "orl' ingest '" + Card().string() + "' '"
                                    + Disk().string() + "' >/dev/null 2>'" + errors + "'")
                                       .c_str());
    ::chmod((Card() / "closed").c_str(), 0700);
    ASSERT_TRUE(WIFEXITED(status));
    const std::string said = ReadFile(errors);
    EXPECT_EQ(4, WEXITSTATUS(status)) << said;
    EXPECT_EQ(2, std::count(said.begin(), said.end(), '\n')) << said;
    EXPECT_NE(std::string::npos, said.find("cannot list the folder")) << said;
    EXPECT_NE(std::string::npos, said.find("cannot read \"shut\": access denied")) << said;
    EXPECT_EQ("A", ReadFile(Disk() / "a"));
}

TEST_F(OrlIngestOnLinux, ADiskThatFillsUp_KeepsWhatIsVerified)
{
    ORL::Foundation::Initialize();
    for (const char* name : {"a", "b", "c"}) {
        WriteFile(Card() / name, std::string(1000, *name));
    }
    orl::IngestOutcome outcome;
    {
        FaultySystemCalls calls;
        calls.Fail(FaultySystemCalls::kPWrite, 5, ENOSPC); // the earlier writes: the record twice, "a", the record
        outcome = RunHere();
    }
    ASSERT_EQ(1u, outcome.mTroubles.size());
    EXPECT_EQ(orl::kExitNoSpace, outcome.mTroubles[0].mExitCode);
    EXPECT_NE(std::string::npos, outcome.mTroubles[0].mText.find("is full"));
    ExpectIngested({{"a", std::string(1000, 'a')}}, Disk());
    ORL::Foundation::Terminate();
}

TEST_F(OrlIngestOnLinux, AFileThatBreaksOff_IsToldAndTheOthersGoOn)
{
    ORL::Foundation::Initialize();
    for (const char* name : {"a", "b"}) {
        WriteFile(Card() / name, std::string(1000, *name));
    }
    orl::IngestOutcome outcome;
    {
        FaultySystemCalls calls;
        calls.Fail(FaultySystemCalls::kPRead, 2, EIO); // the first read is that of the record
        outcome = RunHere();
    }
    ASSERT_EQ(1u, outcome.mTroubles.size());
    EXPECT_EQ(orl::kExitUnreadable, outcome.mTroubles[0].mExitCode) << outcome.mTroubles[0].mText;
    ExpectIngested({{"b", std::string(1000, 'b')}}, Disk());
    ORL::Foundation::Terminate();
}

TEST_F(OrlIngestOnLinux, TooLittleRoom_IsToldBeforeAnythingIsDone)
{
    ORL::Foundation::Initialize();
    WriteFile(Card() / "a", std::string(100000, 'a'));
    {
        FaultySystemCalls calls;
        calls.Underlying().mStatVfs = [](const char*, struct statvfs* outStatus) {
            *outStatus = {};
            outStatus->f_frsize = 4096;
            outStatus->f_bavail = 10;
            return 0;
        };
        ExpectNoRoom("has 41.0 kB free");
    }
    EXPECT_FALSE(fs::exists(Disk()));
    ORL::Foundation::Terminate();
}

// There is space for one file but not for two: the first destination named gets it.
TEST_F(OrlIngestOnLinux, TwoDestinationsOnOneVolume_ShareItsRoom)
{
    ORL::Foundation::Initialize();
    WriteFile(Card() / "a", std::string(100000, 'a'));
    std::vector<orl::IngestDestination> destinations =
        orl::MakeDestinations(Card().string(), {Disk().string(), Disk().string() + "2"});
    orl::IngestWatcher watcher;
    watcher.mIsStopped = [] { return false; };
    watcher.mShow = [](std::uint64_t, std::size_t) {};
    {
        FaultySystemCalls calls;
        calls.Underlying().mStatVfs = [](const char*, struct statvfs* outStatus) {
            *outStatus = {};
            outStatus->f_frsize = 4096;
            outStatus->f_bavail = 40;
            return 0;
        };
        orl::Ingest(destinations, kManifest, {}, watcher);
    }
    EXPECT_TRUE(destinations[0].mOutcome.mTroubles.empty());
    ASSERT_EQ(1u, destinations[1].mOutcome.mTroubles.size());
    EXPECT_EQ(orl::kExitNoSpace, destinations[1].mOutcome.mTroubles[0].mExitCode);
    EXPECT_FALSE(fs::exists(Disk().string() + "2"));
    ORL::Foundation::Terminate();
}

TEST_F(OrlIngestOnLinux, ATroubleOfTheSource_IsToldOnceForAllDestinations)
{
    WriteFile(Card() / "a", "A");
    ASSERT_EQ(0, ::mkfifo((Card() / "pipe").c_str(), 0600));
    const ProcessResult result =
        RunBesideThisProgram("orl", {"ingest", Card().string(), Disk().string(), Disk().string() + "2"});
    EXPECT_EQ(4, result.mExitCode);
    EXPECT_EQ("orl: ingest: cannot read \"pipe\": it is not a regular file\n", result.mErrors);
    EXPECT_EQ("A", ReadFile(Disk() / "a"));
    EXPECT_EQ("A", ReadFile(Disk().string() + "2/a"));
}

TEST_F(OrlIngestOnLinux, AFileTooLargeForTheFileSystem_IsToldBeforeAnythingIsDone)
{
    ORL::Foundation::Initialize();
    WriteFile(Card() / "a", "");
    fs::resize_file(Card() / "a", std::uintmax_t{5} << 30);
    {
        FaultySystemCalls calls;
        calls.Underlying().mStatFs = [](const char*, struct statfs* outStatus) {
            *outStatus = {};
            outStatus->f_type = 0x4d44; // the magic number of FAT file systems
            return 0;
        };
        ExpectNoRoom("limited to 4.3 GB");
    }
    ORL::Foundation::Terminate();
}

TEST_F(OrlIngestOnLinux, NamesThatDifferOnlyInCase_AreShownInTheDryRun)
{
    WriteFile(Card() / "Clip", "1");
    WriteFile(Card() / "CLIP", "2");
    WriteFile(Card() / "other", "3");
    const std::vector<std::string> words = {"ingest", Card().string(), Disk().string(), "--dry-run"};
    EXPECT_NE(
        std::string::npos,
        RunBesideThisProgram("orl", words).mOutput.find("one file on a volume that ignores case: \"CLIP\" \"Clip\"\n"));
    std::vector<std::string> asJson = words;
    asJson.push_back("--json");
    EXPECT_NE(std::string::npos,
              RunBesideThisProgram("orl", asJson)
                  .mOutput.find("\n{\"namesAlike\": [{\"file\": \"CLIP\"}, {\"file\": \"Clip\"}]}\n"));
}

TEST_F(OrlIngestOnLinux, ARunThatWritesNoManifest_NamesNone)
{
    WriteFile(Card() / "a", "of the card");
    fs::create_directory(Disk());
    WriteFile(Disk() / "a", "another");
    const ProcessResult result = Ingest();
    EXPECT_EQ(orl::kExitNameConflict, result.mExitCode);
    EXPECT_EQ(std::string::npos, result.mOutput.find("The manifest is")) << result.mOutput;
    EXPECT_FALSE(fs::exists(Disk() / kManifest));
}

TEST_F(OrlIngestOnLinux, AnAwkwardDestination_CannotControlTheTerminal)
{
    WriteFile(Card() / "a", "A");
    const std::string disk = mFolder.Host().string() + "/d\033]0;x\a\nSafe to erase";
    const ProcessResult result = RunBesideThisProgram("orl", {"ingest", Card().string(), disk});
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    EXPECT_EQ(std::string::npos, result.mOutput.find_first_of("\033\a")) << result.mOutput;
    EXPECT_EQ(std::string::npos, result.mOutput.find("\nSafe to erase\"")) << result.mOutput;
}
