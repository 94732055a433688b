// Tests --keep-permissions with the nine permission bits, for files and folders, and with failing system calls.
#include "IngestRunSupport.h"

#include <LinuxIngestCalls.h>
#include <ProcessRunner.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

using namespace ORLTest;
using orl::IngestStep;

namespace {

namespace fs = std::filesystem;

unsigned ModeOf(const fs::path& inPath)
{
    struct stat status;
    EXPECT_EQ(0, ::stat(inPath.c_str(), &status)) << inPath;
    return status.st_mode & 07777;
}

class IngestPermissionsOnLinux : public IngestRun
{
protected:
    ~IngestPermissionsOnLinux() override { orl::sIngestCalls = mSystem; }

    orl::IngestOutcome RunKeeping(const OnStep& inOnStep = {})
    {
        std::vector<orl::IngestDestination> destinations =
            orl::MakeDestinations(Card().u8string(), {Disk().u8string()});
        orl::IngestWatcher watcher;
        watcher.mIsStopped = [this] { return mIsStopped.load(); };
        watcher.mShow = [](std::uint64_t, std::size_t) {};
        if (inOnStep) {
            watcher.mOnStep = [&inOnStep](std::size_t, IngestStep inStep, const orl::IngestItem& inItem) {
                inOnStep(inStep, inItem);
            };
        }
        orl::IngestSettings settings;
        settings.mFilesAtOnce = 1;
        settings.mKeepsPermissions = true;
        orl::Ingest(destinations, kManifest, settings, watcher);
        mPlan = std::move(destinations.front().mPlan);
        return std::move(destinations.front().mOutcome);
    }

    // Runs orl as an ordinary user, who owns the copies.
    int RunKeepingWithoutRights() const
    {
        std::string as;
        if (::geteuid() == 0) {
            as = "setpriv --reuid=65534 --regid=65534 --clear-groups ";
            EXPECT_EQ(0, ::lchown(Disk().c_str(), 65534, 65534));
            for (const auto& entry : fs::recursive_directory_iterator(Disk())) {
                EXPECT_EQ(0, ::lchown(entry.path().c_str(), 65534, 65534)) << entry.path();
            }
        }
        fs::permissions(mFolder.Host(), fs::perms::all);
        const std::string command = as + "'" + FolderOfThisProgram() + "orl' ingest --keep-permissions '"
                                    + Card().string() + "' '" + Disk().string() + "' >/dev/null 2>&1";
        return WEXITSTATUS(std::system(command.c_str()));
    }

    void MakeReadOnlyFolderWithTwoFiles()
    {
        mFolder.MakeFolder("card/sub");
        mFolder.MakeFile("card/sub/one", "one");
        mFolder.MakeFile("card/sub/two", "two");
        ASSERT_EQ(0, ::chmod((Card() / "sub").c_str(), 0555));
    }

    const orl::IngestCalls mSystem = orl::sIngestCalls;
};

int FailToChangeMode(int, unsigned)
{
    errno = EPERM;
    return -1;
}

} // namespace

// The owner can always read a copied file and list a copied folder. Set-ID and sticky bits are not copied.
TEST_F(IngestPermissionsOnLinux, OfFilesAndFolders_AreTheNineBits)
{
    struct Row
    {
        unsigned mSource;
        unsigned mFile;
        unsigned mFolder;
    };
    const Row rows[] = {
        {0600, 0600, 0700}, {0644, 0644, 0744},  {0755, 0755, 0755},  {0777, 0777, 0777},
        {0444, 0444, 0544}, {0555, 0555, 0555},  {0640, 0640, 0740},  {0007, 0407, 0507},
        {0000, 0400, 0500}, {04755, 0755, 0755}, {02770, 0770, 0770}, {01777, 0777, 0777},
    };
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only an administrator can read the sources without access";
    }
    for (const Row& row : rows) {
        const std::string name = std::to_string(row.mSource);
        mFolder.MakeFolder("card/folder" + name);
        mFolder.MakeFile("card/folder" + name + "/file", name);
        ASSERT_EQ(0, ::chmod((Card() / ("folder" + name) / "file").c_str(), row.mSource));
        ASSERT_EQ(0, ::chmod((Card() / ("folder" + name)).c_str(), row.mSource));
    }
    EXPECT_TRUE(RunKeeping().mTroubles.empty());
    for (const Row& row : rows) {
        const fs::path folder = Disk() / ("folder" + std::to_string(row.mSource));
        EXPECT_EQ(row.mFile, ModeOf(folder / "file")) << std::oct << row.mSource;
        EXPECT_EQ(row.mFolder, ModeOf(folder)) << std::oct << row.mSource;
    }
}

