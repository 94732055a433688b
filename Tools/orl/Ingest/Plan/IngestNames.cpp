#include "IngestNames.h"

#include "Failure.h"
#include "TemporaryName.h"
#include "Text.h"

#include <ORLDirectory.h>
#include <ORLFile.h>
#include <ORLPathUtils.h>
#include <tvxcore/Text.h>

#include <algorithm>
#include <map>

namespace orl {

namespace {

/// Tests whether the destination's volume treats two names as equal, by creating both in a temporary folder.
class NameProbe
{
public:
    // Creates the temporary folder in inFolder of the destination, or in the nearest existing folder above it. If the
    // destination does not exist yet, it has no record, and the folder's name is not recorded.
    NameProbe(const IngestRoots& inRoots, IngestRecord* ioRecord, std::string inFolder)
        : mRecord(ioRecord), mFolder(std::move(inFolder))
    {
        if (mRecord == nullptr) {
            OpenAbove(inRoots.mDestination);
            mLeaf = RandomTemporaryName();
        } else {
            while (!mFolder.empty() && !ORL::ResultSucceeded(inRoots.OpenDestination(mFolder, mAbove))) {
                mFolder = FolderOf(mFolder);
            }
            if (mFolder.empty()) {
                inRoots.OpenDestination("", mAbove);
            }
            mLeaf = mRecord->NewTemporary(mFolder);
        }
        mIsMade = mAbove.IsOpen() && ORL::ResultSucceeded(mAbove.MakeFolder(mLeaf))
                  && ORL::ResultSucceeded(mAbove.OpenFolder(mLeaf, Links::kNoFollow, mHeld));
    }

    ~NameProbe()
    {
        mHeld = HeldFolder();
        const bool isGone = !mIsMade || ORL::ResultSucceeded(mAbove.RemoveFolder(mLeaf));
        if (mRecord != nullptr && isGone) {
            mRecord->ForgetTemporary(mFolder, mLeaf);
        }
    }

    NameProbe(const NameProbe&) = delete;
    NameProbe& operator=(const NameProbe&) = delete;

    // If the folder could not be created, returns true for any two names, so that nothing is overwritten.
    bool AreSameName(const std::string& inLeft, const std::string& inRight) const
    {
        if (inLeft == inRight) {
            return true;
        }
        const bool isMade = mIsMade && ORL::ResultSucceeded(mHeld.MakeFolder(inLeft));
        const bool isOther = isMade && ORL::ResultSucceeded(mHeld.MakeFolder(inRight));
        if (isOther) {
            mHeld.RemoveFolder(inRight);
        }
        if (isMade) {
            mHeld.RemoveFolder(inLeft);
        }
        return !isOther;
    }

private:
    void OpenAbove(UTF16String inPath)
    {
        while (!ORL::ResultSucceeded(HeldFolder::Open(inPath, mAbove))) {
            const UTF16String above = ORL::PathUtils::GetFullDirectoryPart(ORL::PathUtils::RemoveTrailingSlash(inPath));
            if (above.empty() || above == inPath) {
                return;
            }
            inPath = above;
        }
    }

    IngestRecord* const mRecord;
    std::string mFolder;
    std::string mLeaf;
    HeldFolder mAbove;
    HeldFolder mHeld;
    bool mIsMade = false;
};

// Compares component by component: two paths differ as soon as one component differs.
bool AreSamePath(const NameProbe& inProbe, const std::string& inLeft, const std::string& inRight)
{
    std::size_t left = 0;
    std::size_t right = 0;
    while (left < inLeft.size() && right < inRight.size()) {
        const std::size_t leftEnd = std::min(inLeft.find('/', left), inLeft.size());
        const std::size_t rightEnd = std::min(inRight.find('/', right), inRight.size());
        if (!inProbe.AreSameName(inLeft.substr(left, leftEnd - left), inRight.substr(right, rightEnd - right))) {
            return false;
        }
        left = leftEnd + 1;
        right = rightEnd + 1;
    }
    return true;
}

} // namespace

std::vector<std::vector<std::string>> FindNamesAlike(const std::vector<ListedFile>& inFiles)
{
    std::map<UTF16String, std::vector<std::string>> alike;
    for (const ListedFile& file : inFiles) {
        alike[tvxcore::utility::FoldCase(ToUTF16(file.mName))].push_back(file.mName);
    }
    std::vector<std::vector<std::string>> groups;
    for (auto& [folded, names] : alike) {
        if (names.size() > 1) {
            groups.push_back(std::move(names));
        }
    }
    return groups;
}

std::set<std::string> FindCollisions(const std::vector<ListedFile>& inFiles, const IngestRoots& inRoots,
                                     IngestRecord* ioRecord)
{
    std::set<std::string> taken;
    for (const std::vector<std::string>& names : FindNamesAlike(inFiles)) {
        const NameProbe probe(inRoots, ioRecord, FolderOf(names.front()));
        std::vector<std::string> kept;
        for (const std::string& name : names) {
            const auto isOne = [&](const std::string& inKept) { return AreSamePath(probe, inKept, name); };
            if (std::any_of(kept.begin(), kept.end(), isOne)) {
                taken.insert(name);
            } else {
                kept.push_back(name);
            }
        }
    }
    return taken;
}

} // namespace orl
