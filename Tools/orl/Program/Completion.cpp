#include "Completion.h"

namespace orl {

std::vector<CommandEntry> CompletedPlaces(const std::vector<CommandEntry>& inProgram)
{
    std::vector<CommandEntry> places = inProgram;
    for (CommandEntry& place : places) {
        if (place.mName == "help") {
            place.mSubcommands = inProgram.front().mSubcommands;
        }
    }
    for (const CommandEntry& command : inProgram) {
        if (!command.mName.empty()) {
            CommandEntry topic;
            topic.mName = "help " + command.mName;
            topic.mSubcommands = command.mSubcommands;
            places.push_back(topic);
        }
    }
    return places;
}

std::string PlacePatterns(const std::vector<CommandEntry>& inPlaces)
{
    std::string patterns;
    for (const CommandEntry& place : inPlaces) {
        if (!place.mName.empty()) {
            const bool isFirstWord = place.mName.find(' ') == std::string::npos;
            patterns += (patterns.empty() ? "" : " | ") + ShellQuoted((isFirstWord ? " " : "") + place.mName);
        }
    }
    return patterns;
}

std::string Joined(const std::vector<std::string>& inWords)
{
    std::string text;
    for (const std::string& word : inWords) {
        text += (text.empty() ? "" : " ") + word;
    }
    return text;
}

std::string ShellQuoted(const std::string& inText)
{
    std::string quoted = "'";
    for (const char character : inText) {
        quoted += character == '\'' ? "'\\''" : std::string(1, character);
    }
    return quoted + '\'';
}

std::string CompletionScript(const std::string& inShell, const std::vector<CommandEntry>& inProgram)
{
    const std::vector<CommandEntry> places = CompletedPlaces(inProgram);
    if (inShell == "bash") {
        return BashCompletion(places);
    }
    return inShell == "zsh" ? ZshCompletion(places) : FishCompletion(places);
}

} // namespace orl
