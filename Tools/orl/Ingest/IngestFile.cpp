#include "IngestFile.h"

#include "Hash/Checksum.h"
#include "IngestSystem.h"
#include "Text.h"
#include "UnbufferedRead.h"

#include <ORLFile.h>

#include <algorithm>
#include <utility>

namespace orl {

namespace {

using ORL::File;
using ORL::Result;
using ORL::ResultSucceeded;
using Access = ORL::FileAccessFlags;
using Share = ORL::FileShareModeFlags;
using Disposition = ORL::FileCreateDispositionFlags;
using Attributes = ORL::FileAttributesFlags;

constexpr std::size_t kBlockSize = SharedReading::kBlockSize;
constexpr std::size_t kReadsInFlight = 4; // reads in flight per file; several files are copied at once

// In a file with holes, a piece of this many zero bytes becomes a hole.
constexpr unsigned int kHoleSize = 1 << 16;

class OneFile
{
public:
    OneFile(const IngestItem& inItem, const IngestContext& inContext)
        : mItem(inItem), mContext(inContext), mFolderName(FolderOf(inItem.mName)), mLeaf(LeafOf(inItem.mName))
    {
    }

    IngestedFile CopyOne()
    {
        OpenFolders();
        IngestedFile file = mItem.mState == IngestItem::kToCheck ? Check() : IngestedFile{Copy()};
        KeepPermissions();
        return file;
    }

private:
    /// Removes the temporary file, unless it has been renamed to its final name.
    struct Remover
    {
        const OneFile& mFile;
        bool mIsArmed = true;

        ~Remover()
        {
            const Result result = mIsArmed ? mFile.mTarget.Remove(mFile.mTemporary) : ORL::kSuccess;
            if (ResultSucceeded(result) || result == ORL::kFileNotFound) {
                mFile.mContext.mRecord.ForgetTemporary(mFile.mFolderName, mFile.mTemporary);
            }
        }
    };

    void OpenFolders()
    {
        CheckSource(mContext.mRoots.OpenSource(mFolderName, mSource));
        CheckTarget(mContext.mRoots.OpenDestination(mFolderName, mTarget));
        if (mContext.mSourceFolders.count(mTarget.Identity()) != 0) {
            throw IngestFailure("the folder of \"" + mItem.mName
                                    + "\" at the destination leads into the source; nothing was written there",
                                kExitNameConflict, FailureScope::kFile);
        }
    }

    std::string Copy()
    {
        mTemporary = mContext.mRecord.NewTemporary(mFolderName);
        Remover remover{*this};
        const std::string digest = CopyToTemporary();
        ReportStep(IngestStep::kCopied);
        if (DigestOnDisk(mTemporary) != digest) {
            throw IngestFailure("\"" + mItem.mName + "\" reads back differently from the destination, and was not kept",
                                kExitMismatch, FailureScope::kFile);
        }
        ReportStep(IngestStep::kVerified);
        RenameIntoPlace();
        remover.mIsArmed = false;
        ReportStep(IngestStep::kInPlace);
        return digest;
    }

    // The destination has a file with this name and size. If the contents also match, the file counts as ingested.
    IngestedFile Check()
    {
        File source;
        OpenSource(source);
        std::string digest = DigestOfSource(source, [](const unsigned char*, unsigned int) {});
        source.Close();
        if (DigestOnDisk(mLeaf) == digest) {
            CopySourceTime();
            return IngestedFile{std::move(digest), true};
        }
        if (mContext.mReplaces) {
            return IngestedFile{Copy()};
        }
        ThrowNameConflict();
    }

