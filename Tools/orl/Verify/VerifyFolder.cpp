#include "VerifyFolder.h"

#include "Failure.h"
#include "Ingest/Record/IngestRecord.h"
#include "Text.h"
#include "UnbufferedRead.h"
#include "VerifyFile.h"
#include "VerifyList.h"

#include <ORLHostPath.h>
#include <ORLPathUtils.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <set>
#include <thread>

namespace orl {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kTick(100);

/// Thrown to stop the work on a file; the file stays unchecked.
struct Stopped
{
};

// Replaces "ingest: " in a message with "verify: ": the code that lists folders belongs to ingest.
std::string OfVerify(const std::string& inText)
{
    constexpr char kIngest[] = "ingest: ";
    const std::size_t length = sizeof(kIngest) - 1;
    return inText.compare(0, length, kIngest) == 0 ? "verify: " + inText.substr(length) : inText;
}

/// Returns ingest roots with the folder as both source and destination; they are used only for reading.
IngestRoots RootsOf(const std::string& inFolder)
{
    IngestRoots roots;
    std::string host;
    const ORL::Result result = ORL::PathUtils::ToHostPath(PathOfArgument(inFolder), host);
    if (!ORL::ResultSucceeded(result)) {
        throw Failure("verify: cannot find \"" + inFolder + "\": " + Describe(result));
    }
    roots.mSource = ORL::PathUtils::ToNormalizedPath(ORL::PathUtils::FromHostPath(host));
    roots.mShownSource = inFolder;
    HeldFolder folder;
    const ORL::Result opened = HeldFolder::Open(roots.mSource, folder);
    if (opened == ORL::kAccessDenied) {
        throw Failure("verify: cannot open \"" + inFolder + "\": " + Describe(opened), kExitUnreadable);
    }
    if (!ORL::ResultSucceeded(opened)) {
        throw Failure("verify: \"" + inFolder + "\" is no folder");
    }
    roots.mSourceIdentity = folder.Identity();
    roots.mDestination = roots.mSource;
    roots.mShownDestination = roots.mShownSource;
    roots.mDestinationIdentity = roots.mSourceIdentity;
    roots.mHasDestination = true;
    return roots;
}

class Verification
{
public:
    Verification(const std::string& inFolder, const VerifySettings& inSettings, const VerifyWatcher& inWatcher)
        : mSettings(inSettings), mWatcher(inWatcher), mRoots(RootsOf(inFolder))
    {
    }

    void Execute(VerifyOutcome& outOutcome)
    {
        ReadList(outOutcome);
        mListing = List();
        for (const IngestTrouble& trouble : mListing.mTroubles) {
            mTroubles.push_back({OfVerify(trouble.mText), trouble.mExitCode});
        }
        ChoosePart();
        ReportPlan();
        VerifyAll();
        if (!mEnds && IsDestinationGone(mRoots)) {
            EndAsGone();
        }
        if (!mEnds && FindsNewFiles()) {
            AddNewFiles();
        }
        std::sort(mFiles.begin(), mFiles.end(),
                  [](const VerifiedFile& inLeft, const VerifiedFile& inRight) { return inLeft.mName < inRight.mName; });
        outOutcome.mFiles = std::move(mFiles);
        outOutcome.mTroubles = std::move(mTroubles);
        outOutcome.mBytesRead = mBytesRead;
        outOutcome.mIsStopped = mIsStoppedByUser;
        outOutcome.mIsDiskUnresponsive = mIsDiskUnresponsive;
        outOutcome.mPart = mPart;
    }

private:
    void ReadList(VerifyOutcome& ioOutcome)
    {
        const VerifyList list = ReadVerifyList(mRoots, mSettings.mManifest);
        const std::string shown = "\"" + JoinHostPath(mRoots.mShownSource, mSettings.mManifest) + "\"";
        mListStatus = list.mStatus;
        mListDigest = list.mDigest;
        if (list.mOtherLines != 0) {
            AddTrouble(std::to_string(list.mOtherLines) + " lines of the list " + shown
                           + " were not checked: they are no SHA-256 lines of sha256sum",
                       kExitFailure);
        }
        for (const VerifyList::Line& line : list.mLines) {
            TakeUp(line);
        }
        if (mFiles.empty() && mTroubles.empty()) {
            if (mSettings.mPart) { // merging the parts reports the empty list, so each part needs a result
                ioOutcome.mPart =
                    PartOfList{*mSettings.mPart, mListDigest, DigestOfParts({}, {}), 0, mSettings.mIsQuick};
            }
            throw Failure("verify: the list " + shown + " names no file", kExitEmpty);
        }
    }

    IngestListing List() const
    {
        try {
            return ListSource(mRoots, mWatcher.mIsStopped, Exclusions());
        } catch (const Failure& failure) {
            if (failure.ExitCode() == kExitDisappeared) {
                throw Failure("verify: " + WhenGone(), kExitDisappeared);
            }
            throw;
        }
    }

