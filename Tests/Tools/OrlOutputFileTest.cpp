// Writes files with orl beside files of the user.
#include <ProcessRunner.h>
#include <TempFolder.h>

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

using namespace ORLTest;

namespace {

namespace fs = std::filesystem;

std::string ContentsOf(const fs::path& inPath)
{
    std::ifstream file(inPath, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

} // namespace

// A user may give a file any name, also one that looks temporary.
TEST(OrlOutputFileOnEachSystem, FilesOfTheUser_StayBesideTheResult)
{
    const TempFolder folder;
    folder.MakeFile("words.part", "the user's own");
    folder.MakeFile(".orl-0123456789abcdef0123456789abcdef.part", "somebody's");
    for (int run = 0; run < 2; ++run) { // the second run replaces the result of the first
        const ProcessResult result =
            RunBesideThisProgram("orl", {"res", "extract", FolderOfThisProgram() + "resources_lookup.res", "shelf",
                                         "FirstName", "-o", (folder.Host() / "words").u8string()});
        EXPECT_EQ(0, result.mExitCode) << result.mErrors;
        EXPECT_EQ("by text", ContentsOf(folder.Host() / "words"));
        EXPECT_EQ("the user's own", ContentsOf(folder.Host() / "words.part"));
        EXPECT_EQ("somebody's", ContentsOf(folder.Host() / ".orl-0123456789abcdef0123456789abcdef.part"));
        EXPECT_EQ(3, std::distance(fs::directory_iterator(folder.Host()), fs::directory_iterator()));
    }
}
