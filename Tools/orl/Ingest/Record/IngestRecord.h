// The record of one run: a file next to the manifest that marks the destination as in use and lists what a killed run
// leaves behind. The record is locked from the first check of the destination to the end of the run, and never replaced
// by another file.
#pragma once

#include "../Plan/IngestRoots.h"

#include <ORLFile.h>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace orl {

/// What a killed run left behind, as read from the record.
struct IngestRemains
{
    std::set<std::string> mTemporaries;           // names below the destination
    std::optional<std::uint64_t> mManifestLength; // length of the manifest before the last lines were added
    std::vector<std::uint64_t> mCommentedOut;     // offsets of lines of the manifest that were commented out
};

class IngestRecord
{
public:
    /// Does not touch the disk.
    IngestRecord(const IngestRoots& inRoots, const std::string& inManifestName);

    /// Deletes the file if it contains nothing that a later run needs.
    ~IngestRecord();
    IngestRecord(const IngestRecord&) = delete;
    IngestRecord& operator=(const IngestRecord&) = delete;

    /// Creates or opens the file and locks it against other runs. Throws Failure if another run is active or another
    /// program created the file.
    void Open();

    /// Reads what earlier runs left, if there is a record, and changes nothing. Throws Failure like Open.
    void Peek();

    const IngestRemains& Remains() const { return mRemains; }

    /// Deletes the unfinished files of earlier runs, except in folders of the source.
    void RemoveLeftovers(const std::set<EntryIdentity>& inSourceFolders);

    /// Returns an unused name for a temporary file in a folder of the destination. The name is written to the record
    /// first. Throws Failure. Thread-safe, as is ForgetTemporary.
    std::string NewTemporary(const std::string& inFolder);

    /// Call when the temporary file has been removed or renamed to its final name.
    void ForgetTemporary(const std::string& inFolder, const std::string& inLeaf);

    /// Call before lines are added to the manifest, or before a line is commented out. The entry is on disk when these
    /// functions return. Both functions throw Failure.
    void RecordManifestLength(std::uint64_t inLength);
    void RecordCommentedOut(std::uint64_t inPlace);

    /// Call when the added lines are complete.
    void RecordManifestComplete();

    /// Sets whether the manifest contains an incomplete line or comments that only this record identifies.
    void SetNeededByManifest(bool inIsNeeded);

private:
    enum class AfterWrite { kReturn, kFlush };

    void OpenOnce();
    bool IsFileCurrent();
    void Read();
    std::string ReadText();
    void TakeUpLines(const std::string& inText);
    [[noreturn]] void RefuseForeign() const;
    void CheckOpened(ORL::Result inResult) const;
    void Write(const std::string& inLine, AfterWrite inAfter);

    const IngestRoots& mRoots;
    const std::string mName;
    HeldFolder mFolder;
    IngestRemains mRemains;
    bool mIsTrusted = true; // only this user and the administrator can have written the record
    std::mutex mMutex;      // guards all members below
    ORL::File mFile;
    std::set<std::string> mTemporaries;
    bool mIsNeededByManifest = false;
};

/// Returns the name of a manifest's record.
std::string RecordNameOf(const std::string& inManifestName);

/// Calls inWork until it returns something other than kSharingViolation, for about five seconds: the OS may keep the
/// files of a killed run open until the reads of that run have ended.
ORL::Result RetryWhileBusy(const std::function<ORL::Result()>& inWork);

} // namespace orl
