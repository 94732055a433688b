// The list of what was ingested: lines of "sha256sum", each written when its file is whole, verified, in place and on
// disk. "sha256sum -c" checks them, as do the tools of other systems that know the format.
//
// Lines are added at the end. One that is not true any more becomes a remark by its first character, in one step; what
// a run made remarks of is taken out at its end. All other bytes stay as they are, whoever wrote them.
#pragma once

#include "IngestRecord.h"
#include "IngestRoots.h"

#include <ORLFile.h>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace orl {

class IngestManifest
{
public:
    struct Line
    {
        std::string mName;   // below the destination, "/" between folders, as bytes of the host
        std::string mDigest; // 64 hexadecimal digits
    };

    IngestManifest(const IngestRoots& inRoots, const std::string& inName, IngestRecord& ioRecord);
    IngestManifest(const IngestManifest&) = delete;
    IngestManifest& operator=(const IngestManifest&) = delete;

    /// Reads the file, in memory that does not grow with other people's files, and changes nothing. A file that is no
    /// list of sums is refused. Throws Failure.
    void Read();

    /// Cuts off the line that a killed run did not finish. Throws Failure.
    void Mend();

    bool Holds(const std::string& inName) const { return mLines.count(inName) != 0; }

    /// Names that differ from this one and may be the same file on a volume that ignores case.
    std::vector<std::string> NamesLike(const std::string& inName) const;

    /// Takes names out whose files are gone. Throws Failure. Thread-safe, as are all that follow.
    void Drop(const std::vector<std::string>& inNames);

    /// Takes out the line of a file that is about to be replaced, and returns its digest, empty for a name that it does
    /// not hold. The line is a remark on disk when this returns. Throws Failure.
    std::string Withdraw(const std::string& inName);

    /// Adds lines, in the place of those of names that it holds; they are on disk when this returns. Throws Failure.
    void Acknowledge(const std::vector<Line>& inLines);

    /// Takes out what was made a remark. The old list stays whole until the new one has its place. Throws Failure.
    void Compact();

private:
    struct Place
    {
        std::uint64_t mAt;
        std::uint64_t mLength; // with the line break
        std::string mDigest;
    };

    void CheckStatus();
    void ReadLines(ORL::File& ioFile);
    void TakeUpLine(const std::string& inText, std::uint64_t inAt, bool inIsWhole);
    void OpenToWrite();
    void TellRecord();
    void WithdrawPlaces(const std::string& inName);
    void Append(const std::string& inText);
    void WriteAt(std::uint64_t inAt, const std::string& inText);
    std::string CopyWithout(const std::vector<Place>& inPlaces);
    void Check(ORL::Result inResult, const char* inWhat) const;
    [[noreturn]] void Refuse(const std::string& inWhy) const;

    const IngestRoots& mRoots;
    const std::string mName;
    const std::string mShown;
    IngestRecord& mRecord;
    std::mutex mMutex; // guards all below once the list is read
    HeldFolder mFolder;
    ORL::File mFile; // open once it is written
    bool mIsThere = false;
    EntryIdentity mIdentity;
    std::uint64_t mLength = 0; // of what counts; a line that a killed run did not finish lies behind it
    std::uint64_t mFound = 0;  // length of the file when it was read
    bool mEndsWithBreak = true;
    std::map<std::string, std::vector<Place>> mLines;
    std::vector<Place> mWithdrawn;
};

/// One line with its line break, and back: false for a line of another form. A name with a backslash or a line break is
/// written as coreutils do it.
std::string FormatManifestLine(const IngestManifest::Line& inLine);
bool ParseManifestLine(const std::string& inText, IngestManifest::Line& outLine);

/// Whether a line is one that some program of sums may have written: a sum of another kind or form, a remark, nothing.
bool IsLineOfSums(const std::string& inText);

std::string EscapedName(const std::string& inName);
std::string UnescapedName(const std::string& inText);

} // namespace orl
