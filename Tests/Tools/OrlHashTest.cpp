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

TEST_F(OrlHash, EachChecksum_HasThePublishedValues)
{
    const struct
    {
        int mLine;
        const char* mChecksum;
        const char* mBytes;
        const char* mExpected;
    } cases[] = {
        {__LINE__, "sha256", "", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
        {__LINE__, "sha256", "abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
        {__LINE__, "md5", "", "d41d8cd98f00b204e9800998ecf8427e"},
        {__LINE__, "md5", "abc", "900150983cd24fb0d6963f7d28e17f72"},
        {__LINE__, "sha1", "", "da39a3ee5e6b4b0d3255bfef95601890afd80709"},
        {__LINE__, "sha1", "abc", "a9993e364706816aba3e25717850c26c9cd0d89d"},
        {__LINE__, "xxh64", "", "ef46db3751d8e999"},
        {__LINE__, "xxh64", "abc", "44bc2cf5ad770999"},
        {__LINE__, "xxh3", "", "2d06800538d394c2"},
        {__LINE__, "xxh3", "abc", "78af5f94892f3950"},
        {__LINE__, "xxh128", "", "99aa06d3014798d86001c324468d497f"},
        {__LINE__, "xxh128", "abc", "06b05ab6733a618578af5f94892f3950"},
        {__LINE__, "c4", "",
         "c459dsjfscH38cYeXXYogktxf4Cd9ibshE3BHUo6a58hBXmRQdZrAkZzsWcbWtDg5oQstpDuni4Hirj75GEmTc1sFT"},
        {__LINE__, "c4", "alfa",
         "c43zYcLni5LF9rR4Lg4B8h3Jp8SBwjcnyyeh4bc6gTPHndKuKdjUWx1kJPYhZxYt3zV6tQXpDs2shPsPYjgG81wZM1"},
        {__LINE__, "c4", "bravo",
         "c42jd8KUQG9DKppN1qt5aWS3PAmdPmNutXyVTb8H123FcuU3shPxpUXsVdcouSALZ4PaDvMYzQSMYCWkb6rop9zhDa"},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.mLine);
        const std::string file = File("file", one.mBytes);
        const ProcessResult result = Hash({"--hash", one.mChecksum, file});
        EXPECT_EQ(0, result.mExitCode) << result.mErrors;
        EXPECT_EQ(std::string(one.mExpected) + "  " + file + "\n", result.mOutput);
    }
}

// The values were computed with the integers of Python. The number of "0" has only 87 digits and begins with a zero.
TEST_F(OrlHash, C4Identifiers_HaveLeadingZeros)
{
    const std::string file = File("file", "0");
    EXPECT_EQ("c41zgA3RiM67Fb4w1mXdSeroZSfb5T7Gk5uwVLjuWsyd16PEu2jb3aHbNB95h28atSkc9EtCj2pfPARG5xaz85Zs1r  " + file
                  + "\n",
              Hash({"--hash", "c4", file}).mOutput);
}

TEST_F(OrlHash, ChecksumOfAFileThatIsNotThere_IsReportedAndTheOthersAreHashed)
{
    const std::string there = File("there", "abc");
    const std::string gone = (mFolder.Host() / "gone").u8string();
    const ProcessResult result = Hash({"--hash", "md5", gone, there});
    EXPECT_EQ(1, result.mExitCode);
    EXPECT_EQ("orl: hash: cannot read \"" + gone + "\": file not found\n", result.mErrors);
    EXPECT_EQ("900150983cd24fb0d6963f7d28e17f72  " + there + "\n", result.mOutput);
}

TEST_F(OrlHash, ChecksumAsJson_IsTheResultOfTheFile)
{
    const ProcessResult result = Hash({"--json", "--hash", "xxh64", File("file", "abc")});
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    EXPECT_NE(std::string::npos, result.mOutput.find("{\"key\":\"__Results\",\"value\":\"44bc2cf5ad770999\"}"))
        << result.mOutput;
}

TEST_F(OrlHash, AnUnknownChecksum_IsRefused)
{
    const ProcessResult result = Hash({"--hash", "crc", File("file", "abc")});
    EXPECT_EQ(2, result.mExitCode);
    EXPECT_EQ("", result.mOutput);
    EXPECT_EQ("orl: hash: --hash: crc not in {sha256,xxh64,xxh3,xxh128,md5,sha1,c4} (see orl hash --help)\n",
              result.mErrors);
}

TEST_F(OrlHash, WithoutAFile_IsAMistakeOfTheCommandLine)
{
    EXPECT_EQ(2, Hash({}).mExitCode);
}

TEST_F(OrlHash, OfADirectory_SaysSo)
{
    const std::string folder = mFolder.Host().u8string();
    for (const std::vector<std::string>& options : {std::vector<std::string>{folder}, {"--hash", "md5", folder}}) {
        const ProcessResult result = Hash(options);
        EXPECT_EQ(1, result.mExitCode);
        EXPECT_EQ("orl: hash: cannot read \"" + folder + "\": it is a directory\n", result.mErrors);
        EXPECT_EQ("", result.mOutput);
    }
}
