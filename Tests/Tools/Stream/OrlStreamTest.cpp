// Runs orl stream and orl make-clip as a user does.
#include "ShrinkingStream.h"

#include <JsonLayout.h>
#include <ORLDiskUtils.h>
#include <ORLPathUtils.h>
#include <ORLResult.h>
#include <ProcessRunner.h>
#include <TempFolder.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

using namespace ORLTest;

namespace {

ProcessResult Orl(const std::vector<std::string>& inArguments)
{
    return RunBesideThisProgram("orl", inArguments);
}

// Counts the entries of a folder.
int Entries(const std::filesystem::path& inFolder)
{
    return static_cast<int>(std::distance(std::filesystem::directory_iterator(inFolder), {}));
}

// Computes the checksum bit by bit, independent of the tool's library.
std::string CRC(const std::string& inBytes)
{
    std::uint32_t crc = 0xFFFFFFFFu;
    for (const char character : inBytes) {
        crc ^= static_cast<unsigned char>(character);
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1u)));
        }
    }
    char text[9];
    std::snprintf(text, sizeof(text), "%08x", static_cast<unsigned>(crc ^ 0xFFFFFFFFu));
    return text;
}

std::string Contents(std::size_t inSize)
{
    std::string contents(inSize, '\0');
    for (std::size_t i = 0; i < inSize; ++i) {
        contents[i] = static_cast<char>((i * 2654435761u) >> 11);
    }
    return contents;
}

bool IsOneLineOfOrl(const std::string& inErrors)
{
    return inErrors.compare(0, 5, "orl: ") == 0 && inErrors.find('\n') == inErrors.size() - 1;
}

class OrlStream : public testing::Test
{
protected:
    std::string Host(const std::string& inName) const { return (mFolder.Host() / inName).u8string(); }

    TempFolder mFolder;
};

} // namespace

TEST_F(OrlStream, FilesOfEverySize_ShowTheirChecksums)
{
    std::vector<std::string> arguments{"stream", "--verify", "--block", "64K", "--depth", "4"};
    std::vector<std::string> sums;
    for (const unsigned size : {0u, 1u, 511u, 512u, 513u, 65535u, 65536u, 65537u, 1000000u}) {
        const std::string contents = Contents(size);
        mFolder.MakeFile("f" + std::to_string(size), contents);
        arguments.push_back(Host("f" + std::to_string(size)));
        sums.push_back(CRC(contents));
    }
    const ProcessResult result = Orl(arguments);
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    EXPECT_EQ("", result.mErrors);
    for (const std::string& sum : sums) {
        EXPECT_NE(std::string::npos, result.mOutput.find(sum)) << sum << " in\n" << result.mOutput;
    }
    EXPECT_NE(std::string::npos, result.mOutput.find("Each CRC-32 equals the one of a plain buffered read."));
    EXPECT_EQ(std::string::npos, result.mOutput.find('\r')) << "no progress line where output is no terminal";
}

TEST_F(OrlStream, OneReadInFlight_GivesTheSameChecksumAsMany)
{
    const std::string contents = Contents(700001);
    mFolder.MakeFile("clip.mov", contents);
    for (const char* depth : {"1", "7", "2048"}) {
        const ProcessResult result = Orl({"stream", "--block", "4096", "--depth", depth, Host("clip.mov")});
        EXPECT_EQ(0, result.mExitCode) << result.mErrors;
        EXPECT_NE(std::string::npos, result.mOutput.find(CRC(contents))) << result.mOutput;
    }
}

TEST_F(OrlStream, LibraryPath_IsTakenLikeAHostPath)
{
    mFolder.MakeFile("clip.mov", "media");
    const UTF16String path = mFolder.Path(u"clip.mov");
    const std::string narrow(path.begin(), path.end());
    for (const std::string& argument : {narrow, "\\\\?\\" + narrow}) {
        const ProcessResult result = Orl({"stream", argument});
        EXPECT_EQ(0, result.mExitCode) << result.mErrors;
        EXPECT_NE(std::string::npos, result.mOutput.find(CRC("media"))) << result.mOutput;
    }
}

TEST_F(OrlStream, Json_IsAnArrayOfObjects)
{
    mFolder.MakeFile("clip.mov", "media");
    const ProcessResult result = Orl({"stream", "--json", Host("clip.mov")});
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    EXPECT_EQ("[\n", result.mOutput.substr(0, 2));
    EXPECT_NE(std::string::npos, WithoutLayout(result.mOutput).find("\"bytes\":5,"));
    EXPECT_NE(std::string::npos, WithoutLayout(result.mOutput).find("\"crc32\":\"" + CRC("media") + "\"}]"));
}

