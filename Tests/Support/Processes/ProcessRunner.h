// Runs a program that was built next to the tests and captures its output.
#pragma once

#include <string>
#include <vector>

namespace ORLTest {

struct ProcessResult
{
    int mExitCode = -1;     // -1 if the process was killed or did not start
    bool mTimedOut = false; // the process was killed at the time limit
    std::string mOutput;    // line endings are "\n" on both platforms
    std::string mErrors;
};

/// Returns the folder of this program and of the programs built next to it, UTF-8, with a trailing separator.
std::string FolderOfThisProgram();

/// Runs inName (without ".exe") from this program's folder, in inWorkingFolder if that is not empty. The arguments
/// are UTF-8 on Windows and bytes on Linux. Standard input delivers inInput and then end of file.
ProcessResult RunBesideThisProgram(const std::string& inName, const std::vector<std::string>& inArguments,
                                   const std::string& inWorkingFolder = std::string(), int inSeconds = 60,
                                   const std::string& inInput = std::string());

} // namespace ORLTest
