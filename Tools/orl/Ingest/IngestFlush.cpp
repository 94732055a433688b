#include "IngestFlush.h"

#include <map>
#include <set>

namespace orl {

namespace {

// From this number of files on, one sync of the whole volume is cheaper than a sync of each file, although it also
// waits for the writes of other programs.
constexpr std::size_t kManyFiles = 64;

using Leaves = std::vector<std::string>;

// Maps each folder to the listed files directly in it; includes parent folders without any listed file.
std::map<std::string, Leaves> ByFolder(const std::vector<std::string>& inNames)
{
    std::map<std::string, Leaves> folders;
    for (const std::string& name : inNames) {
        for (const std::string& folder : FoldersTo(FolderOf(name))) {
            folders[folder];
        }
        folders[FolderOf(name)].push_back(LeafOf(name));
    }
    return folders;
}

bool SyncAll(const HeldFolder& inFolder, const Leaves& inLeaves)
{
    for (const std::string& leaf : inLeaves) {
        if (!ORL::ResultSucceeded(inFolder.SyncFile(leaf))) {
            return false;
        }
    }
    return ORL::ResultSucceeded(inFolder.Sync());
}

} // namespace

bool FlushGroup(const IngestRoots& inRoots, const std::vector<std::string>& inNames)
{
    const bool isMany = CanSyncVolumes() && inNames.size() >= kManyFiles;
    std::set<std::uint64_t> volumes; // already synced
    for (const auto& [name, leaves] : ByFolder(inNames)) {
        HeldFolder folder;
        if (!ORL::ResultSucceeded(inRoots.OpenDestination(name, folder))) {
            return false;
        }
        const bool isDue = !isMany || volumes.insert(folder.Identity().mVolume).second;
        if (isDue && !(isMany ? ORL::ResultSucceeded(folder.SyncVolume()) : SyncAll(folder, leaves))) {
            return false;
        }
    }
    return true;
}

} // namespace orl
