#include "UsageError.h"

#include "CommandTable.h"
#include "Failure.h"
#include "Suggestion.h"

#include <CLI/CLI.hpp>
#include <algorithm>

namespace orl {

namespace {

std::string HelpHint(const std::string& inCommand)
{
    return " (see " + inCommand + " --help)";
}

// Returns the innermost command that the parser has matched.
const CLI::App& MatchedCommand(const CLI::App& inProgram)
{
    const CLI::App* command = &inProgram;
    while (!command->get_subcommands().empty()) {
        command = command->get_subcommands().front();
    }
    return *command;
}

bool IsOption(const std::string& inWord)
{
    return inWord.size() > 1 && inWord[0] == '-';
}

std::string UnknownOption(const std::string& inWord, const CommandEntry& inCommand)
{
    const std::string name = inWord.substr(0, inWord.find('='));
    std::vector<std::string> names;
    for (const OptionEntry& option : inCommand.mOptions) {
        names.insert(names.end(), option.mNames.begin(), option.mNames.end());
    }
    return "unknown option \"" + name + '"' + SuggestionFor(name, names);
}

// Prefers to name a word that the parser could not use, because the parser's own message is less helpful.
std::string Explanation(const CLI::App& inProgram, const CommandEntry& inCommand, const CLI::ParseError& inError)
{
    const std::vector<std::string> words = inProgram.remaining(true);
    const auto option = std::find_if(words.begin(), words.end(), &IsOption);
    if (option != words.end()) {
        return UnknownOption(*option, inCommand);
    }
    const bool isExtra = dynamic_cast<const CLI::ExtrasError*>(&inError) != nullptr && !words.empty();
    return isExtra ? "unexpected argument \"" + words.front() + '"' : inError.what();
}

} // namespace

void CheckCommand(const CLI::App& inProgram, const std::vector<std::string>& inArguments)
{
    const CLI::App* program = &inProgram;
    for (const std::string& argument : inArguments) {
        const CommandEntry entry = EntryOf(*program);
        if (argument.compare(0, 1, "-") == 0 || entry.mSubcommands.empty()) {
            return;
        }
        if (std::find(entry.mSubcommands.begin(), entry.mSubcommands.end(), argument) == entry.mSubcommands.end()) {
            throw Failure("unknown command \"" + argument + '"' + SuggestionFor(argument, entry.mSubcommands)
                              + HelpHint(ShownName(entry)),
                          kExitUsage);
        }
        program = program->get_subcommand(argument);
    }
}

std::string UsageErrorText(const CLI::App& inProgram, const CLI::ParseError& inError)
{
    const CommandEntry command = EntryOf(MatchedCommand(inProgram));
    const std::string prefix = command.mName.empty() ? std::string() : command.mName + ": ";
    return prefix + Explanation(inProgram, command, inError) + HelpHint(ShownName(command));
}

} // namespace orl