// An ordinary user cannot write to a read-only folder, so a folder is made read-only after its last file.
TEST_F(IngestPermissionsOnLinux, OfReadOnlyFolders_AreKeptForAnOrdinaryUser)
{
    mFolder.MakeFolder("card/outer/inner");
    mFolder.MakeFile("card/outer/inner/clip", "a clip");
    mFolder.MakeFile("card/outer/clip", "another clip");
    fs::create_directory(Disk());
    fs::permissions(mFolder.Host(), fs::perms::all);
    fs::permissions(Disk(), fs::perms::all);
    ASSERT_EQ(0, ::chmod((Card() / "outer/inner").c_str(), 0555));
    ASSERT_EQ(0, ::chmod((Card() / "outer").c_str(), 0555));
    const std::string as = ::geteuid() == 0 ? "setpriv --reuid=65534 --regid=65534 --clear-groups " : "";
    const std::string command = as + "'" + FolderOfThisProgram() + "orl' ingest --keep-permissions '" + Card().string()
                                + "' '" + Disk().string() + "' >/dev/null 2>&1";
    for (int run = 0; run < 2; ++run) {
        EXPECT_EQ(0, WEXITSTATUS(std::system(command.c_str()))) << run;
        EXPECT_EQ(0555u, ModeOf(Disk() / "outer"));
        EXPECT_EQ(0555u, ModeOf(Disk() / "outer/inner"));
        ExpectIngested(ReadTree(Card()), Disk());
    }
    for (const fs::path& root : {Card(), Disk()}) {
        fs::permissions(root / "outer", fs::perms::all);
        fs::permissions(root / "outer/inner", fs::perms::all);
    }
}

// The user asked for the permissions, so a file without them is reported and not acknowledged.
TEST_F(IngestPermissionsOnLinux, ThatCannotBeSet_AreReportedAndTheNextRunCompletes)
{
    mFolder.MakeFolder("card/sub");
    mCard = ReadTree(Card());
    orl::sIngestCalls.mFChMod = &FailToChangeMode;
    const orl::IngestOutcome outcome = RunKeeping();
    EXPECT_TRUE(outcome.mRows.empty());
    ASSERT_EQ(4u, outcome.mTroubles.size());
    for (const orl::IngestTrouble& trouble : outcome.mTroubles) {
        EXPECT_EQ(orl::kExitFailure, trouble.mExitCode);
        EXPECT_NE(std::string::npos, trouble.mText.find("cannot set the permissions of ")) << trouble.mText;
    }
    EXPECT_EQ("", fs::exists(Disk() / kManifest) ? ReadFile(Disk() / kManifest) : "");
    orl::sIngestCalls = mSystem;
    EXPECT_TRUE(RunKeeping().mTroubles.empty());
    ExpectIngested(mCard, Disk());
}

// Another program replaces the copy with a link to its own file.
TEST_F(IngestPermissionsOnLinux, OfALinkInPlaceOfTheCopy_AreNotSet)
{
    ASSERT_EQ(0, ::chmod((Card() / "a").c_str(), 0777));
    mFolder.MakeFile("foreign", "somebody's");
    ASSERT_EQ(0, ::chmod((mFolder.Host() / "foreign").c_str(), 0600));
    const orl::IngestOutcome outcome = RunKeeping(Once(IngestStep::kInPlace, "a", [this] {
        fs::remove(Disk() / "a");
        fs::create_symlink(mFolder.Host() / "foreign", Disk() / "a");
    }));
    EXPECT_EQ(0600u, ModeOf(mFolder.Host() / "foreign"));
    ASSERT_EQ(1u, outcome.mTroubles.size());
    EXPECT_NE(std::string::npos, outcome.mTroubles[0].mText.find("cannot set the permissions of \"a\""));
}

