// Compares the patterns of --exclude with those of the C library, and excludes folders that cannot be read.
#include "IngestTestSupport.h"

#include <IngestExclusions.h>
#include <ProcessRunner.h>

#include <cstdlib>
#include <filesystem>
#include <fnmatch.h>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

using namespace ORLTest;

namespace {

std::string RandomText(std::mt19937& ioRandom, const std::string& inCharacters, std::size_t inLongest)
{
    std::string text;
    for (std::size_t left = ioRandom() % (inLongest + 1); left != 0; --left) {
        text += inCharacters[ioRandom() % inCharacters.size()];
    }
    return text;
}

} // namespace

// With FNM_PATHNAME the C library's fnmatch has the same rules for these characters.
TEST(IngestExclusionsOnLinux, Patterns_MatchLikeTheSystems)
{
    std::mt19937 random(20261122);
    int matches = 0;
    for (int round = 0; round < 200000; ++round) {
        const std::string name = "d/" + RandomText(random, "ab/", 8);
        const std::string pattern = "d/" + RandomText(random, "ab/*?", 7);
        const bool isMatch = orl::MatchesPattern(name, pattern);
        matches += isMatch ? 1 : 0;
        ASSERT_EQ(::fnmatch(pattern.c_str(), name.c_str(), FNM_PATHNAME | FNM_NOESCAPE) == 0, isMatch)
            << name << ' ' << pattern;
    }
    EXPECT_LT(1000, matches);
}

// A system folder is usually closed to ordinary users. It does not make the source unreadable.
TEST(IngestExclusionsOnLinux, ASystemFolderWithoutAccess_IsLeftOut)
{
    namespace fs = std::filesystem;
    const TempFolder folder;
    folder.MakeFolder("card/lost+found");
    folder.MakeFile("card/a");
    folder.MakeFolder("disk");
    fs::permissions(folder.Host(), fs::perms::all);
    fs::permissions(folder.Host() / "disk", fs::perms::all);
    fs::permissions(folder.Host() / "card/lost+found", fs::perms::none);
    const std::string as = ::geteuid() == 0 ? "setpriv --reuid=65534 --regid=65534 --clear-groups " : "";
    const std::string command = as + "'" + FolderOfThisProgram() + "orl' ingest '" + (folder.Host() / "card").string()
                                + "' '" + (folder.Host() / "disk").string() + "' ";
    EXPECT_EQ(0, WEXITSTATUS(std::system((command + ">/dev/null 2>&1").c_str())));
    EXPECT_EQ(4, WEXITSTATUS(std::system((command + "--no-default-excludes >/dev/null 2>&1").c_str())));
    fs::permissions(folder.Host() / "card/lost+found", fs::perms::all);
}

// An entry that could be a file must be reported, not skipped.
TEST(IngestExclusionsOnLinux, ADanglingLinkNamedLikeASystemFolder_IsReported)
{
    namespace fs = std::filesystem;
    const TempFolder folder;
    folder.MakeFolder("card");
    folder.MakeFile("card/a");
    fs::create_symlink("nowhere", folder.Host() / "card/lost+found");
    const ProcessResult result =
        RunBesideThisProgram("orl", {"ingest", (folder.Host() / "card").string(), (folder.Host() / "disk").string()});
    EXPECT_EQ(4, result.mExitCode);
    EXPECT_NE(std::string::npos, result.mErrors.find("cannot read \"lost+found\"")) << result.mErrors;
}
