#include "IngestManifest.h"

#include "Failure.h"
#include "Text.h"

#include <tvxcore/Text.h>

#include <algorithm>

namespace orl {

namespace {

using Access = ORL::FileAccessFlags;
using Share = ORL::FileShareModeFlags;
using Disposition = ORL::FileCreateDispositionFlags;
using Attributes = ORL::FileAttributesFlags;

constexpr std::uint64_t kLargest = std::uint64_t{1} << 30; // enough for several million lines
constexpr std::size_t kLongestLine = 1 << 17;              // far more than the escaped form of a path of 4096 bytes
constexpr std::size_t kBlock = 1 << 16;

UTF16String Folded(const std::string& inName)
{
    return tvxcore::utility::FoldCase(ToUTF16(inName));
}

} // namespace

IngestManifest::IngestManifest(const IngestRoots& inRoots, const std::string& inName, IngestRecord& ioRecord)
    : mRoots(inRoots), mName(inName), mDisplayName(JoinHostPath(inRoots.mShownDestination, inName)), mRecord(ioRecord)
{
}

void IngestManifest::Check(ORL::Result inResult, const char* inWhat) const
{
    if (!ORL::ResultSucceeded(inResult)) {
        throw Failure(std::string("ingest: cannot ") + inWhat + " the manifest \"" + mDisplayName
                          + "\": " + Describe(inResult),
                      inResult == ORL::kDiskFull ? kExitNoSpace : kExitFailure);
    }
}

void IngestManifest::Refuse(const std::string& inWhy) const
{
    throw Failure("ingest: \"" + mDisplayName + "\" " + inWhy
                  + ", and was not changed (choose another manifest with --manifest)");
}

// --- reading ---------------------------------------------------------------------------------------------------------

void IngestManifest::CheckStatus()
{
    EntryStatus status;
    const ORL::Result result = mFolder.GetStatus(mName, Links::kNoFollow, status);
    mExists = result != ORL::kFileNotFound;
    if (!mExists) {
        return;
    }
    Check(result, "read");
    if (status.mKind != EntryStatus::kFile) {
        Refuse(status.mKind == EntryStatus::kLink ? "is a link" : "is not a regular file");
    }
    if (status.mSize > kLargest) {
        Refuse("is too large for a manifest (" + FormatSize(status.mSize) + ")");
    }
    mIdentity = status.mIdentity;
    mIsTrusted = status.mIsTrusted;
}

void IngestManifest::Read()
{
    Check(mRoots.OpenDestination("", mFolder), "find");
    CheckStatus();
    if (!mExists) {
        UpdateRecord();
        return;
    }
    ORL::File file;
    Check(file.Create(mFolder.PathOf(mName), Access::kFileAccess_Read, Share::kFileShare_Read | Share::kFileShare_Write,
                      Disposition::kFileCreate_OpenExisting, Attributes::kFileAttribute_SequentialScan, true),
          "read");
    EntryIdentity identity;
    if (!IdentifyFile(file, identity) || identity != mIdentity) {
        Refuse("was replaced while it was opened");
    }
    ReadLines(file);
    UpdateRecord();
}

// The record must stay while the manifest has an incomplete line or comments that only the record attributes to orl.
void IngestManifest::UpdateRecord()
{
    mRecord.SetNeededByManifest(mFound != mLength || !mCommentedOut.empty());
}

void IngestManifest::CutIncompleteLine()
{
    const std::lock_guard<std::mutex> lock(mMutex);
    if (mFound != mLength) {
        OpenToWrite();
    }
}

void IngestManifest::ReadLines(ORL::File& ioFile)
{
    std::vector<char> block(kBlock);
    std::string text; // the incomplete last line
    std::uint64_t start = 0;
    for (unsigned int count = 1; count != 0 && mFound <= kLargest;) {
        Check(ioFile.Read(block.data(), static_cast<unsigned int>(block.size()), count), "read");
        mFound += count;
        text.append(block.data(), count);
        std::size_t at = 0;
        for (std::size_t end = 0; (end = text.find('\n', at)) != std::string::npos; at = end + 1) {
            ReadLine(text.substr(at, end - at), start + at, LineEnd::kBreak);
        }
        text.erase(0, at);
        start += at;
        if (text.size() > kLongestLine) {
            Refuse("is not a list of SHA-256 sums");
        }
    }
    mLength = mFound;
    mEndsWithBreak = text.empty();
    const std::optional<std::uint64_t>& kept = mRecord.Remains().mManifestLength;
    if (!text.empty() && kept && start >= *kept) { // a killed run did not finish the line
        mLength = start;
        mEndsWithBreak = true;
    } else if (!text.empty()) {
        ReadLine(text, start, LineEnd::kEndOfFile);
    }
}

void IngestManifest::ReadLine(const std::string& inText, std::uint64_t inAt, LineEnd inEnd)
{
    Line line;
    const std::uint64_t length = inText.size() + (inEnd == LineEnd::kBreak ? 1 : 0);
    const std::vector<std::uint64_t>& withdrawn = mRecord.Remains().mCommentedOut;
    if (ParseManifestLine(inText, line)) {
        mLines[line.mName].push_back({inAt, length, line.mDigest});
    } else if (!IsLineOfSums(inText)) {
        Refuse("is not a list of SHA-256 sums");
    } else if (inText[0] == '#' && std::find(withdrawn.begin(), withdrawn.end(), inAt) != withdrawn.end()
               && (ParseManifestLine("0" + inText.substr(1), line)
                   || ParseManifestLine("\\" + inText.substr(1), line))) {
        mCommentedOut.push_back({inAt, length, std::string()}); // a killed run commented the line out
    }
}

std::vector<std::string> IngestManifest::NamesLike(const std::string& inName) const
{
    std::vector<std::string> names;
    const UTF16String folded = Folded(inName);
    for (const auto& [name, ranges] : mLines) {
        if (name != inName && name.size() == inName.size() && Folded(name) == folded) {
            names.push_back(name);
        }
    }
    return names;
}

// --- writing ---------------------------------------------------------------------------------------------------------

// Fails if a program that ignores the lock has replaced or changed the file since Read.
void IngestManifest::OpenToWrite()
{
    if (mFile.IsOpen()) {
        return;
    }
    const Disposition::Type disposition =
        mExists ? Disposition::kFileCreate_OpenExisting : Disposition::kFileCreate_New;
    Check(mFile.Create(mFolder.PathOf(mName), Access::kFileAccess_Read | Access::kFileAccess_Write,
                       Share::kFileShare_Read, disposition, Attributes::kFileAttribute_Normal, true),
          "open");
    EntryIdentity identity;
    if (!IdentifyFile(mFile, identity) || (mExists && (identity != mIdentity || mFile.SizeOnDisk() != mFound))) {
        mFile.Close();
        Refuse("was changed by another program during the run");
    }
    mExists = true;
    mIdentity = identity;
    if (mFound != mLength) {
        mFile.SetFilePointer(static_cast<__int64>(mLength), ORL::FilePointerMoveMethod::kFilePointer_Begin);
        Check(mFile.SetEndOfFile() == 0 ? ORL::kSuccess : ORL::kGeneralFailure, "truncate");
        mFound = mLength;
        UpdateRecord();
    }
}

void IngestManifest::WriteAt(std::uint64_t inAt, const std::string& inText)
{
    Check(mFile.SetFilePointer(static_cast<__int64>(inAt), ORL::FilePointerMoveMethod::kFilePointer_Begin), "write");
    for (std::size_t at = 0; at < inText.size();) {
        unsigned int written = 0;
        const auto count = static_cast<unsigned int>(std::min<std::size_t>(inText.size() - at, 1 << 20));
        Check(mFile.Write(inText.data() + at, count, written), "write");
        Check(written != 0 ? ORL::kSuccess : ORL::kDiskFull, "write");
        at += written;
    }
    Check(FlushFile(mFile) ? ORL::kSuccess : ORL::kGeneralFailure, "flush");
}

// If the write fails, removes the partial text: the next run could take it for a valid line.
void IngestManifest::Append(const std::string& inText)
{
    OpenToWrite();
    mRecord.RecordManifestLength(mLength);
    try {
        WriteAt(mLength, inText);
    } catch (const Failure&) {
        mFile.SetFilePointer(static_cast<__int64>(mLength), ORL::FilePointerMoveMethod::kFilePointer_Begin);
        if (mFile.SetEndOfFile() != 0) {
            mFound = mLength + 1; // the partial line remains; mFound != mLength makes a later run truncate it
            UpdateRecord();
        }
        throw;
    }
    mLength += inText.size();
    mFound = mLength;
    mEndsWithBreak = true;
    mRecord.RecordManifestComplete();
}

// The record is written before the line changes, so that a later run can tell comments of orl from those of users.
void IngestManifest::CommentOutLines(const std::string& inName)
{
    const auto line = mLines.find(inName);
    if (line == mLines.end()) {
        return;
    }
    OpenToWrite();
    for (const LineRange& range : line->second) {
        mRecord.RecordCommentedOut(range.mAt);
        WriteAt(range.mAt, "#");
        mCommentedOut.push_back(range);
        UpdateRecord();
    }
    mLines.erase(line);
}

void IngestManifest::Drop(const std::vector<std::string>& inNames)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    for (const std::string& name : inNames) {
        CommentOutLines(name);
    }
}

