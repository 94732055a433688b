// Runs orl res as a user does.
#include <JsonLayout.h>
#include <ProcessRunner.h>
#include <TempFolder.h>

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

using namespace ORLTest;

namespace {

std::string Beside(const std::string& inName)
{
    return FolderOfThisProgram() + inName;
}

const char* const kFiles[] = {"resources_lookup.res", "resources_lookup_windows.dll",
                              ("resources_lookup" ORL_PLUG_IN_SUFFIX)};

ProcessResult Res(std::vector<std::string> inArguments)
{
    inArguments.insert(inArguments.begin(), "res");
    return RunBesideThisProgram("orl", inArguments);
}

std::string OutputOf(const std::vector<std::string>& inArguments)
{
    const ProcessResult result = Res(inArguments);
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    EXPECT_EQ("", result.mErrors);
    return result.mOutput;
}

bool Contains(const std::string& inText, const std::string& inPart)
{
    return inText.find(inPart) != std::string::npos;
}

std::string ContentsOf(const std::filesystem::path& inPath)
{
    std::ifstream file(inPath, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

} // namespace

TEST(OrlRes, List_IsTheSameForEachFormat)
{
    const std::string first = OutputOf({"list", Beside(kFiles[0])});
    EXPECT_EQ(0u, first.find("type          name                      language  size\n"));
    EXPECT_TRUE(Contains(first, "\nSTRING        1                         de_DE     66\n")) << first;
    EXPECT_TRUE(Contains(first, "\nSHELF         FIRSTNAME                 neutral   7\n")) << first;
    EXPECT_TRUE(Contains(first, "\nGROUP_CURSOR  3                         neutral   34\n")) << first;
    for (const char* file : kFiles) {
        EXPECT_EQ(first, OutputOf({"list", Beside(file)})) << file;
    }
}

TEST(OrlRes, ListAsJson_NamesTheFormat)
{
    const char* const kFormats[] = {"compiled resource file", "Windows module", nullptr};
    for (std::size_t i = 0; i < std::size(kFiles); ++i) {
        const std::string output = OutputOf({"list", Beside(kFiles[i]), "--json"});
        if (kFormats[i] != nullptr) {
            EXPECT_TRUE(Contains(output, "\"format\": \"" + std::string(kFormats[i]) + "\"")) << output;
        }
        EXPECT_TRUE(
            Contains(WithoutLayout(output), R"({"type":6,"name":1,"language":1031,"languageName":"de_DE","size":66})"))
            << output;
        EXPECT_TRUE(Contains(output, "\"damaged\": false"));
    }
}

TEST(OrlRes, String_SaysWhichLanguageAnswers)
{
    for (const char* file : kFiles) {
        EXPECT_EQ("1       de_DE    Gr\xC3\xBC\xC3\x9F"
                  "e\n",
                  OutputOf({"string", Beside(file), "1", "--language", "de_DE"}));
        EXPECT_EQ("40      en_US    forty, in American English alone\n",
                  OutputOf({"string", Beside(file), "40", "--language", "de_DE"}));
        EXPECT_EQ("1       neutral  neutral one\n", OutputOf({"string", Beside(file), "1", "--language", "0x0c0c"}));
        EXPECT_EQ("1       ja_JP    \xE3\x81\x93\xE3\x82\x93\xE3\x81\xAB\xE3\x81\xA1\xE3\x81\xAF\n",
                  OutputOf({"string", Beside(file), "1", "--language", "1041"}));
    }
    const std::string all = OutputOf({"string", Beside(kFiles[0])});
    EXPECT_TRUE(Contains(all, "31      en_US    thirty-one\n")) << all;
    EXPECT_TRUE(Contains(all, "200     neutral  neutral alone\n")) << all;
}

TEST(OrlRes, StringThatIsMissing_FailsOnOneLine)
{
    const ProcessResult result = Res({"string", Beside(kFiles[0]), "7777"});
    EXPECT_EQ(1, result.mExitCode);
    EXPECT_EQ("", result.mOutput);
    EXPECT_TRUE(Contains(result.mErrors, "has no text 7777 for en_US\n")) << result.mErrors;
}

TEST(OrlRes, LanguageThatIsNone_IsAUsageError)
{
    for (const char* language : {"german", "0x", "65536", "0x10000", "-1", ""}) {
        EXPECT_EQ(2, Res({"string", Beside(kFiles[0]), "--language", language}).mExitCode) << language;
    }
}

TEST(OrlRes, Extract_WritesTheBytes)
{
    const TempFolder folder;
    const std::string file = (folder.Host() / "out.bin").u8string();
    for (const char* from : kFiles) {
        EXPECT_EQ("", OutputOf({"extract", Beside(from), "rcdata", "301", "-o", file}));
        EXPECT_EQ(std::string(2, '\0'), ContentsOf(folder.Host() / "out.bin"));
        EXPECT_EQ("ja", OutputOf({"extract", Beside(from), "10", "108", "--language", "ja_JP"}));
        EXPECT_EQ("by text", OutputOf({"extract", Beside(from), "shelf", "FirstName"}));
        EXPECT_EQ("by number", OutputOf({"extract", Beside(from), "SHELF", "7"}));
    }
    const ProcessResult missing = Res({"extract", Beside(kFiles[0]), "RCDATA", "9999"});
    EXPECT_EQ(1, missing.mExitCode);
    EXPECT_TRUE(Contains(missing.mErrors, "has no RCDATA 9999 for en_US\n")) << missing.mErrors;
}

TEST(OrlRes, Check_ReportsWhatALanguageLacks)
{
    const ProcessResult result = Res({"check", Beside(kFiles[0])});
    EXPECT_EQ(1, result.mExitCode);
    EXPECT_EQ("", result.mErrors);
    EXPECT_TRUE(Contains(result.mOutput, "text 40: present in en_US, missing in de_DE\n")) << result.mOutput;
    EXPECT_TRUE(Contains(result.mOutput, "MENU 1: present in de_DE, missing in ja_JP\n")) << result.mOutput;
    EXPECT_FALSE(Contains(result.mOutput, "text 0:")) << "a neutral text serves all";
    EXPECT_FALSE(Contains(result.mOutput, "MENU 2:"));
}

TEST(OrlRes, CheckOfADamagedFile_SaysSo)
{
    const TempFolder folder;
    const std::string whole = ContentsOf(Beside(kFiles[0]));
    folder.MakeFile("cut.res", whole.substr(0, whole.size() - 41));
    const ProcessResult result = Res({"check", (folder.Host() / "cut.res").u8string()});
    EXPECT_EQ(1, result.mExitCode);
    EXPECT_TRUE(Contains(result.mOutput, "the file is damaged")) << result.mOutput;
}

// The results of the other files are not lost.
TEST(OrlRes, CheckOfAFileThatCannotBeOpened_ChecksTheOthers)
{
    const TempFolder folder;
    const std::string missing = (folder.Host() / "missing.res").u8string();
    const std::string fault = "MENU 1: present in de_DE, missing in ja_JP";
    const std::vector<std::string> arguments{"check", Beside(kFiles[0]), missing, Beside(kFiles[1])};
    const ProcessResult text = Res(arguments);
    EXPECT_EQ(1, text.mExitCode);
    EXPECT_EQ(0u, text.mErrors.find("orl: res check: cannot read \"" + missing + "\": ")) << text.mErrors;
    EXPECT_TRUE(Contains(text.mOutput, Beside(kFiles[0]) + ": " + fault + "\n")) << text.mOutput;
    EXPECT_TRUE(Contains(text.mOutput, Beside(kFiles[1]) + ": " + fault + "\n")) << text.mOutput;
    std::vector<std::string> asJson = arguments;
    asJson.push_back("--json");
    const ProcessResult json = Res(asJson);
    EXPECT_EQ(1, json.mExitCode);
    EXPECT_EQ(text.mErrors, json.mErrors);
    const std::size_t first = json.mOutput.find(fault);
    ASSERT_NE(std::string::npos, first) << json.mOutput;
    const std::size_t error = json.mOutput.find("\"error\": \"res check: cannot read ", first);
    ASSERT_NE(std::string::npos, error) << json.mOutput;
    EXPECT_NE(std::string::npos, json.mOutput.find(fault, error)) << json.mOutput;
}

TEST(OrlRes, WhatIsNoResourceFile_FailsWithItsName)
{
    const TempFolder folder;
    folder.MakeFile("notes.txt", "no resources at all");
    for (const char* command : {"list", "string", "check"}) {
        const ProcessResult text = Res({command, (folder.Host() / "notes.txt").u8string()});
        EXPECT_EQ(1, text.mExitCode);
        EXPECT_TRUE(Contains(text.mErrors, "notes.txt\": it is not a Windows module")) << text.mErrors;
        const ProcessResult missing = Res({command, (folder.Host() / "missing.dll").u8string()});
        EXPECT_EQ(1, missing.mExitCode);
        EXPECT_TRUE(Contains(missing.mErrors, "missing.dll\": ")) << missing.mErrors;
        EXPECT_EQ(1, Res({command, folder.Host().u8string()}).mExitCode);
    }
}