// An ordinary user's next run could not write to a read-only folder.
TEST_F(IngestPermissionsOnLinux, OfFoldersAfterAStop_AreSetByTheRunThatCompletesThem)
{
    MakeReadOnlyFolderWithTwoFiles();
    mFolder.MakeFolder("card/above/below");
    mFolder.MakeFile("card/above/below/file", "deep");
    mFolder.MakeFile("card/above/first", "first");
    ASSERT_EQ(0, ::chmod((Card() / "above/below").c_str(), 0555));
    ASSERT_EQ(0, ::chmod((Card() / "above").c_str(), 0555));
    const auto isWritable = [this](const char* inName) { return (ModeOf(Disk() / inName) & 0200) != 0; };
    // Files are copied in the order of their names.
    EXPECT_TRUE(RunKeeping(Once(IngestStep::kInPlace, "above/below/file", [this] { mIsStopped = true; })).mIsStopped);
    mIsStopped = false;
    EXPECT_EQ(0555u, ModeOf(Disk() / "above/below")) << "everything in it is in place";
    EXPECT_TRUE(isWritable("above"));
    EXPECT_TRUE(isWritable("sub"));
    EXPECT_TRUE(RunKeeping(Once(IngestStep::kInPlace, "sub/one", [this] { mIsStopped = true; })).mIsStopped);
    mIsStopped = false;
    EXPECT_EQ(0555u, ModeOf(Disk() / "above"));
    EXPECT_TRUE(isWritable("sub"));
    EXPECT_EQ(0, RunKeepingWithoutRights());
    for (const char* const name : {"sub", "above/below", "above"}) {
        EXPECT_EQ(0555u, ModeOf(Disk() / name)) << name;
    }
    ExpectIngested(ReadTree(Card()), Disk());
    for (const fs::path& root : {Card(), Disk()}) {
        for (const char* const name : {"sub", "above", "above/below"}) {
            fs::permissions(root / name, fs::perms::all);
        }
    }
}

// Names that are taken, and entries that cannot be copied, have the same effect as a stop.
TEST_F(IngestPermissionsOnLinux, OfFoldersThatLackAnEntry_AreSetByTheRunThatCompletesThem)
{
    MakeReadOnlyFolderWithTwoFiles();
    const fs::path source = Card() / "sub";
    const fs::path copy = Disk() / "sub";
    const std::pair<std::function<void()>, fs::path> causes[] = {
        {[&] { WriteFile(copy / "two", "somebody's"); }, copy / "two"},
        {[&] { fs::create_directory(copy / "two"); }, copy / "two"},
        {[&] { ASSERT_EQ(0, ::mkfifo((source / "pipe").c_str(), 0600)); }, source / "pipe"},
        {[&] { fs::create_symlink("nowhere", source / "link"); }, source / "link"},
        {[&] {
             fs::create_directory(source / "folder");
             WriteFile(copy / "folder", "somebody's");
         },
         copy / "folder"},
    };
    for (const auto& [hinder, hindrance] : causes) {
        SCOPED_TRACE(hindrance);
        fs::create_directories(copy);
        hinder();
        ASSERT_EQ(0, ::chmod(source.c_str(), 0555));
        EXPECT_EQ(1u, RunKeeping().mTroubles.size());
        EXPECT_EQ(0200u, ModeOf(copy) & 0200u);
        fs::permissions(source, fs::perms::all);
        fs::remove(hindrance);
        ASSERT_EQ(0, ::chmod(source.c_str(), 0555));
        EXPECT_TRUE(RunKeeping().mTroubles.empty());
        EXPECT_EQ(0555u, ModeOf(copy));
        fs::permissions(source, fs::perms::all);
        fs::permissions(copy, fs::perms::all);
        fs::remove_all(Disk());
    }
}
