// The list of what was ingested: lines of "sha256sum", each written when its file is whole, verified, in place and on
// disk. "sha256sum -c" checks them, as do the tools of other systems that know the format.
#pragma once

#include <ORLFile.h>
#include <map>
#include <mutex>
#include <string>
#include <tvxcore/String.h>
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

    /// No file is touched yet.
    explicit IngestManifest(const UTF16String& inPath);

    /// Closes the file, and removes it where it holds nothing.
    ~IngestManifest();
    IngestManifest(const IngestManifest&) = delete;
    IngestManifest& operator=(const IngestManifest&) = delete;

    /// Makes or opens the file, keeps all others from writing it, and reads it. A line that an earlier run did not
    /// finish is cut off. Throws Failure.
    void Open();

    bool Holds(const std::string& inName) const { return mDigests.count(inName) != 0; }

    /// Takes names out whose files are gone. Throws Failure.
    void Drop(const std::vector<std::string>& inNames);

    /// Takes out the name of a file that is about to be replaced, and gives its digest, empty for a name that it does not
    /// hold. On disk there is no such line when this returns. Writes the whole list anew. Throws Failure, and holds the name
    /// on then. Safe from any thread, as is Acknowledge.
    std::string Withdraw(const std::string& inName);

    /// Adds lines, or exchanges those of names that it holds; they are on disk when this returns. Throws Failure.
    void Acknowledge(const std::vector<Line>& inLines);

private:
    void OpenFile();
    std::string ReadAll();
    void Parse(const std::string& inText);
    void Append(const std::string& inText);
    void Rewrite();

    const UTF16String mPath;
    std::mutex mMutex; // guards all below once the file is open
    ORL::File mFile;
    std::vector<std::string> mForeign; // lines that are none of ours
    std::map<std::string, std::string> mDigests;
};

/// One line with its line break, and back: false for a line of another form. A name with a backslash or a line break is
/// written as coreutils do it.
std::string FormatManifestLine(const IngestManifest::Line& inLine);
bool ParseManifestLine(const std::string& inText, IngestManifest::Line& outLine);

} // namespace orl
