#include "IngestRoots.h"

#include "Failure.h"
#include "Text.h"

#include <ORLDirectory.h>
#include <ORLHostPath.h>
#include <ORLPathUtils.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace orl {

namespace {

namespace fs = std::filesystem;
namespace PathUtils = ORL::PathUtils;

// Removes dots and doubled separators, and lifts the length limit of plain paths.
UTF16String CleanPath(const std::string& inArgument)
{
    std::string host;
    const ORL::Result result = PathUtils::ToHostPath(PathOfArgument(inArgument), host);
    if (!ORL::ResultSucceeded(result)) {
        throw Failure("ingest: cannot find \"" + inArgument + "\": " + Describe(result));
    }
    return PathUtils::ToNormalizedPath(PathUtils::FromHostPath(host));
}

// Compares the paths as strings, because a destination that does not exist yet has no identity to compare.
bool IsTextInside(const UTF16String& inPath, const UTF16String& inFolder)
{
    std::error_code error;
    const fs::path path = fs::weakly_canonical(fs::u8path(HostTextOf(inPath)), error);
    const fs::path folder = fs::weakly_canonical(fs::u8path(HostTextOf(inFolder)), error);
    const auto [end, rest] = std::mismatch(folder.begin(), folder.end(), path.begin(), path.end());
    return end == folder.end() || (std::next(end) == folder.end() && end->empty());
}

// Returns whether inPath or a folder above it has that identity. inPath need not exist.
bool IsInside(const UTF16String& inPath, const EntryIdentity& inIdentity)
{
    std::error_code error;
    for (fs::path path = fs::weakly_canonical(fs::u8path(HostTextOf(inPath)), error);;) {
        HeldFolder folder;
        const UTF16String here = PathUtils::FromHostPath(path.u8string());
        if (ORL::ResultSucceeded(HeldFolder::Open(here, folder)) && folder.Identity() == inIdentity) {
            return true;
        }
        const fs::path above = path.parent_path();
        if (above.empty() || above == path) {
            return false;
        }
        path = above;
    }
}

ORL::Result OpenBelow(const UTF16String& inRoot, const EntryIdentity& inIdentity, const std::string& inFolder,
                      Links inLinks, HeldFolder& outFolder)
{
    HeldFolder folder;
    ORL::Result result = HeldFolder::Open(inRoot, folder);
    const bool isGone = ORL::ResultSucceeded(result) ? folder.Identity() != inIdentity : result == ORL::kFileNotFound;
    if (isGone) {
        return ORL::kPathNotFound;
    }
    if (!ORL::ResultSucceeded(result)) {
        return result;
    }
    for (std::size_t at = 0; at < inFolder.size();) {
        const std::size_t end = std::min(inFolder.find('/', at), inFolder.size());
        HeldFolder next;
        result = folder.OpenFolder(inFolder.substr(at, end - at), inLinks, next);
        if (!ORL::ResultSucceeded(result)) {
            return result;
        }
        folder = std::move(next);
        at = end + 1;
    }
    outFolder = std::move(folder);
    return ORL::kSuccess;
}

bool IsAnother(const UTF16String& inPath, const EntryIdentity& inIdentity)
{
    HeldFolder folder;
    const ORL::Result result = HeldFolder::Open(inPath, folder);
    return ORL::ResultSucceeded(result) ? folder.Identity() != inIdentity : result != kOutOfResources;
}

// Opens the folder, or if it does not exist, the nearest folder above it that does.
HeldFolder OpenNearest(const UTF16String& inPath)
{
    HeldFolder folder;
    HeldFolder::Open(inPath, folder);
    for (UTF16String path = inPath; !folder.IsOpen();) {
        const UTF16String above = PathUtils::GetFullDirectoryPart(PathUtils::RemoveTrailingSlash(path));
        if (above.empty() || above == path) {
            break;
        }
        path = above;
        HeldFolder::Open(path, folder);
    }
    return folder;
}

void FindDestination(IngestRoots& ioRoots)
{
    HeldFolder folder;
    ioRoots.mHasDestination = ORL::ResultSucceeded(HeldFolder::Open(ioRoots.mDestination, folder));
    if (ioRoots.mHasDestination) {
        ioRoots.mDestinationIdentity = folder.Identity();
    } else {
        folder = OpenNearest(ioRoots.mDestination);
    }
    ioRoots.mVolume = folder.IsOpen() ? folder.Identity().mVolume : 0;
}

} // namespace

ORL::Result IngestRoots::OpenSource(const std::string& inFolder, HeldFolder& outFolder) const
{
    return OpenBelow(mSource, mSourceIdentity, inFolder, Links::kFollow, outFolder);
}

ORL::Result IngestRoots::OpenDestination(const std::string& inFolder, HeldFolder& outFolder, Links inLinks) const
{
    return OpenBelow(mDestination, mDestinationIdentity, inFolder, inLinks, outFolder);
}

ORL::Result IngestRoots::CheckDestinationWritable() const
{
    const HeldFolder folder = OpenNearest(mDestination);
    return folder.IsOpen() ? folder.CheckWritable() : ORL::kPathNotFound;
}