    // A later run recognises the file by its last-write time. If the time cannot be set, the later run compares the
    // file again.
    void CopySourceTime() const
    {
        File file;
        const Result result =
            file.Create(mTarget.PathOf(mLeaf), Access::kFileAccess_Write,
                        Share::kFileShare_Read | Share::kFileShare_Write | Share::kFileShare_Delete,
                        Disposition::kFileCreate_OpenExisting, Attributes::kFileAttribute_Normal, true);
        EntryIdentity identity;
        if (ResultSucceeded(result) && IdentifyFile(file, identity) && mItem.mEarlier == identity) {
            SetLastWriteTime(file, mTime);
        }
    }

    // Called after the rename: a temporary file must be deletable, and Windows does not delete a read-only file. If the
    // run is killed in between, the next run compares the file and sets its permissions.
    void KeepPermissions() const
    {
        if (!mContext.mKeepsPermissions) {
            return;
        }
        const Result result = mTarget.SetPermissionsOf(mLeaf, mItem.mPermissions);
        if (!ResultSucceeded(result)) {
            CheckDestination();
            throw IngestFailure("cannot set the permissions of \"" + mItem.mName + "\" at \""
                                    + mContext.mRoots.mShownDestination + "\": " + Describe(result)
                                    + "; the file is complete, but not in the manifest",
                                kExitFailure, FailureScope::kFile);
        }
    }

    std::string CopyToTemporary()
    {
        File source;
        OpenSource(source);
        ReportStep(IngestStep::kOpened);
        CheckDestination();
        File target;
        CheckTarget(target.Create(mTarget.PathOf(mTemporary), Access::kFileAccess_Write, static_cast<Share::Type>(0),
                                  Disposition::kFileCreate_New, Attributes::kFileAttribute_Normal, true));
        if (HasHoles()) {
            MakeSparse(target);
        }
        const std::string digest = DigestOfSource(
            source, [&](const unsigned char* inBytes, unsigned int inCount) { WriteOrSkip(target, inBytes, inCount); });
        if (HasHoles()) {
            CheckTarget(target.SetEndOfFile() == 0 ? ORL::kSuccess : ORL::kGeneralFailure);
        }
        if (!SetLastWriteTime(target, mTime) || !PrepareSync(target)) {
            CheckTarget(ORL::kGeneralFailure);
        }
        return digest;
    }

    bool HasHoles() const { return mItem.mAllocated < mItem.mSize; }

    void WriteOrSkip(File& ioTarget, const unsigned char* inBytes, unsigned int inCount) const
    {
        if (!HasHoles()) {
            WriteAll(ioTarget, inBytes, inCount);
            return;
        }
        for (unsigned int at = 0; at < inCount; at += kHoleSize) {
            const unsigned int count = std::min(kHoleSize, inCount - at);
            const unsigned char* const piece = inBytes + at;
            if (std::all_of(piece, piece + count, [](unsigned char inByte) { return inByte == 0; })) {
                CheckTarget(ioTarget.SetFilePointer(count, ORL::FilePointerMoveMethod::kFilePointer_Current));
            } else {
                WriteAll(ioTarget, piece, count);
            }
        }
    }

    void OpenSource(File& outFile)
    {
        CheckSource(outFile.Create(mSource.PathOf(mLeaf), Access::kFileAccess_Read,
                                   Share::kFileShare_Read | Share::kFileShare_Write | Share::kFileShare_Delete,
                                   Disposition::kFileCreate_OpenExisting, Attributes::kFileAttribute_SequentialScan,
                                   true));
        CheckSource(outFile.GetLastModificationTime(mTime));
        CheckUnchanged(outFile);
    }

    // Detects writes by other programs: they change the source file's size or last-write time.
    void CheckUnchanged(const File& inSource) const
    {
        unsigned __int64 time = 0;
        CheckSource(inSource.GetLastModificationTime(time));
        if (inSource.SizeOnDisk() != mItem.mSize || time != mTime) {
            ThrowChanged();
        }
    }

