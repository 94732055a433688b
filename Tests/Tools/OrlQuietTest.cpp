// Runs the commands that print a table with --quiet: they print nothing but errors, and the exit code is unchanged.
#include <OwnUserStore.h>
#include <ProcessRunner.h>
#include <TempFolder.h>

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace ORLTest;

namespace {

class OrlQuiet : public testing::Test
{
protected:
    OrlQuiet()
    {
        mFolder.MakeFile("clip.mov", "media");
        mFolder.MakeFile("bad.reg", "not a registry file");
        mFolder.MakeFolder("empty");
        mFolder.MakeFolder("card");
        mFolder.MakeFile("card/clip.mov", "media");
    }

    std::string Host(const std::string& inName) const { return (mFolder.Host() / inName).u8string(); }

    static std::string Beside(const std::string& inName) { return FolderOfThisProgram() + inName; }

    const OwnUserStore mStore;
    TempFolder mFolder;
};

} // namespace

TEST_F(OrlQuiet, EachCommand_PrintsNothingAndExitsAsBefore)
{
    const std::vector<std::vector<std::string>> commands = {
        {"stream", Host("clip.mov")},
        {"stream", Host("clip.mov"), Host("missing.mov")},
        {"hash", Host("clip.mov")},
        {"hash", Host("missing.mov"), Host("clip.mov")},
        {"tc", "show", "1"},
        {"tc", "parse", "1:00", "x"},
        {"tc", "add", "1:00", "1"},
        {"tc", "convert", "1:00", "--to", "25"},
        {"tc", "table"},
        {"colour", "#ff8000"},
        {"info", Host("clip.mov")},
        {"res", "list", Beside("resources_lookup.res")},
        {"res", "string", Beside("resources_lookup.res")},
        {"res", "check", Beside("resources_lookup.res")},
        {"reg", "list", "HKCU\\Software"},
        {"reg", "get", "HKCU\\Software\\none", "none"},
        {"reg", "check"},
        {"reg", "import", Host("bad.reg"), "--dry-run"},
        {"verify", Host("empty")},
        {"ingest", Host("card"), Host("disk")}, // also when the copies are present
        {"ingest", Host("empty"), Host("disk")},
    };
    for (std::vector<std::string> command : commands) {
        const std::string shown = command[0] + ' ' + command[1];
        const ProcessResult loud = RunBesideThisProgram("orl", command);
        command.push_back("-q");
        const ProcessResult quiet = RunBesideThisProgram("orl", command);
        EXPECT_EQ("", quiet.mOutput) << shown;
        EXPECT_EQ(loud.mErrors, quiet.mErrors) << shown;
        EXPECT_EQ(loud.mExitCode, quiet.mExitCode) << shown;
        EXPECT_FALSE(loud.mOutput.empty() && loud.mErrors.empty()) << shown;
        command.back() = "--json";
        command.push_back("--quiet");
        EXPECT_EQ(2, RunBesideThisProgram("orl", command).mExitCode) << shown;
    }
}

// A remark tells how an entry was read. It is no error.
TEST_F(OrlQuiet, RemarksOfTimecode_AreNotPrinted)
{
    const std::vector<std::string> parse = {"tc", "parse", "00:01:00;00"};
    const ProcessResult loud = RunBesideThisProgram("orl", parse);
    EXPECT_NE(std::string::npos, loud.mErrors.find("is read as")) << loud.mErrors;
    std::vector<std::string> quietly = parse;
    quietly.push_back("-q");
    const ProcessResult quiet = RunBesideThisProgram("orl", quietly);
    EXPECT_EQ("", quiet.mOutput + quiet.mErrors);
    EXPECT_EQ(0, quiet.mExitCode);
}
