#include "IngestListing.h"

#include "Failure.h"
#include "Text.h"

#include <algorithm>
#include <memory>

namespace orl {

namespace {

// A linked list of the folders above a folder; its subfolders share the list.
struct ParentChain
{
    EntryIdentity mIdentity;
    std::shared_ptr<const ParentChain> mNext;
};

struct Pending
{
    std::string mFolder;
    std::shared_ptr<const ParentChain> mParents;
};

class Lister
{
public:
    Lister(const IngestRoots& inRoots, const std::function<bool()>& inIsStopped, const IngestExclusions& inExclusions)
        : mRoots(inRoots), mIsStopped(inIsStopped), mExclusions(inExclusions)
    {
    }

    IngestListing List()
    {
        std::vector<Pending> pending{{std::string(), nullptr}};
        while (!pending.empty()) {
            const Pending next = std::move(pending.back());
            pending.pop_back();
            ListFolder(next, pending);
        }
        const auto byName = [](const auto& inLeft, const auto& inRight) { return inLeft.mName < inRight.mName; };
        std::sort(mListing.mFolders.begin(), mListing.mFolders.end(), byName);
        std::sort(mListing.mExcluded.begin(), mListing.mExcluded.end(), byName);
        return std::move(mListing);
    }

private:
    void ListFolder(const Pending& inPending, std::vector<Pending>& ioPending)
    {
        CheckStopped();
        HeldFolder folder;
        std::vector<std::string> names;
        ORL::Result result = mRoots.OpenSource(inPending.mFolder, folder);
        if (ORL::ResultSucceeded(result)) {
            if (IsCycle(folder.Identity(), inPending.mParents.get())) {
                return;
            }
            mListing.mIdentities.insert(folder.Identity());
            result = folder.List(names);
        }
        if (!ORL::ResultSucceeded(result)) {
            CheckSource();
            const std::string shown = JoinHostPath(mRoots.mShownSource, inPending.mFolder);
            AddTrouble(inPending.mFolder, "cannot list the folder \"" + shown + "\" completely: " + Describe(result));
        }
        const auto parents = std::make_shared<const ParentChain>(
            ParentChain{folder.IsOpen() ? folder.Identity() : EntryIdentity(), inPending.mParents});
        std::sort(names.begin(), names.end());
        for (const std::string& name : names) {
            AddEntry(folder, inPending.mFolder, name, parents, ioPending);
        }
    }

    void AddEntry(const HeldFolder& inHeld, const std::string& inFolder, const std::string& inLeaf,
                  const std::shared_ptr<const ParentChain>& inParents, std::vector<Pending>& ioPending)
    {
        CheckStopped();
        const std::string name = NameBelow(inFolder, inLeaf);
        EntryStatus status;
        const ORL::Result result = inHeld.GetStatus(inLeaf, Links::kFollow, status);
        if (IsExcluded(name, result, status)) {
            return;
        }
        if (!ORL::ResultSucceeded(result)) {
            CheckSource();
            AddTrouble(inFolder, "cannot read \"" + name + "\": " + Describe(result));
        } else if (status.mKind == EntryStatus::kFolder) {
            mListing.mFolders.push_back({name, status});
            ioPending.push_back({name, inParents});
        } else if (status.mKind == EntryStatus::kFile) {
            mListing.mFiles.push_back({name, status});
        } else { // not listed: reading a pipe or a device might never end
            AddTrouble(inFolder, "cannot read \"" + name + "\": it is not a regular file");
        }
    }

    // The identity of an excluded folder is kept, so that nothing is ever written to that folder. Some systems do not
    // even report the status of a system folder to ordinary users.
    bool IsExcluded(const std::string& inName, ORL::Result inResult, const EntryStatus& inStatus)
    {
        ExcludedEntry entry{inName, std::string()};
        const IngestExclusions::Match match = mExclusions.Find(inName, entry.mPattern);
        const bool isFolder = ORL::ResultSucceeded(inResult) && inStatus.mKind == EntryStatus::kFolder;
        const bool isSystemFolder =
            match == IngestExclusions::Match::kSystemFolder && (isFolder || inResult == ORL::kAccessDenied);
        if (match != IngestExclusions::Match::kPattern && !isSystemFolder) {
            return false;
        }
        if (isFolder) {
            mListing.mIdentities.insert(inStatus.mIdentity);
        }
        mListing.mExcluded.push_back(std::move(entry));
        return true;
    }

    static bool IsCycle(const EntryIdentity& inIdentity, const ParentChain* inParents)
    {
        for (; inParents != nullptr; inParents = inParents->mNext.get()) {
            if (inParents->mIdentity == inIdentity) {
                return true;
            }
        }
        return false;
    }

    void CheckStopped() const
    {
        if (mIsStopped()) {
            throw Failure("ingest: stopped by the user; nothing was begun", kExitStopped);
        }
    }

    void CheckSource() const
    {
        if (IsSourceGone(mRoots, mListing.mFiles.empty() ? SourceWas::kEmpty : SourceWas::kNotEmpty)) {
            throw Failure("ingest: the source \"" + mRoots.mShownSource + "\" disappeared while it was listed",
                          kExitDisappeared);
        }
    }

    void AddTrouble(const std::string& inFolder, const std::string& inText)
    {
        mListing.mTroubles.push_back({"ingest: " + inText, kExitUnreadable});
        mListing.mIncomplete.insert(inFolder);
    }

    const IngestRoots& mRoots;
    const std::function<bool()>& mIsStopped;
    const IngestExclusions& mExclusions;
    IngestListing mListing;
};

} // namespace

IngestListing ListSource(const IngestRoots& inRoots, const std::function<bool()>& inIsStopped,
                         const IngestExclusions& inExclusions)
{
    return Lister(inRoots, inIsStopped, inExclusions).List();
}

} // namespace orl
