// Compares a folder with its checksum list.
#pragma once

#include "Ingest/Plan/IngestListing.h"
#include "VerifyPart.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace orl {

struct VerifySettings
{
    std::string mManifest = "ingest.sha256";
    unsigned mFilesAtOnce = 4;
    bool mIsQuick = false;           // true: the verification reads no file
    std::optional<VerifyPart> mPart; // set: the verification covers only this part of the list
};

struct VerifiedFile
{
    enum State {
        kNotChecked, // the run ended before the file was checked
        kVerified,   // the SHA-256 on the disk equals the listed SHA-256
        kPresent,    // --quick: nothing contradicts the list
        kChanged,
        kMissing,
        kUnreadable,
        kNew, // the file is not in the list
    };

    std::string mName; // path relative to the folder, "/" between components, raw bytes
    State mState = kNotChecked;
    std::uint64_t mSize = 0;
    std::string mListed; // SHA-256; empty for a new file
    std::string mDigest; // SHA-256 on the disk; empty if the file was not read to its end
    std::string mReason; // why the file counts as changed or cannot be read
};

/// The part of the list that an outcome covers, with the digests that all parts of one list share.
struct PartOfList
{
    VerifyPart mPart;
    std::string mListDigest;      // SHA-256 of the list
    std::string mDivision;        // SHA-256 of the listed files, their sizes and their parts
    std::size_t mListedFiles = 0; // in this part
    bool mIsQuick = false;
};

struct VerifyOutcome
{
    std::string mShownFolder;
    std::vector<VerifiedFile> mFiles;     // sorted by name
    std::vector<IngestTrouble> mTroubles; // failures that concern the list or the folder, not a listed file
    std::uint64_t mBytesRead = 0;
    double mSeconds = 0;
    bool mIsStopped = false;
    bool mIsDiskUnresponsive = false; // the process should exit without stopping the library
    std::optional<PartOfList> mPart;

    std::size_t Count(VerifiedFile::State inState) const;
};

struct VerifyWatcher
{
    std::function<bool()> mIsStopped; // called on any thread, between two blocks

    // Called on the caller's thread: once before the first file, then ten times a second.
    std::function<void(std::uint64_t inBytesToRead, std::size_t inFiles)> mOnPlanned;
    std::function<void(std::uint64_t inBytesRead, std::size_t inFilesDone)> mShow;

    // Called on any thread, after each block of a file; may be empty.
    std::function<void(const std::string& inName)> mOnBlock = {};
};

/// Changes nothing in the folder. Requires a started library. Does not throw Failure: each error is added to
/// mTroubles.
VerifyOutcome VerifyFolder(const std::string& inFolder, const VerifySettings& inSettings,
                           const VerifyWatcher& inWatcher);

} // namespace orl
