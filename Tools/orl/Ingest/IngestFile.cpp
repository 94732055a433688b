#include "IngestFile.h"

#include "IngestSystem.h"
#include "Sha256.h"
#include "Text.h"
#include "UnbufferedRead.h"

#include <ORLFile.h>
#include <ORLPathUtils.h>

#include <algorithm>
#include <chrono>
#include <thread>

namespace orl {

namespace {

using ORL::File;
using ORL::Result;
using ORL::ResultSucceeded;
using Access = ORL::FileAccessFlags;
using Share = ORL::FileShareModeFlags;
using Disposition = ORL::FileCreateDispositionFlags;
using Attributes = ORL::FileAttributesFlags;

constexpr std::size_t kBlockSize = 1 << 20;
constexpr std::size_t kReadsInFlight = 4; // of one file; several files are on their way at once

class OneFile
{
public:
    OneFile(const IngestItem& inItem, const IngestContext& inContext, std::vector<unsigned char>& ioBuffer)
        : mItem(inItem), mContext(inContext), mBuffer(ioBuffer), mTemporary(TemporaryPathOf(inItem))
    {
        mBuffer.resize(kBlockSize);
    }

    std::string Bring()
    {
        return mItem.mState == IngestItem::kToCheck ? Check() : Copy();
    }

private:
    /// The temporary file goes, unless it has become the real one.
    struct Remover
    {
        const UTF16String& mPath;
        bool mIsArmed = true;

        ~Remover()
        {
            if (mIsArmed) {
                File::Delete(mPath);
            }
        }
    };

    std::string Copy()
    {
        Remover remover{mTemporary};
        const std::string digest = CopyToTemporary();
        Tell(IngestStep::kCopied);
        if (DigestOnDisk(mTemporary) != digest) {
            throw IngestFailure("\"" + mItem.mName + "\" reads back differently from the destination, and was not kept",
                                kExitNotTheSame, false);
        }
        Tell(IngestStep::kVerified);
        PutInPlace();
        remover.mIsArmed = false;
        Tell(IngestStep::kInPlace);
        return digest;
    }

    // The name is taken by a file of the same size. The same contents make it ours.
    std::string Check()
    {
        File source;
        OpenSource(source);
        const std::string digest = DigestOfSource(source, [](const unsigned char*, unsigned int) {});
        source.Close();
        if (DigestOnDisk(mItem.mTarget) == digest) {
            return digest;
        }
        if (mContext.mReplaces) {
            return Copy();
        }
        ThrowTaken();
    }

    std::string CopyToTemporary()
    {
        File source;
        OpenSource(source);
        Tell(IngestStep::kOpened);
        CheckDestination();
        File target;
        CheckTarget(OnceItIsFree([&] {
            return target.Create(mTemporary, Access::kFileAccess_Write, static_cast<Share::Type>(0),
                                 Disposition::kFileCreate_Always, Attributes::kFileAttribute_Normal, true);
        }));
        const std::string digest = DigestOfSource(
            source, [&](const unsigned char* inBytes, unsigned int inCount) { WriteAll(target, inBytes, inCount); });
        if (!SetLastWriteTime(target, mTime) || !SettleFile(target)) {
            CheckTarget(ORL::kGeneralFailure);
        }
        return digest;
    }

    void OpenSource(File& outFile)
    {
        CheckSource(outFile.Create(mItem.mSource, Access::kFileAccess_Read,
                                   Share::kFileShare_Read | Share::kFileShare_Write | Share::kFileShare_Delete,
                                   Disposition::kFileCreate_OpenExisting, Attributes::kFileAttribute_SequentialScan,
                                   true));
        CheckSource(outFile.GetLastModificationTime(mTime));
        CheckUnchanged(outFile);
    }

    // Whoever writes a file changes its size or its time.
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
        Sha256 digest;
        for (std::uint64_t done = 0; done < mItem.mSize;) {
            CheckStopped();
            const auto wanted = static_cast<unsigned int>(std::min<std::uint64_t>(kBlockSize, mItem.mSize - done));
            unsigned int count = 0;
            CheckSource(ioSource.Read(mBuffer.data(), wanted, count));
            if (count == 0) {
                ThrowChanged();
            }
            digest.Add(mBuffer.data(), count);
            inSink(mBuffer.data(), count);
            done += count;
            mContext.mPass(count);
            Tell(IngestStep::kBlockCopied);
        }
        CheckUnchanged(ioSource);
        return digest.Finish();
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

