#include "VerifyList.h"

#include "Failure.h"
#include "Hash/Checksum.h"
#include "Ingest/Record/IngestManifest.h"
#include "Text.h"

#include <algorithm>
#include <exception>
#include <filesystem>

namespace orl {

namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t kLargest = std::uint64_t{1} << 30; // enough for several million lines
constexpr std::size_t kLongestLine = 1 << 17;              // an escaped path of 4096 bytes is far shorter
constexpr std::size_t kBlock = 1 << 16;

class Reader
{
public:
    Reader(const IngestRoots& inRoots, const std::string& inName)
        : mRoots(inRoots), mName(inName), mShown(JoinHostPath(inRoots.mShownSource, inName))
    {
    }

    VerifyList Read()
    {
        ORL::File file;
        Open(file);
        Checksum digest(ChecksumKind::kSha256);
        std::vector<char> block(kBlock);
        std::string text; // the incomplete last line
        std::uint64_t length = 0;
        for (unsigned int count = 1; count != 0;) {
            Check(file.Read(block.data(), static_cast<unsigned int>(block.size()), count));
            length += count;
            digest.Add(block.data(), count);
            text.append(block.data(), count);
            TakeWholeLines(text);
            if (text.size() > kLongestLine || length > kLargest) { // the list may grow while it is read
                Refuse("is no list of SHA-256 sums");
            }
        }
        if (!text.empty()) {
            TakeLine(text);
        }
        mList.mDigest = digest.Finish();
        return std::move(mList);
    }

private:
    void Open(ORL::File& outFile)
    {
        HeldFolder folder;
        Check(mRoots.OpenSource("", folder));
        const ORL::Result result = folder.GetStatus(mName, Links::kNoFollow, mList.mStatus);
        if (result == ORL::kFileNotFound) {
            throw Failure("verify: there is no list \"" + mShown + "\" (--manifest names another)");
        }
        Check(result);
        if (mList.mStatus.mKind != EntryStatus::kFile) {
            Refuse(mList.mStatus.mKind == EntryStatus::kLink ? "is a link" : "is no file");
        }
        if (mList.mStatus.mSize > kLargest) {
            Refuse("is too long for a list (" + FormatSize(mList.mStatus.mSize) + ")");
        }
        Check(outFile.Create(folder.PathOf(mName), ORL::FileAccessFlags::kFileAccess_Read,
                             ORL::FileShareModeFlags::kFileShare_Read | ORL::FileShareModeFlags::kFileShare_Write,
                             ORL::FileCreateDispositionFlags::kFileCreate_OpenExisting,
                             ORL::FileAttributesFlags::kFileAttribute_SequentialScan, true));
        EntryIdentity identity;
        if (!IdentifyFile(outFile, identity) || identity != mList.mStatus.mIdentity) {
            Refuse("was exchanged while it was opened");
        }
    }

    void TakeWholeLines(std::string& ioText)
    {
        std::size_t at = 0;
        for (std::size_t end = 0; (end = ioText.find('\n', at)) != std::string::npos; at = end + 1) {
            TakeLine(ioText.substr(at, end - at));
        }
        ioText.erase(0, at);
    }

    void TakeLine(const std::string& inText)
    {
        IngestManifest::Line line;
        if (ParseManifestLine(inText, line)) {
            std::transform(line.mDigest.begin(), line.mDigest.end(), line.mDigest.begin(), [](char inDigit) {
                return static_cast<char>(inDigit >= 'A' && inDigit <= 'F' ? inDigit | 0x20 : inDigit);
            });
            mList.mLines.push_back({std::move(line.mName), std::move(line.mDigest)});
        } else if (!IsLineOfSums(inText)) {
            Refuse("is no list of SHA-256 sums");
        } else if (!inText.empty() && inText != "\r" && inText[0] != '#') {
            ++mList.mOtherLines;
        }
    }

    void Check(ORL::Result inResult) const
    {
        if (!ORL::ResultSucceeded(inResult)) {
            throw Failure("verify: cannot read the list \"" + mShown + "\": " + Describe(inResult));
        }
    }

    [[noreturn]] void Refuse(const std::string& inWhy) const
    {
        throw Failure("verify: \"" + mShown + "\" " + inWhy + " (--manifest names another)");
    }

    const IngestRoots& mRoots;
    const std::string& mName;
    const std::string mShown;
    VerifyList mList;
};

// Returns whether a part is a single component: on Windows it may contain a drive or further separators.
bool IsOneName(const std::string& inPart)
{
    const fs::path part = fs::u8path(inPart);
    return inPart != ".." && inPart.find('\0') == std::string::npos && !part.has_root_path() && part.filename() == part;
}

} // namespace

VerifyList ReadVerifyList(const IngestRoots& inRoots, const std::string& inName)
{
    return Reader(inRoots, inName).Read();
}

std::string NameBelowFolder(const std::string& inListed)
try {
    std::string name;
    for (std::size_t at = 0; at < inListed.size();) {
        const std::size_t end = std::min(inListed.find('/', at), inListed.size());
        const std::string part = inListed.substr(at, end - at);
        const bool isAbsolute = at == 0 && part.empty();
        if (isAbsolute || end + 1 == inListed.size() || (!part.empty() && !IsOneName(part))) {
            return std::string();
        }
        if (!part.empty() && part != ".") {
            name = NameBelow(name, part);
        }
        at = end + 1;
    }
    return name;
} catch (const std::exception&) { // the bytes are not a valid name on this system
    return std::string();
}

} // namespace orl
