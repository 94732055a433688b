// Checks that the table of commands, the parser, the help and the manual page agree.
#include <OwnUserStore.h>
#include <ProcessRunner.h>

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string>
#include <vector>

using namespace ORLTest;

namespace {

using Json = nlohmann::json;

ProcessResult Orl(const std::vector<std::string>& inArguments)
{
    return RunBesideThisProgram("orl", inArguments);
}

const Json& Table()
{
    static const Json table = Json::parse(Orl({"help", "--json"}).mOutput);
    return table;
}

std::vector<std::string> WordsOf(const std::string& inText)
{
    std::istringstream stream(inText);
    std::vector<std::string> words;
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return words;
}

// Returns the words with one blank before each and after the last.
std::string Flat(const std::string& inText)
{
    std::string flat = " ";
    for (const std::string& word : WordsOf(inText)) {
        flat += word + ' ';
    }
    return flat;
}

std::string ShownNames(const Json& inOption)
{
    std::string shown;
    for (const std::string& name : inOption["names"].get<std::vector<std::string>>()) {
        shown += (shown.empty() ? "" : ", ") + name;
    }
    const std::string value = inOption["value"];
    return shown.empty() ? value + (inOption["repeatable"] ? "..." : "") : shown + (value.empty() ? "" : " " + value);
}

bool HasOption(const Json& inCommand, const std::string& inName)
{
    return std::any_of(inCommand["options"].begin(), inCommand["options"].end(), [&inName](const Json& inOption) {
        const std::vector<std::string> names = inOption["names"];
        return std::find(names.begin(), names.end(), inName) != names.end();
    });
}

std::vector<Json> CommandsThatWork()
{
    std::vector<Json> commands;
    std::copy_if(Table().begin(), Table().end(), std::back_inserter(commands),
                 [](const Json& inCommand) { return inCommand["subcommands"].empty(); });
    return commands;
}

// Undoes the escapes of the manual page.
std::string WithoutEscapes(std::string inPage)
{
    const std::pair<const char*, const char*> escapes[] = {
        {"\\-", "-"}, {"\\&", ""}, {"\\(dq", "\""}, {"\\(aq", "'"}, {"\\e", "\\"}};
    for (const auto& [escape, plain] : escapes) {
        for (std::size_t at = inPage.find(escape); at != std::string::npos;
             at = inPage.find(escape, at + std::string(plain).size())) {
            inPage.replace(at, std::string(escape).size(), plain);
        }
    }
    return inPage;
}

} // namespace

TEST(OrlHelp, Table_NamesEveryCommand)
{
    std::vector<std::string> names;
    for (const Json& command : Table()) {
        names.push_back(command["command"]);
    }
    const std::vector<std::string> expected = {
        "",          "stream",     "ingest",     "verify",      "tc",          "tc show",    "tc parse",
        "tc add",    "tc convert", "tc table",   "colour",      "hash",        "reg",        "reg list",
        "reg get",   "reg set",    "reg unset",  "reg delete",  "reg export",  "reg import", "reg check",
        "res",       "res list",   "res string", "res extract", "res picture", "res check",  "info",
        "make-clip", "help",       "completion"};
    EXPECT_EQ(expected, names);
}

TEST(OrlHelp, HelpOfEachCommand_ShowsItsTable)
{
    for (const Json& command : Table()) {
        const std::string name = command["command"];
        std::vector<std::string> arguments = WordsOf(name);
        arguments.push_back("--help");
        const ProcessResult result = Orl(arguments);
        EXPECT_EQ(0, result.mExitCode) << name;
        EXPECT_EQ("", result.mErrors) << name;
        const std::string help = Flat(result.mOutput);
        EXPECT_EQ(0u, help.find(Flat(command["text"]))) << result.mOutput;
        EXPECT_NE(std::string::npos, help.find(Flat(" Usage: " + command["usage"].get<std::string>()))) << name;
        for (const char* kind : {"arguments", "options"}) {
            for (const Json& option : command[kind]) {
                EXPECT_NE(std::string::npos,
                          help.find(Flat(ShownNames(option) + ' ' + option["text"].get<std::string>())))
                    << ShownNames(option) << '\n'
                    << result.mOutput;
            }
        }
        for (const Json& code : command["exitCodes"]) {
            EXPECT_NE(std::string::npos, help.find(Flat(std::to_string(code["code"].get<int>()) + ' '
                                                        + code["meaning"].get<std::string>())))
                << code << '\n'
                << result.mOutput;
        }
    }
}

