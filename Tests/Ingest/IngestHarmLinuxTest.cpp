// Tests that an ingest causes no damage through links, mounts, case-insensitive volumes, or misleading system calls.
#include "IngestRunSupport.h"

#include <FaultySystemCallsLinux.h>
#include <IngestPreview.h>
#include <LinuxIngestCalls.h>
#include <ProcessRunner.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using namespace ORLTest;
using orl::IngestOutcome;
using orl::IngestStep;

namespace {

namespace fs = std::filesystem;

class IngestHarmOnLinux : public IngestRun
{
protected:
    ~IngestHarmOnLinux() override { orl::sIngestCalls = sSystem; }

    ProcessResult Orl() const { return RunBesideThisProgram("orl", {"ingest", Card().string(), Disk().string()}); }

    /// Runs shell commands in a private mount namespace, as root of a user namespace if the user is not root. Returns
    /// the exit code of the commands, or -1 if the system forbids the namespace. Sets "$orl", "$card" and "$disk".
    int InOwnMounts(const std::string& inCommands) const
    {
        const std::string unshare = ::geteuid() == 0 ? "unshare -m" : "unshare -rm";
        if (std::system((unshare + " mount -t tmpfs none /tmp 2>/dev/null").c_str()) != 0) {
            return -1;
        }
        WriteFile(mFolder.Host() / "script", "orl='" + FolderOfThisProgram() + "orl'\ncard='" + Card().string()
                                                 + "'\ndisk='" + Disk().string() + "'\n" + inCommands);
        const int status = std::system((unshare + " sh '" + (mFolder.Host() / "script").string() + "' >'"
                                        + (mFolder.Host() / "said").string() + "' 2>&1")
                                           .c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -2;
    }

    std::string Said() const { return ReadFile(mFolder.Host() / "said"); }

    static inline const orl::IngestCalls sSystem = orl::sIngestCalls;
};

std::string InLowerCase(std::string inText)
{
    std::transform(inText.begin(), inText.end(), inText.begin(),
                   [](unsigned char inByte) { return std::tolower(inByte); });
    return inText;
}

} // namespace

TEST_F(IngestHarmOnLinux, PlantedLinks_AreNotFollowed)
{
    const fs::path target = mFolder.Host() / "target";
    for (const std::string name : {"ingest.sha256", kRecord, "a"}) {
        SCOPED_TRACE(name);
        fs::remove_all(Disk());
        fs::create_directories(Disk());
        WriteFile(target, "somebody's");
        fs::create_symlink(target, Disk() / name);
        EXPECT_EQ(name == "a" ? 8 : 1, Orl().mExitCode);
        EXPECT_EQ("somebody's", ReadFile(target));
        EXPECT_TRUE(fs::is_symlink(Disk() / name));
        fs::remove(target);
        EXPECT_EQ(name == "a" ? 8 : 1, Orl().mExitCode) << "a link that leads nowhere";
        EXPECT_FALSE(fs::exists(target));
    }
}

TEST_F(IngestHarmOnLinux, AFolderThatLeadsIntoTheSource_IsNotWrittenTo)
{
    mFolder.MakeFolder("card/d");
    WriteFile(Card() / "d/f", "F");
    fs::create_directories(Disk());
    fs::create_directory_symlink(Card() / "d", Disk() / "d");
    const FileTree card = ReadTree(Card());
    const ProcessResult result = Orl();
    EXPECT_EQ(8, result.mExitCode);
    EXPECT_NE(std::string::npos, result.mErrors.find("leads into the source")) << result.mErrors;
    EXPECT_EQ(card, ReadTree(Card()));
    EXPECT_EQ(3u, ReadManifest(Disk() / kManifest).size());
}

TEST_F(IngestHarmOnLinux, TheSourcesOwnFileAtTheDestination_IsNoCopy)
{
    fs::create_directories(Disk());
    fs::create_hard_link(Card() / "a", Disk() / "a");
    const ProcessResult result = Orl();
    EXPECT_EQ(8, result.mExitCode);
    EXPECT_NE(std::string::npos, result.mErrors.find("the source file itself")) << result.mErrors;
    EXPECT_EQ(0u, ReadManifest(Disk() / kManifest).count("a"));
}

TEST_F(IngestHarmOnLinux, ADestinationThatIsMountedFromInsideTheSource_IsRefused)
{
    mFolder.MakeFolder("card/d");
    fs::create_directories(Disk());
    const FileTree card = ReadTree(Card());
    const int code = InOwnMounts("mount --bind \"$card/d\" \"$disk\" && \"$orl\" ingest \"$card\" \"$disk\"");
    if (code == -1) {
        GTEST_SKIP() << "nothing can be mounted here, not even in a namespace";
    }
    EXPECT_EQ(1, code) << Said();
    EXPECT_NE(std::string::npos, Said().find("lies inside the source")) << Said();
    EXPECT_EQ(card, ReadTree(Card()));
}

TEST_F(IngestHarmOnLinux, AVolumeBelowTheDestination_IsMeasuredForItself)
{
    mFolder.MakeFolder("card/d");
    WriteFile(Card() / "d/f", std::string(3000000, 'f'));
    fs::create_directories(Disk() / "d");
    const int code = InOwnMounts("mount -t tmpfs -o size=1m none \"$disk/d\" && \"$orl\" ingest \"$card\" \"$disk\"");
    if (code == -1) {
        GTEST_SKIP() << "nothing can be mounted here, not even in a namespace";
    }
    EXPECT_EQ(3, code) << Said();
    EXPECT_NE(std::string::npos, Said().find("disk/d\" has ")) << Said();
    EXPECT_TRUE(fs::is_empty(Disk() / "d"));
    EXPECT_FALSE(fs::exists(Disk() / "a")) << "nothing was begun";
}

// Simulates a folder on another volume by changing the result of fstatat.
TEST_F(IngestHarmOnLinux, EachVolumeBelowTheDestination_IsFlushed)
{
    mFolder.MakeFolder("card/d");
    for (int i = 0; i < 70; ++i) {
        WriteFile(Card() / "d" / ("f" + std::to_string(i)), "F");
    }
    fs::create_directories(Disk() / "d");
    static ino_t sFolder;
    static std::set<ino_t> sFlushed;
    struct stat status;
    ASSERT_EQ(0, ::stat((Disk() / "d").c_str(), &status));
    sFolder = status.st_ino;
    sFlushed.clear();
    orl::sIngestCalls.mFStatAt = [](int inFolder, const char* inName, struct stat* outStatus, int inFlags) {
        const int answer = sSystem.mFStatAt(inFolder, inName, outStatus, inFlags);
        outStatus->st_dev += answer == 0 && outStatus->st_ino == sFolder ? 1000 : 0;
        return answer;
    };
    orl::sIngestCalls.mSyncFs = [](int inFile) {
        struct stat flushed;
        ::fstat(inFile, &flushed);
        sFlushed.insert(flushed.st_ino);
        return 0;
    };
    EXPECT_TRUE(Run({}).mTroubles.empty());
    EXPECT_EQ(2u, sFlushed.size());
    EXPECT_EQ(1u, sFlushed.count(sFolder));
}

TEST_F(IngestHarmOnLinux, ADestinationThatIsMade_IsSyncedInTheFoldersAbove)
{
    static std::set<std::string> sSynced;
    sSynced.clear();
    orl::sIngestCalls.mFSync = [](int inFile) {
        sSynced.insert(fs::read_symlink("/proc/self/fd/" + std::to_string(inFile)).string());
        return sSystem.mFSync(inFile);
    };
    const fs::path disk = mFolder.Host() / "x/y/z";
    EXPECT_TRUE(IngestHere(Card(), disk).mTroubles.empty());
    for (const fs::path& folder : {mFolder.Host(), mFolder.Host() / "x", mFolder.Host() / "x/y", disk}) {
        EXPECT_EQ(1u, sSynced.count(fs::canonical(folder).string())) << folder;
    }
}

// Simulates a volume that treats "CLIP" and "Clip" as one name: the calls convert names to lower case.
TEST_F(IngestHarmOnLinux, NamesThatTheVolumeTakesForOne_AreFoundInThePlan)
{
    WriteFile(Card() / "Clip", "one");
    WriteFile(Card() / "CLIP", "another one");
    orl::sIngestCalls.mMakeDirAt = [](int inFolder, const char* inName) {
        return sSystem.mMakeDirAt(inFolder, InLowerCase(inName).c_str());
    };
    orl::sIngestCalls.mUnlinkAt = [](int inFolder, const char* inName, int inFlags) {
        return sSystem.mUnlinkAt(inFolder, InLowerCase(inName).c_str(), inFlags);
    };
    const IngestOutcome outcome = Run({});
    ASSERT_EQ(1u, outcome.mTroubles.size());
    EXPECT_EQ(orl::kExitNameConflict, outcome.mTroubles[0].mExitCode) << outcome.mTroubles[0].mText;
    EXPECT_NE(std::string::npos, outcome.mTroubles[0].mText.find("\"Clip\"")) << outcome.mTroubles[0].mText;
    EXPECT_EQ("another one", ReadFile(Disk() / "CLIP"));
    EXPECT_FALSE(fs::exists(Disk() / "Clip"));
    EXPECT_EQ(4u, ReadManifest(Disk() / kManifest).size());
    EXPECT_EQ(5u, ReadTree(Disk()).size()) << "nothing of the question is left";
}

TEST_F(IngestHarmOnLinux, NamesThatTheVolumeTellsApart_AreAllBroughtIn)
{
    mFolder.MakeFolder("card/d");
    mFolder.MakeFolder("card/D");
    for (const char* name : {"Clip", "CLIP", "d/x", "D/x", "D/X"}) {
        WriteFile(Card() / name, name);
    }
    EXPECT_TRUE(Run({}).mTroubles.empty());
    EXPECT_TRUE(Run({}).mTroubles.empty());
    ExpectIngested(ReadTree(Card()), Disk());
}

// Simulates two names that collide although they differ after case folding; detected only when the second file is
// renamed.
TEST_F(IngestHarmOnLinux, ANameThatAnotherFileOfTheRunHasTaken_IsNotOverwritten)
{
    const IngestOutcome outcome =
        Run(Once(IngestStep::kVerified, "b", [this] { fs::copy_file(Disk() / "a", Disk() / "b"); }), true);
    ASSERT_EQ(1u, outcome.mTroubles.size());
    EXPECT_EQ(orl::kExitNameConflict, outcome.mTroubles[0].mExitCode);
    EXPECT_EQ(mCard["a"], ReadFile(Disk() / "b"))
        << "although --replace was given: it was not there when the plan was made";
}

// On a file system that cannot rename without overwriting, the run creates a hard link instead.
TEST_F(IngestHarmOnLinux, AMoveWithoutTheSystemsHelp_OverwritesNothing)
{
    orl::sIngestCalls.mRenameAt = [](int inFolder, const char* inFrom, const char* inTo, unsigned inFlags) {
        errno = EINVAL;
        return inFlags != 0 ? -1 : sSystem.mRenameAt(inFolder, inFrom, inTo, inFlags);
    };
    for (const int error : {0, EPERM}) {
        static int sError;
        sError = error;
        orl::sIngestCalls.mLinkAt = [](int inFolder, const char* inFrom, const char* inTo) {
            errno = sError;
            return sError == 0 ? sSystem.mLinkAt(inFolder, inFrom, inTo) : -1;
        };
        fs::remove_all(Disk());
        const IngestOutcome outcome =
            Run(Once(IngestStep::kVerified, "b", [this] { WriteFile(Disk() / "b", "somebody's"); }));
        ExpectTrouble(outcome, orl::kExitNameConflict, "\"b\"");
        EXPECT_EQ("somebody's", ReadFile(Disk() / "b"));
        EXPECT_EQ(mCard["a"], ReadFile(Disk() / "a"));
        EXPECT_EQ(4u, ReadTree(Disk()).size());
    }
}

TEST_F(IngestHarmOnLinux, LeftoversOfAKilledRun_CountAsFreeRoom)
{
    fs::create_directories(Disk());
    WriteFile(Disk() / kUnfinished, std::string(100000, 'u'));
    WriteFile(Disk() / kRecord, RecordOf("T " + std::string(kUnfinished) + "\n"));
    static fs::path sUnfinished;
    sUnfinished = Disk() / kUnfinished;
    FaultySystemCalls calls;
    calls.Underlying().mStatVfs = [](const char*, struct statvfs* outStatus) {
        *outStatus = {};
        outStatus->f_frsize = 4096;
        outStatus->f_bavail = fs::exists(sUnfinished) ? 10 : 10000;
        return 0;
    };
    EXPECT_TRUE(Run({}).mTroubles.empty());
    ExpectInPlace("abc");
}

// The manifest's last line lacks its line break, which an accepted run would add.
TEST_F(IngestHarmOnLinux, ARunThatIsRefusedForRoom_ChangesNothing)
{
    fs::create_directories(Disk());
    WriteFile(Disk() / kManifest, std::string(64, 'a') + "  b\n" + std::string(64, 'a') + "  somebody's clip");
    const FileTree disk = ReadTree(Disk());
    FaultySystemCalls calls;
    calls.Underlying().mStatVfs = [](const char*, struct statvfs* outStatus) {
        *outStatus = {};
        outStatus->f_frsize = 4096;
        outStatus->f_bavail = 10;
        return 0;
    };
    EXPECT_THROW(Run({}), orl::Failure);
    EXPECT_EQ(disk, ReadTree(Disk()));
}

TEST_F(IngestHarmOnLinux, ManyExchanges_WriteTheManifestAnewOnce)
{
    for (int i = 0; i < 40; ++i) {
        WriteFile(Card() / ("f" + std::to_string(i)), "earlier");
    }
    ASSERT_TRUE(Run({}).mTroubles.empty());
    for (int i = 0; i < 40; ++i) {
        WriteFile(Card() / ("f" + std::to_string(i)), "the later contents");
    }
    FaultySystemCalls calls;
    EXPECT_TRUE(Run({}, true).mTroubles.empty());
    EXPECT_EQ(41u, calls.Count(FaultySystemCalls::kRename)) << "each file, and the manifest";
    ExpectIngested(ReadTree(Card()), Disk());
}

TEST_F(IngestHarmOnLinux, AHole_StaysAHole)
{
    fs::resize_file(Card() / "a", std::uintmax_t{6} << 20);
    std::fstream file(Card() / "a", std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(std::streamoff{5} << 20);
    file << "in the middle";
    file.close();
    ASSERT_TRUE(Run({}).mTroubles.empty());
    struct stat source;
    struct stat copy;
    ASSERT_EQ(0, ::stat((Card() / "a").c_str(), &source));
    ASSERT_EQ(0, ::stat((Disk() / "a").c_str(), &copy));
    if (source.st_blocks * 512 >= source.st_size) {
        GTEST_SKIP() << "this file system keeps no holes";
    }
    EXPECT_EQ(source.st_size, copy.st_size);
    EXPECT_GE(source.st_blocks + 256, copy.st_blocks);
    ExpectIngested(ReadTree(Card()), Disk());
}

TEST_F(IngestHarmOnLinux, NoRunLeavesARecordBehind)
{
    EXPECT_TRUE(Run({}).mTroubles.empty());
    EXPECT_FALSE(fs::exists(Disk() / kRecord));
    WriteFile(Disk() / "b", "another file");
    EXPECT_EQ(1u, Run({}).mTroubles.size());
    EXPECT_FALSE(fs::exists(Disk() / kRecord));
}

// Without access rights as proof, a manifest could call any file of the right size and time verified.
TEST_F(IngestHarmOnLinux, AManifestThatOthersCanWrite_ProvesNothing)
{
    fs::create_directory(Disk());
    for (const char* name : {"a", "b", "c"}) {
        WriteFile(Disk() / name, std::string(2500000, 'x'));
        fs::last_write_time(Disk() / name, fs::last_write_time(Card() / name));
    }
    WriteFile(Disk() / "b", mCard["b"]);
    fs::last_write_time(Disk() / "b", fs::last_write_time(Card() / "b"));
    const std::string zeros(64, '0');
    WriteFile(Disk() / kManifest, zeros + "  a\n" + zeros + "  b\n" + zeros + "  c\n");
    ::chmod((Disk() / kManifest).c_str(), 0666);
    const ProcessResult result = Orl();
    EXPECT_EQ(orl::kExitNameConflict, result.mExitCode) << result.mOutput;
    EXPECT_EQ(std::string::npos, result.mOutput.find("Safe to erase")) << result.mOutput;
    EXPECT_EQ(ReferenceSha256(mCard["b"]), ReadManifest(Disk() / kManifest)["b"]);
    ::chmod((Disk() / kManifest).c_str(), 0644);
    EXPECT_NE(std::string::npos, Orl().mOutput.find("verified before"));
}

TEST_F(IngestHarmOnLinux, ARecordThatOthersCanWrite_ReachesNothingThroughALink)
{
    fs::create_directory(Disk());
    mFolder.MakeFolder("elsewhere");
    const fs::path foreign = mFolder.Host() / "elsewhere" / kUnfinished;
    fs::create_directory_symlink(mFolder.Host() / "elsewhere", Disk() / "link");
    for (const bool isTrusted : {false, true}) {
        WriteFile(foreign, "of another run");
        WriteFile(Disk() / kRecord, RecordOf("T link/" + std::string(kUnfinished) + "\n"));
        ::chmod((Disk() / kRecord).c_str(), isTrusted ? 0644 : 0666);
        EXPECT_EQ(0, Orl().mExitCode);
        EXPECT_EQ(!isTrusted, fs::exists(foreign));
        EXPECT_FALSE(fs::exists(Disk() / kRecord));
    }
}

TEST_F(IngestHarmOnLinux, AFolderThatCannotBeOpenedForLackOfDescriptors_IsNotGone)
{
    fs::create_directory(Disk());
    const orl::IngestRoots roots = orl::MakeRoots(Card().string(), Disk().string());
    static int sError;
    orl::sIngestCalls.mOpenAt = [](int, const char*, int) {
        errno = sError;
        return -1;
    };
    const struct
    {
        int mError;
        bool mIsGone;
    } cases[] = {{EMFILE, false}, {ENFILE, false}, {ENOMEM, false}, {ENOENT, true},
                 {ENODEV, true},  {ESTALE, true},  {EIO, true}};
    for (const auto& row : cases) {
        sError = row.mError;
        EXPECT_EQ(row.mIsGone, orl::IsSourceGone(roots, orl::SourceWas::kNotEmpty)) << row.mError;
        EXPECT_EQ(row.mIsGone, orl::IsDestinationGone(roots)) << row.mError;
    }
}

TEST_F(IngestHarmOnLinux, ADryRunOfADestinationThatCannotBeWritten_IsRefusedLikeTheRun)
{
    orl::sIngestCalls.mFAccessAt = [](int, const char*, int) {
        errno = EROFS;
        return -1;
    };
    for (const bool exists : {false, true}) {
        std::vector<orl::IngestDestination> destinations = orl::MakeDestinations(Card().string(), {Disk().string()});
        orl::PreviewIngest(destinations, kManifest, {}, [] { return false; });
        const IngestOutcome& outcome = destinations.front().mOutcome;
        EXPECT_TRUE(outcome.mIsRefused) << exists;
        ASSERT_EQ(1u, outcome.mTroubles.size());
        EXPECT_EQ("ingest: cannot write to the destination \"" + Disk().string() + "\": access denied",
                  outcome.mTroubles.front().mText);
        fs::create_directory(Disk());
    }
}
