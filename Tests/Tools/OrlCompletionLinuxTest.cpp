// Completes command lines of orl in bash, zsh and fish, with the scripts that orl writes for them.
#include <ProcessRunner.h>
#include <TempFolder.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

using namespace ORLTest;

namespace {

using Json = nlohmann::json;
using Words = std::vector<std::string>;

std::string OutputOf(const std::string& inCommand)
{
    std::string output;
    FILE* const pipe = ::popen(inCommand.c_str(), "r");
    char bytes[4096];
    for (std::size_t count = 0; (count = std::fread(bytes, 1, sizeof(bytes), pipe)) > 0;) {
        output.append(bytes, count);
    }
    EXPECT_EQ(0, ::pclose(pipe)) << inCommand;
    return output;
}

// Returns the lines, each up to its first tab, sorted.
Words FirstFields(const std::string& inText)
{
    std::istringstream stream(inText);
    Words words;
    for (std::string line; std::getline(stream, line);) {
        words.push_back(line.substr(0, line.find('\t')));
    }
    std::sort(words.begin(), words.end());
    return words;
}

Words Split(const std::string& inText)
{
    std::istringstream stream(inText);
    Words words;
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return words;
}

class OrlCompletion : public testing::Test
{
protected:
    OrlCompletion()
    {
        for (const char* shell : {"bash", "zsh", "fish"}) {
            const ProcessResult result = RunBesideThisProgram("orl", {"completion", shell});
            EXPECT_EQ(0, result.mExitCode) << result.mErrors;
            mFolder.MakeFile(shell, result.mOutput);
        }
        mFolder.MakeFolder("files/folder");
        mFolder.MakeFile("files/a clip.mov", "x");
    }

    std::string Host(const std::string& inName) const { return (mFolder.Host() / inName).string(); }

    // InBash and InFish complete the last word of a command line and return the choices.
    Words InBash(const std::string& inLine) const
    {
        const bool isNewWord = inLine.back() == ' ';
        const std::size_t count = Split(inLine).size() - (isNewWord ? 0 : 1);
        const std::string script = "cd '" + Host("files") + "'; source '" + Host("bash") + "'; COMP_WORDS=(" + inLine
                                   + (isNewWord ? "''" : "") + "); COMP_CWORD=" + std::to_string(count)
                                   + "; _orl; ((${#COMPREPLY[@]} == 0)) || printf '%s\\n' \"${COMPREPLY[@]}\"";
        return FirstFields(RunScript("bash --norc", script));
    }

    Words InFish(const std::string& inLine) const
    {
        const std::string script =
            "cd '" + Host("files") + "'; source '" + Host("fish") + "'; complete -C '" + inLine + "'";
        return FirstFields(RunScript("HOME='" + mFolder.Host().string() + "' fish --no-config", script));
    }

    // Types the line and a tab into an interactive zsh and returns the line that results.
    std::string InZsh(const std::string& inLine) const
    {
        const std::string script = "zmodload zsh/zpty\n"
                                   "zpty shell zsh -f -i\n"
                                   "zpty -w shell 'PS1=; unsetopt zle_bracketed_paste; autoload -Uz compinit; "
                                   "compinit -u -D; setopt no_list_ambiguous no_auto_param_slash; cd \""
                                   + Host("files") + "\"; source \"" + Host("zsh")
                                   + "\"; print READY'\n"
                                     "zpty -r shell text '*READY*READY*'\n"
                                     "zpty -w -n shell $'"
                                   + inLine
                                   + "\\t\\001print -r -- \"RESULT:\\005:END\"\\n'\n"
                                     "zpty -r shell text $'*\\nRESULT:*:END*'\n"
                                     "print -r -- \"${${text##*RESULT:}%%:END*}\"\n";
        std::string line = RunScript("zsh -f", script);
        line.erase(line.find_last_not_of(" \n") + 1);
        return line;
    }

    const TempFolder& Folder() const { return mFolder; }

private:
    std::string RunScript(const std::string& inShell, const std::string& inScript) const
    {
        std::ofstream(mFolder.Host() / "script", std::ios::binary) << inScript;
        return OutputOf("timeout 60 env " + inShell + " '" + Host("script") + "' 2>&1");
    }

