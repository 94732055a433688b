#include "IngestRecord.h"

#include "Failure.h"
#include "IngestManifest.h"
#include "TemporaryName.h"
#include "Text.h"

#include <chrono>
#include <thread>

namespace orl {

namespace {

using Access = ORL::FileAccessFlags;
using Share = ORL::FileShareModeFlags;
using Disposition = ORL::FileCreateDispositionFlags;
using Attributes = ORL::FileAttributesFlags;

constexpr char kHeader[] = "orl ingest: the record of a run; it is deleted when the run has ended\n";
constexpr std::uint64_t kLargestRecord = std::uint64_t{1} << 30;

// The first letter of each line: a temporary file, the length of the manifest, an offset in the manifest.
constexpr char kTemporary = 'T';
constexpr char kLength = 'M';
constexpr char kCommentedOut = 'W';
constexpr char kWhole[] = "-"; // written in place of a length if no line is being added

bool IsNumber(const std::string& inText)
{
    return !inText.empty() && inText.size() < 19 && inText.find_first_not_of("0123456789") == std::string::npos;
}

// Returns whether a recorded name lies below the destination and has the form of a temporary name.
bool IsSafeTemporaryName(const std::string& inName)
{
    const std::string folder = "/" + FolderOf(inName) + "/";
    return IsTemporaryName(LeafOf(inName)) && inName[0] != '/' && folder.find("/../") == std::string::npos
           && folder.find("/./") == std::string::npos && (folder == "//" || folder.find("//") == std::string::npos);
}

// Removes a temporary file, or a folder in which names were tested.
ORL::Result RemoveUnfinished(const HeldFolder& inFolder, const std::string& inLeaf)
{
    HeldFolder tried;
    if (!ORL::ResultSucceeded(inFolder.OpenFolder(inLeaf, Links::kNoFollow, tried))) {
        return inFolder.Remove(inLeaf);
    }
    std::vector<std::string> names;
    tried.List(names);
    for (const std::string& name : names) {
        tried.RemoveFolder(name);
    }
    tried = HeldFolder();
    return inFolder.RemoveFolder(inLeaf);
}

void ReadRecordLine(const std::string& inLine, IngestRemains& ioRemains)
{
    const std::string rest = inLine.size() > 2 && inLine[1] == ' ' ? inLine.substr(2) : std::string();
    if (inLine[0] == kTemporary && IsSafeTemporaryName(UnescapedName(rest))) {
        ioRemains.mTemporaries.insert(UnescapedName(rest));
    } else if (inLine[0] == kLength && rest == kWhole) {
        ioRemains.mManifestLength.reset();
    } else if (inLine[0] == kLength && IsNumber(rest)) {
        ioRemains.mManifestLength = std::stoull(rest);
    } else if (inLine[0] == kCommentedOut && IsNumber(rest)) {
        ioRemains.mCommentedOut.push_back(std::stoull(rest));
    }
}

} // namespace

std::string RecordNameOf(const std::string& inManifestName)
{
    return "." + inManifestName + ".run";
}

ORL::Result RetryWhileBusy(const std::function<ORL::Result()>& inWork)
{
    constexpr int kTries = 250;
    ORL::Result result = inWork();
    for (int i = 1; i < kTries && result == ORL::kSharingViolation; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        result = inWork();
    }
    return result;
}

IngestRecord::IngestRecord(const IngestRoots& inRoots, const std::string& inManifestName)
    : mRoots(inRoots), mName(RecordNameOf(inManifestName))
{
}

// On a system where an open file can be deleted, the file is removed while it is still locked. On other systems the
// file is removed after it is closed; if another run has opened it in between, the removal fails.
IngestRecord::~IngestRecord()
{
    if (!mFile.IsOpen()) {
        return;
    }
    const bool isNeeded = !mTemporaries.empty() || mIsNeededByManifest;
    const bool isRemoved = !isNeeded && ORL::ResultSucceeded(mFolder.Remove(mName));
    mFile.Close();
    if (!isNeeded && !isRemoved) {
        mFolder.Remove(mName);
    }
}

void IngestRecord::Open()
{
    const ORL::Result opened = mRoots.OpenDestination("", mFolder);
    if (opened == kOutOfResources) {
        CheckOpened(opened);
    }
    if (!ORL::ResultSucceeded(opened)) {
        throw Failure("ingest: the destination \"" + mRoots.mShownDestination + "\" is gone", kExitDisappeared);
    }
    // A run deletes the record when it ends. If another run opened the record just before, that run has locked a
    // deleted file, and must create and open the record again.
    constexpr int kTries = 1000;
    for (int i = 0; i < kTries; ++i) {
        OpenOnce();
        if (mFile.IsOpen() && IsFileCurrent()) {
            Read();
            return;
        }
        mFile.Close();
    }
    throw Failure("ingest: cannot lock \"" + JoinHostPath(mRoots.mShownDestination, mName)
                  + "\": other runs keep creating and deleting it");
}

void IngestRecord::OpenOnce()
{
    EntryStatus status;
    const ORL::Result query = mFolder.GetStatus(mName, Links::kNoFollow, status);
    if (ORL::ResultSucceeded(query) && status.mKind != EntryStatus::kFile) {
        RefuseForeign();
    }
    mIsTrusted = !ORL::ResultSucceeded(query) || status.mIsTrusted;
    const ORL::Result result = mFile.Create(
        mFolder.PathOf(mName), Access::kFileAccess_Read | Access::kFileAccess_Write, static_cast<Share::Type>(0),
        ORL::ResultSucceeded(query) ? Disposition::kFileCreate_OpenExisting : Disposition::kFileCreate_New,
        Attributes::kFileAttribute_Normal, true);
    const bool hasChanged =
        ORL::ResultSucceeded(query)
        != ORL::ResultSucceeded(mFolder.GetStatus(mName, Links::kNoFollow, status)); // if so, Open tries again
    if (result == ORL::kSharingViolation || !hasChanged) {
        CheckOpened(result);
    }
}

void IngestRecord::CheckOpened(ORL::Result inResult) const
{
    if (inResult == ORL::kSharingViolation) {
        throw Failure("ingest: another ingest is using \"" + mRoots.mShownDestination + "\"");
    }
    if (!ORL::ResultSucceeded(inResult)) {
        throw Failure("ingest: cannot open \"" + JoinHostPath(mRoots.mShownDestination, mName)
                          + "\": " + Describe(inResult),
                      inResult == ORL::kDiskFull ? kExitNoSpace : kExitFailure);
    }
}

bool IngestRecord::IsFileCurrent()
{
    EntryStatus status;
    EntryIdentity identity;
    return IdentifyFile(mFile, identity) && ORL::ResultSucceeded(mFolder.GetStatus(mName, Links::kNoFollow, status))
           && status.mKind == EntryStatus::kFile && status.mIdentity == identity;
}

void IngestRecord::RefuseForeign() const
{
    throw Failure("ingest: \"" + JoinHostPath(mRoots.mShownDestination, mName)
                  + "\" was not created by orl ingest (delete it, or name another manifest with --manifest)");
}

// Before it throws, closes the file, so that the destructor does not delete it: an unreadable record may contain
// entries, and another program may have created the file.
std::string IngestRecord::ReadText()
{
    std::string text;
    std::vector<char> block(1 << 16);
    const bool isSmall = mFile.SizeOnDisk() <= kLargestRecord;
    for (unsigned int count = isSmall ? 1 : 0; count != 0;) {
        const ORL::Result result = mFile.Read(block.data(), static_cast<unsigned>(block.size()), count);
        if (!ORL::ResultSucceeded(result)) {
            mFile.Close();
            throw Failure("ingest: cannot read \"" + JoinHostPath(mRoots.mShownDestination, mName)
                          + "\": " + Describe(result));
        }
        text.append(block.data(), count);
    }
    const std::string header(kHeader);
    if (!isSmall || text.compare(0, header.size(), header, 0, text.size()) != 0) {
        mFile.Close();
        RefuseForeign();
    }
    return text;
}

// Parses the lines after the header. Ignores an incomplete last line.
void IngestRecord::TakeUpLines(const std::string& inText)
{
    for (std::size_t at = sizeof(kHeader) - 1, end = 0; (end = inText.find('\n', at)) != std::string::npos;
         at = end + 1) {
        if (end != at) {
            ReadRecordLine(inText.substr(at, end - at), mRemains);
        }
    }
}

void IngestRecord::Read()
{
    const std::string text = ReadText();
    if (text.size() < sizeof(kHeader) - 1) {
        mFile.SetFilePointer(0, ORL::FilePointerMoveMethod::kFilePointer_Begin);
        mFile.SetEndOfFile();
        Write(kHeader, AfterWrite::kReturn);
        return;
    }
    TakeUpLines(text);
    mTemporaries = mRemains.mTemporaries;
    mIsNeededByManifest = mRemains.mManifestLength || !mRemains.mCommentedOut.empty(); // until the manifest is read
    if (text.back() != '\n') {
        Write("\n", AfterWrite::kReturn); // terminates the incomplete line of a killed run
    }
}

void IngestRecord::Peek()
{
    EntryStatus status;
    if (!ORL::ResultSucceeded(mRoots.OpenDestination("", mFolder))
        || mFolder.GetStatus(mName, Links::kNoFollow, status) == ORL::kFileNotFound) {
        return;
    }
    if (status.mKind != EntryStatus::kFile) {
        RefuseForeign();
    }
    const ORL::Result result =
        mFile.Create(mFolder.PathOf(mName), Access::kFileAccess_Read,
                     Share::kFileShare_Read | Share::kFileShare_Write | Share::kFileShare_Delete,
                     Disposition::kFileCreate_OpenExisting, Attributes::kFileAttribute_Normal, true);
    CheckOpened(result);
    const std::string text = ReadText();
    mFile.Close(); // the destructor deletes the record only if the file is still open
    if (text.size() >= sizeof(kHeader) - 1) {
        TakeUpLines(text);
    }
}

// Another user's record reaches no folder through a link: that user could have planted both.
void IngestRecord::RemoveLeftovers(const std::set<EntryIdentity>& inSourceFolders)
{
    const Links links = mIsTrusted ? Links::kFollow : Links::kNoFollow;
    for (const std::string& name : mRemains.mTemporaries) {
        HeldFolder folder;
        ORL::Result result = mRoots.OpenDestination(FolderOf(name), folder, links);
        const bool isGone = result == ORL::kFileNotFound || result == ORL::kPathNotFound;
        if (ORL::ResultSucceeded(result) && inSourceFolders.count(folder.Identity()) == 0) {
            result = RetryWhileBusy([&] { return RemoveUnfinished(folder, LeafOf(name)); });
        }
        if (ORL::ResultSucceeded(result) || result == ORL::kFileNotFound || isGone) {
            ForgetTemporary(FolderOf(name), LeafOf(name));
        }
    }
}

std::string IngestRecord::NewTemporary(const std::string& inFolder)
{
    std::string leaf = RandomTemporaryName();
    const std::lock_guard<std::mutex> lock(mMutex);
    Write(std::string(1, kTemporary) + " " + EscapedName(NameBelow(inFolder, leaf)) + "\n", AfterWrite::kReturn);
    mTemporaries.insert(NameBelow(inFolder, leaf));
    return leaf;
}

void IngestRecord::ForgetTemporary(const std::string& inFolder, const std::string& inLeaf)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mTemporaries.erase(NameBelow(inFolder, inLeaf));
}

