// The list of ingested files, in the format of "sha256sum". The line of a file is written after the file is complete,
// verified, in place and on disk. "sha256sum -c" checks the list, as do tools on other systems that read the format.
//
// Lines are appended. A line that is no longer true is commented out: its first character is overwritten in
// one step. The end of a run removes the lines that were commented out. All other bytes stay as they are, whichever
// program wrote them.
#pragma once

#include "../Plan/IngestRoots.h"
#include "IngestRecord.h"

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
        std::string mName;   // path relative to the destination, "/" between folders, raw bytes
        std::string mDigest; // 64 hexadecimal digits
    };

    IngestManifest(const IngestRoots& inRoots, const std::string& inName, IngestRecord& ioRecord);
    IngestManifest(const IngestManifest&) = delete;
    IngestManifest& operator=(const IngestManifest&) = delete;

    /// Reads the file and changes nothing. Refuses a file at the first line that is not a checksum line, so that a
    /// large unrelated file costs little memory. Throws Failure.
    void Read();

    /// Truncates the incomplete last line of a killed run. Throws Failure.
    void CutIncompleteLine();

    /// Returns whether only this user and the administrator can have written the manifest. Otherwise its lines prove
    /// nothing, and listed files are compared again. True if there is no manifest.
    bool IsTrusted() const { return mIsTrusted; }

    bool Holds(const std::string& inName) const { return mLines.count(inName) != 0; }

    /// Returns the listed names that differ from inName only in case: on some volumes they are the same file.
    std::vector<std::string> NamesLike(const std::string& inName) const;

    /// Removes the lines of files that are gone. Throws Failure. Thread-safe, as are all functions below.
    void Drop(const std::vector<std::string>& inNames);

    /// Removes the line of a file that is about to be replaced. The line is a comment on disk when this returns.
    /// Returns the digest of the removed line, empty if the manifest does not list the name. Throws Failure.
    std::string CommentOut(const std::string& inName);

    /// Adds lines, and replaces the lines of names that are already listed. The new lines are on disk when this
    /// returns. Throws Failure.
    void Acknowledge(const std::vector<Line>& inLines);

    /// Deletes the lines that were commented out. The old list stays complete until the new one replaces it. Throws
    /// Failure.
    void Compact();

private:
    enum class LineEnd { kBreak, kEndOfFile };

    struct LineRange
    {
        std::uint64_t mAt;
        std::uint64_t mLength; // length including the line break
        std::string mDigest;
    };

    void CheckStatus();
    void ReadLines(ORL::File& ioFile);
    void ReadLine(const std::string& inText, std::uint64_t inAt, LineEnd inEnd);
    void OpenToWrite();
    void UpdateRecord();
    void CommentOutLines(const std::string& inName);
    void Append(const std::string& inText);
    void WriteAt(std::uint64_t inAt, const std::string& inText);
    std::string CopyWithout(const std::vector<LineRange>& inRanges);
    void Check(ORL::Result inResult, const char* inWhat) const;
    [[noreturn]] void Refuse(const std::string& inWhy) const;

    const IngestRoots& mRoots;
    const std::string mName;
    const std::string mDisplayName;
    IngestRecord& mRecord;
    std::mutex mMutex; // after Read, guards all members below
    HeldFolder mFolder;
    ORL::File mFile; // open from the first write on
    bool mExists = false;
    EntryIdentity mIdentity;
    bool mIsTrusted = true;
    std::uint64_t mLength = 0; // valid bytes; an incomplete line of a killed run may follow
    std::uint64_t mFound = 0;  // length of the file when it was read
    bool mEndsWithBreak = true;
    std::map<std::string, std::vector<LineRange>> mLines;
    std::vector<LineRange> mCommentedOut;
};

/// Format a line with its line break, or parse one. Parsing returns false for a line of another format. Backslashes
/// and line breaks in a name are escaped as in coreutils.
std::string FormatManifestLine(const IngestManifest::Line& inLine);
bool ParseManifestLine(const std::string& inText, IngestManifest::Line& outLine);

/// Returns whether a checksum program may have written the line: a checksum of another algorithm or format, a comment,
/// an empty line.
bool IsLineOfSums(const std::string& inText);

std::string EscapedName(const std::string& inName);
std::string UnescapedName(const std::string& inText);

} // namespace orl