IngestRoots MakeRoots(const std::string& inSource, const std::string& inDestination)
{
    IngestRoots roots;
    roots.mSource = CleanPath(inSource);
    roots.mDestination = CleanPath(inDestination);
    roots.mShownSource = inSource;
    roots.mShownDestination = inDestination;
    HeldFolder source;
    const ORL::Result result = HeldFolder::Open(roots.mSource, source);
    if (result == ORL::kAccessDenied || result == kOutOfResources) {
        throw Failure("ingest: cannot open the source \"" + inSource + "\": " + Describe(result), kExitUnreadable);
    }
    if (!ORL::ResultSucceeded(result)) {
        throw Failure("ingest: \"" + inSource + "\" is not a folder");
    }
    roots.mSourceIdentity = source.Identity();
    FindDestination(roots);
    if (!roots.mHasDestination && PathUtils::ExistsOnDisk(roots.mDestination)) {
        const bool isFolder = ORL::Directory::IsDirectory(roots.mDestination);
        throw Failure("ingest: the destination \"" + inDestination
                      + (isFolder ? "\" cannot be opened" : "\" is not a folder"));
    }
    if (IsInside(roots.mDestination, roots.mSourceIdentity) || IsTextInside(roots.mDestination, roots.mSource)) {
        throw Failure("ingest: the destination \"" + inDestination + "\" lies inside the source");
    }
    return roots;
}

void CheckApart(const IngestRoots& inOne, const IngestRoots& inOther)
{
    const auto isInside = [](const IngestRoots& inInner, const IngestRoots& inOuter) {
        return (inOuter.mHasDestination && IsInside(inInner.mDestination, inOuter.mDestinationIdentity))
               || IsTextInside(inInner.mDestination, inOuter.mDestination);
    };
    const bool isOtherInside = isInside(inOther, inOne);
    if (isOtherInside || isInside(inOne, inOther)) {
        const IngestRoots& inner = isOtherInside ? inOther : inOne;
        const IngestRoots& outer = isOtherInside ? inOne : inOther;
        throw Failure("ingest: the destination \"" + inner.mShownDestination + "\" lies inside the destination \""
                          + outer.mShownDestination + "\"",
                      kExitUsage);
    }
}

void MakeDestination(IngestRoots& ioRoots)
{
    std::vector<UTF16String> above; // folders to sync, because each gets a new entry
    for (UTF16String path = ioRoots.mDestination; !ORL::Directory::IsDirectory(path);) {
        const UTF16String next = PathUtils::GetFullDirectoryPart(PathUtils::RemoveTrailingSlash(path));
        if (next.empty() || next == path) {
            break;
        }
        above.push_back(next);
        path = next;
    }
    const ORL::Result result = ORL::Directory::CreateOnDisk(ioRoots.mDestination, false);
    if (!ORL::ResultSucceeded(result)) {
        throw Failure("ingest: cannot create the folder \"" + ioRoots.mShownDestination + "\": " + Describe(result));
    }
    for (const UTF16String& path : above) {
        HeldFolder folder;
        if (!ORL::ResultSucceeded(HeldFolder::Open(path, folder)) || !ORL::ResultSucceeded(folder.Sync())) {
            throw Failure("ingest: cannot sync the new folder's entry in \""
                          + HostTextOf(PathUtils::RemoveTrailingSlash(path)) + '"');
        }
    }
    FindDestination(ioRoots);
    if (!ioRoots.mHasDestination) {
        throw Failure("ingest: the destination \"" + ioRoots.mShownDestination + "\" is gone", kExitDisappeared);
    }
}

bool IsSourceGone(const IngestRoots& inRoots, SourceWas inSourceWas)
{
    HeldFolder folder;
    std::vector<std::string> held;
    ORL::Result result = inRoots.OpenSource("", folder);
    if (ORL::ResultSucceeded(result) && inSourceWas == SourceWas::kNotEmpty) {
        result = folder.List(held);
        if (ORL::ResultSucceeded(result)) {
            return held.empty();
        }
    }
    return !ORL::ResultSucceeded(result) && result != kOutOfResources;
}

bool IsDestinationGone(const IngestRoots& inRoots)
{
    return inRoots.mHasDestination && IsAnother(inRoots.mDestination, inRoots.mDestinationIdentity);
}

std::string FolderOf(const std::string& inName)
{
    const std::size_t at = inName.rfind('/');
    return at == std::string::npos ? std::string() : inName.substr(0, at);
}

std::string LeafOf(const std::string& inName)
{
    return inName.substr(inName.rfind('/') + 1);
}

std::string NameBelow(const std::string& inFolder, const std::string& inLeaf)
{
    return inFolder.empty() ? inLeaf : inFolder + "/" + inLeaf;
}

std::vector<std::string> FoldersTo(const std::string& inFolder)
{
    std::vector<std::string> folders(1);
    for (std::size_t at = inFolder.find('/'); at != std::string::npos; at = inFolder.find('/', at + 1)) {
        folders.push_back(inFolder.substr(0, at));
    }
    if (!inFolder.empty()) {
        folders.push_back(inFolder);
    }
    return folders;
}

} // namespace orl