    // System folders are not searched for new files, except those that contain a listed file.
    IngestExclusions Exclusions() const
    {
        IngestExclusions exclusions;
        exclusions.AddSystemFolders();
        for (const auto& listed : mListed) {
            const std::size_t slash = listed.first.find('/');
            if (slash != std::string::npos) {
                exclusions.Keep(listed.first.substr(0, slash));
            }
        }
        return exclusions;
    }

    // A name may have several lines in the list. The file can match only if all these lines agree.
    void TakeUp(const VerifyList::Line& inLine)
    {
        VerifiedFile file;
        file.mName = NameBelowFolder(inLine.mName);
        file.mListed = inLine.mDigest;
        if (file.mName.empty()) {
            file.mName = inLine.mName;
            file.mState = VerifiedFile::kUnreadable;
            file.mReason = "this is no name of a file in the folder";
            mFiles.push_back(std::move(file));
            return;
        }
        const auto [known, isNew] = mListed.insert({file.mName, mFiles.size()});
        if (isNew) {
            mFiles.push_back(std::move(file));
        } else if (VerifiedFile& earlier = mFiles[known->second]; earlier.mListed != file.mListed) {
            earlier.mState = VerifiedFile::kChanged;
            earlier.mReason = "the list has two checksums for it";
        }
    }

    // Each computer lists the whole folder, because the sizes decide which files are in its part. A file that is not in
    // the listing counts as empty.
    void ChoosePart()
    {
        for (const ListedFile& file : mListing.mFiles) {
            mPresent.insert({file.mName, file.mStatus.mSize});
        }
        if (!mSettings.mPart) {
            return;
        }
        std::vector<PartItem> items;
        for (const VerifiedFile& file : mFiles) {
            items.push_back({file.mName, PresentSize(file.mName)});
        }
        const std::vector<std::size_t> partOfItem = AssignParts(items, mSettings.mPart->mCount);
        std::vector<VerifiedFile> chosen;
        for (std::size_t i = 0; i < mFiles.size(); ++i) {
            if (partOfItem[i] == mSettings.mPart->mNumber) {
                chosen.push_back(std::move(mFiles[i]));
            } else if (FindsNewFiles() && mFiles[i].mState == VerifiedFile::kNotChecked) {
                NoteOtherSpelling(items[i].mName);
            }
        }
        mFiles = std::move(chosen);
        mPart = PartOfList{*mSettings.mPart, mListDigest, DigestOfParts(items, partOfItem), mFiles.size(),
                           mSettings.mIsQuick};
    }

    std::uint64_t PresentSize(const std::string& inName) const
    {
        const auto found = mPresent.find(inName);
        return found == mPresent.end() ? 0 : found->second;
    }

    // New files belong to the first part.
    bool FindsNewFiles() const { return !mSettings.mPart || mSettings.mPart->mNumber == 1; }

    // Records a listed file whose name has a different case in the folder, so that it does not count as new.
    void NoteOtherSpelling(const std::string& inName)
    {
        HeldFolder folder;
        EntryStatus status;
        if (mPresent.count(inName) == 0 && ORL::ResultSucceeded(mRoots.OpenDestination(FolderOf(inName), folder))
            && ORL::ResultSucceeded(folder.GetStatus(LeafOf(inName), Links::kFollow, status))) {
            mOtherSpellings.insert(status.mIdentity);
        }
    }

    void ReportPlan()
    {
        std::uint64_t bytes = 0;
        for (const VerifiedFile& file : mFiles) {
            bytes += PresentSize(file.mName);
        }
        mWatcher.mOnPlanned(mSettings.mIsQuick ? 0 : bytes, mFiles.size());
    }

    void VerifyAll()
    {
        const VerifyContext context{mRoots, mListStatus.mTime, mSettings.mIsQuick,
                                    [this](const std::string& inName, std::size_t inBytes) { Pass(inName, inBytes); }};
        mLeft = std::max(1u, mSettings.mFilesAtOnce);
        std::vector<std::thread> threads;
        for (unsigned i = mLeft; i != 0; --i) {
            threads.emplace_back([this, &context] { Work(context); });
        }
        std::unique_lock<std::mutex> lock(mMutex);
        while (!mChanged.wait_for(lock, kTick, [this] { return mLeft == 0; })) {
            lock.unlock();
            mWatcher.mShow(mBytesRead.load(std::memory_order_relaxed), mDone.load(std::memory_order_relaxed));
            IsOver();
            lock.lock();
        }
        lock.unlock();
        for (std::thread& thread : threads) {
            thread.join();
        }
    }

    void Pass(const std::string& inName, std::size_t inBytes)
    {
        mBytesRead.fetch_add(inBytes, std::memory_order_relaxed);
        if (mWatcher.mOnBlock) {
            mWatcher.mOnBlock(inName);
        }
        if (IsOver()) {
            throw Stopped();
        }
    }

    bool IsOver()
    {
        if (!mEnds.load(std::memory_order_relaxed) && mWatcher.mIsStopped()) {
            mIsStoppedByUser = true;
            mEnds = true;
        }
        return mEnds.load(std::memory_order_relaxed);
    }