TEST(OrlHelp, CommandHelp_PrintsTheSameAsTheOption)
{
    for (const char* name : {"", "ingest", "tc", "tc show", "help"}) {
        std::vector<std::string> option = WordsOf(name);
        std::vector<std::string> command = option;
        option.push_back("--help");
        command.insert(command.begin(), "help");
        const ProcessResult result = Orl(command);
        EXPECT_EQ(0, result.mExitCode) << name;
        EXPECT_EQ(Orl(option).mOutput, result.mOutput) << name;
    }
}

TEST(OrlHelp, LinesOfTheHelp_HaveAtMost80Columns)
{
    for (const Json& command : Table()) {
        std::vector<std::string> arguments = WordsOf(command["command"]);
        arguments.insert(arguments.begin(), "help");
        std::istringstream help(Orl(arguments).mOutput);
        for (std::string line; std::getline(help, line);) {
            EXPECT_GE(80u, line.size()) << line;
        }
    }
}

TEST(OrlHelp, ManualPage_HasEveryCommandOptionAndExitCode)
{
    const ProcessResult result = Orl({"help", "--man"});
    EXPECT_EQ(0, result.mExitCode);
    EXPECT_EQ(0u, result.mOutput.find(".TH ORL 1 "));
    const std::string page = WithoutEscapes(result.mOutput);
    for (const Json& command : Table()) {
        const std::string name = command["command"];
        EXPECT_NE(std::string::npos, page.find("\n.B " + command["usage"].get<std::string>() + '\n')) << name;
        EXPECT_NE(std::string::npos, page.find(command["text"].get<std::string>())) << name;
        const std::size_t begin = name.empty() ? 0 : page.find(".SS orl " + name + '\n');
        ASSERT_NE(std::string::npos, begin) << name;
        const std::size_t next = page.find("\n.S", begin + 1);
        const std::string section = name.empty() ? page : page.substr(begin, next - begin);
        for (const char* kind : {"arguments", "options"}) {
            for (const Json& option : command[kind]) {
                EXPECT_NE(std::string::npos,
                          section.find("\n.TP\n.B " + ShownNames(option) + '\n' + option["text"].get<std::string>()))
                    << name << ' ' << ShownNames(option);
            }
        }
        for (const Json& code : command["subcommands"].empty() ? command["exitCodes"] : Json::array()) {
            EXPECT_NE(std::string::npos, section.find("\n.TP\n.B " + std::to_string(code["code"].get<int>()) + '\n'
                                                      + code["meaning"].get<std::string>()))
                << name << ' ' << code;
        }
    }
}

// Lines that begin with a dot or an apostrophe must be known requests, or the formatter would swallow text.
TEST(OrlHelp, ManualPage_HasOnlyKnownRequests)
{
    const std::set<std::string> known = {".TH", ".SH", ".SS", ".PP", ".TP", ".B"};
    std::istringstream page(Orl({"help", "--man"}).mOutput);
    for (std::string line; std::getline(page, line);) {
        if (!line.empty() && (line[0] == '.' || line[0] == '\'')) {
            EXPECT_EQ(1u, known.count(line.substr(0, line.find(' ')))) << line;
        }
    }
}

