// Runs orl info as a user does, and checks its output and exit codes.
#include <ORLDiskUtils.h>
#include <ORLHostPath.h>
#include <ORLRegistryStore.h>
#include <ORLStringUtils.h>
#include <ORLSystemInfo.h>

#include <ProcessRunner.h>

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace ORLTest;

namespace {

ProcessResult Orl(const std::vector<std::string>& inArguments)
{
    return RunBesideThisProgram("orl", inArguments);
}

// Returns the value in the row of that name.
std::string Row(const std::string& inOutput, const std::string& inName)
{
    const std::size_t at = ("\n" + inOutput).find("\n" + inName + " ");
    if (at == std::string::npos) {
        return std::string();
    }
    const std::size_t value = inOutput.find_first_not_of(' ', at + inName.size());
    return inOutput.substr(value, inOutput.find('\n', value) - value);
}

bool IsOneLineOfOrl(const std::string& inErrors)
{
    return inErrors.compare(0, 5, "orl: ") == 0 && inErrors.find('\n') == inErrors.size() - 1;
}

} // namespace

TEST(Orl, WithoutACommand_SaysSoOnOneLineAndEndsWith2)
{
    const ProcessResult result = Orl({});
    EXPECT_EQ(2, result.mExitCode);
    EXPECT_EQ("", result.mOutput);
    EXPECT_TRUE(IsOneLineOfOrl(result.mErrors)) << result.mErrors;
}

TEST(Orl, WithAnUnknownCommand_NamesItAndEndsWith2)
{
    const ProcessResult result = Orl({"frobnicate"});
    EXPECT_EQ(2, result.mExitCode);
    EXPECT_TRUE(IsOneLineOfOrl(result.mErrors)) << result.mErrors;
    EXPECT_NE(std::string::npos, result.mErrors.find("frobnicate"));
}

// The message for a usage error names the command and its help.
TEST(Orl, CommandLineThatMakesNoSense_SaysWhichCommandAndWhereToLook)
{
    struct Row
    {
        int mLine;
        std::vector<std::string> mArguments;
        const char* mErrors;
    };
    const Row rows[] = {
        {__LINE__, {}, "orl: A subcommand is required (see orl --help)\n"},
        {__LINE__, {"frobnicate"}, "orl: unknown command \"frobnicate\" (see orl --help)\n"},
        {__LINE__, {"tc", "frobnicate"}, "orl: unknown command \"frobnicate\" (see orl tc --help)\n"},
        {__LINE__, {"tc"}, "orl: tc: A subcommand is required (see orl tc --help)\n"},
        {__LINE__, {"make-clip"}, "orl: make-clip: PATH is required (see orl make-clip --help)\n"},
        {__LINE__, {"tc", "convert"}, "orl: tc convert: --to is required (see orl tc convert --help)\n"},
        {__LINE__,
         {"stream", "--depth", "0", "x"},
         "orl: stream: --depth: Value 0 not in range 1 to 2048 (see orl stream --help)\n"},
    };
    for (const Row& row : rows) {
        const ProcessResult result = Orl(row.mArguments);
        EXPECT_EQ(2, result.mExitCode) << "row at line " << row.mLine;
        EXPECT_EQ(row.mErrors, result.mErrors) << "row at line " << row.mLine;
    }
}

TEST(Orl, HelpAndVersion_GoToStandardOutputAndEndWith0)
{
    for (const char* wish : {"--help", "--version"}) {
        const ProcessResult result = Orl({wish});
        EXPECT_EQ(0, result.mExitCode) << wish;
        EXPECT_NE(std::string::npos, result.mOutput.find("orl")) << wish;
        EXPECT_EQ("", result.mErrors) << wish;
    }
    EXPECT_NE(std::string::npos, Orl({"info", "--help"}).mOutput.find("--json"));
}

TEST(OrlInfo, WithoutAPath_TellsOfTheCurrentFolder)
{
    const ProcessResult result = Orl({"info"});
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    EXPECT_EQ("", result.mErrors);
    EXPECT_EQ("directory", Row(result.mOutput, "kind"));
    EXPECT_NE("", Row(result.mOutput, "version"));
    EXPECT_NE("", Row(result.mOutput, "platform"));
    EXPECT_NE(std::string::npos, Row(result.mOutput, "drives").find("C:\\"));
}

TEST(OrlInfo, OfTheDriveRoot_ShowsWhatTheLibraryAnswers)
{
    const ProcessResult result = Orl({"info", "C:\\"});
    ASSERT_EQ(0, result.mExitCode) << result.mErrors;
    unsigned int sectorSize = 0;
    ASSERT_EQ(ORL::kSuccess, ORL::DiskUtils::GetEfficientDiskBufferSizeFromPath(TVX_UTF16("C:\\"), sectorSize));
    EXPECT_EQ(std::to_string(sectorSize) + " bytes", Row(result.mOutput, "sector size"));
    EXPECT_EQ("C:\\", Row(result.mOutput, "path"));
    const std::string free = Row(result.mOutput, "free space");
    EXPECT_NE(std::string::npos, free.find("B (")) << free;
    EXPECT_EQ(free.size() - 7, free.find(" bytes)")) << free;
}

