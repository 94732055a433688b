// Tests that the parts of a list are disjoint, complete and balanced, and that joining their results loses nothing.
#include "../Tools/VerifyTestSupport.h"

#include <Failure.h>
#include <VerifyPart.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

using namespace ORLTest;
using orl::PartItem;

namespace fs = std::filesystem;

namespace {

std::vector<PartItem> RandomItems(std::mt19937_64& ioRandom)
{
    std::vector<PartItem> items(ioRandom() % 60);
    const std::uint64_t largest = std::uint64_t{1} << ioRandom() % 44; // also 1: every file is empty
    for (std::size_t i = 0; i < items.size(); ++i) {
        items[i] = {"file " + std::to_string(i), ioRandom() % largest};
    }
    std::shuffle(items.begin(), items.end(), ioRandom);
    return items;
}

std::map<std::string, std::size_t> ByName(const std::vector<PartItem>& inItems, const std::vector<std::size_t>& inParts)
{
    std::map<std::string, std::size_t> parts;
    for (std::size_t i = 0; i < inItems.size(); ++i) {
        parts[inItems[i].mName] = inParts[i];
    }
    return parts;
}

void ExpectBalanced(const std::vector<PartItem>& inItems, const std::vector<std::size_t>& inPartOfItem,
                    std::size_t inParts)
{
    std::vector<std::uint64_t> bytes(inParts);
    std::vector<std::size_t> counts(inParts);
    std::uint64_t largest = 0;
    for (std::size_t i = 0; i < inItems.size(); ++i) {
        ASSERT_GE(inPartOfItem[i], 1u);
        ASSERT_LE(inPartOfItem[i], inParts);
        bytes[inPartOfItem[i] - 1] += inItems[i].mBytes;
        ++counts[inPartOfItem[i] - 1];
        largest = std::max(largest, inItems[i].mBytes);
    }
    const auto [least, most] = std::minmax_element(bytes.begin(), bytes.end());
    EXPECT_LE(*most - *least, largest);
    const auto [fewest, mostItems] = std::minmax_element(counts.begin(), counts.end());
    EXPECT_TRUE(largest != 0 || *mostItems - *fewest <= 1) << "empty files are spread too";
}

class OrlVerifyPart : public VerifiedTree
{
protected:
    /// Verifies part inNumber of inCount with --json, writes the output to a file, and returns the file's name.
    std::string Part(std::size_t inNumber, std::size_t inCount, const std::vector<std::string>& inOptions = {}) const
    {
        const std::string part = std::to_string(inNumber) + "/" + std::to_string(inCount);
        std::vector<std::string> options{"--part", part, "--json"};
        options.insert(options.end(), inOptions.begin(), inOptions.end());
        const fs::path file =
            mFolder.Host() / ("part-" + std::to_string(inNumber) + "-" + std::to_string(inCount) + ".json");
        WriteFile(file, Verify(options).mOutput);
        return file.u8string();
    }

    static ProcessResult Merge(std::vector<std::string> inFiles, const std::vector<std::string>& inOptions = {})
    {
        inFiles.insert(inFiles.begin(), {"verify", "--merge"});
        inFiles.insert(inFiles.end(), inOptions.begin(), inOptions.end());
        return RunBesideThisProgram("orl", inFiles);
    }

    std::vector<std::string> Parts(std::size_t inCount, const std::vector<std::string>& inOptions = {}) const
    {
        std::vector<std::string> files;
        for (std::size_t number = 1; number <= inCount; ++number) {
            files.push_back(Part(number, inCount, inOptions));
        }
        return files;
    }

    /// Returns the JSON without the measured time.
    static std::string WithoutTime(const std::string& inJson)
    {
        const std::size_t begin = inJson.find("\"milliseconds\"");
        return begin == std::string::npos ? inJson : inJson.substr(0, begin) + inJson.substr(inJson.find(',', begin));
    }

    void ExpectRefused(const std::vector<std::string>& inFiles, const std::string& inReason) const
    {
        const ProcessResult result = Merge(inFiles);
        EXPECT_EQ(1, result.mExitCode);
        EXPECT_EQ("", result.mOutput);
        EXPECT_TRUE(Shows(result.mErrors, inReason)) << result.mErrors;
    }
};

} // namespace

