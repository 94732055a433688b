// A folder with a list of checksums, made without the program under test.
#pragma once

#include "../Ingest/IngestTestSupport.h"
#include <ProcessRunner.h>

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace ORLTest {

// Exit codes, as Docs/ingest.md lists them.
inline constexpr int kVerifyUnreadable = 4;
inline constexpr int kVerifyChanged = 7;
inline constexpr int kVerifyEmpty = 9;
inline constexpr int kVerifyMissing = 10;
inline constexpr int kVerifyNew = 11;
inline constexpr int kVerifyStopped = 130;

inline bool Shows(const std::string& inText, const std::string& inPart)
{
    return inText.find(inPart) != std::string::npos;
}

/// A tree with an empty file and files of one and several blocks, and its list of checksums.
class VerifiedTree : public testing::Test
{
protected:
    VerifiedTree()
    {
        mFolder.MakeFolder("disk/CLIP/deep");
        mFolder.MakeFile("disk/a", "abc");
        mFolder.MakeFile("disk/none", "");
        mFolder.MakeFile("disk/CLIP/clip.mov", std::string(3000001, 'm'));
        mFolder.MakeFile("disk/CLIP/deep/sector", std::string(4096, 's'));
        WriteList();
    }

    std::filesystem::path Disk() const { return mFolder.Host() / "disk"; }
    std::string Shown(const std::string& inName) const { return Shown(Disk(), inName); }

    /// Returns the quoted name as the program shows it.
    static std::string Shown(const std::filesystem::path& inFolder, const std::string& inName)
    {
        const char separator = static_cast<char>(std::filesystem::path::preferred_separator);
        return "\"" + inFolder.u8string() + separator + inName + "\"";
    }

    /// Writes the list of the files that exist now.
    void WriteList() const
    {
        std::filesystem::remove(Disk() / kManifest);
        std::string list;
        for (const auto& [name, contents] : ReadTree(Disk())) {
            list += contents != "/" ? ReferenceSha256(contents) + "  " + name + "\n" : "";
        }
        WriteFile(Disk() / kManifest, list);
    }

    ProcessResult Verify(std::vector<std::string> inOptions = {}) const
    {
        inOptions.insert(inOptions.begin(), {"verify", Disk().u8string()});
        return RunBesideThisProgram("orl", inOptions);
    }

    /// Expects the exit code and these lines on standard error, without "orl: verify: ", and nothing else.
    static void ExpectEnd(const ProcessResult& inResult, int inExitCode, const std::vector<std::string>& inLines)
    {
        std::string errors;
        for (const std::string& line : inLines) {
            errors += "orl: verify: " + line + "\n";
        }
        EXPECT_EQ(inExitCode, inResult.mExitCode);
        EXPECT_EQ(errors, inResult.mErrors);
    }

    TempFolder mFolder;
};

} // namespace ORLTest
