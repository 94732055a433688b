// Runs a host that reads the beginning of a file, and checks which engine its trace reports.
#pragma once

#include "AsyncReadSupport.h"

#include <ProcessRunner.h>

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace ORLTest {

/// inProgram must be reading_host, or a program that executes it with the given arguments.
inline void ExpectReadThrough(const std::string& inEngine, const std::string& inProgram,
                              std::vector<std::string> inArguments = {})
{
    constexpr std::size_t kSize = 50000;
    const TempFolder folder;
    const std::string contents = MakeContents(kSize);
    folder.MakeFile("clip.mov", contents);
    unsigned sum = 0;
    for (const char byte : contents) {
        sum += static_cast<unsigned char>(byte);
    }
    inArguments.push_back((folder.Host() / "clip.mov").u8string());
    const ProcessResult result = RunBesideThisProgram(inProgram, inArguments);
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    EXPECT_NE(std::string::npos,
              result.mOutput.find("<ORL.AsyncFileReader> <1> Asynchronous reads go through " + inEngine + ".\n"))
        << result.mOutput;
    EXPECT_NE(std::string::npos, result.mOutput.find("result 0, 50000 bytes, sum " + std::to_string(sum) + "\n"))
        << result.mOutput;
}

} // namespace ORLTest
