// Runs orl info as a user does, and checks its output and exit codes.
#include <ORLDiskUtils.h>
#include <ORLHostPath.h>
#include <ORLRegistryStore.h>
#include <ORLStringUtils.h>
#include <ORLSystemInfo.h>

#include <JsonLayout.h>
#include <ProcessRunner.h>

#include <cstdio>
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

// Returns "12.3 GB", with a kilobyte of 1000 bytes.
std::string SizeInPowersOf1000(unsigned long long inBytes)
{
    const char* unit = "B";
    double size = static_cast<double>(inBytes);
    for (const char* larger : {"kB", "MB", "GB", "TB"}) {
        if (size >= (unit[1] == '\0' ? 1000 : 999.95)) {
            size /= 1000;
            unit = larger;
        }
    }
    char text[32];
    std::snprintf(text, sizeof(text), unit[1] == '\0' ? "%.0f %s" : "%.1f %s", size, unit);
    return text;
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
        {__LINE__, {"infi"}, "orl: unknown command \"infi\"; did you mean \"info\"? (see orl --help)\n"},
        {__LINE__, {"steram", "x"}, "orl: unknown command \"steram\"; did you mean \"stream\"? (see orl --help)\n"},
        {__LINE__, {"comp"}, "orl: unknown command \"comp\"; did you mean \"completion\"? (see orl --help)\n"},
        {__LINE__, {"re"}, "orl: unknown command \"re\"; did you mean \"reg\"? (see orl --help)\n"},
        {__LINE__, {"tc", "shwo"}, "orl: unknown command \"shwo\"; did you mean \"show\"? (see orl tc --help)\n"},
        {__LINE__, {"help", "infi"}, "orl: unknown command \"infi\"; did you mean \"info\"? (see orl --help)\n"},
        {__LINE__, {"help", "info", "x"}, "orl: help: unexpected argument \"x\" (see orl help --help)\n"},
        {__LINE__,
         {"completion", "tcsh"},
         "orl: completion: SHELL: tcsh not in {bash,zsh,fish} (see orl completion --help)\n"},
        {__LINE__,
         {"stream", "--jsn", "x"},
         "orl: stream: unknown option \"--jsn\"; did you mean \"--json\"? (see orl stream --help)\n"},
        {__LINE__,
         {"stream", "--dept=4"},
         "orl: stream: unknown option \"--dept\"; did you mean \"--depth\"? (see orl stream --help)\n"},
        {__LINE__, {"hash", "--nonsense", "x"}, "orl: hash: unknown option \"--nonsense\" (see orl hash --help)\n"},
        {__LINE__, {"--verison"}, "orl: unknown option \"--verison\"; did you mean \"--version\"? (see orl --help)\n"},
        {__LINE__, {"info", "a", "b"}, "orl: info: unexpected argument \"b\" (see orl info --help)\n"},
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
    for (const char* wish : {"--help", "-h", "help", "--version", "-v"}) {
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
    EXPECT_EQ(SizeInPowersOf1000(std::stoull(free.substr(free.find('(') + 1))), free.substr(0, free.find(" (")))
        << free;
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
    EXPECT_NE(std::string::npos, WithoutLayout(result.mOutput).find("{\"root\":\"C:\\\\\",\"hostFolder\":"));
    EXPECT_NE(std::string::npos, result.mOutput.find("\"languageId\": "));
    EXPECT_NE(std::string::npos, result.mOutput.find("\"codePage\": "));
    EXPECT_NE(std::string::npos, WithoutLayout(result.mOutput).find("{\"root\":\"user\",\"place\":"));
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
