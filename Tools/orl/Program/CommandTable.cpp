#include "CommandTable.h"

#include <CLI/CLI.hpp>

namespace orl {

namespace {

constexpr char kProgram[] = "orl";

std::string FullNameOf(const CLI::App& inCommand)
{
    const CLI::App* const parent = inCommand.get_parent();
    if (parent == nullptr) {
        return std::string();
    }
    const std::string before = FullNameOf(*parent);
    return before.empty() ? inCommand.get_name() : before + ' ' + inCommand.get_name();
}

// The parser appends the descriptions of checks to the name of a value: "TEXT:INT in [1 - 64]".
std::string ValueNameOf(const CLI::Option& inOption)
{
    const std::string name = inOption.get_type_name();
    return name.substr(0, name.find(':'));
}

OptionEntry OptionEntryOf(const CLI::Option& inOption)
{
    OptionEntry entry;
    entry.mText = inOption.get_description();
    entry.mIsRequired = inOption.get_required();
    entry.mIsRepeatable = inOption.get_items_expected_max() > 1 && inOption.get_expected_max() > 1;
    if (inOption.get_positional()) {
        entry.mValue = inOption.get_name(true);
        return entry;
    }
    for (const std::string& name : inOption.get_snames()) {
        entry.mNames.push_back("-" + name);
    }
    for (const std::string& name : inOption.get_lnames()) {
        entry.mNames.push_back("--" + name);
    }
    const bool takesValue = inOption.get_items_expected_max() != 0;
    entry.mValue = takesValue ? ValueNameOf(inOption) : std::string();
    return entry;
}

void AddEntriesOf(const CLI::App& inCommand, std::vector<CommandEntry>& ioEntries)
{
    ioEntries.push_back(EntryOf(inCommand));
    for (const CLI::App* const subcommand : inCommand.get_subcommands([](const CLI::App*) { return true; })) {
        AddEntriesOf(*subcommand, ioEntries);
    }
}

} // namespace

CommandEntry EntryOf(const CLI::App& inCommand)
{
    CommandEntry entry;
    entry.mName = FullNameOf(inCommand);
    entry.mText = inCommand.get_description();
    for (const CLI::Option* const option : inCommand.get_options()) {
        (option->get_positional() ? entry.mArguments : entry.mOptions).push_back(OptionEntryOf(*option));
    }
    for (const CLI::App* const subcommand : inCommand.get_subcommands([](const CLI::App*) { return true; })) {
        entry.mSubcommands.push_back(subcommand->get_name());
    }
    entry.mExitCodes = ExitCodesOf(entry.mName);
    return entry;
}

std::vector<CommandEntry> AllEntriesOf(const CLI::App& inProgram)
{
    std::vector<CommandEntry> entries;
    AddEntriesOf(inProgram, entries);
    return entries;
}

std::string ShownName(const CommandEntry& inCommand)
{
    return inCommand.mName.empty() ? kProgram : std::string(kProgram) + ' ' + inCommand.mName;
}

std::string ShownName(const OptionEntry& inOption)
{
    if (inOption.mNames.empty()) {
        return inOption.mValue + (inOption.mIsRepeatable ? "..." : "");
    }
    std::string shown;
    for (const std::string& name : inOption.mNames) {
        shown += (shown.empty() ? "" : ", ") + name;
    }
    return inOption.mValue.empty() ? shown : shown + ' ' + inOption.mValue;
}

std::string UsageOf(const CommandEntry& inCommand)
{
    std::string usage = ShownName(inCommand) + " [OPTIONS]";
    if (!inCommand.mSubcommands.empty()) {
        return usage + " COMMAND";
    }
    for (const OptionEntry& argument : inCommand.mArguments) {
        const std::string shown = ShownName(argument);
        usage += argument.mIsRequired ? ' ' + shown : " [" + shown + ']';
    }
    return usage;
}

} // namespace orl