    TempFolder mFolder;
};

struct Row
{
    int mLine;
    const char* mTyped;
    Words mChoices;
};

const Row kRows[] = {
    {__LINE__, "orl stre", {"stream"}},
    {__LINE__, "orl tc sh", {"show"}},
    {__LINE__, "orl tc ", {"add", "convert", "parse", "show", "table"}},
    {__LINE__, "orl tc show --fo", {"--format"}},
    {__LINE__, "orl tc show --format 2997d", {"2997drop"}},
    {__LINE__, "orl tc show --sign ", {"always", "auto", "never"}},
    {__LINE__, "orl colour --from hs", {"hsl", "hsv"}},
    {__LINE__, "orl help res e", {"extract"}},
    {__LINE__, "orl help inf", {"info"}},
    {__LINE__, "orl completion ", {"bash", "fish", "zsh"}},
    {__LINE__, "orl reg set --type u", {"u32", "u64"}},
};

} // namespace

TEST_F(OrlCompletion, Bash_OffersTheChoices)
{
    for (const Row& row : kRows) {
        EXPECT_EQ(row.mChoices, InBash(row.mTyped)) << "row at line " << row.mLine;
    }
    EXPECT_EQ(Words{"rgb,hsl"}, InBash("orl colour --to rgb,hsl"));
    EXPECT_EQ(Words{"2997drop"}, InBash("orl tc show --format = 2997d")) << "as bash splits --format=2997d";
    EXPECT_EQ(Words(), InBash("orl make-clip --size ")) << "a number cannot be completed";
}

TEST_F(OrlCompletion, Fish_OffersTheChoices)
{
    for (const Row& row : kRows) {
        EXPECT_EQ(row.mChoices, InFish(row.mTyped)) << "row at line " << row.mLine;
    }
    EXPECT_EQ(Words{"--format=2997drop"}, InFish("orl tc show --format=2997d"));
}

TEST_F(OrlCompletion, Zsh_CompletesTheOnlyChoice)
{
    for (const Row& row : kRows) {
        const std::string typed = row.mTyped;
        if (row.mChoices.size() == 1) {
            const std::string expected = typed.substr(0, typed.rfind(' ') + 1) + row.mChoices[0];
            const std::string completed = InZsh(typed);
            EXPECT_EQ(expected, completed.substr(0, completed.find_last_not_of('=') + 1))
                << "row at line " << row.mLine;
        }
    }
    EXPECT_EQ("orl tc show --format=2997drop", InZsh("orl tc show --format=2997d"));
    EXPECT_EQ("orl hash a\\ clip.mov", InZsh("orl hash a"));
}

TEST_F(OrlCompletion, FilesAndFolders_AreOfferedWhereTheyFit)
{
    EXPECT_EQ((Words{"a clip.mov", "folder"}), InBash("orl hash "));
    EXPECT_EQ((Words{"a clip.mov"}), InBash("orl res extract -o a"));
    EXPECT_EQ((Words{"folder"}), InBash("orl ingest "));
    EXPECT_EQ(Words(), InBash("orl tc show "));
    EXPECT_EQ((Words{"a clip.mov", "folder/"}), InFish("orl hash "));
    EXPECT_EQ((Words{"folder/"}), InFish("orl ingest "));
    EXPECT_EQ(Words(), InFish("orl tc show "));
}

// The scripts and the parser have the same options, because both come from the same table.
TEST_F(OrlCompletion, EachShell_KnowsEveryOptionOfEveryCommand)
{
    const Json table = Json::parse(RunBesideThisProgram("orl", {"help", "--json"}).mOutput);
    const std::string zsh = RunBesideThisProgram("orl", {"completion", "zsh"}).mOutput;
    for (const Json& command : table) {
        const std::string name = command["command"];
        Words longNames;
        Words names;
        for (const Json& option : command["options"]) {
            for (const std::string& each : option["names"].get<Words>()) {
                names.push_back(each);
                if (each.compare(0, 2, "--") == 0) {
                    longNames.push_back(each);
                }
            }
        }
        std::sort(names.begin(), names.end());
        std::sort(longNames.begin(), longNames.end());
        const std::string line = "orl " + name + (name.empty() ? "" : " ");
        EXPECT_EQ(names, InBash(line + "-"));
        EXPECT_EQ(longNames, InFish(line + "--"));
        const std::size_t begin = zsh.find("    ('" + name + "')\n");
        ASSERT_NE(std::string::npos, begin) << name;
        const std::string place = zsh.substr(begin, zsh.find("      ;;\n", begin) - begin);
        for (const std::string& each : names) {
            EXPECT_TRUE(
                place.find(')' + each + '[') != std::string::npos || place.find(')' + each + '=') != std::string::npos
                || place.find(')' + each + '+') != std::string::npos || place.find('*' + each) != std::string::npos)
                << name << ' ' << each;
        }
    }
}