TEST(VerifyPart, OfRandomLists_AreDisjointCompleteBalancedAndTheSameEverywhere)
{
    std::mt19937_64 random(16);
    for (int round = 0; round < 2000; ++round) {
        std::vector<PartItem> items = RandomItems(random);
        const std::size_t count = 1 + random() % 12;
        const std::vector<std::size_t> parts = orl::AssignParts(items, count);
        ASSERT_EQ(items.size(), parts.size()) << "each file has one part";
        ExpectBalanced(items, parts, count);
        EXPECT_EQ(parts, orl::AssignParts(items, count));
        const std::map<std::string, std::size_t> byName = ByName(items, parts);
        std::shuffle(items.begin(), items.end(), random);
        EXPECT_EQ(byName, ByName(items, orl::AssignParts(items, count))) << "the order of the list does not matter";
    }
}

TEST(VerifyPart, DigestOfParts_DependsOnNamesSizesAndParts)
{
    const std::vector<PartItem> items{{"a", 1}, {"b", 2}};
    const std::set<std::string> digests{
        orl::DigestOfParts(items, {1, 2}),
        orl::DigestOfParts(items, {2, 1}),
        orl::DigestOfParts({{"a", 1}, {"b", 3}}, {1, 2}),
        orl::DigestOfParts({{"a", 1}, {"c", 2}}, {1, 2}),
        orl::DigestOfParts({{"a\n2 2 1 b", 1}}, {1}),
    };
    EXPECT_EQ(5u, digests.size());
}

TEST(VerifyPart, Arguments_AreKofN)
{
    EXPECT_EQ(3u, orl::ParsePart("3/8").mNumber);
    EXPECT_EQ(8u, orl::ParsePart("3/8").mCount);
    EXPECT_EQ(100000u, orl::ParsePart("100000/100000").mCount);
    for (const char* text : {"", "1", "/", "1/", "/1", "0/1", "2/1", "1/0", "-1/2", "+1/2", "1/2/3", " 1/2", "1/2 ",
                             "1/100001", "1/99999999999999999999999", "a/b"}) {
        EXPECT_THROW(orl::ParsePart(text), orl::Failure) << text;
    }
}

TEST_F(OrlVerifyPart, AllParts_JoinToTheResultOfOneRun)
{
    mFolder.MakeFile("disk/CLIP/extra", "new");
    WriteFile(Disk() / "a", "xyz");
    fs::remove(Disk() / "none");
    const ProcessResult whole = Verify({"--json"});
    for (const std::size_t count : {1, 2, 3, 9}) {
        SCOPED_TRACE(count);
        const std::vector<std::string> files = Parts(count);
        std::vector<std::string> backwards(files.rbegin(), files.rend());
        for (const std::vector<std::string>& order : {files, backwards}) {
            const ProcessResult merged = Merge(order, {"--json"});
            EXPECT_EQ(WithoutTime(whole.mOutput), WithoutTime(merged.mOutput));
            EXPECT_EQ(whole.mErrors, merged.mErrors);
            EXPECT_EQ(kVerifyChanged, merged.mExitCode);
        }
    }
}

TEST_F(OrlVerifyPart, AMatchingFolder_EndsWithZeroAndOneLine)
{
    const ProcessResult merged = Merge(Parts(3));
    ExpectEnd(merged, 0, {});
    EXPECT_TRUE(Shows(merged.mOutput, "\": 4 files verified, 3.0 MB read in ")) << merged.mOutput;
    ExpectEnd(Merge(Parts(2, {"--quick"})), 0, {});
}

// Lines that no part checks are reported once.
TEST_F(OrlVerifyPart, ATroubleOfTheList_IsReportedOnce)
{
    WriteFile(Disk() / kManifest, ReadFile(Disk() / kManifest) + "900150983cd24fb0d6963f7d28e17f72  a\n");
    ExpectEnd(
        Merge(Parts(3)), 1,
        {"1 lines of the list " + Shown(kManifest) + " were not checked: they are no SHA-256 lines of sha256sum"});
}

// The list of one run over the whole folder is empty too, and has its own exit code.
TEST_F(OrlVerifyPart, PartsOfAnEmptyList_JoinToTheResultOfOneRun)
{
    WriteFile(Disk() / kManifest, "");
    const ProcessResult whole = Verify({"--json"});
    EXPECT_EQ(9, whole.mExitCode);
    for (const std::size_t count : {1, 3}) {
        const ProcessResult merged = Merge(Parts(count), {"--json"});
        EXPECT_EQ(WithoutTime(whole.mOutput), WithoutTime(merged.mOutput));
        EXPECT_EQ(whole.mErrors, merged.mErrors);
        EXPECT_EQ(9, merged.mExitCode);
    }
    EXPECT_EQ(9, Verify({"--part", "1/2"}).mExitCode);
}