    template <class Sink>
    std::string DigestOfSource(File& ioSource, const Sink& inSink)
    {
        std::uint64_t place = 0; // the position of the file pointer
        SharedReading reading(
            mContext.mSource, mContext.mDestination, mItem.mName, mItem.mSize,
            [&](std::uint64_t inAt, unsigned char* outBytes, std::size_t inCount) {
                ReadSource(ioSource, inAt, outBytes, inCount, place);
            },
            [this] { CheckStopped(); });
        CheckStopped();
        while (const SharedReading::Block block = reading.Next()) {
            inSink(block->data(), static_cast<unsigned int>(block->size()));
            mContext.mOnBytesRead(block->size());
            ReportStep(IngestStep::kBlockCopied);
            CheckStopped();
        }
        CheckUnchanged(ioSource);
        return reading.Digest();
    }

    void ReadSource(File& ioSource, std::uint64_t inAt, unsigned char* outBytes, std::size_t inCount,
                    std::uint64_t& ioPlace) const
    {
        if (ioPlace != inAt) {
            CheckSource(
                ioSource.SetFilePointer(static_cast<__int64>(inAt), ORL::FilePointerMoveMethod::kFilePointer_Begin));
            ioPlace = inAt;
        }
        for (std::size_t done = 0; done < inCount;) {
            unsigned int count = 0;
            CheckSource(ioSource.Read(outBytes + done, static_cast<unsigned int>(inCount - done), count));
            if (count == 0) {
                ThrowChanged();
            }
            done += count;
            ioPlace += count;
        }
    }

    void WriteAll(File& ioTarget, const unsigned char* inBytes, unsigned int inCount) const
    {
        for (unsigned int at = 0; at < inCount;) {
            unsigned int written = 0;
            CheckTarget(ioTarget.Write(inBytes + at, inCount - at, written));
            CheckTarget(written != 0 ? ORL::kSuccess : ORL::kDiskFull);
            at += written;
        }
    }

    // A read cannot begin at the end of a file, so an empty file is not read.
    std::string DigestOnDisk(const std::string& inLeaf) const
    {
        const UTF16String path = mTarget.PathOf(inLeaf);
        unsigned __int64 size = 0;
        CheckTarget(File::SizeOnDisk(path, size));
        Checksum digest(ChecksumKind::kSha256);
        if (size != 0) {
            UnbufferedRead read;
            read.mCommand = "ingest";
            read.mDisplayName = mItem.mName;
            read.mPath = path;
            read.mSize = size;
            read.mBlockSize = kBlockSize;
            read.mDepth = kReadsInFlight;
            try {
                ReadUnbuffered(read, [&](const unsigned char* inBytes, std::size_t inCount, double, std::uint64_t) {
                    digest.Add(inBytes, inCount);
                    mContext.mOnBytesRead(inCount);
                    CheckStopped();
                });
            } catch (const NoAnswer&) {
                throw;
            } catch (const Failure&) {
                CheckTarget(ORL::kGeneralFailure);
            }
        }
        return digest.Finish();
    }

    // A file that appeared under the final name after planning is kept. Another program created it, or this run did if
    // the volume treats two names of the source as one.
    void RenameIntoPlace() const
    {
        Result result = mTarget.RenameNoReplace(mTemporary, mLeaf);
        if (result == ORL::kAlreadyExists) {
            EntryStatus status;
            const bool isEarlier = ResultSucceeded(mTarget.GetStatus(mLeaf, Links::kNoFollow, status))
                                   && status.mKind == EntryStatus::kFile && mItem.mEarlier == status.mIdentity;
            if (!mContext.mReplaces || !isEarlier) {
                ThrowNameConflict();
            }
            result = Replace();
        }
        CheckTarget(result);
    }