std::string IngestManifest::CommentOut(const std::string& inName)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    const auto line = mLines.find(inName);
    std::string digest = line != mLines.end() ? line->second.back().mDigest : std::string();
    CommentOutLines(inName);
    return digest;
}

void IngestManifest::Acknowledge(const std::vector<Line>& inLines)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    std::string text;
    std::vector<std::pair<std::string, LineRange>> added;
    for (const Line& line : inLines) {
        const auto earlier = mLines.find(line.mName);
        const auto isOther = [&line](const LineRange& inRange) { return inRange.mDigest != line.mDigest; };
        if (earlier != mLines.end() && std::none_of(earlier->second.begin(), earlier->second.end(), isOther)) {
            continue;
        }
        CommentOutLines(line.mName);
        const std::string formatted = FormatManifestLine(line);
        text += text.empty() && !mEndsWithBreak ? "\n" : "";
        added.push_back({line.mName, {mLength + text.size(), formatted.size(), line.mDigest}});
        text += formatted;
    }
    if (text.empty()) {
        return;
    }
    Append(text);
    for (const auto& [name, range] : added) {
        mLines[name] = {range};
    }
}

// --- compacting ------------------------------------------------------------------------------------------------------

void IngestManifest::Compact()
{
    const std::lock_guard<std::mutex> lock(mMutex);
    if (mCommentedOut.empty()) {
        return;
    }
    OpenToWrite();
    std::vector<LineRange> ranges = mCommentedOut;
    std::sort(ranges.begin(), ranges.end(),
              [](const LineRange& inLeft, const LineRange& inRight) { return inLeft.mAt < inRight.mAt; });
    const std::string temporary = CopyWithout(ranges);
    mFile.Close();
    const ORL::Result result = ORL::File::SwapTempFile(mFolder.PathOf(temporary), mFolder.PathOf(mName));
    if (!ORL::ResultSucceeded(result)) {
        mFolder.Remove(temporary);
    }
    mRecord.ForgetTemporary("", temporary);
    Check(result, "replace");
    mCommentedOut.clear(); // all offsets are invalid after the rewrite, which is the last step of a run
    mLines.clear();
    UpdateRecord();
}

