// Runs orl hash as a user does, and compares its output with the library's own hash of the same bytes.
#include <ProcessRunner.h>
#include <TempFolder.h>

#include <ORLHashValue.h>

#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace ORLTest;

namespace {

constexpr std::size_t kBlock = 1 << 20;

std::string ExpectedWords(const std::string& inBytes)
{
    ORL::HashValue hash(0, 0, 0);
    std::size_t at = 0;
    do {
        const std::string block = inBytes.substr(at, kBlock);
        ORL::MixHash::Mix(hash, block.data(), block.size());
        at += kBlock;
    } while (at < inBytes.size());
    char words[40];
    std::snprintf(words, sizeof(words), "%x:%x:%x", static_cast<unsigned>(hash.GetWord(0)),
                  static_cast<unsigned>(hash.GetWord(1)), static_cast<unsigned>(hash.GetWord(2)));
    return words;
}

class OrlHash : public testing::Test
{
protected:
    std::string File(const std::string& inName, const std::string& inBytes)
    {
        mFolder.MakeFile(inName, inBytes);
        return (mFolder.Host() / inName).u8string();
    }

    static ProcessResult Hash(std::vector<std::string> inArguments)
    {
        inArguments.insert(inArguments.begin(), "hash");
        return RunBesideThisProgram("orl", inArguments);
    }

    TempFolder mFolder;
};

} // namespace

TEST_F(OrlHash, FilesOfEverySize_HaveTheLibrarysWords)
{
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{1000}, kBlock - 1, kBlock, kBlock + 1,
                                   2 * kBlock, 2 * kBlock + 12345}) {
        std::string bytes(size, '\0');
        for (std::size_t i = 0; i < size; ++i) {
            bytes[i] = static_cast<char>(i * 31 + i / 251);
        }
        const std::string file = File("file", bytes);
        const ProcessResult result = Hash({file});
        EXPECT_EQ(0, result.mExitCode) << result.mErrors;
        EXPECT_EQ(ExpectedWords(bytes) + "  " + file + "\n", result.mOutput) << "size " << size;
    }
}

TEST_F(OrlHash, AFileThatIsNotThere_IsToldAndTheOthersAreHashed)
{
    const std::string there = File("there", "bytes");
    const std::string gone = (mFolder.Host() / "gone").u8string();
    const ProcessResult result = Hash({gone, there});
    EXPECT_EQ(1, result.mExitCode);
    EXPECT_EQ("orl: hash: cannot read \"" + gone + "\": file not found\n", result.mErrors);
    EXPECT_EQ(ExpectedWords("bytes") + "  " + there + "\n", result.mOutput);
}

TEST_F(OrlHash, Json_IsACollectionByFile)
{
    const std::string file = File("file", "bytes");
    const ProcessResult result = Hash({"--json", file, (mFolder.Host() / "gone").u8string()});
    EXPECT_EQ(1, result.mExitCode);
    EXPECT_EQ(0u, result.mOutput.find("{\n  \"")) << result.mOutput;
    EXPECT_NE(std::string::npos, result.mOutput.find("file\": [\n    {\"key\":\"__Success\",\"value\":\"True\"},\n"
                                                     "    {\"key\":\"__Results\",\"value\":\""
                                                     + ExpectedWords("bytes") + "\"}\n  ]"))
        << result.mOutput;
    EXPECT_NE(std::string::npos,
              result.mOutput.find("gone\": [\n    {\"key\":\"__Error\",\"value\":\"hash: cannot read "))
        << result.mOutput;
}

TEST_F(OrlHash, WithoutAFile_IsAMistakeOfTheCommandLine)
{
    EXPECT_EQ(2, Hash({}).mExitCode);
}