TEST(OrlHelp, Parser_KnowsEveryOptionOfTheTableAndNoOther)
{
    const OwnUserStore store;
    for (const Json& command : CommandsThatWork()) {
        const std::vector<std::string> name = WordsOf(command["command"]);
        for (const Json& option : command["options"]) {
            std::vector<std::string> arguments = name;
            arguments.push_back(option["names"].back());
            if (option["value"] != "") {
                arguments.push_back(option["words"].empty() ? "1" : option["words"][0].get<std::string>());
            }
            const ProcessResult result = Orl(arguments);
            EXPECT_EQ(std::string::npos, result.mErrors.find("unknown option")) << result.mErrors;
            EXPECT_EQ(std::string::npos, result.mErrors.find("unexpected argument")) << result.mErrors;
        }
        std::vector<std::string> arguments = name;
        arguments.push_back("--no-such-option");
        const ProcessResult result = Orl(arguments);
        EXPECT_EQ(2, result.mExitCode) << name.back();
        EXPECT_NE(std::string::npos, result.mErrors.find("unknown option \"--no-such-option\"")) << result.mErrors;
    }
}

// Several options may accept the same set of words; only one of them is tried.
TEST(OrlHelp, Parser_AcceptsEveryWordOfTheTableAndNoOther)
{
    std::set<std::string> tried;
    for (const Json& command : CommandsThatWork()) {
        for (const Json& option : command["options"]) {
            if (option["words"].empty() || !tried.insert(option["value"]).second) {
                continue;
            }
            std::vector<std::string> arguments = WordsOf(command["command"]);
            arguments.insert(arguments.end(), {option["names"].back(), ""});
            const std::size_t place = arguments.size() - 1;
            if (arguments[0] == "ingest") { // checks the rate after the command line, and before the folders
                arguments.insert(arguments.end(), {"no such folder", "no such disk", "--dry-run"});
            }
            for (const std::string& word : option["words"].get<std::vector<std::string>>()) {
                arguments[place] = word;
                const std::string errors = Orl(arguments).mErrors;
                EXPECT_EQ(std::string::npos, errors.find(arguments[place - 1] + ':')) << errors;
                EXPECT_EQ(std::string::npos, errors.find('"' + word + '"')) << errors;
            }
            arguments[place] = "no-such-word";
            const ProcessResult result = Orl(arguments);
            EXPECT_EQ(2, result.mExitCode) << arguments[place - 1];
            EXPECT_NE(std::string::npos, result.mErrors.find("no-such-word")) << result.mErrors;
        }
    }
    EXPECT_EQ((std::set<std::string>{"FORM", "FORMAT", "FORMS", "HASH", "KIND", "WHEN"}), tried);
}

TEST(OrlHelp, ExitCodes_AreThoseOfEachCommand)
{
    const std::map<std::string, std::vector<int>> particular = {
        {"ingest", {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 130}},
        {"verify", {2, 130, 6, 7, 10, 4, 1, 9, 11, 0}}, // in the order in which they apply
    };
    for (const Json& command : Table()) {
        std::vector<int> codes;
        for (const Json& code : command["exitCodes"]) {
            codes.push_back(code["code"]);
        }
        const auto found = particular.find(command["command"]);
        EXPECT_EQ(found != particular.end() ? found->second : std::vector<int>({0, 1, 2, 130}), codes)
            << command["command"];
    }
}

// A command that prints a table can also print JSON, or with --quiet nothing.
TEST(OrlHelp, EachCommandThatPrintsATable_HasJsonAndQuiet)
{
    std::vector<std::string> withJson;
    for (const Json& command : CommandsThatWork()) {
        EXPECT_EQ(HasOption(command, "--json") && command["command"] != "help", HasOption(command, "--quiet"))
            << command["command"];
        if (HasOption(command, "--json")) {
            withJson.push_back(command["command"]);
        }
    }
    const std::vector<std::string> silent = {"reg set",     "reg unset",   "reg delete", "reg export",
                                             "res extract", "res picture", "make-clip",  "completion"};
    EXPECT_EQ(CommandsThatWork().size(), withJson.size() + silent.size());
    for (const std::string& name : silent) {
        EXPECT_EQ(0, std::count(withJson.begin(), withJson.end(), name)) << name;
    }
}
