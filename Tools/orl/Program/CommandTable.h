// The table of commands, read from the parser. Help, manual page and completions are generated from it.
#pragma once

#include "ExitCodeTable.h"
#include "ValueTable.h"

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace orl {

struct OptionEntry
{
    std::vector<std::string> mNames; // "-q", "--quiet"; empty for a positional argument
    std::string mValue;              // "SIZE"; empty for a flag
    std::string mText;
    bool mIsRequired = false;
    bool mIsRepeatable = false;
};

struct CommandEntry
{
    std::string mName; // the full name: "tc show"; empty for the program
    std::string mText;
    std::vector<OptionEntry> mArguments;
    std::vector<OptionEntry> mOptions;
    std::vector<std::string> mSubcommands; // names without those of the parents: "show"
    ExitCodes mExitCodes;
};

/// Returns the program's entry, or the entry of one of its commands.
CommandEntry EntryOf(const CLI::App& inCommand);

/// Returns the entries of the program and of all its commands, each before its subcommands.
std::vector<CommandEntry> AllEntriesOf(const CLI::App& inProgram);

/// Returns "orl tc show".
std::string ShownName(const CommandEntry& inCommand);

/// Returns "-q, --quiet", "--block SIZE", or "FILE..." for an argument that may be repeated.
std::string ShownName(const OptionEntry& inOption);

/// Returns "orl tc show [OPTIONS] [COUNT...]".
std::string UsageOf(const CommandEntry& inCommand);

} // namespace orl
