// Runs each "$ orl ..." line in the console blocks of the documents and compares its output with the lines below it.
#include <OwnUserStore.h>
#include <ProcessRunner.h>

#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace ORLTest;

namespace {

struct Shown
{
    int mLine;
    std::string mCommand;
    std::string mAnswer;
};

// Returns the commands of a document, each with the lines up to the next command or the end of the block.
std::vector<Shown> CommandsIn(const std::string& inDocument)
{
    std::ifstream file(ORL_DOCUMENTS "/" + inDocument);
    std::vector<Shown> commands;
    bool isInside = false;
    int number = 0;
    for (std::string line; std::getline(file, line);) {
        ++number;
        if (line.compare(0, 3, "```") == 0) {
            isInside = line == "```console";
        } else if (isInside && line.compare(0, 2, "$ ") == 0) {
            commands.push_back(Shown{number, line.substr(2), std::string()});
        } else if (isInside && !commands.empty()) {
            commands.back().mAnswer += line + '\n';
        }
    }
    return commands;
}

// Splits a command line like a shell, but supports only single and double quotes.
std::vector<std::string> WordsOf(const std::string& inLine)
{
    std::vector<std::string> words;
    std::string word;
    char quote = 0;
    bool isWord = false;
    for (const char character : inLine + ' ') {
        if (quote != 0 ? character == quote : character == '\'' || character == '"') {
            quote = quote != 0 ? '\0' : character;
            isWord = true;
        } else if (quote == 0 && character == ' ') {
            if (isWord) {
                words.push_back(word);
            }
            word.clear();
            isWord = false;
        } else {
            word += character;
            isWord = true;
        }
    }
    return words;
}

std::string WithLineEnds(std::string inText)
{
    for (std::size_t at = inText.find("\\n"); at != std::string::npos; at = inText.find("\\n")) {
        inText.replace(at, 2, "\n");
    }
    return inText;
}

// Supports "orl ..." and "printf TEXT | orl ...".
std::string AnswerTo(const std::string& inCommand)
{
    std::vector<std::string> words = WordsOf(inCommand);
    std::string input;
    if (words.size() > 3 && words[0] == "printf" && words[2] == "|") {
        input = WithLineEnds(words[1]);
        words.erase(words.begin(), words.begin() + 3);
    }
    if (words.empty() || words[0] != "orl") {
        return "(not a command of orl)\n";
    }
    words.erase(words.begin());
    const ProcessResult result = RunBesideThisProgram("orl", words, std::string(), 60, input);
    const std::string answer = result.mOutput + result.mErrors;
    const bool hasFailed = answer.find("cannot") != std::string::npos || answer.find("\"error\"") != std::string::npos;
    EXPECT_EQ(hasFailed ? 1 : 0, result.mExitCode) << inCommand;
    return answer;
}

void ExpectAnswersOf(const std::string& inDocument, std::size_t inAtLeast)
{
    const std::vector<Shown> commands = CommandsIn(inDocument);
    EXPECT_GE(commands.size(), inAtLeast);
    for (const Shown& shown : commands) {
        EXPECT_EQ(shown.mAnswer, AnswerTo(shown.mCommand))
            << inDocument << ':' << shown.mLine << ": " << shown.mCommand;
    }
}

} // namespace

TEST(DocumentedCommands, OfTheTimecodePage_AnswerAsShown)
{
    ExpectAnswersOf("Docs/timecode.md", 40);
}

// The commands change settings: on Linux those of a private store, on Windows those of a key that they finally delete.
TEST(DocumentedCommands, OfTheSettingsPage_AnswerAsShown)
{
    const OwnUserStore store;
    ExpectAnswersOf("Docs/settings.md", 8);
}

TEST(DocumentedCommands, OfTheReadme_AnswerAsShown)
{
    const OwnUserStore store;
    ExpectAnswersOf("README.md", 5);
}
