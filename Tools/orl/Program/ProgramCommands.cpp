#include "ProgramCommands.h"

#include "CommandTable.h"
#include "Completion.h"
#include "Console.h"
#include "Failure.h"
#include "HelpText.h"
#include "ManualPage.h"
#include "QuietOutput.h"
#include "TableJson.h"
#include "UsageError.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace orl {

namespace {

// Help is no wider than this even on a wider terminal, because long lines are hard to read.
constexpr std::size_t kMaxColumns = 100;

const CLI::App& RootOf(const CLI::App& inCommand)
{
    return inCommand.get_parent() == nullptr ? inCommand : RootOf(*inCommand.get_parent());
}

std::string HelpOf(const CLI::App& inCommand)
{
    return HelpTextOf(EntryOf(inCommand), AllEntriesOf(RootOf(inCommand)), std::min(TerminalColumns(), kMaxColumns));
}

struct HelpOptions
{
    std::vector<std::string> mCommand;
    bool mAsManual = false;
    bool mAsJson = false;
};

void ShowHelp(const CLI::App& inProgram, const HelpOptions& inOptions)
{
    if (inOptions.mAsManual) {
        std::cout << ManualPageOf(AllEntriesOf(inProgram));
        return;
    }
    if (inOptions.mAsJson) {
        std::cout << JsonOf(AllEntriesOf(inProgram));
        return;
    }
    CheckCommand(inProgram, inOptions.mCommand);
    const CLI::App* command = &inProgram;
    for (const std::string& name : inOptions.mCommand) {
        if (EntryOf(*command).mSubcommands.empty()) {
            throw Failure("help: unexpected argument \"" + name + "\" (see orl help --help)", kExitUsage);
        }
        command = command->get_subcommand(name);
    }
    std::cout << HelpOf(*command);
}

} // namespace

void AddQuiet(CLI::App& ioProgram)
{
    for (CLI::App* const command : ioProgram.get_subcommands([](CLI::App*) { return true; })) {
        AddQuiet(*command);
    }
    CLI::Option* const json = ioProgram.get_option_no_throw("--json");
    if (json != nullptr) {
        ioProgram
            .add_flag_callback("-q,--quiet", &SilenceOutput, "print nothing but errors; the exit code is the answer")
            ->excludes(json);
    }
}

void AddHelp(CLI::App& ioProgram)
{
    const auto options = std::make_shared<HelpOptions>();
    CLI::App* const help = ioProgram.add_subcommand("help", "Show the help of the program or of a command");
    help->add_option("COMMAND", options->mCommand, "the command, such as ingest or tc show; default: the program");
    help->add_flag("--man", options->mAsManual, "write the manual page of the whole program");
    help->add_flag("--json", options->mAsJson, "write all commands, options and exit codes as one JSON array");
    help->callback([options, &ioProgram] { ShowHelp(ioProgram, *options); });
}

void AddCompletion(CLI::App& ioProgram)
{
    const auto shell = std::make_shared<std::string>();
    CLI::App* const completion =
        ioProgram.add_subcommand("completion", "Write the script that completes command lines of orl in a shell");
    completion->add_option("SHELL", *shell, "bash, zsh or fish")
        ->required()
        ->check(CLI::IsMember(ValueOf("SHELL").mWords).description(""));
    completion->callback([shell, &ioProgram] { std::cout << CompletionScript(*shell, AllEntriesOf(ioProgram)); });
}

void UseHelpText(CLI::App& ioProgram)
{
    ioProgram.formatter_fn(
        [](const CLI::App* inCommand, const std::string&, CLI::AppFormatMode) { return HelpOf(*inCommand); });
}

} // namespace orl