TEST(OrlInfo, OfAPathThatIsNotThere_CallsItMissing)
{
    const ProcessResult result = Orl({"info", "C:\\no such folder\\no such file"});
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    EXPECT_EQ("missing", Row(result.mOutput, "kind"));
}

TEST(OrlInfo, OfADriveThatIsNotThere_FailsWithThePathInTheLine)
{
    const ProcessResult result = Orl({"info", "Q:\\x"});
    EXPECT_EQ(1, result.mExitCode);
    EXPECT_EQ("", result.mOutput);
    EXPECT_EQ("orl: info: cannot query the volume of \"Q:\\x\": path not found\n", result.mErrors);
}

TEST(OrlInfo, NamesBeyondASCII_ComeBackAsUTF8)
{
    const ProcessResult result = Orl({"info", "C:\\caf\xC3\xA9\\\xE6\x97\xA5\xF0\x9F\x98\x80"});
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    EXPECT_EQ("C:\\caf\xC3\xA9\\\xE6\x97\xA5\xF0\x9F\x98\x80", Row(result.mOutput, "path"));
}

TEST(OrlInfo, Json_IsOneObjectWithQuotedTexts)
{
    const ProcessResult result = Orl({"info", "--json", "C:\\a b"});
    ASSERT_EQ(0, result.mExitCode) << result.mErrors;
    EXPECT_EQ(0u, result.mOutput.find("{\n"));
    EXPECT_EQ(result.mOutput.size() - 2, result.mOutput.rfind("}\n"));
    EXPECT_NE(std::string::npos, result.mOutput.find("\"path\": \"C:\\\\a b\""));
    EXPECT_NE(std::string::npos, result.mOutput.find("\"kind\": \"missing\""));
    EXPECT_NE(std::string::npos, result.mOutput.find("{\"root\": \"C:\\\\\", \"hostFolder\": "));
    EXPECT_NE(std::string::npos, result.mOutput.find("\"languageId\": "));
    EXPECT_NE(std::string::npos, result.mOutput.find("\"codePage\": "));
    EXPECT_NE(std::string::npos, result.mOutput.find("{\"root\": \"user\", \"place\": "));
}

TEST(OrlInfo, LanguageCodePageAndStores_AreThoseOfTheLibrary)
{
    const ProcessResult result = Orl({"info"});
    ASSERT_EQ(0, result.mExitCode) << result.mErrors;
    EXPECT_EQ(std::to_string(ORL::StringUtils::GetDefaultCodePage()), Row(result.mOutput, "code page"));
    const std::string language = Row(result.mOutput, "language");
    EXPECT_NE(std::string::npos, language.find(" (")) << language;
    const std::string place = ORL::RegistryStore::GetState(ORL::RegistryRootKeys::kUser).mPlace;
    EXPECT_EQ(0u, Row(result.mOutput, "settings").find("user     " + (place.empty() ? "kept by the system" : place)))
        << result.mOutput;
    EXPECT_NE(std::string::npos, result.mOutput.find("\n               machine  ")) << result.mOutput;
}

TEST(OrlInfo, OfTheMachine_ShowsProcessorsMemoryLoadAndProcessClock)
{
    const ProcessResult result = Orl({"info"});
    ASSERT_EQ(0, result.mExitCode) << result.mErrors;
    EXPECT_EQ(std::to_string(ORL::SystemInfo::GetCPUCount()), Row(result.mOutput, "processors"));
    EXPECT_NE(std::string::npos, Row(result.mOutput, "memory").find(" available"));
    EXPECT_NE("", Row(result.mOutput, "address space"));
    const int load = std::stoi(Row(result.mOutput, "load"));
    EXPECT_GE(load, 0);
    EXPECT_LE(load, 100);
    EXPECT_GE(std::stoi(Row(result.mOutput, "process clock")), 150) << "the load is taken over 200 ms";
    const ProcessResult json = Orl({"info", "--json"});
    EXPECT_NE(std::string::npos,
              json.mOutput.find("\"processors\": " + std::to_string(ORL::SystemInfo::GetCPUCount())));
    EXPECT_NE(std::string::npos,
              json.mOutput.find("\"physicalMemory\": " + std::to_string(ORL::SystemInfo::GetTotalPhysicalMemory())));
    for (const char* name : {"availableMemory", "virtualMemory", "loadPercent", "processClockMilliseconds"}) {
        EXPECT_NE(std::string::npos, json.mOutput.find(std::string("\"") + name + "\": ")) << name;
    }
}

TEST(OrlInfo, TwoPaths_AreAMistakeOfTheCommandLine)
{
    const ProcessResult result = Orl({"info", "a", "b"});
    EXPECT_EQ(2, result.mExitCode);
    EXPECT_TRUE(IsOneLineOfOrl(result.mErrors)) << result.mErrors;
}