    void Work(const VerifyContext& inContext)
    {
        for (std::size_t i = mNext++; i < mFiles.size() && !IsOver(); i = mNext++) {
            if (mFiles[i].mState == VerifiedFile::kNotChecked) {
                VerifyOne(mFiles[i], inContext);
            }
            mDone.fetch_add(1, std::memory_order_relaxed);
        }
        const std::lock_guard<std::mutex> lock(mMutex);
        --mLeft;
        mChanged.notify_all();
    }

    void VerifyOne(VerifiedFile& ioFile, const VerifyContext& inContext)
    {
        try {
            EntryIdentity identity;
            VerifyFile(ioFile, inContext, identity);
            const bool isAsListed = ioFile.mState == VerifiedFile::kVerified || ioFile.mState == VerifiedFile::kPresent;
            const bool isHere = ioFile.mState != VerifiedFile::kMissing && ioFile.mState != VerifiedFile::kUnreadable;
            if (!isAsListed && IsDestinationGone(mRoots)) {
                ioFile.mState = VerifiedFile::kNotChecked;
                ioFile.mReason.clear();
                EndAsGone();
            } else if (isHere && mPresent.count(ioFile.mName) == 0) {
                const std::lock_guard<std::mutex> lock(mMutex);
                mOtherSpellings.insert(identity);
            }
        } catch (const Stopped&) { // the file counts as neither verified nor changed
        } catch (const NoAnswer& failure) {
            mIsDiskUnresponsive = true;
            End(std::string(failure.what()).substr(sizeof("verify:")), kExitDisappeared);
        } catch (const std::exception& failure) {
            End("cannot check \"" + ioFile.mName + "\": " + failure.what(), kExitFailure);
        }
    }

    std::string WhenGone() const { return "the folder \"" + mRoots.mShownSource + "\" is gone"; }

    void EndAsGone() { End(WhenGone(), kExitDisappeared); }

    // Several files may hit the failure that ends the run; it is reported only once.
    void End(const std::string& inText, int inExitCode)
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        if (!mEnds.exchange(true)) {
            AddTrouble(inText, inExitCode);
        }
    }

    // A file that the checksum list names in a different case, on a case-insensitive volume, is not new.
    void AddNewFiles()
    {
        for (const ListedFile& file : mListing.mFiles) {
            const bool isOurs =
                FolderOf(file.mName).empty()
                && (file.mStatus.mIdentity == mListStatus.mIdentity || file.mName == RecordNameOf(mSettings.mManifest));
            if (!isOurs && mListed.count(file.mName) == 0 && mOtherSpellings.count(file.mStatus.mIdentity) == 0) {
                VerifiedFile added;
                added.mName = file.mName;
                added.mState = VerifiedFile::kNew;
                added.mSize = file.mStatus.mSize;
                mFiles.push_back(std::move(added));
            }
        }
    }

    void AddTrouble(const std::string& inText, int inExitCode)
    {
        mTroubles.push_back({"verify: " + inText, inExitCode});
    }

    const VerifySettings& mSettings;
    const VerifyWatcher& mWatcher;
    const IngestRoots mRoots;
    EntryStatus mListStatus;
    std::string mListDigest;
    std::optional<PartOfList> mPart;
    IngestListing mListing;
    std::map<std::string, std::uint64_t> mPresent; // sizes by name
    std::map<std::string, std::size_t> mListed;    // indices in mFiles, before a part was chosen
    std::vector<VerifiedFile> mFiles;
    std::atomic<bool> mEnds{false};
    std::atomic<bool> mIsStoppedByUser{false};
    std::atomic<bool> mIsDiskUnresponsive{false};
    std::atomic<std::uint64_t> mBytesRead{0};
    std::atomic<std::size_t> mDone{0};
    std::atomic<std::size_t> mNext{0};
    std::mutex mMutex; // guards all members below while the threads run
    std::condition_variable mChanged;
    unsigned mLeft = 0;
    std::vector<IngestTrouble> mTroubles;
    std::set<EntryIdentity> mOtherSpellings;
};

} // namespace

std::size_t VerifyOutcome::Count(VerifiedFile::State inState) const
{
    return static_cast<std::size_t>(std::count_if(
        mFiles.begin(), mFiles.end(), [inState](const VerifiedFile& inFile) { return inFile.mState == inState; }));
}

VerifyOutcome VerifyFolder(const std::string& inFolder, const VerifySettings& inSettings,
                           const VerifyWatcher& inWatcher)
{
    const Clock::time_point start = Clock::now();
    VerifyOutcome outcome;
    outcome.mShownFolder = inFolder;
    try {
        Verification(inFolder, inSettings, inWatcher).Execute(outcome);
    } catch (const Failure& failure) {
        outcome.mIsStopped = failure.ExitCode() == kExitStopped;
        if (!outcome.mIsStopped) {
            outcome.mTroubles.push_back({OfVerify(failure.what()), failure.ExitCode()});
        }
    }
    outcome.mSeconds = std::chrono::duration<double>(Clock::now() - start).count();
    return outcome;
}

} // namespace orl
