// orl: the library's functions on the command line.
#include "Commands.h"
#include "Console.h"
#include "Failure.h"
#include "Verify/VerifyCommand.h"

#include <ORLVersion.h>
#include <algorithm>
#include <exception>
#include <iostream>
#include <new>

namespace {

void AddCommands(CLI::App& ioProgram)
{
    orl::AddStream(ioProgram);
    orl::AddIngest(ioProgram);
    orl::AddVerify(ioProgram);
    orl::AddTimecode(ioProgram);
    orl::AddColour(ioProgram);
    orl::AddHash(ioProgram);
    orl::AddReg(ioProgram);
    orl::AddResources(ioProgram);
    orl::AddInfo(ioProgram);
    orl::AddMakeClip(ioProgram);
}

int Fail(const std::string& inText, int inExitCode)
{
    orl::ReportError(inText);
    return inExitCode;
}

// Buffered output may still fail, for instance on a full disk.
int Finish()
{
    std::cout.flush();
    return std::cout ? orl::kExitSuccess : Fail("cannot write to standard output", orl::kExitFailure);
}

std::string HelpHint(const std::string& inCommand)
{
    return " (see " + inCommand + " --help)";
}

// Throws Failure for an unknown command: the parser would only report that a command is missing.
void CheckCommand(const CLI::App& inProgram, const std::vector<std::string>& inArguments)
{
    const CLI::App* program = &inProgram;
    std::string shown = program->get_name();
    for (const std::string& argument : inArguments) {
        const auto isIt = [&argument](const CLI::App* inCommand) { return inCommand->check_name(argument); };
        if (argument.compare(0, 1, "-") == 0
            || program->get_subcommands([](const CLI::App*) { return true; }).empty()) {
            return;
        }
        const std::vector<const CLI::App*> commands = program->get_subcommands(isIt);
        if (commands.empty()) {
            throw orl::Failure("unknown command \"" + argument + "\"" + HelpHint(shown), orl::kExitUsage);
        }
        program = commands.front();
        shown += " " + program->get_name();
    }
}

// Returns the commands that the parser has matched: "orl tc show".
std::string CommandOf(const CLI::App& inProgram)
{
    std::string shown = inProgram.get_name();
    for (const CLI::App* program = &inProgram; !program->get_subcommands().empty();) {
        program = program->get_subcommands().front();
        shown += " " + program->get_name();
    }
    return shown;
}

// Returns "tc show: LABEL is required (see orl tc show --help)".
std::string UsageError(const CLI::App& inProgram, const std::string& inWhat)
{
    const std::string command = CommandOf(inProgram);
    const std::size_t afterProgram = inProgram.get_name().size() + 1;
    const std::string prefix = command.size() > afterProgram ? command.substr(afterProgram) + ": " : std::string();
    return prefix + inWhat + HelpHint(command);
}

int Run(std::vector<std::string> inArguments)
{
    CLI::App program("Shows what ORLFoundation can do with files, and facts about this machine.", "orl");
    program.set_version_flag("--version", "orl " ORL_VERSION);
    program.require_subcommand(1);
    AddCommands(program);
    try {
        CheckCommand(program, inArguments);
        // The parser consumes arguments from the back.
        std::reverse(inArguments.begin(), inArguments.end());
        program.parse(std::move(inArguments));
    } catch (const CLI::Success& wish) {
        program.exit(wish, std::cout, std::cerr);
    } catch (const CLI::ParseError& error) {
        return Fail(UsageError(program, error.what()), orl::kExitUsage);
    }
    return Finish();
}

} // namespace

int main(int inCount, char** inArguments)
{
    const orl::UTF8Console console;
    try {
        return Run(orl::Arguments(inCount, inArguments));
    } catch (const orl::PartialFailure&) {
        return orl::kExitFailure;
    } catch (const orl::Failure& failure) {
        return Fail(failure.what(), failure.ExitCode());
    } catch (const std::bad_alloc&) {
        return Fail("there is not enough memory", orl::kExitFailure);
    } catch (const std::exception& failure) {
        return Fail(failure.what(), orl::kExitFailure);
    }
}
