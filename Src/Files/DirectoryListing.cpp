// What a directory holds.
#include <ORLDirectory.h>

#include <Platform/Directory.h>

#include <ORLDebug.h>
#include <ORLPathUtils.h>
#include <tvxcore/Text.h>

#include <memory>
#include <utility>

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

// A directory that is being walked, and those above it.
struct Level
{
    const UTF16String& mPath;
    const Level* mAbove;
};

bool LeadsBack(const UTF16String& inPath, const Level* inLevel)
{
    for (; inLevel != nullptr; inLevel = inLevel->mAbove) {
        if (IsSameDirectory_Impl(inPath, inLevel->mPath)) {
            return true;
        }
    }
    return false;
}

/// Goes through a directory, and calls ioSink(path, kind) for each entry.
template <class Sink>
class Walker
{
public:
    Walker(bool inRecursive, unsigned int inLimit, Sink& ioSink)
        : mRecursive(inRecursive), mLimit(inLimit), mSink(ioSink)
    {
    }

    // Opening takes the place of asking first whether the directory is there and holds anything: a listing that cannot
    // begin tells the first, one without entries the second.
    void Walk(const UTF16String& inDirectory, const Level* inAbove)
    {
        const std::unique_ptr<Listing, ListingCloser> listing = Open(inDirectory);
        if (listing == nullptr) {
            return;
        }
        const Level level{inDirectory, inAbove};
        UTF16String path = PathUtils::AddTrailingSlash(inDirectory);
        const std::size_t stem = path.size();
        Entry entry;
        while (NextEntry_Impl(*listing, entry)) {
            if (mLimit != Directory::kNoLimit && mCount >= mLimit) {
                return;
            }
            path.replace(stem, UTF16String::npos, entry.mName);
            if (mRecursive) {
                WalkEntry(path, entry.mKind, level);
            }
            ++mCount;
            mSink(path, entry.mKind);
        }
    }

private:
    static std::unique_ptr<Listing, ListingCloser> Open(const UTF16String& inDirectory)
    {
        Listing* listing = nullptr;
        const SystemError error = OpenListing_Impl(inDirectory, listing);
        if (error != SystemErrors::kNoError && !PathUtils::IsDirectory(inDirectory)) {
            throw eDirectoryNoLongerValid();
        }
        return std::unique_ptr<Listing, ListingCloser>(listing);
    }

    // What the kind leaves open is asked, and only a link leads back.
    void WalkEntry(const UTF16String& inPath, EntryKind inKind, const Level& inLevel)
    {
        if (IsDirectoryEntry(inPath, inKind) && (inKind != EntryKind::kUnknown || !LeadsBack(inPath, &inLevel))) {
            Walk(inPath, &inLevel);
        }
    }

    const bool mRecursive;
    const unsigned int mLimit;
    unsigned int mCount = 0;
    Sink& mSink;
};

template <class Sink>
void WalkDirectory(const UTF16String& inDirectory, bool inRecursive, unsigned int inLimit, Sink&& ioSink)
{
    Walker<Sink>(inRecursive, inLimit, ioSink).Walk(inDirectory, nullptr);
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