TEST_F(OrlVerifyPart, PartsThatDoNotFit_AreRefused)
{
    const std::vector<std::string> files = Parts(3);
    ExpectRefused({files[0], files[2]}, "part 2 of 3 is missing");
    ExpectRefused({files[0], files[1]}, "part 3 of 3 is missing");
    ExpectRefused({files[0], files[1], files[2], files[1]}, "is part 2, which is given twice");
    ExpectRefused({files[0], files[1], Part(2, 2)}, "different numbers of parts");
    ExpectRefused({files[0], files[1], mFolder.Host().u8string() + "/none.json"}, "cannot be opened");

    const std::string quick = ReadFile(fs::u8path(files[1]));
    Part(2, 3, {"--quick"});
    ExpectRefused(files, "--quick");
    WriteFile(fs::u8path(files[1]), quick);
    ExpectEnd(Merge(files), 0, {});
}

TEST_F(OrlVerifyPart, PartsOfOtherListsFoldersAndSizes_AreRefused)
{
    const std::vector<std::string> files = Parts(2);
    fs::copy(Disk(), mFolder.Host() / "copy", fs::copy_options::recursive);
    const ProcessResult other =
        RunBesideThisProgram("orl", {"verify", (mFolder.Host() / "copy").u8string(), "--part", "2/2", "--json"});
    const std::string second = ReadFile(fs::u8path(files[1]));
    WriteFile(fs::u8path(files[1]), other.mOutput);
    ExpectRefused(files, "are of different folders");

    WriteFile(Disk() / "a", "abcd");
    Part(2, 2);
    ExpectRefused(files, "the size of a file changed between the jobs");
    WriteFile(Disk() / "a", "abc");
    WriteFile(Disk() / kManifest, ReadFile(Disk() / kManifest) + "# a comment\n");
    Part(2, 2);
    ExpectRefused(files, "are of different lists");
    WriteFile(fs::u8path(files[1]), second);
    ExpectEnd(Merge(files), 0, {});
}

// Tests results that were truncated or changed by a kill, a full disk or an edit.
TEST_F(OrlVerifyPart, ResultsThatAreIncomplete_AreRefused)
{
    const std::vector<std::string> files = Parts(2);
    const std::string good = ReadFile(fs::u8path(files[1]));
    const std::size_t summary = good.rfind("{\"folder\"");
    ASSERT_NE(0u, summary);
    struct Row
    {
        int mLine;
        std::string mContents;
        const char* mReason;
    };
    const Row rows[] = {
        {__LINE__, "", "is incomplete"},
        {__LINE__, good.substr(0, summary), "is incomplete"},
        {__LINE__, good.substr(0, good.size() - 20), "is no output of orl verify --part --json"},
        {__LINE__, good.substr(good.find('\n') + 1), "is damaged"},
        {__LINE__, good + good, "is no output of orl verify --part --json"},
        {__LINE__, "a diary\n", "is no output of orl verify --part --json"},
        {__LINE__, "[1, 2]\n", "is no output of orl verify --part --json"},
        {__LINE__, "{\"summary\": true}\n", "is no output of orl verify --part --json"},
        {__LINE__, "{\"summary\": 3}\n", "is no output of orl verify --part --json"},
        {__LINE__, Verify({"--json"}).mOutput, "is no output of orl verify --part --json"},
        {__LINE__, std::string(100000, '['), "is no output of orl verify --part --json"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE("row at line " + std::to_string(row.mLine));
        WriteFile(fs::u8path(files[1]), row.mContents);
        ExpectRefused(files, row.mReason);
    }
    std::string stopped = good;
    stopped.replace(stopped.find("\"isStopped\": false"), 18, "\"isStopped\": true ");
    WriteFile(fs::u8path(files[1]), stopped);
    ExpectRefused(files, "was not verified to its end");
}

TEST_F(OrlVerifyPart, InvalidCommandLines_ReadNothing)
{
    const std::string disk = Disk().u8string();
    const std::vector<std::vector<std::string>> lines = {{"--part", "0/2"},       {"--part", "3/2"},
                                                         {"--part", "x"},         {"--part", ""},
                                                         {"--part", "1/2", disk}, {"--merge", "--part", "1/2"},
                                                         {"--merge", "--quick"}};
    for (const std::vector<std::string>& line : lines) {
        const ProcessResult result = Verify(line);
        EXPECT_EQ(2, result.mExitCode) << result.mErrors;
        EXPECT_EQ("", result.mOutput);
    }
}