void IngestRecord::RecordManifestLength(std::uint64_t inLength)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    Write(std::string(1, kLength) + " " + std::to_string(inLength) + "\n", AfterWrite::kFlush);
}

void IngestRecord::RecordManifestComplete()
{
    const std::lock_guard<std::mutex> lock(mMutex);
    Write(std::string(1, kLength) + " " + kWhole + "\n", AfterWrite::kReturn);
}

void IngestRecord::SetNeededByManifest(bool inIsNeeded)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mIsNeededByManifest = inIsNeeded;
}

void IngestRecord::RecordCommentedOut(std::uint64_t inPlace)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    Write(std::string(1, kCommentedOut) + " " + std::to_string(inPlace) + "\n", AfterWrite::kFlush);
}

void IngestRecord::Write(const std::string& inLine, AfterWrite inAfter)
{
    mFile.SetFilePointer(0, ORL::FilePointerMoveMethod::kFilePointer_End);
    ORL::Result result = ORL::kSuccess;
    for (std::size_t at = 0; at < inLine.size() && ORL::ResultSucceeded(result);) {
        unsigned int written = 0;
        result = mFile.Write(inLine.data() + at, static_cast<unsigned>(inLine.size() - at), written);
        at += written;
        if (ORL::ResultSucceeded(result) && written == 0) {
            result = ORL::kDiskFull;
        }
    }
    const bool isWritten = ORL::ResultSucceeded(result);
    if (isWritten && inAfter == AfterWrite::kFlush && !FlushFile(mFile)) {
        result = ORL::kGeneralFailure;
    }
    if (!ORL::ResultSucceeded(result)) {
        throw Failure(std::string("ingest: cannot ") + (isWritten ? "flush" : "write") + " \""
                          + JoinHostPath(mRoots.mShownDestination, mName) + "\": " + Describe(result),
                      result == ORL::kDiskFull ? kExitNoSpace : kExitFailure);
    }
}

} // namespace orl
