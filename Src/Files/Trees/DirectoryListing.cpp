// Lists the contents of a directory.
#include <ORLDirectory.h>

#include <Platform/Directory.h>

#include <ORLDebug.h>
#include <ORLPathUtils.h>
#include <tvxcore/Text.h>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace ORL {

namespace {

using namespace Directories::Platform;

struct ListingCloser
{
    void operator()(Listing* inListing) const { CloseListing_Impl(inListing); }
};

struct Found
{
    UTF16String mPath;
    EntryKind mKind;
};

bool IsDirectoryEntry(const UTF16String& inPath, EntryKind inKind)
{
    return inKind == EntryKind::kUnknown ? PathUtils::IsDirectory(inPath) : inKind == EntryKind::kDirectory;
}

using ListingPtr = std::unique_ptr<Listing, ListingCloser>;

// Returns true for the errors that a directory without read permission or the root of an empty volume produces.
bool CountsAsEmpty(SystemError inError)
{
    using namespace SystemErrors;
    return inError == kErrorAccessDenied || inError == kErrorFileNotFound || inError == kErrorPathNotFound;
}

// Returns null for a directory that counts as empty. Needs no separate queries: opening fails if the directory does not
// exist, and the listing of an empty directory has no entries.
ListingPtr OpenListing(const UTF16String& inDirectory)
{
    Listing* listing = nullptr;
    const SystemError error = OpenListing_Impl(inDirectory, listing);
    if (error == SystemErrors::kNoError) {
        return ListingPtr(listing);
    }
    if (!PathUtils::IsDirectory(inDirectory)) {
        throw eDirectoryNoLongerValid();
    }
    if (!CountsAsEmpty(error)) {
        throw eDirectoryNotListed();
    }
    return nullptr;
}

/// Walks a directory and calls ioSink(path, kind) for each entry. The depth of the tree affects neither stack use
/// nor, on systems with few handles, the number of open handles.
template <class Sink>
class Walker
{
public:
    Walker(bool inRecursive, unsigned int inLimit, Sink& ioSink)
        : mRecursive(inRecursive), mLimit(inLimit), mSink(ioSink)
    {
    }

    void Walk(const UTF16String& inDirectory)
    {
        Enter(inDirectory, EntryKind::kDirectory);
        while (!mLevels.empty()) {
            if (IsAtLimit() || !Next()) {
                Leave();
            } else if (!mRecursive || !EnterEntry()) {
                Report(mPath, mEntry.mKind);
            }
        }
    }

private:
    // A directory that is being walked.
    struct Level
    {
        UTF16String mPath;
        EntryKind mKind;
        ListingPtr mListing;
    };

    bool IsAtLimit() const { return mLimit != Directory::kNoLimit && mCount >= mLimit; }

    // Opens the directory as the new deepest level. Returns false if the directory counts as empty.
    bool Enter(const UTF16String& inPath, EntryKind inKind)
    {
        ListingPtr listing = OpenListing(inPath);
        const bool isOpen = listing != nullptr;
        if (isOpen) {
            mLevels.push_back(Level{inPath, inKind, std::move(listing)});
        }
        return isOpen;
    }

    // Reads the next entry of the deepest directory into mEntry and mPath. Returns false at the end.
    bool Next()
    {
        const Level& level = mLevels.back();
        const SystemError error = NextEntry_Impl(*level.mListing, mEntry);
        if (error == SystemErrors::kErrorNoMoreFiles) {
            return false;
        }
        if (error != SystemErrors::kNoError) {
            throw eDirectoryNotListed();
        }
        mPath = PathUtils::AddTrailingSlash(level.mPath);
        mPath += mEntry.mName;
        return true;
    }

    // Enters mEntry if it is a directory. Only an entry of unknown kind can be a link back to an open level.
    bool EnterEntry()
    {
        if (!IsDirectoryEntry(mPath, mEntry.mKind) || (mEntry.mKind == EntryKind::kUnknown && IsCycle())) {
            return false;
        }
        Suspend_Impl(*mLevels.back().mListing);
        return Enter(mPath, mEntry.mKind);
    }

    bool IsCycle() const
    {
        return std::any_of(mLevels.rbegin(), mLevels.rend(),
                           [this](const Level& inLevel) { return IsSameDirectory_Impl(mPath, inLevel.mPath); });
    }

    // A directory is reported after its contents; the directory where the walk began is not reported.
    void Leave()
    {
        const Level left = std::move(mLevels.back());
        mLevels.pop_back();
        if (!mLevels.empty()) {
            Report(left.mPath, left.mKind);
        }
    }

    void Report(const UTF16String& inPath, EntryKind inKind)
    {
        ++mCount;
        mSink(inPath, inKind);
    }

    const bool mRecursive;
    const unsigned int mLimit;
    unsigned int mCount = 0;
    Sink& mSink;
    std::vector<Level> mLevels;
    Entry mEntry;
    UTF16String mPath; // path of mEntry
};

template <class Sink>
void WalkDirectory(const UTF16String& inDirectory, bool inRecursive, unsigned int inLimit, Sink&& ioSink)
{
    Walker<Sink>(inRecursive, inLimit, ioSink).Walk(inDirectory);
}

} // namespace

void Directory::GetContainedPaths(std::vector<UTF16String>& outPaths, bool inRecursive, unsigned int inLimit) const
{
    if (!PathUtils::IsDirectory(mPath)) {
        throw eDirectoryNoLongerValid();
    }
    outPaths.clear();
    WalkDirectory(mPath, inRecursive, inLimit,
                  [&outPaths](const UTF16String& inPath, EntryKind) { outPaths.push_back(inPath); });
}

void Directory::GetContainedFileAndDirectoryPaths(std::vector<UTF16String>& outFiles,
                                                  std::vector<Directory>& outDirectories, bool inRecursive,
                                                  unsigned int inLimit) const
{
    outFiles.clear();
    outDirectories.clear();
    if (PathUtils::IsDirectoryEmpty(mPath)) {
        return;
    }
    if (!PathUtils::IsDirectory(mPath)) {
        throw eDirectoryNoLongerValid();
    }
    std::vector<Found> found;
    WalkDirectory(mPath, inRecursive, inLimit, [&found](const UTF16String& inPath, EntryKind inKind) {
        found.push_back(Found{inPath, inKind});
    });
    for (Found& entry : found) {
        if (IsDirectoryEntry(entry.mPath, entry.mKind)) {
            outDirectories.push_back(Directory(entry.mPath));
        } else {
            outFiles.push_back(std::move(entry.mPath));
        }
    }
}

void Directory::GetContainedFilePaths(std::vector<UTF16String>& outFiles, bool inRecursive, unsigned int inLimit) const
{
    std::vector<Directory> directories;
    GetContainedFileAndDirectoryPaths(outFiles, directories, inRecursive, inLimit);
}

void Directory::GetContainedFilePaths(const UTF16String& inFilterExtension, std::vector<UTF16String>& outFiles,
                                      bool inRecursive, unsigned int inLimit) const
{
    ORL_INPUT_CONTRACT_AT(!inFilterExtension.empty(), "Directory", __LINE__);
    outFiles.clear();
    std::vector<UTF16String> files;
    GetContainedFilePaths(files, inRecursive, inLimit);
    const UTF16String wanted = tvxcore::utility::FoldCase(inFilterExtension);
    for (UTF16String& file : files) {
        if (tvxcore::utility::FoldCase(PathUtils::GetExtensionPart(file)) == wanted) {
            outFiles.push_back(std::move(file));
        }
    }
}

} // namespace ORL
