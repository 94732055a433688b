// The record of one run, a file of its own at the destination beside the manifest: who is at work there, and what a run
// that is killed leaves behind. It is locked from the first look at the destination to the end of the run, and is never
// replaced.
#pragma once

#include "IngestRoots.h"

#include <ORLFile.h>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace orl {

/// What an earlier run wrote and did not get to undo.
struct IngestRemains
{
    std::set<std::string> mTemporaries;           // names below the destination
    std::optional<std::uint64_t> mManifestLength; // before the last lines were added
    std::vector<std::uint64_t> mWithdrawn;        // where lines of the manifest were made remarks
};

class IngestRecord
{
public:
    /// Touches nothing yet.
    IngestRecord(const IngestRoots& inRoots, const std::string& inManifestName);

    /// Removes the file where nothing is left that a later run had to know of.
    ~IngestRecord();
    IngestRecord(const IngestRecord&) = delete;
    IngestRecord& operator=(const IngestRecord&) = delete;

    /// Makes or opens the file and locks it against all others. Throws Failure: another run is at work, or the name is
    /// that of a file which no run of ours made.
    void Open();

    const IngestRemains& Remains() const { return mRemains; }

    /// Deletes what earlier runs left unfinished. Nothing is deleted that lies in a folder of the source.
    void RemoveLeftovers(const std::set<EntryIdentity>& inSourceFolders);

    /// A name for an unfinished file in a folder of the destination, which nothing has, written down before this
    /// returns. Throws Failure. Thread-safe, as is Forget.
    std::string NewTemporary(const std::string& inFolder);

    /// The unfinished file is gone, or has become the real one.
    void Forget(const std::string& inFolder, const std::string& inLeaf);

    /// Before lines are added to the manifest, and before one is made a remark: on disk when these return. Throw
    /// Failure.
    void NoteManifestLength(std::uint64_t inLength);
    void NoteWithdrawn(std::uint64_t inPlace);

    /// The lines are whole.
    void NoteManifestIsWhole();

    /// Whether the manifest has something that only this record explains.
    void SetNeededByManifest(bool inIsNeeded);

private:
    void OpenOnce();
    bool HasItsName();
    void Read();
    void Write(const std::string& inLine, bool inIsFlushed);

    const IngestRoots& mRoots;
    const std::string mName;
    HeldFolder mFolder;
    IngestRemains mRemains;
    std::mutex mMutex; // guards all below
    ORL::File mFile;
    std::set<std::string> mTemporaries;
    bool mIsNeededByManifest = false;
};

/// The name of the record that goes with a manifest.
std::string RecordNameOf(const std::string& inManifestName);

/// ".orl-", 32 random digits, ".part".
std::string RandomTemporaryName();

/// Whether a name has that form.
bool IsTemporaryName(const std::string& inLeaf);

/// Does something with an unfinished file. A run that was killed may hold it for a moment longer, until the system has
/// ended its reads, so kSharingViolation is answered by another try, for some seconds.
ORL::Result OnceItIsFree(const std::function<ORL::Result()>& inWork);

} // namespace orl
