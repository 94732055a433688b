// orl: the library's functions on the command line.
#include "Commands.h"
#include "Console.h"
#include "Failure.h"
#include "Program/ProgramCommands.h"
#include "Program/UsageError.h"
#include "StopRequest.h"
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
    orl::AddQuiet(ioProgram);
    orl::AddHelp(ioProgram);
    orl::AddCompletion(ioProgram);
}

int Fail(const std::string& inText, int inExitCode)
{
    orl::ReportError(inText);
    return inExitCode;
}

// Flushes standard output, because writing buffered output may still fail, for instance on a full disk.
int Finish()
{
    std::cout.flush();
    return std::cout ? orl::kExitSuccess : Fail("cannot write to standard output", orl::kExitFailure);
}

int Run(std::vector<std::string> inArguments)
{
    CLI::App program("Shows what ORLFoundation can do with files, and facts about this machine.", "orl");
    // Subcommands inherit the help flag and the help text, so these are set first.
    program.set_help_flag("-h,--help", "print this help, and exit");
    program.set_version_flag("-v,--version", "orl " ORL_VERSION, "print the version, and exit");
    program.require_subcommand(1);
    orl::UseHelpText(program);
    AddCommands(program);
    try {
        orl::CheckCommand(program, inArguments);
        // The parser consumes arguments from the back.
        std::reverse(inArguments.begin(), inArguments.end());
        program.parse(std::move(inArguments));
    } catch (const CLI::Success& wish) {
        program.exit(wish, std::cout, std::cerr);
    } catch (const CLI::ParseError& error) {
        return Fail(orl::UsageErrorText(program, error), orl::kExitUsage);
    }
    return Finish();
}

} // namespace

int main(int inCount, char** inArguments)
{
    orl::ReserveStandardStreams();
    const orl::UTF8Console console;
    orl::ExitOnStop();
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
