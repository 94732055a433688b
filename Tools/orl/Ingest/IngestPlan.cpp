#include "IngestPlan.h"

#include "Failure.h"
#include "IngestListing.h"
#include "IngestTimes.h"
#include "Text.h"

#include <ORLDirectory.h>
#include <ORLDiskUtils.h>
#include <ORLFile.h>
#include <ORLHostPath.h>
#include <ORLPathUtils.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace orl {

namespace {

using ORL::Directory;
namespace fs = std::filesystem;
namespace PathUtils = ORL::PathUtils;

// Without dots and doubled separators, and past the length limit of plain paths.
UTF16String CleanPath(const std::string& inArgument)
{
    std::string host;
    const ORL::Result result = PathUtils::ToHostPath(PathOfArgument(inArgument), host);
    if (!ORL::ResultSucceeded(result)) {
        throw Failure("ingest: cannot find \"" + inArgument + "\": " + Describe(result));
    }
    return PathUtils::ToNormalizedPath(PathUtils::FromHostPath(host));
}

fs::path HostPathOf(const UTF16String& inPath)
{
    return fs::u8path(HostTextOf(inPath));
}

bool IsInside(const UTF16String& inPath, const UTF16String& inFolder)
{
    std::error_code error;
    const fs::path path = fs::weakly_canonical(HostPathOf(inPath), error);
    const fs::path folder = fs::weakly_canonical(HostPathOf(inFolder), error);
    const auto [end, rest] = std::mismatch(folder.begin(), folder.end(), path.begin(), path.end());
    return end == folder.end() || (std::next(end) == folder.end() && end->empty());
}

constexpr char kLeftoverExtension[] = ".part";
constexpr char kLeftoverStem[] = ".orl-";
constexpr std::size_t kLeftoverSize = 5 + 16 + 5;

bool IsLeftover(const UTF16String& inPath)
{
    const std::string leaf = ToUTF8(PathUtils::GetFullFilePart(inPath));
    return leaf.size() == kLeftoverSize && leaf.compare(0, 5, kLeftoverStem) == 0
           && leaf.find_first_not_of("0123456789abcdef", 5) == kLeftoverSize - 5;
}

[[noreturn]] void ThrowGone(const IngestRoots& inRoots)
{
    throw Failure("ingest: the source \"" + inRoots.mShownSource + "\" went while it was listed", kExitGone);
}

std::optional<FolderIdentity> IdentityOf(const UTF16String& inFolder)
{
    FolderIdentity identity;
    return IdentifyFolder(inFolder, identity) ? std::optional<FolderIdentity>(identity) : std::nullopt;
}

bool IsAnother(const UTF16String& inFolder, const std::optional<FolderIdentity>& inIdentity)
{
    const std::optional<FolderIdentity> now = IdentityOf(inFolder);
    return !now || (inIdentity && !(*now == *inIdentity));
}

class Planner
{
public:
    Planner(const IngestRoots& inRoots, const IngestManifest& inManifest, bool inReplaces)
        : mRoots(inRoots), mManifest(inManifest), mReplaces(inReplaces),
          mStem(PathUtils::AddTrailingSlash(inRoots.mSource).size()),
          mTargetStem(PathUtils::AddTrailingSlash(inRoots.mDestination)),
          mHostStem(HostTextOf(PathUtils::AddTrailingSlash(inRoots.mSource)).size()),
          mHasTarget(Directory::IsDirectory(inRoots.mDestination))
    {
    }