std::string IngestManifest::CopyWithout(const std::vector<LineRange>& inRanges)
{
    const std::string temporary = mRecord.NewTemporary("");
    ORL::File file;
    Check(file.Create(mFolder.PathOf(temporary), Access::kFileAccess_Write, static_cast<Share::Type>(0),
                      Disposition::kFileCreate_New, Attributes::kFileAttribute_Normal, true),
          "write");
    std::vector<char> block(kBlock);
    std::size_t next = 0;
    for (std::uint64_t at = 0; at < mLength;) {
        if (next < inRanges.size() && inRanges[next].mAt == at) {
            at += inRanges[next++].mLength;
            continue;
        }
        const std::uint64_t end = next < inRanges.size() ? inRanges[next].mAt : mLength;
        const auto wanted = static_cast<unsigned int>(std::min<std::uint64_t>(end - at, block.size()));
        unsigned int count = 0;
        unsigned int written = 0;
        mFile.SetFilePointer(static_cast<__int64>(at), ORL::FilePointerMoveMethod::kFilePointer_Begin);
        Check(mFile.Read(block.data(), wanted, count), "read");
        Check(count != 0 ? file.Write(block.data(), count, written) : ORL::kGeneralFailure, "write");
        Check(written == count ? ORL::kSuccess : ORL::kDiskFull, "write");
        at += count;
    }
    Check(FlushFile(file) ? ORL::kSuccess : ORL::kGeneralFailure, "flush");
    return temporary;
}

} // namespace orl