    // A read cannot begin at the end of a file, so there is none for an empty one.
    std::string DigestOnDisk(const UTF16String& inPath) const
    {
        unsigned __int64 size = 0;
        CheckTarget(File::SizeOnDisk(inPath, size));
        Sha256 digest;
        if (size != 0) {
            UnbufferedRead read;
            read.mWho = "ingest";
            read.mShown = HostTextOf(inPath);
            read.mPath = inPath;
            read.mSize = size;
            read.mBlockSize = kBlockSize;
            read.mDepth = kReadsInFlight;
            try {
                ReadUnbuffered(read, [&](const unsigned char* inBytes, std::size_t inCount, double, std::uint64_t) {
                    digest.Add(inBytes, inCount);
                    mContext.mPass(inCount);
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

    void PutInPlace() const
    {
        Result result = File::Move(mTemporary, mItem.mTarget);
        if (result == ORL::kAlreadyExists) {
            if (!mContext.mReplaces) {
                ThrowTaken();
            }
            result = Replace();
        }
        CheckTarget(result);
    }

    // A line must not outlive the contents that it was written for, not even behind a kill. Where the earlier file stays, its
    // line comes back.
    Result Replace() const
    {
        const std::string earlier = mContext.mManifest.Withdraw(mItem.mName);
        const Result result = File::SwapTempFile(mTemporary, mItem.mTarget);
        if (!ResultSucceeded(result) && !earlier.empty() && IsOnDisk(earlier)) {
            mContext.mManifest.Acknowledge({{mItem.mName, earlier}});
        }
        return result;
    }

    bool IsOnDisk(const std::string& inDigest) const
    {
        try {
            return DigestOnDisk(mItem.mTarget) == inDigest;
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
        if (IsSourceGone(mContext.mRoots, true)) {
            throw IngestFailure("the source \"" + mContext.mRoots.mShownSource
                                    + "\" is gone; what is in place is whole and stays",
                                kExitGone, true);
        }
        throw IngestFailure("cannot read \"" + mItem.mName + "\": " + Describe(inResult), kExitUnreadable, false);
    }

    void CheckTarget(Result inResult) const
    {
        if (ResultSucceeded(inResult)) {
            return;
        }
        const std::string& shown = mContext.mRoots.mShownDestination;
        if (inResult == ORL::kDiskFull) {
            throw IngestFailure("\"" + shown + "\" is full; what is in place is whole and stays", kExitNoRoom, true);
        }
        CheckDestination();
        throw IngestFailure("cannot write \"" + mItem.mName + "\" at \"" + shown + "\": " + Describe(inResult),
                            kExitFailure, false);
    }

    // Where a volume has left its mount point, a file would be written to the disk behind it.
    void CheckDestination() const
    {
        if (IsDestinationGone(mContext.mRoots)) {
            throw IngestFailure("the destination \"" + mContext.mRoots.mShownDestination + "\" is gone", kExitGone, true);
        }
    }

    [[noreturn]] void ThrowChanged() const
    {
        throw IngestFailure("\"" + mItem.mName + "\" changed while it was copied, and was not kept", kExitChanged,
                            false);
    }

    [[noreturn]] void ThrowTaken() const
    {
        throw IngestFailure("another file is at the destination as \"" + mItem.mName
                                + "\", and stays (--replace exchanges it)",
                            kExitTaken, false);
    }

    void Tell(IngestStep inStep) const
    {
        if (mContext.mOnStep) {
            mContext.mOnStep(inStep, mItem);
        }
    }

    const IngestItem& mItem;
    const IngestContext& mContext;
    std::vector<unsigned char>& mBuffer;
    const UTF16String mTemporary;
    unsigned __int64 mTime = 0;
};

} // namespace

Result OnceItIsFree(const std::function<Result()>& inWork)
{
    constexpr int kTries = 250;
    Result result = inWork();
    for (int i = 1; i < kTries && result == ORL::kSharingViolation; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        result = inWork();
    }
    return result;
}

std::string IngestFile(const IngestItem& inItem, const IngestContext& inContext, std::vector<unsigned char>& ioBuffer)
{
    return OneFile(inItem, inContext, ioBuffer).Bring();
}

} // namespace orl