TEST_F(OrlStream, WhatCannotBeStreamed_IsSaidOnOneLineAndEndsWith1)
{
    mFolder.MakeFolder("folder");
    struct Row
    {
        int mLine;
        const char* mName;
        const char* mReason;
    };
    const Row rows[] = {
        {__LINE__, "missing.mov", "there is no such file"},
        {__LINE__, "no/such/folder.mov", "there is no such file"},
        {__LINE__, "folder", "it is a directory"},
    };
    for (const Row& row : rows) {
        const ProcessResult result = Orl({"stream", Host(row.mName)});
        EXPECT_EQ(1, result.mExitCode) << "row at line " << row.mLine;
        EXPECT_EQ("", result.mOutput) << "row at line " << row.mLine;
        EXPECT_TRUE(IsOneLineOfOrl(result.mErrors)) << result.mErrors;
        EXPECT_NE(std::string::npos, result.mErrors.find(row.mReason)) << result.mErrors;
    }
}

TEST_F(OrlStream, SecondFileMissing_StillShowsTheFirst)
{
    mFolder.MakeFile("clip.mov", "media");
    const ProcessResult result = Orl({"stream", Host("clip.mov"), Host("missing.mov")});
    EXPECT_EQ(1, result.mExitCode);
    EXPECT_NE(std::string::npos, result.mOutput.find(CRC("media")));
    EXPECT_TRUE(IsOneLineOfOrl(result.mErrors)) << result.mErrors;
}

TEST_F(OrlStream, CommandLineThatMakesNoSense_EndsWith2)
{
    const std::vector<std::vector<std::string>> lines = {{"stream"},
                                                         {"stream", "--depth", "0", "x"},
                                                         {"stream", "--depth", "2049", "x"},
                                                         {"stream", "--block", "0", "x"},
                                                         {"stream", "--nonsense", "x"}};
    for (const std::vector<std::string>& line : lines) {
        const ProcessResult result = Orl(line);
        EXPECT_EQ(2, result.mExitCode) << line.back();
        EXPECT_TRUE(IsOneLineOfOrl(result.mErrors)) << result.mErrors;
    }
}

TEST_F(OrlStream, MadeClip_IsWholeFramesAndStreams)
{
    const ProcessResult made = Orl({"make-clip", Host("clip.y4m"), "--size", "4M"});
    ASSERT_EQ(0, made.mExitCode) << made.mErrors;
    const std::uintmax_t size = std::filesystem::file_size(mFolder.Host() / "clip.y4m");
    EXPECT_GE(size, std::uintmax_t{4} << 20);
    std::ifstream file(mFolder.Host() / "clip.y4m", std::ios::binary);
    std::string header;
    std::getline(file, header);
    EXPECT_EQ("YUV4MPEG2 W1920 H1080 F25:1 Ip A1:1 C420jpeg", header);
    EXPECT_EQ(0u, (size - header.size() - 1) % (6 + 1920 * 1080 * 3 / 2));
    EXPECT_EQ(1, Entries(mFolder.Host())) << "the clip alone";
    EXPECT_EQ(0, Orl({"stream", "--verify", Host("clip.y4m")}).mExitCode);
}

TEST_F(OrlStream, ClipThatCannotBeWritten_LeavesNothingBehind)
{
    const ProcessResult result = Orl({"make-clip", Host("no/such/clip.y4m"), "--size", "1M"});
    EXPECT_EQ(1, result.mExitCode);
    EXPECT_EQ("orl: make-clip: cannot write \"" + Host("no/such/clip.y4m") + "\": No such file or directory\n",
              result.mErrors);
    EXPECT_TRUE(std::filesystem::is_empty(mFolder.Host()));
}

TEST_F(OrlStream, ClipInPlaceOfAFolder_IsRefused)
{
    mFolder.MakeFolder("folder");
    const ProcessResult result = Orl({"make-clip", Host("folder"), "--size", "1M"});
    EXPECT_EQ(1, result.mExitCode);
    EXPECT_EQ("orl: make-clip: cannot write \"" + Host("folder") + "\": it is a directory\n", result.mErrors);
    EXPECT_TRUE(std::filesystem::is_directory(mFolder.Host() / "folder"));
    EXPECT_EQ(1, Entries(mFolder.Host())) << "the folder alone";
}

TEST_F(OrlStream, SmallestClip_HasOneFrame)
{
    ASSERT_EQ(0, Orl({"make-clip", Host("clip.y4m"), "--size", "1"}).mExitCode);
    EXPECT_EQ(45u + 6 + 1920 * 1080 * 3 / 2, std::filesystem::file_size(mFolder.Host() / "clip.y4m"));
}

