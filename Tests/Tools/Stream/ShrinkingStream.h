// A stream whose file is truncated while it is read.
#pragma once

#include <ProcessRunner.h>
#include <TempFolder.h>

#include <cstddef>
#include <gtest/gtest.h>
#include <string>

namespace ORLTest {

/// Streams a file of 64 blocks of 4096 bytes that is cut to inLeft bytes after the first block. Returns the output of
/// the program.
inline std::string OutputOfTruncatedStream(std::size_t inLeft)
{
    const TempFolder folder;
    folder.MakeFile("clip.mov", std::string(64 * 4096, 'x'));
    const ProcessResult result = RunBesideThisProgram(
        "shrinking_stream_host", {(folder.Host() / "clip.mov").u8string(), std::to_string(inLeft)});
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    return result.mOutput;
}

} // namespace ORLTest