    // Comments the line out first: the manifest must never hold a line for contents that are gone, not even after a
    // kill. If the earlier file stays, its line is restored.
    Result Replace() const
    {
        std::vector<IngestManifest::Line> earlier;
        CommentOut(mItem.mName, earlier);
        for (const std::string& name : mContext.mManifest.NamesLike(mItem.mName)) {
            EntryStatus status;
            HeldFolder folder;
            if (ResultSucceeded(mContext.mRoots.OpenDestination(FolderOf(name), folder))
                && ResultSucceeded(folder.GetStatus(LeafOf(name), Links::kNoFollow, status))
                && mItem.mEarlier == status.mIdentity) {
                CommentOut(name, earlier);
            }
        }
        const Result result = File::SwapTempFile(mTarget.PathOf(mTemporary), mTarget.PathOf(mLeaf));
        if (!ResultSucceeded(result) && !earlier.empty() && IsOnDisk(earlier.front().mDigest)) {
            mContext.mManifest.Acknowledge(earlier);
        }
        return result;
    }

    void CommentOut(const std::string& inName, std::vector<IngestManifest::Line>& ioEarlier) const
    {
        std::string digest = mContext.mManifest.CommentOut(inName);
        if (!digest.empty()) {
            ioEarlier.push_back({inName, std::move(digest)});
        }
    }

    bool IsOnDisk(const std::string& inDigest) const
    {
        try {
            return DigestOnDisk(mLeaf) == inDigest;
        } catch (const IngestFailure&) {
            return false;
        }
    }

    void CheckStopped() const
    {
        if (mContext.mIsStopped()) {
            throw IngestStopped();
        }
    }

    void CheckSource(Result inResult) const
    {
        if (ResultSucceeded(inResult)) {
            return;
        }
        if (IsSourceGone(mContext.mRoots, SourceWas::kNotEmpty)) {
            throw IngestFailure("the source \"" + mContext.mRoots.mShownSource
                                    + "\" is gone; files in place are complete and are kept",
                                kExitDisappeared, FailureScope::kRun);
        }
        throw IngestFailure("cannot read \"" + mItem.mName + "\": " + Describe(inResult), kExitUnreadable,
                            FailureScope::kFile);
    }

    void CheckTarget(Result inResult) const
    {
        if (ResultSucceeded(inResult)) {
            return;
        }
        const std::string& shown = mContext.mRoots.mShownDestination;
        if (inResult == ORL::kDiskFull) {
            throw IngestFailure("\"" + shown + "\" is full; files in place are complete and are kept", kExitNoSpace,
                                FailureScope::kRun);
        }
        CheckDestination();
        throw IngestFailure("cannot write \"" + mItem.mName + "\" at \"" + shown + "\": " + Describe(inResult),
                            kExitFailure, FailureScope::kFile);
    }

    // Ends the run after an unmount; otherwise further files would be written to the disk that holds the mount point.
    void CheckDestination() const
    {
        if (IsDestinationGone(mContext.mRoots)) {
            throw IngestFailure("the destination \"" + mContext.mRoots.mShownDestination + "\" is gone",
                                kExitDisappeared, FailureScope::kRun);
        }
    }

    [[noreturn]] void ThrowChanged() const
    {
        throw IngestFailure("\"" + mItem.mName + "\" changed while it was copied, and was not kept", kExitChanged,
                            FailureScope::kFile);
    }

    [[noreturn]] void ThrowNameConflict() const
    {
        throw IngestFailure("cannot copy \"" + mItem.mName + "\": " + kTakenByOtherFile, kExitNameConflict,
                            FailureScope::kFile);
    }

    void ReportStep(IngestStep inStep) const
    {
        if (mContext.mOnStep) {
            mContext.mOnStep(inStep, mItem);
        }
    }

    const IngestItem& mItem;
    const IngestContext& mContext;
    const std::string mFolderName;
    const std::string mLeaf;
    std::string mTemporary; // name in the folder of the final name; empty before the copy begins
    HeldFolder mSource;
    HeldFolder mTarget;
    unsigned __int64 mTime = 0;
};

} // namespace

IngestedFile IngestFile(const IngestItem& inItem, const IngestContext& inContext)
{
    return OneFile(inItem, inContext).CopyOne();
}

} // namespace orl
