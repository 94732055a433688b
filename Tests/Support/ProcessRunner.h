// Runs a program that was built beside the tests and keeps what it wrote.
#pragma once

#include <string>
#include <vector>

namespace ORLTest {

struct ProcessResult
{
    int mExitCode = -1;     // -1 when it had to be killed or did not start
    bool mTimedOut = false; // it was killed at the end of its time
    std::string mOutput;    // line ends are "\n" on both platforms
    std::string mErrors;
};

/// The folder that this program and those built beside it stand in, with the separator at its end. UTF-8.
std::string FolderOfThisProgram();

/// Runs inName (without ".exe") from this program's own folder with those arguments, UTF-8 on Windows and bytes on
/// Linux, in inWorkingFolder where one is given. Standard input holds the bytes of inInput and ends.
ProcessResult RunBesideThisProgram(const std::string& inName, const std::vector<std::string>& inArguments,
                                   const std::string& inWorkingFolder = std::string(), int inSeconds = 60,
                                   const std::string& inInput = std::string());

} // namespace ORLTest
