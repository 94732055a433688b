#include "VerifyFile.h"

#include "Hash/Checksum.h"
#include "UnbufferedRead.h"

namespace orl {

namespace {

constexpr std::size_t kReadsInFlight = 8; // reads in flight for one file; several files are read at once
constexpr char kDigestOfNothing[] = "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855";
constexpr char kChangedWhileRead[] = "it changed while it was read";

class OneFile
{
public:
    OneFile(VerifiedFile& ioFile, const VerifyContext& inContext)
        : mFile(ioFile), mContext(inContext), mLeaf(LeafOf(ioFile.mName))
    {
    }

    void Verify(EntryIdentity& outIdentity)
    {
        if (!Find()) {
            return;
        }
        outIdentity = mStatus.mIdentity;
        mFile.mSize = mStatus.mSize;
        if (mStatus.mKind != EntryStatus::kFile) {
            Set(VerifiedFile::kChanged,
                mStatus.mKind == EntryStatus::kFolder ? "it is a folder" : "it is not a regular file");
        } else if (mContext.mIsQuick) {
            CompareStatus();
        } else {
            CompareContents();
        }
    }

private:
    void Set(VerifiedFile::State inState, const std::string& inReason)
    {
        mFile.mState = inState;
        mFile.mReason = inReason;
    }

    // If a file has replaced one of the folders, the listed file counts as missing.
    bool Find()
    {
        ORL::Result result = mContext.mRoots.OpenDestination(FolderOf(mFile.mName), mFolder);
        if (ORL::ResultSucceeded(result)) {
            result = mFolder.GetStatus(mLeaf, Links::kFollow, mStatus);
        }
        if (result == ORL::kFileNotFound || result == ORL::kPathNotFound) {
            Set(VerifiedFile::kMissing, std::string());
        } else if (!ORL::ResultSucceeded(result)) {
            Set(VerifiedFile::kUnreadable, Describe(result));
        }
        return ORL::ResultSucceeded(result);
    }

    // The list has neither sizes nor times: compares only whether the file is empty, and its time with the list's.
    void CompareStatus()
    {
        const bool wasEmpty = mFile.mListed == kDigestOfNothing;
        if (wasEmpty != (mStatus.mSize == 0)) {
            Set(VerifiedFile::kChanged, wasEmpty ? "it was empty" : "it is empty");
        } else if (mStatus.mTime > mContext.mListTime) {
            Set(VerifiedFile::kChanged, "it was written after the list");
        } else {
            Set(VerifiedFile::kPresent, std::string());
        }
    }

    // A read cannot begin at the end of a file, so an empty file is not read.
    std::string DigestOf(const UnbufferedRead& inRead) const
    {
        Checksum digest(ChecksumKind::kSha256);
        if (mStatus.mSize != 0) {
            ReadUnbuffered(inRead, [&](const unsigned char* inBytes, std::size_t inCount, double, std::uint64_t) {
                digest.Add(inBytes, inCount);
                mContext.mPass(mFile.mName, inCount);
            });
        }
        return digest.Finish();
    }

    void CompareContents()
    {
        UnbufferedRead read;
        read.mCommand = "verify";
        read.mDisplayName = mFile.mName;
        read.mPath = mFolder.PathOf(mLeaf);
        read.mSize = mStatus.mSize;
        read.mDepth = kReadsInFlight;
        bool isReadWhole = true;
        try {
            mFile.mDigest = DigestOf(read);
        } catch (const NoAnswer&) {
            throw;
        } catch (const Failure&) {
            isReadWhole = false;
        }
        if (!IsStillTheSame()) {
            return;
        }
        if (!isReadWhole) {
            Set(VerifiedFile::kUnreadable, WhyUnreadable());
        } else if (mFile.mDigest != mFile.mListed) {
            Set(VerifiedFile::kChanged, "its SHA-256 is not the listed one");
        } else {
            Set(VerifiedFile::kVerified, std::string());
        }
    }

    // If the file changed while it was read, sets its state and returns false: the digest may mix old and new contents.
    bool IsStillTheSame()
    {
        EntryStatus after;
        const ORL::Result result = mFolder.GetStatus(mLeaf, Links::kFollow, after);
        if (result == ORL::kFileNotFound || result == ORL::kPathNotFound) {
            Set(VerifiedFile::kMissing, "it was removed while it was read");
        } else if (!ORL::ResultSucceeded(result)) {
            Set(VerifiedFile::kUnreadable, Describe(result));
        } else if (after.mIdentity != mStatus.mIdentity || after.mSize != mStatus.mSize
                   || after.mTime != mStatus.mTime) {
            Set(VerifiedFile::kChanged, kChangedWhileRead);
        } else {
            return true;
        }
        return false;
    }

    // Opens the file again, buffered, because only a buffered open reports why it failed.
    std::string WhyUnreadable() const
    {
        ORL::File file;
        const ORL::Result result =
            file.Create(mFolder.PathOf(mLeaf), ORL::FileAccessFlags::kFileAccess_Read,
                        ORL::FileShareModeFlags::kFileShare_Read | ORL::FileShareModeFlags::kFileShare_Write
                            | ORL::FileShareModeFlags::kFileShare_Delete,
                        ORL::FileCreateDispositionFlags::kFileCreate_OpenExisting,
                        ORL::FileAttributesFlags::kFileAttribute_Normal, true);
        return ORL::ResultSucceeded(result) ? "the disk reports an error" : Describe(result);
    }

    VerifiedFile& mFile;
    const VerifyContext& mContext;
    const std::string mLeaf;
    HeldFolder mFolder;
    EntryStatus mStatus;
};

} // namespace

void VerifyFile(VerifiedFile& ioFile, const VerifyContext& inContext, EntryIdentity& outIdentity)
{
    OneFile(ioFile, inContext).Verify(outIdentity);
}

} // namespace orl