    IngestPlan Make()
    {
        const IngestListing listing = ListTwice(mRoots.mSource);
        for (const UTF16String& folder : listing.mBroken) {
            AddTrouble("cannot list the folder \"" + HostTextOf(folder) + "\" whole", kExitUnreadable);
        }
        for (const UTF16String& folder : listing.mFolders) {
            mPlan.mFolders.push_back(TargetOf(folder));
        }
        for (const UTF16String& file : listing.mFiles) {
            AddFile(file);
        }
        const bool isListed = listing.mBroken.empty() || listing.mBroken.front() != mRoots.mSource;
        if (!mPlan.mTroubles.empty() && IsSourceGone(mRoots, isListed && !listing.mFiles.empty())) {
            ThrowGone(mRoots);
        }
        FindLeftovers();
        std::sort(mPlan.mItems.begin(), mPlan.mItems.end(),
                  [](const IngestItem& inLeft, const IngestItem& inRight) { return inLeft.mName < inRight.mName; });
        return std::move(mPlan);
    }

private:
    void AddFile(const UTF16String& inPath)
    {
        IngestItem item;
        item.mSource = inPath;
        item.mTarget = TargetOf(inPath);
        item.mName = NameOf(inPath);
        if (!MayBeRead(item) || !FindState(item)) {
            return;
        }
        const bool isCopied = item.mState == IngestItem::kToCopy || item.mState == IngestItem::kToReplace;
        mPlan.mBytesToWrite += isCopied ? item.mSize : 0;
        mPlan.mBytesToPass += item.mState != IngestItem::kVerifiedBefore ? 2 * item.mSize : 0;
        mPlan.mItems.push_back(std::move(item));
    }

    // A pipe or a device would never end.
    bool MayBeRead(IngestItem& ioItem)
    {
        std::error_code error;
        const fs::file_status status = fs::status(HostPathOf(ioItem.mSource), error);
        if (!error && fs::exists(status) && !fs::is_regular_file(status)) {
            AddTrouble("cannot read \"" + ioItem.mName + "\": it is no file", kExitUnreadable);
            return false;
        }
        unsigned __int64 size = 0;
        const ORL::Result result = ORL::File::SizeOnDisk(ioItem.mSource, size);
        if (!ORL::ResultSucceeded(result)) {
            AddTrouble("cannot read \"" + ioItem.mName + "\": " + Describe(result), kExitUnreadable);
            return false;
        }
        ioItem.mSize = size;
        return true;
    }

    bool FindState(IngestItem& ioItem)
    {
        if (!mHasTarget || !PathUtils::ExistsOnDisk(ioItem.mTarget)) {
            ioItem.mState = IngestItem::kToCopy;
            return true;
        }
        unsigned __int64 size = 0;
        const bool isFile = !Directory::IsDirectory(ioItem.mTarget)
                            && ORL::ResultSucceeded(ORL::File::SizeOnDisk(ioItem.mTarget, size));
        if (isFile && size == ioItem.mSize) {
            ioItem.mState = mManifest.Holds(ioItem.mName) && HasSameTime(ioItem) ? IngestItem::kVerifiedBefore
                                                                                 : IngestItem::kToCheck;
            return true;
        }
        if (isFile && mReplaces) {
            ioItem.mState = IngestItem::kToReplace;
            return true;
        }
        AddTrouble("another " + std::string(isFile ? "file" : "folder") + " is at the destination as \"" + ioItem.mName
                       + "\", and stays" + (isFile ? " (--replace exchanges it)" : ""),
                   kExitTaken);
        return false;
    }

    static bool HasSameTime(const IngestItem& inItem)
    {
        return HasTimeOf(inItem.mSource, inItem.mTarget, TemporaryPathOf(inItem));
    }

    void FindLeftovers()
    {
        if (!mHasTarget) {
            return;
        }
        std::vector<UTF16String> files;
        Directory::ConstructDirectory(mRoots.mDestination)
            .GetContainedFilePaths(ToUTF16(kLeftoverExtension), files, true, Directory::kNoLimit);
        std::copy_if(files.begin(), files.end(), std::back_inserter(mPlan.mLeftovers), &IsLeftover);
    }

    UTF16String TargetOf(const UTF16String& inPath) const { return mTargetStem + inPath.substr(mStem); }

    std::string NameOf(const UTF16String& inPath) const
    {
        return fs::u8path(HostTextOf(inPath).substr(mHostStem)).generic_u8string();
    }

    void AddTrouble(const std::string& inText, int inExitCode)
    {
        mPlan.mTroubles.push_back({"ingest: " + inText, inExitCode});
    }

    const IngestRoots& mRoots;
    const IngestManifest& mManifest;
    const bool mReplaces;
    const std::size_t mStem;
    const UTF16String mTargetStem;
    const std::size_t mHostStem;
    const bool mHasTarget;
    IngestPlan mPlan;
};

} // namespace

