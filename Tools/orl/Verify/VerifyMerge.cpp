#include "VerifyMerge.h"

#include "Failure.h"
#include "Text.h"
#include "VerifyReport.h"

#include <ORLHostPath.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <utility>

namespace orl {

namespace {

using Json = nlohmann::json;

/// The result of one job.
struct PartResult
{
    std::string mFile; // as the user wrote it
    VerifyOutcome mOutcome;
    int mExitCode = 0;
};

[[noreturn]] void Refuse(const std::string& inFile, const std::string& inWhy)
{
    throw Failure("verify: \"" + inFile + "\" " + inWhy);
}

unsigned DigitOf(char inDigit)
{
    return static_cast<unsigned>(inDigit <= '9' ? inDigit - '0' : inDigit - 'a' + 10);
}

std::string BytesOf(const std::string& inHexadecimal)
{
    const bool isHexadecimal =
        inHexadecimal.size() % 2 == 0 && inHexadecimal.find_first_not_of("0123456789abcdef") == std::string::npos;
    std::string bytes;
    for (std::size_t i = 0; isHexadecimal && i < inHexadecimal.size(); i += 2) {
        bytes += static_cast<char>(DigitOf(inHexadecimal[i]) << 4 | DigitOf(inHexadecimal[i + 1]));
    }
    return bytes;
}

VerifiedFile FileOf(const Json& inLine)
{
    VerifiedFile file;
    file.mName = inLine.contains("fileBytes") ? BytesOf(inLine.at("fileBytes").get<std::string>())
                                              : inLine.at("file").get<std::string>();
    if (!FindState(inLine.at("state").get<std::string>(), file.mState)) {
        throw std::runtime_error("a state without a meaning");
    }
    file.mSize = inLine.at("bytes").get<std::uint64_t>();
    file.mListed = inLine.value("listed", std::string());
    file.mDigest = inLine.value("sha256", std::string());
    file.mReason = inLine.value("reason", std::string());
    return file;
}

PartOfList PartOf(const Json& inPart)
{
    PartOfList part;
    part.mPart.mNumber = inPart.at("number").get<std::size_t>();
    part.mPart.mCount = inPart.at("of").get<std::size_t>();
    part.mListDigest = inPart.at("list").get<std::string>();
    part.mDivision = inPart.at("division").get<std::string>();
    part.mListedFiles = inPart.at("files").get<std::size_t>();
    part.mIsQuick = inPart.at("isQuick").get<bool>();
    return part;
}

void AddSummary(const Json& inLine, PartResult& ioResult)
{
    VerifyOutcome& outcome = ioResult.mOutcome;
    outcome.mShownFolder = inLine.at("folder").get<std::string>();
    outcome.mBytesRead = inLine.at("bytesRead").get<std::uint64_t>();
    outcome.mSeconds = inLine.at("milliseconds").get<double>() / 1000;
    outcome.mIsStopped = inLine.at("isStopped").get<bool>();
    outcome.mPart = PartOf(inLine.at("part"));
    ioResult.mExitCode = inLine.at("part").at("exitCode").get<int>();
    for (const Json& error : inLine.at("errors")) {
        outcome.mTroubles.push_back({error.get<std::string>(), ioResult.mExitCode});
    }
}

// The summary is the last line, so a result without it is truncated.
void ReadLines(std::istream& ioStream, PartResult& ioResult)
{
    for (std::string line; std::getline(ioStream, line);) {
        if (ioResult.mOutcome.mPart) {
            throw std::runtime_error("lines after the summary");
        }
        const Json object = Json::parse(line);
        if (object.value("summary", false)) {
            AddSummary(object, ioResult);
        } else {
            ioResult.mOutcome.mFiles.push_back(FileOf(object));
        }
    }
}

// New files are not in the list; every other file of the part must have a line in the result.
void CheckComplete(const PartResult& inResult)
{
    const VerifyOutcome& outcome = inResult.mOutcome;
    if (!outcome.mPart) {
        Refuse(inResult.mFile, "is incomplete: its last line is no summary of a part (run its job again)");
    }
    const PartOfList& part = *outcome.mPart;
    const std::size_t listed = outcome.mFiles.size() - outcome.Count(VerifiedFile::kNew);
    if (part.mPart.mNumber < 1 || part.mPart.mNumber > part.mPart.mCount || listed != part.mListedFiles) {
        Refuse(inResult.mFile, "is damaged: it has " + std::to_string(listed) + " of "
                                   + std::to_string(part.mListedFiles) + " files (run its job again)");
    }
    if (outcome.mIsStopped || outcome.Count(VerifiedFile::kNotChecked) != 0) {
        Refuse(inResult.mFile, "was not verified to its end (run its job again)");
    }
}

PartResult ReadPart(const std::string& inFile)
{
    PartResult result;
    result.mFile = inFile;
    std::string host;
    const ORL::Result found = ORL::PathUtils::ToHostPath(PathOfArgument(inFile), host);
    std::ifstream stream;
    if (ORL::ResultSucceeded(found)) {
        stream.open(std::filesystem::u8path(host), std::ios::binary);
    }
    if (!stream.is_open()) {
        Refuse(inFile, "cannot be opened");
    }
    try {
        ReadLines(stream, result);
    } catch (const std::exception&) { // invalid JSON, or a member is missing or has the wrong type
        Refuse(inFile, "is no output of orl verify --part --json");
    }
    if (stream.bad()) {
        Refuse(inFile, "cannot be read to its end");
    }
    CheckComplete(result);
    return result;
}

void CheckSameRun(const PartResult& inFirst, const PartResult& inOther)
{
    const PartOfList& first = *inFirst.mOutcome.mPart;
    const PartOfList& other = *inOther.mOutcome.mPart;
    const std::string both = "\"" + inFirst.mFile + "\" and \"" + inOther.mFile + "\" ";
    const std::pair<bool, const char*> differences[] = {
        {first.mListDigest != other.mListDigest, "are of different lists"},
        {inFirst.mOutcome.mShownFolder != inOther.mOutcome.mShownFolder, "are of different folders"},
        {first.mPart.mCount != other.mPart.mCount, "divide the list into different numbers of parts"},
        {first.mIsQuick != other.mIsQuick, "differ: only one of them was made with --quick"},
        {first.mDivision != other.mDivision,
         "divide the list differently: the size of a file changed between the jobs (run all jobs again)"},
    };
    for (const auto& [isDifferent, text] : differences) {
        if (isDifferent) {
            throw Failure("verify: " + both + text);
        }
    }
}

void CheckAllParts(const std::vector<PartResult>& inResults)
{
    std::set<std::size_t> numbers;
    for (const PartResult& result : inResults) {
        CheckSameRun(inResults.front(), result);
        if (!numbers.insert(result.mOutcome.mPart->mPart.mNumber).second) {
            Refuse(result.mFile,
                   "is part " + std::to_string(result.mOutcome.mPart->mPart.mNumber) + ", which is given twice");
        }
    }
    const std::size_t count = inResults.front().mOutcome.mPart->mPart.mCount;
    for (std::size_t number = 1; number <= count; ++number) {
        if (numbers.count(number) == 0) {
            throw Failure("verify: part " + std::to_string(number) + " of " + std::to_string(count) + " is missing");
        }
    }
}

} // namespace

VerifyOutcome MergeParts(const std::vector<std::string>& inFiles)
{
    std::vector<PartResult> results;
    for (const std::string& file : inFiles) {
        results.push_back(ReadPart(file));
    }
    CheckAllParts(results);
    VerifyOutcome merged;
    merged.mShownFolder = results.front().mOutcome.mShownFolder;
    std::set<std::string> told; // every job reports the troubles of the folder, so keep one of each
    for (PartResult& result : results) {
        VerifyOutcome& outcome = result.mOutcome;
        std::move(outcome.mFiles.begin(), outcome.mFiles.end(), std::back_inserter(merged.mFiles));
        merged.mBytesRead += outcome.mBytesRead;
        merged.mSeconds += outcome.mSeconds;
        for (const IngestTrouble& trouble : outcome.mTroubles) {
            if (told.insert(trouble.mText).second) {
                merged.mTroubles.push_back(trouble);
            }
        }
    }
    std::sort(merged.mFiles.begin(), merged.mFiles.end(),
              [](const VerifiedFile& inLeft, const VerifiedFile& inRight) { return inLeft.mName < inRight.mName; });
    return merged;
}

} // namespace orl