// A negative size must not be mistaken for a huge one, which would fill the disk.
TEST_F(OrlStream, ClipOfNoSizeOrTooLarge_IsAMistakeOfTheCommandLine)
{
    for (const char* size : {"0", "-1", "-256M", "2T", "99999999999999999999", "1.5M", "lots", ""}) {
        const ProcessResult result = Orl({"make-clip", Host("clip.y4m"), "--size", size});
        EXPECT_EQ(2, result.mExitCode) << size;
        EXPECT_TRUE(IsOneLineOfOrl(result.mErrors)) << result.mErrors;
        EXPECT_NE(std::string::npos, result.mErrors.find("--size")) << result.mErrors;
    }
    EXPECT_TRUE(std::filesystem::is_empty(mFolder.Host()));
}

TEST_F(OrlStream, ClipLargerThanTheDisksRoom_IsRefusedBeforeAnythingIsWritten)
{
    if (ORL::DiskUtils::GetFreeSpaceFromPath(mFolder.Path()) >= std::uint64_t{1} << 40) {
        GTEST_SKIP() << "the disk has room for the largest clip";
    }
    const ProcessResult result = Orl({"make-clip", Host("clip.y4m"), "--size", "1T"});
    EXPECT_EQ(1, result.mExitCode);
    EXPECT_TRUE(IsOneLineOfOrl(result.mErrors)) << result.mErrors;
    EXPECT_NE(std::string::npos, result.mErrors.find("the disk has ")) << result.mErrors;
    EXPECT_NE(std::string::npos, result.mErrors.find(" free, but ")) << result.mErrors;
    EXPECT_TRUE(std::filesystem::is_empty(mFolder.Host()));
}

TEST_F(OrlStream, EmptyPath_IsCalledNoPath)
{
    for (const char* command : {"stream", "make-clip", "info"}) {
        const ProcessResult result = Orl({command, ""});
        EXPECT_EQ(1, result.mExitCode) << command;
        EXPECT_NE(std::string::npos, result.mErrors.find("the path is empty")) << result.mErrors;
    }
}

TEST_F(OrlStream, FilesThatFail_EachHaveTheirLineAndTheOthersAreStreamed)
{
    mFolder.MakeFolder("folder");
    mFolder.MakeFile("first.mov", "first");
    mFolder.MakeFile("last.mov", "last");
    const ProcessResult result =
        Orl({"stream", Host("missing.mov"), Host("first.mov"), Host("folder"), Host("last.mov")});
    EXPECT_EQ(1, result.mExitCode);
    EXPECT_NE(std::string::npos, result.mOutput.find(CRC("first"))) << result.mOutput;
    EXPECT_NE(std::string::npos, result.mOutput.find(CRC("last"))) << result.mOutput;
    EXPECT_EQ("orl: stream: cannot open \"" + Host("missing.mov") + "\": there is no such file\n"
                  + "orl: stream: cannot open \"" + Host("folder") + "\": it is a directory\n",
              result.mErrors);
}

TEST_F(OrlStream, PathOfFourThousandCharacters_IsStreamedOrCalledMissing)
{
    UTF16String folder = mFolder.Path();
    while (folder.size() < 3800) {
        folder += UTF16String(1, '\\') + UTF16String(99, 'd');
    }
    const UTF16String path =
        ORL::PathUtils::ToNormalizedPath(folder + UTF16String(1, '\\') + UTF16String(3999 - folder.size(), 'x'));
    const std::string argument(path.begin(), path.end());
    const ProcessResult missing = Orl({"stream", argument});
    EXPECT_EQ(1, missing.mExitCode);
    EXPECT_TRUE(IsOneLineOfOrl(missing.mErrors)) << missing.mErrors;
    EXPECT_NE(std::string::npos, missing.mErrors.find("there is no such file")) << missing.mErrors;

    std::string host;
    ASSERT_EQ(ORL::kSuccess, ORL::PathUtils::ToHostPath(path, host));
    const std::filesystem::path file = std::filesystem::u8path(host);
    std::filesystem::create_directories(file.parent_path());
    ASSERT_TRUE(std::ofstream(file, std::ios::binary) << "media");
    const ProcessResult found = Orl({"stream", argument});
    EXPECT_EQ(0, found.mExitCode) << found.mErrors;
    EXPECT_NE(std::string::npos, found.mOutput.find(CRC("media"))) << found.mOutput;
}

// On both platforms a short read shows that the file shrank.
TEST(OrlStreamCut, InsideABlock_IsToldWithTheBytesThatCame)
{
    const std::string said = OutputOfTruncatedStream(4096 + 100);
    EXPECT_EQ(0u, said.find("failure: stream: \"")) << said;
    EXPECT_NE(std::string::npos,
              said.find("at byte 4096: short read, 100 of 4096 bytes (the file shrank while it was read)\n"))
        << said;
}