IngestRoots MakeRoots(const std::string& inSource, const std::string& inDestination)
{
    IngestRoots roots{CleanPath(inSource), CleanPath(inDestination), inSource, inDestination, {}, {}};
    if (!Directory::IsDirectory(roots.mSource)) {
        throw Failure("ingest: \"" + inSource + "\" is no folder");
    }
    if (ORL::PathUtils::ExistsOnDisk(roots.mDestination) && !Directory::IsDirectory(roots.mDestination)) {
        throw Failure("ingest: the destination \"" + inDestination + "\" is no folder");
    }
    if (IsInside(roots.mDestination, roots.mSource)) {
        throw Failure("ingest: the destination \"" + inDestination + "\" lies inside the source");
    }
    roots.mSourceIdentity = IdentityOf(roots.mSource);
    roots.mDestinationIdentity = IdentityOf(roots.mDestination);
    return roots;
}

bool IsSourceGone(const IngestRoots& inRoots, bool inHeldSomething)
{
    std::vector<std::string> held;
    return IsAnother(inRoots.mSource, inRoots.mSourceIdentity)
           || (inHeldSomething && (!ListFolder(inRoots.mSource, held) || held.empty()));
}

bool IsDestinationGone(const IngestRoots& inRoots)
{
    return IsAnother(inRoots.mDestination, inRoots.mDestinationIdentity);
}

IngestPlan MakePlan(const IngestRoots& inRoots, const std::string& inManifestName, const IngestManifest& inManifest,
                    bool inReplaces)
{
    try {
        IngestPlan plan = Planner(inRoots, inManifest, inReplaces).Make();
        const auto hasItsName = [&](const IngestItem& inItem) { return inItem.mName == inManifestName; };
        if (std::any_of(plan.mItems.begin(), plan.mItems.end(), hasItsName)) {
            throw Failure("ingest: the source holds a file of the manifest's name, \"" + inManifestName
                          + "\" (--manifest names another)");
        }
        return plan;
    } catch (const ORL::Exception&) {
        ThrowGone(inRoots);
    }
}

void CheckRoom(const IngestPlan& inPlan, const IngestRoots& inRoots)
{
    constexpr std::uint64_t kCluster = 4096;
    std::uint64_t needed = 0;
    for (const IngestItem& item : inPlan.mItems) {
        const bool isCopied = item.mState == IngestItem::kToCopy || item.mState == IngestItem::kToReplace;
        needed += isCopied ? (item.mSize + kCluster - 1) / kCluster * kCluster : 0;
    }
    if (needed == 0) {
        return;
    }
    const std::uint64_t free = ORL::DiskUtils::GetFreeSpaceFromPath(inRoots.mDestination);
    if (needed > free) {
        throw Failure("ingest: \"" + inRoots.mShownDestination + "\" has room for " + InWords(free) + ", but "
                          + InWords(needed) + " are to be copied; nothing was begun",
                      kExitNoRoom);
    }
    unsigned __int64 largest = 0;
    if (!ORL::ResultSucceeded(ORL::DiskUtils::GetMaxFileSize(inRoots.mDestination, largest))) {
        return;
    }
    for (const IngestItem& item : inPlan.mItems) {
        if (item.mState != IngestItem::kVerifiedBefore && item.mSize > largest) {
            throw Failure("ingest: \"" + item.mName + "\" has " + InWords(item.mSize) + ", more than a file at \""
                              + inRoots.mShownDestination + "\" may have (" + InWords(largest) + "); nothing was begun",
                          kExitNoRoom);
        }
    }
}

UTF16String TemporaryPathOf(const IngestItem& inItem)
{
    std::uint64_t hash = 14695981039346656037u; // FNV-1a
    for (const char character : inItem.mName) {
        hash = (hash ^ static_cast<unsigned char>(character)) * 1099511628211u;
    }
    char leaf[kLeftoverSize + 1];
    std::snprintf(leaf, sizeof(leaf), "%s%016llx%s", kLeftoverStem, static_cast<unsigned long long>(hash),
                  kLeftoverExtension);
    return PathUtils::GetFullDirectoryPart(inItem.mTarget) + ToUTF16(leaf);
}

} // namespace orl
