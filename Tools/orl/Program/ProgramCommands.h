// Commands and options that concern the program as a whole.
#pragma once

namespace CLI {
class App;
}

namespace orl {

/// Adds --quiet to each command that has --json.
void AddQuiet(CLI::App& ioProgram);

/// orl help [COMMAND...]: the help of a command, the manual page, or the table of commands.
void AddHelp(CLI::App& ioProgram);

/// orl completion SHELL: the script with which a shell completes the commands and options of orl.
void AddCompletion(CLI::App& ioProgram);

/// Makes each command print its help from the table of commands.
void UseHelpText(CLI::App& ioProgram);

} // namespace orl
