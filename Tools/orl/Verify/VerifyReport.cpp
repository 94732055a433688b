#include "VerifyReport.h"

#include "Failure.h"
#include "JsonText.h"
#include "Text.h"

#include <algorithm>
#include <iterator>
#include <string>

namespace orl {

namespace {

struct StateName
{
    VerifiedFile::State mState;
    const char* mName;
};

constexpr StateName kStateNames[] = {
    {VerifiedFile::kVerified, "verified"},     {VerifiedFile::kPresent, "present"},
    {VerifiedFile::kChanged, "changed"},       {VerifiedFile::kMissing, "missing"},
    {VerifiedFile::kUnreadable, "unreadable"}, {VerifiedFile::kNew, "new"},
    {VerifiedFile::kNotChecked, "notChecked"},
};

const char* NameOf(VerifiedFile::State inState)
{
    return std::find_if(std::begin(kStateNames), std::end(kStateNames),
                        [inState](const StateName& inName) { return inName.mState == inState; })
        ->mName;
}

void PrintTotalsOf(std::ostream& ioStream, const VerifyOutcome& inOutcome)
{
    const std::size_t verified = inOutcome.Count(VerifiedFile::kVerified);
    const std::size_t present = inOutcome.Count(VerifiedFile::kPresent);
    ioStream << '"' << WithoutControlCharacters(inOutcome.mShownFolder) << "\": ";
    if (present != 0) {
        ioStream << present << (present == 1 ? " file" : " files") << " present, not read";
    } else {
        ioStream << verified << (verified == 1 ? " file" : " files") << " verified, "
                 << FormatSize(inOutcome.mBytesRead) << " read in " << Rounded(inOutcome.mSeconds) << " s";
        if (inOutcome.mSeconds > 0 && inOutcome.mBytesRead != 0) {
            ioStream << " (" << Rounded(static_cast<double>(inOutcome.mBytesRead) / 1e6 / inOutcome.mSeconds)
                     << " MB/s)";
        }
    }
    constexpr StateName kOthers[] = {{VerifiedFile::kChanged, " changed"},
                                     {VerifiedFile::kMissing, " missing"},
                                     {VerifiedFile::kUnreadable, " unreadable"},
                                     {VerifiedFile::kNew, " new"},
                                     {VerifiedFile::kNotChecked, " not checked"}};
    for (const StateName& other : kOthers) {
        const std::size_t count = inOutcome.Count(other.mState);
        if (count != 0) {
            ioStream << ", " << count << other.mName;
        }
    }
    ioStream << ".\n";
}

void PrintJsonFile(std::ostream& ioStream, const std::string& inFolder, const VerifiedFile& inFile)
{
    ioStream << "{\"folder\": " << JsonQuoted(inFolder) << ", " << JsonNameMember("file", inFile.mName)
             << ", \"state\": \"" << NameOf(inFile.mState) << "\", \"bytes\": " << inFile.mSize;
    if (!inFile.mListed.empty()) {
        ioStream << ", \"listed\": \"" << inFile.mListed << '"';
    }
    if (!inFile.mDigest.empty()) {
        ioStream << ", \"sha256\": \"" << inFile.mDigest << '"';
    }
    if (!inFile.mReason.empty()) {
        ioStream << ", \"reason\": " << JsonQuoted(inFile.mReason);
    }
    ioStream << "}\n";
}

void PrintJsonPart(std::ostream& ioStream, const VerifyOutcome& inOutcome)
{
    const PartOfList& part = *inOutcome.mPart;
    ioStream << ", \"part\": {\"number\": " << part.mPart.mNumber << ", \"of\": " << part.mPart.mCount
             << ", \"files\": " << part.mListedFiles << ", \"list\": \"" << part.mListDigest << "\", \"division\": \""
             << part.mDivision << "\", \"isQuick\": " << (part.mIsQuick ? "true" : "false")
             << ", \"exitCode\": " << WorstExitCode(TroublesOf({inOutcome})) << '}';
}

void PrintJsonTotals(std::ostream& ioStream, const VerifyOutcome& inOutcome)
{
    ioStream << "{\"folder\": " << JsonQuoted(inOutcome.mShownFolder) << ", \"summary\": true";
    for (const StateName& state : kStateNames) {
        ioStream << ", \"" << state.mName << "\": " << inOutcome.Count(state.mState);
    }
    ioStream << ", \"bytesRead\": " << inOutcome.mBytesRead
             << ", \"milliseconds\": " << static_cast<std::uint64_t>(inOutcome.mSeconds * 1000)
             << ", \"isStopped\": " << (inOutcome.mIsStopped ? "true" : "false");
    if (inOutcome.mPart) {
        PrintJsonPart(ioStream, inOutcome);
    }
    ioStream << ", \"errors\": [";
    const char* separator = "";
    for (const IngestTrouble& trouble : inOutcome.mTroubles) {
        ioStream << separator << JsonQuoted(trouble.mText);
        separator = ", ";
    }
    ioStream << "]}\n";
}

void AddTroubleOf(const VerifiedFile& inFile, const std::string& inFolder, std::vector<IngestTrouble>& ioTroubles)
{
    const std::string name = "\"" + JoinHostPath(inFolder, inFile.mName) + "\"";
    switch (inFile.mState) {
    case VerifiedFile::kChanged:
        ioTroubles.push_back({"verify: " + name + " has changed: " + inFile.mReason, kExitMismatch});
        break;
    case VerifiedFile::kMissing: ioTroubles.push_back({"verify: " + name + " is missing", kExitMissing}); break;
    case VerifiedFile::kUnreadable:
        ioTroubles.push_back({"verify: cannot read " + name + ": " + inFile.mReason, kExitUnreadable});
        break;
    case VerifiedFile::kNew:
        ioTroubles.push_back({"verify: " + name + " is new: it is not in the list", kExitNew});
        break;
    default: break;
    }
}

} // namespace

void PrintTotals(std::ostream& ioStream, const std::vector<VerifyOutcome>& inOutcomes)
{
    for (const VerifyOutcome& outcome : inOutcomes) {
        if (!outcome.mFiles.empty() || outcome.mPart) {
            PrintTotalsOf(ioStream, outcome);
        }
    }
}

void PrintJsonLines(std::ostream& ioStream, const std::vector<VerifyOutcome>& inOutcomes)
{
    for (const VerifyOutcome& outcome : inOutcomes) {
        for (const VerifiedFile& file : outcome.mFiles) {
            PrintJsonFile(ioStream, outcome.mShownFolder, file);
        }
        PrintJsonTotals(ioStream, outcome);
    }
}

bool FindState(const std::string& inName, VerifiedFile::State& outState)
{
    const auto found = std::find_if(std::begin(kStateNames), std::end(kStateNames),
                                    [&inName](const StateName& inState) { return inState.mName == inName; });
    if (found == std::end(kStateNames)) {
        return false;
    }
    outState = found->mState;
    return true;
}

std::vector<IngestTrouble> TroublesOf(const std::vector<VerifyOutcome>& inOutcomes)
{
    std::vector<IngestTrouble> troubles;
    for (const VerifyOutcome& outcome : inOutcomes) {
        for (const VerifiedFile& file : outcome.mFiles) {
            AddTroubleOf(file, outcome.mShownFolder, troubles);
        }
        troubles.insert(troubles.end(), outcome.mTroubles.begin(), outcome.mTroubles.end());
    }
    return troubles;
}

int WorstExitCode(const std::vector<IngestTrouble>& inTroubles)
{
    constexpr int kWorstFirst[] = {kExitDisappeared, kExitMismatch, kExitMissing, kExitUnreadable,
                                   kExitFailure,     kExitEmpty,    kExitNew};
    for (const int code : kWorstFirst) {
        if (std::any_of(inTroubles.begin(), inTroubles.end(),
                        [code](const IngestTrouble& inTrouble) { return inTrouble.mExitCode == code; })) {
            return code;
        }
    }
    return inTroubles.empty() ? kExitSuccess : kExitFailure;
}

} // namespace orl
