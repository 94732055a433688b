// A stream whose file is cut while it is read.
#pragma once

#include <ProcessRunner.h>
#include <TempFolder.h>

#include <cstddef>
#include <gtest/gtest.h>
#include <string>

namespace ORLTest {

/// What a stream says of a file of 64 blocks of 4096 bytes, of which so many bytes are left when one block has come.
inline std::string SaidOfAStreamCutTo(std::size_t inLeft)
{
    const TempFolder folder;
    folder.MakeFile("clip.mov", std::string(64 * 4096, 'x'));
    const ProcessResult result = RunBesideThisProgram(
        "shrinking_stream_host", {(folder.Host() / "clip.mov").u8string(), std::to_string(inLeft)});
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    return result.mOutput;
}

} // namespace ORLTest
