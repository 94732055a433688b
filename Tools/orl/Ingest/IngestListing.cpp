#include "IngestListing.h"

#include "IngestSystem.h"
#include "Text.h"

#include <ORLDirectory.h>
#include <ORLPathUtils.h>

#include <algorithm>
#include <map>
#include <string>

namespace orl {

namespace {

namespace PathUtils = ORL::PathUtils;

/// Compares what was listed with what each folder shows when it is listed by itself.
class SecondLook
{
public:
    SecondLook(const UTF16String& inRoot, const IngestListing& inListing) : mRoot(PathUtils::AddTrailingSlash(inRoot))
    {
        AddAll(inListing.mFiles);
        AddAll(inListing.mFolders);
    }

    bool IsWhole(const UTF16String& inFolder)
    {
        std::vector<std::string> there;
        if (!ListFolder(inFolder, there)) {
            return false;
        }
        std::vector<std::string>& listed = mListed[PathUtils::AddTrailingSlash(inFolder)];
        std::sort(there.begin(), there.end());
        std::sort(listed.begin(), listed.end());
        return there == listed || (listed.empty() && LeadsBack(inFolder));
    }

private:
    void AddAll(const std::vector<UTF16String>& inPaths)
    {
        for (const UTF16String& path : inPaths) {
            mListed[PathUtils::GetFullDirectoryPart(path)].push_back(HostTextOf(path));
        }
    }

    // Whether it is one of the folders above itself.
    bool LeadsBack(const UTF16String& inFolder) const
    {
        FolderIdentity folder;
        if (!IdentifyFolder(inFolder, folder)) {
            return false;
        }
        UTF16String above = PathUtils::RemoveTrailingSlash(inFolder);
        while (above.size() > mRoot.size()) {
            above = PathUtils::GetFullDirectoryPart(PathUtils::RemoveTrailingSlash(above));
            FolderIdentity identity;
            if (IdentifyFolder(above, identity) && identity == folder) {
                return true;
            }
        }
        return false;
    }

    const UTF16String mRoot;
    std::map<UTF16String, std::vector<std::string>> mListed; // by folder, as HostTextOf gives them
};

} // namespace

IngestListing ListTwice(const UTF16String& inFolder)
{
    IngestListing listing;
    std::vector<ORL::Directory> folders;
    ORL::Directory::ConstructDirectory(inFolder)
        .GetContainedFileAndDirectoryPaths(listing.mFiles, folders, true, ORL::Directory::kNoLimit);
    // A listing shows a folder behind what it holds; to be made, it has to come before.
    std::transform(folders.rbegin(), folders.rend(), std::back_inserter(listing.mFolders),
                   [](const ORL::Directory& inListed) { return inListed.AsString(); });
    SecondLook look(inFolder, listing);
    std::vector<UTF16String> all{inFolder};
    all.insert(all.end(), listing.mFolders.begin(), listing.mFolders.end());
    std::copy_if(all.begin(), all.end(), std::back_inserter(listing.mBroken),
                 [&look](const UTF16String& inListed) { return !look.IsWhole(inListed); });
    return listing;
}

} // namespace orl
