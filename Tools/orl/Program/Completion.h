// Shell completion scripts for the commands and options of orl.
#pragma once

#include "CommandTable.h"

#include <string>
#include <vector>

namespace orl {

/// Returns the script for "bash", "zsh" or "fish".
std::string CompletionScript(const std::string& inShell, const std::vector<CommandEntry>& inProgram);

// Each of these functions expects the result of CompletedPlaces.
std::string BashCompletion(const std::vector<CommandEntry>& inPlaces);
std::string ZshCompletion(const std::vector<CommandEntry>& inPlaces);
std::string FishCompletion(const std::vector<CommandEntry>& inPlaces);

/// Returns the table, extended for the words after "help": "help" gets the subcommands of the program, and new entries
/// for "help tc" and so on get the subcommands of "tc".
std::vector<CommandEntry> CompletedPlaces(const std::vector<CommandEntry>& inProgram);

/// Returns shell patterns that match a place, a blank and the next word: "' tc' | 'tc show'".
std::string PlacePatterns(const std::vector<CommandEntry>& inPlaces);

/// Returns the words, separated by blanks.
std::string Joined(const std::vector<std::string>& inWords);

/// Returns the string in single quotes, in a form that bash, zsh and fish all accept.
std::string ShellQuoted(const std::string& inText);

} // namespace orl
